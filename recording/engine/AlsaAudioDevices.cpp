// ALSA capture devices, for systems where no sound server runs.
#include "recording/engine/AudioDeviceCatalog.h"

#include <alsa/asoundlib.h>
#include <cstdlib>
#include <cstring>

#include "util/core/AlsaPcmNames.h"

namespace mirabend {

namespace {

struct HintsDeleter {
    void operator()(void** hints) const { snd_device_name_free_hint(hints); }
};
struct FreeDeleter {
    void operator()(char* text) const { std::free(text); }
};
using CText = std::unique_ptr<char, FreeDeleter>;

class AlsaCatalog final : public AudioDeviceCatalog {
public:
    explicit AlsaCatalog(std::vector<AudioDeviceInfo> devices)
        : m_devices(std::move(devices))
    {
    }
    const std::vector<AudioDeviceInfo>& devices() const override { return m_devices; }
    // ALSA devices offer one input each; the mixer's capture switches are
    // the sound card's business.
    bool selectPin(const AudioDeviceInfo&, int, std::string&) override { return true; }

private:
    std::vector<AudioDeviceInfo> m_devices;
};

} // namespace

std::unique_ptr<AudioDeviceCatalog> makeAlsaCatalog()
{
    std::vector<AudioDeviceInfo> devices;
    void** raw = nullptr;
    if (snd_device_name_hint(-1, "pcm", &raw) == 0 && raw) {
        std::unique_ptr<void*, HintsDeleter> hints(raw);
        for (void** hint = raw; *hint; ++hint) {
            CText name(snd_device_name_get_hint(*hint, "NAME"));
            CText io(snd_device_name_get_hint(*hint, "IOID"));
            CText desc(snd_device_name_get_hint(*hint, "DESC"));
            if (!name || (io && std::strcmp(io.get(), "Input") != 0))
                continue;
            const std::string id = name.get();
            // Plain hardware (its sysdefault/dsnoop entries stand for it) and
            // the helper plugins are no use for recording.
            if (isAlsaHelperPcm(id) || id.rfind("hw:", 0) == 0 || id.rfind("plughw:", 0) == 0)
                continue;
            AudioDeviceInfo device;
            device.backend = "alsa";
            device.id = id;
            QString text = QString::fromUtf8(desc ? desc.get() : name.get()).section(QLatin1Char('\n'), 0, 0);
            device.name = text.isEmpty() ? QString::fromStdString(id) : text;
            device.pins << QStringLiteral("Capture");
            device.pinIds.push_back("Capture");
            if (id == "default")
                devices.insert(devices.begin(), std::move(device));
            else
                devices.push_back(std::move(device));
        }
    }
    // The system default comes first even where the hints leave it out.
    if (devices.empty() || devices.front().id != "default") {
        AudioDeviceInfo device;
        device.backend = "alsa";
        device.id = "default";
        device.name = QStringLiteral("Default ALSA capture device");
        device.pins << QStringLiteral("Capture");
        device.pinIds.push_back("Capture");
        devices.insert(devices.begin(), std::move(device));
    }
    for (std::size_t i = 0; i < devices.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (devices[j].name == devices[i].name) {
                devices[i].name += QStringLiteral(" (%1)").arg(QString::fromStdString(devices[i].id));
                break;
            }
        }
    }
    return std::make_unique<AlsaCatalog>(std::move(devices));
}

std::unique_ptr<AudioDeviceCatalog> AudioDeviceCatalog::discover()
{
    if (auto pulse = makePulseAudioCatalog())
        return pulse;
    return makeAlsaCatalog();
}

} // namespace mirabend
