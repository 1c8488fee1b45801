/* A GStreamer device provider that offers cameras made of videotestsrc, so
 * the camera pane can be exercised on a machine without capture hardware.
 *
 * Two devices are listed: "Mirabend Test Camera" with three raw formats and
 * "Mirabend Test Camera (no formats)" whose sizes are open ranges. When the environment names
 * a file in MIRABEND_TEST_CAMERA_PLUG, the devices are present only while
 * that file exists; a watcher thread reports plugging and unplugging to the
 * device monitor, as a USB camera's provider would. */

#include <gst/gst.h>

#define TESTCAM_TYPE_DEVICE (testcam_device_get_type())
G_DECLARE_FINAL_TYPE(TestcamDevice, testcam_device, TESTCAM, DEVICE, GstDevice)

struct _TestcamDevice {
    GstDevice parent;
};

G_DEFINE_TYPE(TestcamDevice, testcam_device, GST_TYPE_DEVICE)

static GstElement* testcam_device_create_element(GstDevice* device, const gchar* name) {
    (void)device;
    GstElement* source = gst_element_factory_make("videotestsrc", name);
    if (source)
        g_object_set(source, "is-live", TRUE, "horizontal-speed", 3, NULL);
    return source;
}

static void testcam_device_class_init(TestcamDeviceClass* klass) {
    GST_DEVICE_CLASS(klass)->create_element = testcam_device_create_element;
}

static void testcam_device_init(TestcamDevice* self) {
    (void)self;
}

static GstDevice* testcam_device_new(const gchar* name, const gchar* path, GstCaps* caps,
                                     gboolean isDefault) {
    GstStructure* properties = gst_structure_new("mirabend-test-camera", "device.path", G_TYPE_STRING, path,
                                                 "is-default", G_TYPE_BOOLEAN, isDefault, NULL);
    GstDevice* device = g_object_new(TESTCAM_TYPE_DEVICE, "display-name", name, "device-class",
                                     "Video/Source", "caps", caps, "properties", properties, NULL);
    gst_structure_free(properties);
    gst_caps_unref(caps);
    return device;
}

static GList* testcam_devices(void) {
    GstCaps* caps = gst_caps_from_string("video/x-raw,format=YUY2,width=640,height=480,framerate=30/1;"
                                         "video/x-raw,format=I420,width=320,height=240,framerate=15/1;"
                                         "video/x-raw,format=I420,width=1280,height=720,framerate=30/1");
    GList* list = NULL;
    list = g_list_append(list, testcam_device_new("Mirabend Test Camera", "mirabend-test:0", caps, TRUE));
    /* Sizes given only as ranges: a device monitor lists the device, but it
     * names no format a user could pick. */
    list = g_list_append(list, testcam_device_new("Mirabend Test Camera (no formats)", "mirabend-test:1",
                                                  gst_caps_from_string("video/x-raw,width=[16,4096],"
                                                                       "height=[16,4096]"),
                                                  FALSE));
    return list;
}

static gboolean testcam_plugged(void) {
    const gchar* plug = g_getenv("MIRABEND_TEST_CAMERA_PLUG");
    return !plug || !*plug || g_file_test(plug, G_FILE_TEST_EXISTS);
}

#define TESTCAM_TYPE_PROVIDER (testcam_provider_get_type())
G_DECLARE_FINAL_TYPE(TestcamProvider, testcam_provider, TESTCAM, PROVIDER, GstDeviceProvider)

struct _TestcamProvider {
    GstDeviceProvider parent;
    GThread* watcher;
    gint running;
    gboolean present;
};

G_DEFINE_TYPE(TestcamProvider, testcam_provider, GST_TYPE_DEVICE_PROVIDER)

/* One set of device objects for every provider instance (a device monitor
 * may make several): a consumer that keeps devices by identity then sees
 * each camera once. */
static GList* testcam_provider_own_devices(TestcamProvider* self) {
    static GList* devices = NULL;
    static GMutex lock;
    (void)self;
    g_mutex_lock(&lock);
    if (!devices) {
        devices = testcam_devices();
        for (GList* d = devices; d; d = d->next)
            gst_object_ref_sink(d->data);
    }
    g_mutex_unlock(&lock);
    return devices;
}

static gpointer testcam_ref(gconstpointer object, gpointer unused) {
    (void)unused;
    return gst_object_ref((gpointer)object);
}

static GList* testcam_provider_probe(GstDeviceProvider* provider) {
    if (!testcam_plugged())
        return NULL;
    return g_list_copy_deep(testcam_provider_own_devices(TESTCAM_PROVIDER(provider)), testcam_ref, NULL);
}

static void testcam_provider_update(TestcamProvider* self, gboolean present) {
    GstDeviceProvider* provider = GST_DEVICE_PROVIDER(self);
    if (present == self->present)
        return;
    self->present = present;
    for (GList* d = testcam_provider_own_devices(self); d; d = d->next) {
        if (present)
            gst_device_provider_device_add(provider, GST_DEVICE(d->data));
        else
            gst_device_provider_device_remove(provider, GST_DEVICE(d->data));
    }
}

static gpointer testcam_provider_watch(gpointer data) {
    TestcamProvider* self = data;
    while (g_atomic_int_get(&self->running)) {
        g_usleep(100 * 1000);
        testcam_provider_update(self, testcam_plugged());
    }
    return NULL;
}

static gboolean testcam_provider_start(GstDeviceProvider* provider) {
    TestcamProvider* self = TESTCAM_PROVIDER(provider);
    /* The cameras are announced by the watcher a moment after the start, as
     * if plugged in then: Qt 6.4 lists a started provider's devices and also
     * takes the announcements made during its start, so it would list
     * cameras announced at once twice. */
    self->present = FALSE;
    g_atomic_int_set(&self->running, 1);
    self->watcher = g_thread_new("testcam-watch", testcam_provider_watch, self);
    return TRUE;
}

static void testcam_provider_stop(GstDeviceProvider* provider) {
    TestcamProvider* self = TESTCAM_PROVIDER(provider);
    g_atomic_int_set(&self->running, 0);
    if (self->watcher)
        g_thread_join(self->watcher);
    self->watcher = NULL;
}

static void testcam_provider_class_init(TestcamProviderClass* klass) {
    GstDeviceProviderClass* provider = GST_DEVICE_PROVIDER_CLASS(klass);
    provider->probe = testcam_provider_probe;
    provider->start = testcam_provider_start;
    provider->stop = testcam_provider_stop;
    gst_device_provider_class_set_static_metadata(provider, "Mirabend test cameras", "Source/Video",
                                                  "Test cameras over videotestsrc", "Mirabend developers");
}

static void testcam_provider_init(TestcamProvider* self) {
    self->watcher = NULL;
    self->running = 0;
    self->present = FALSE;
}

static gboolean plugin_init(GstPlugin* plugin) {
    return gst_device_provider_register(plugin, "mirabendtestcamera", GST_RANK_PRIMARY,
                                        TESTCAM_TYPE_PROVIDER);
}

#define PACKAGE "mirabend"
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, mirabendtestcamera, "Mirabend test cameras",
                  plugin_init, "1.0", "LGPL", "mirabend", "https://mirabend.invalid/")
