// PulseAudio (and PipeWire's PulseAudio service): sources and their ports.
#include "recording/engine/AudioDeviceCatalog.h"

#include <algorithm>
#include <pulse/pulseaudio.h>

namespace mirabend {

namespace {

struct MainloopDeleter {
    void operator()(pa_mainloop* m) const { pa_mainloop_free(m); }
};
struct ContextDeleter {
    void operator()(pa_context* c) const
    {
        pa_context_disconnect(c);
        pa_context_unref(c);
    }
};
struct OperationDeleter {
    void operator()(pa_operation* o) const { pa_operation_unref(o); }
};

// A short-lived synchronous connection: the list is read when the options
// window fills its lists and when a pin is chosen, never while recording.
class PulseConnection {
public:
    PulseConnection()
        : m_loop(pa_mainloop_new())
    {
        if (!m_loop)
            return;
        m_context.reset(pa_context_new(pa_mainloop_get_api(m_loop.get()), "Mirabend"));
        if (!m_context || pa_context_connect(m_context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
            return;
        for (int i = 0; i < 2000; ++i) {
            const pa_context_state_t state = pa_context_get_state(m_context.get());
            if (state == PA_CONTEXT_READY) {
                m_ready = true;
                return;
            }
            if (!PA_CONTEXT_IS_GOOD(state))
                return;
            if (pa_mainloop_iterate(m_loop.get(), 1, nullptr) < 0)
                return;
        }
    }
    bool ready() const { return m_ready; }
    pa_context* context() { return m_context.get(); }
    // Runs the loop until the operation is done.
    bool wait(pa_operation* raw)
    {
        std::unique_ptr<pa_operation, OperationDeleter> op(raw);
        if (!op)
            return false;
        while (pa_operation_get_state(op.get()) == PA_OPERATION_RUNNING) {
            if (pa_mainloop_iterate(m_loop.get(), 1, nullptr) < 0)
                return false;
        }
        return true;
    }

private:
    std::unique_ptr<pa_mainloop, MainloopDeleter> m_loop;
    std::unique_ptr<pa_context, ContextDeleter> m_context;
    bool m_ready = false;
};

struct Listing {
    std::string defaultSource;
    std::vector<AudioDeviceInfo> devices;
    bool success = true;
};

void onServerInfo(pa_context*, const pa_server_info* info, void* data)
{
    if (info && info->default_source_name)
        static_cast<Listing*>(data)->defaultSource = info->default_source_name;
}

void onSourceInfo(pa_context*, const pa_source_info* info, int eol, void* data)
{
    auto* listing = static_cast<Listing*>(data);
    if (eol < 0) {
        listing->success = false;
        return;
    }
    if (eol > 0 || !info)
        return;
    AudioDeviceInfo device;
    device.backend = "pulse";
    device.id = info->name;
    device.name = QString::fromUtf8(info->description && *info->description ? info->description : info->name);
    for (uint32_t i = 0; i < info->n_ports; ++i) {
        const pa_source_port_info* port = info->ports[i];
        device.pins << QString::fromUtf8(port->description && *port->description ? port->description
                                                                                 : port->name);
        device.pinIds.push_back(port->name);
        if (info->active_port == port)
            device.activePin = int(i);
    }
    listing->devices.push_back(std::move(device));
}

void onSuccess(pa_context*, int success, void* data)
{
    *static_cast<int*>(data) = success;
}

class PulseAudioCatalog final : public AudioDeviceCatalog {
public:
    explicit PulseAudioCatalog(std::vector<AudioDeviceInfo> devices)
        : m_devices(std::move(devices))
    {
    }
    const std::vector<AudioDeviceInfo>& devices() const override { return m_devices; }

    bool selectPin(const AudioDeviceInfo& device, int pin, std::string& error) override
    {
        if (pin < 0 || pin >= int(device.pinIds.size()))
            return true; // a device without pins records from what it has
        PulseConnection pulse;
        if (!pulse.ready()) {
            error = "the sound server does not answer";
            return false;
        }
        int success = 0;
        if (!pulse.wait(pa_context_set_source_port_by_name(pulse.context(), device.id.c_str(),
                                                           device.pinIds[std::size_t(pin)].c_str(), onSuccess,
                                                           &success)) ||
            !success) {
            error = "the sound server refused the input " + device.pinIds[std::size_t(pin)];
            return false;
        }
        return true;
    }

private:
    std::vector<AudioDeviceInfo> m_devices;
};

} // namespace

std::unique_ptr<AudioDeviceCatalog> makePulseAudioCatalog()
{
    PulseConnection pulse;
    if (!pulse.ready())
        return nullptr;
    Listing listing;
    if (!pulse.wait(pa_context_get_server_info(pulse.context(), onServerInfo, &listing)) ||
        !pulse.wait(pa_context_get_source_info_list(pulse.context(), onSourceInfo, &listing)) ||
        !listing.success)
        return nullptr;
    // The default source first: it is what a recording takes unless told
    // otherwise. Monitors of outputs stay in the list, after the inputs.
    std::stable_sort(listing.devices.begin(), listing.devices.end(),
                     [&](const AudioDeviceInfo& a, const AudioDeviceInfo& b) {
                         const auto rank = [&](const AudioDeviceInfo& d) {
                             if (d.id == listing.defaultSource)
                                 return 0;
                             return d.id.size() >= 8 && d.id.compare(d.id.size() - 8, 8, ".monitor") == 0 ? 2
                                                                                                          : 1;
                         };
                         return rank(a) < rank(b);
                     });
    // Names must be unique for the by-name lookup.
    for (std::size_t i = 0; i < listing.devices.size(); ++i) {
        int same = 1;
        for (std::size_t j = 0; j < i; ++j) {
            if (listing.devices[j].name == listing.devices[i].name)
                ++same;
        }
        if (same > 1)
            listing.devices[i].name += QStringLiteral(" (%1)").arg(same);
    }
    return std::make_unique<PulseAudioCatalog>(std::move(listing.devices));
}

} // namespace mirabend
