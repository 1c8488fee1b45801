/* A small external ALSA control plugin that plays a sound card's mixer for
 * the capture tests. Three layouts, chosen by the "layout" setting:
 *   switches  "Capture Source" (Mic, Line, CD) with per-source capture volumes
 *             (CD mono), which the simple mixer shows as exclusive switches;
 *   enum      an "Input Source" enumeration (Mic, Front Mic, Line) and one
 *             "Capture" volume and switch;
 *   server    "Master" and "Capture" volumes 0..65536, like a sound server.
 * Every value written is also saved to the file named by "state", one line
 * per control ("Name|v0 v1"), so a test can read what reached the "card".
 * Changes are announced as events, as a real card's driver does. */
#include <alsa/asoundlib.h>
#include <alsa/control_external.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#define MAX_CTLS 8
#define MAX_EVENTS 64

typedef struct {
    const char *name;
    snd_ctl_elem_type_t type;
    unsigned int count;
    long min, max;
    const char *const *items;
    unsigned int nitems;
    long value[2];
} control_t;

typedef struct {
    snd_ctl_ext_t ext;
    control_t ctls[MAX_CTLS];
    unsigned int n;
    char state[512];
    int pipefd[2];
    int subscribed;
    unsigned int events[MAX_EVENTS];
    unsigned int nevents;
} mixtest_t;

static const char *const switch_items[] = {"Mic", "Line", "CD"};
static const char *const enum_items[] = {"Mic", "Front Mic", "Line"};

static void add(mixtest_t *m, const char *name, snd_ctl_elem_type_t type, unsigned int count, long min,
                long max, long initial)
{
    control_t *c = &m->ctls[m->n++];
    c->name = name;
    c->type = type;
    c->count = count;
    c->min = min;
    c->max = max;
    c->value[0] = c->value[1] = initial;
}

static void add_enum(mixtest_t *m, const char *name, unsigned int count, const char *const *items,
                     unsigned int nitems, long initial)
{
    add(m, name, SND_CTL_ELEM_TYPE_ENUMERATED, count, 0, nitems - 1, initial);
    m->ctls[m->n - 1].items = items;
    m->ctls[m->n - 1].nitems = nitems;
}

static void save(mixtest_t *m)
{
    FILE *f;
    unsigned int i;
    if (!m->state[0])
        return;
    f = fopen(m->state, "w");
    if (!f)
        return;
    for (i = 0; i < m->n; i++) {
        if (m->ctls[i].count == 1)
            fprintf(f, "%s|%ld\n", m->ctls[i].name, m->ctls[i].value[0]);
        else
            fprintf(f, "%s|%ld %ld\n", m->ctls[i].name, m->ctls[i].value[0], m->ctls[i].value[1]);
    }
    fclose(f);
}

static void notify(mixtest_t *m, unsigned int key)
{
    char byte = 1;
    if (!m->subscribed || m->nevents >= MAX_EVENTS)
        return;
    m->events[m->nevents++] = key;
    if (write(m->pipefd[1], &byte, 1) < 0)
        return;
}

static int elem_count(snd_ctl_ext_t *ext)
{
    return (int)((mixtest_t *)ext->private_data)->n;
}

static int elem_list(snd_ctl_ext_t *ext, unsigned int offset, snd_ctl_elem_id_t *id)
{
    mixtest_t *m = ext->private_data;
    if (offset >= m->n)
        return -EINVAL;
    snd_ctl_elem_id_set_interface(id, SND_CTL_ELEM_IFACE_MIXER);
    snd_ctl_elem_id_set_name(id, m->ctls[offset].name);
    return 0;
}

static snd_ctl_ext_key_t find_elem(snd_ctl_ext_t *ext, const snd_ctl_elem_id_t *id)
{
    mixtest_t *m = ext->private_data;
    const char *name = snd_ctl_elem_id_get_name(id);
    unsigned int i;
    unsigned int numid = snd_ctl_elem_id_get_numid(id);
    if (numid > 0 && numid <= m->n)
        return numid - 1;
    for (i = 0; i < m->n; i++)
        if (strcmp(name, m->ctls[i].name) == 0)
            return i;
    return SND_CTL_EXT_KEY_NOT_FOUND;
}

static int get_attribute(snd_ctl_ext_t *ext, snd_ctl_ext_key_t key, int *type, unsigned int *acc,
                         unsigned int *count)
{
    mixtest_t *m = ext->private_data;
    if (key >= m->n)
        return -EINVAL;
    *type = m->ctls[key].type;
    *acc = SND_CTL_EXT_ACCESS_READWRITE;
    *count = m->ctls[key].count;
    return 0;
}

static int get_integer_info(snd_ctl_ext_t *ext, snd_ctl_ext_key_t key, long *imin, long *imax, long *istep)
{
    mixtest_t *m = ext->private_data;
    *imin = m->ctls[key].min;
    *imax = m->ctls[key].max;
    *istep = 1;
    return 0;
}

static int get_enumerated_info(snd_ctl_ext_t *ext, snd_ctl_ext_key_t key, unsigned int *items)
{
    *items = ((mixtest_t *)ext->private_data)->ctls[key].nitems;
    return 0;
}

static int get_enumerated_name(snd_ctl_ext_t *ext, snd_ctl_ext_key_t key, unsigned int item, char *name,
                               size_t name_max_len)
{
    control_t *c = &((mixtest_t *)ext->private_data)->ctls[key];
    if (item >= c->nitems)
        return -EINVAL;
    snprintf(name, name_max_len, "%s", c->items[item]);
    return 0;
}

static int read_integer(snd_ctl_ext_t *ext, snd_ctl_ext_key_t key, long *value)
{
    control_t *c = &((mixtest_t *)ext->private_data)->ctls[key];
    unsigned int i;
    for (i = 0; i < c->count; i++)
        value[i] = c->value[i];
    return 0;
}

static int write_integer(snd_ctl_ext_t *ext, snd_ctl_ext_key_t key, long *value)
{
    mixtest_t *m = ext->private_data;
    control_t *c = &m->ctls[key];
    unsigned int i;
    int changed = 0;
    for (i = 0; i < c->count; i++) {
        long v = value[i] < c->min ? c->min : value[i] > c->max ? c->max : value[i];
        if (c->value[i] != v)
            changed = 1;
        c->value[i] = v;
    }
    save(m);
    if (changed)
        notify(m, (unsigned int)key);
    return changed;
}

static int read_enumerated(snd_ctl_ext_t *ext, snd_ctl_ext_key_t key, unsigned int *items)
{
    control_t *c = &((mixtest_t *)ext->private_data)->ctls[key];
    unsigned int i;
    for (i = 0; i < c->count; i++)
        items[i] = (unsigned int)c->value[i];
    return 0;
}

static int write_enumerated(snd_ctl_ext_t *ext, snd_ctl_ext_key_t key, unsigned int *items)
{
    long values[2] = {0, 0};
    unsigned int i;
    control_t *c = &((mixtest_t *)ext->private_data)->ctls[key];
    for (i = 0; i < c->count; i++) {
        if (items[i] >= c->nitems)
            return -EINVAL;
        values[i] = items[i];
    }
    return write_integer(ext, key, values);
}

static void subscribe_events(snd_ctl_ext_t *ext, int subscribe)
{
    ((mixtest_t *)ext->private_data)->subscribed = subscribe;
}

static int read_event(snd_ctl_ext_t *ext, snd_ctl_elem_id_t *id, unsigned int *event_mask)
{
    mixtest_t *m = ext->private_data;
    char byte;
    unsigned int key;
    if (m->nevents == 0)
        return -EAGAIN;
    key = m->events[0];
    memmove(m->events, m->events + 1, (m->nevents - 1) * sizeof m->events[0]);
    m->nevents--;
    if (read(m->pipefd[0], &byte, 1) < 0)
        return -EAGAIN;
    snd_ctl_elem_id_set_interface(id, SND_CTL_ELEM_IFACE_MIXER);
    snd_ctl_elem_id_set_name(id, m->ctls[key].name);
    *event_mask = SND_CTL_EVENT_MASK_VALUE;
    return 1;
}

static void close_plugin(snd_ctl_ext_t *ext)
{
    mixtest_t *m = ext->private_data;
    close(m->pipefd[0]);
    close(m->pipefd[1]);
    free(m);
}

static const snd_ctl_ext_callback_t callbacks = {
    .close = close_plugin,
    .elem_count = elem_count,
    .elem_list = elem_list,
    .find_elem = find_elem,
    .get_attribute = get_attribute,
    .get_integer_info = get_integer_info,
    .get_enumerated_info = get_enumerated_info,
    .get_enumerated_name = get_enumerated_name,
    .read_integer = read_integer,
    .read_enumerated = read_enumerated,
    .write_integer = write_integer,
    .write_enumerated = write_enumerated,
    .subscribe_events = subscribe_events,
    .read_event = read_event,
};

SND_CTL_PLUGIN_DEFINE_FUNC(mixtest)
{
    snd_config_iterator_t i, next;
    const char *layout = "server";
    const char *state = "";
    mixtest_t *m;
    int err;
    (void)root;

    snd_config_for_each(i, next, conf) {
        snd_config_t *n = snd_config_iterator_entry(i);
        const char *id;
        if (snd_config_get_id(n, &id) < 0)
            continue;
        if (strcmp(id, "comment") == 0 || strcmp(id, "type") == 0 || strcmp(id, "hint") == 0)
            continue;
        if (strcmp(id, "layout") == 0) {
            snd_config_get_string(n, &layout);
            continue;
        }
        if (strcmp(id, "state") == 0) {
            snd_config_get_string(n, &state);
            continue;
        }
        SNDERR("Unknown field %s", id);
        return -EINVAL;
    }

    m = calloc(1, sizeof *m);
    if (!m)
        return -ENOMEM;
    if (pipe(m->pipefd) < 0) {
        free(m);
        return -errno;
    }
    fcntl(m->pipefd[0], F_SETFL, O_NONBLOCK);
    snprintf(m->state, sizeof m->state, "%s", state);
    if (strcmp(layout, "switches") == 0) {
        add(m, "Master Playback Volume", SND_CTL_ELEM_TYPE_INTEGER, 2, 0, 31, 20);
        add_enum(m, "Capture Source", 2, switch_items, 3, 1);
        add(m, "Mic Capture Volume", SND_CTL_ELEM_TYPE_INTEGER, 2, 0, 31, 10);
        add(m, "Line Capture Volume", SND_CTL_ELEM_TYPE_INTEGER, 2, 0, 31, 11);
        add(m, "CD Capture Volume", SND_CTL_ELEM_TYPE_INTEGER, 1, 0, 31, 12);
    } else if (strcmp(layout, "enum") == 0) {
        add(m, "Master Playback Volume", SND_CTL_ELEM_TYPE_INTEGER, 2, 0, 31, 20);
        add_enum(m, "Input Source", 1, enum_items, 3, 2);
        add(m, "Capture Volume", SND_CTL_ELEM_TYPE_INTEGER, 2, 0, 63, 40);
        add(m, "Capture Switch", SND_CTL_ELEM_TYPE_BOOLEAN, 2, 0, 1, 1);
    } else {
        add(m, "Master Playback Volume", SND_CTL_ELEM_TYPE_INTEGER, 2, 0, 65536, 65536);
        add(m, "Capture Volume", SND_CTL_ELEM_TYPE_INTEGER, 2, 0, 65536, 65536);
        add(m, "Capture Switch", SND_CTL_ELEM_TYPE_BOOLEAN, 2, 0, 1, 0);
    }
    save(m);

    m->ext.version = SND_CTL_EXT_VERSION;
    m->ext.card_idx = 0;
    snprintf(m->ext.id, sizeof m->ext.id, "mixtest");
    snprintf(m->ext.driver, sizeof m->ext.driver, "mixtest");
    snprintf(m->ext.name, sizeof m->ext.name, "Mixer test (%s)", layout);
    snprintf(m->ext.longname, sizeof m->ext.longname, "Mixer test plugin, layout %s", layout);
    snprintf(m->ext.mixername, sizeof m->ext.mixername, "mixtest");
    m->ext.poll_fd = m->pipefd[0];
    m->ext.callback = &callbacks;
    m->ext.private_data = m;

    err = snd_ctl_ext_create(&m->ext, name, mode);
    if (err < 0) {
        close_plugin(&m->ext);
        return err;
    }
    *handlep = m->ext.handle;
    return 0;
}

SND_CTL_PLUGIN_SYMBOL(mixtest);
