#include "audio/capture/InputDevices.h"

#include "audio/capture/AlsaHandles.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <strings.h>

#include "util/core/AlsaPcmNames.h"

namespace mirabend {
namespace {

// Card-specific PCMs other than the plain hardware device: each of them
// repeats a card that is already listed through its "hw:" entry.
const char* const kCardVariants[] = {"plughw:", "sysdefault:", "front:", "rear:", "center_lfe:", "side:",
                                     "surround", "iec958:", "spdif:", "hdmi:", "dmix:", "dsnoop:",
                                     "usbstream:"};

std::string hint(void* entry, const char* field)
{
    alsa::CString value(snd_device_name_get_hint(entry, field));
    return value ? std::string(value.get()) : std::string();
}

std::string firstLine(const std::string& text)
{
    return text.substr(0, text.find('\n'));
}

// "hw:CARD=PCH,DEV=0" -> "PCH"
std::string cardOf(const std::string& pcm)
{
    const auto start = pcm.find("CARD=");
    if (start == std::string::npos)
        return {};
    const auto end = pcm.find(',', start);
    return pcm.substr(start + 5, end == std::string::npos ? std::string::npos : end - start - 5);
}

std::string readableName(const std::string& pcm, const std::string& description)
{
    if (pcm == "default")
        return "Default";
    if (pcm == "pulse")
        return "PulseAudio Sound Server";
    if (pcm == "pipewire")
        return "PipeWire Sound Server";
    std::string desc = description;
    // Card descriptions come as "Card, Device\nDirect hardware device ...".
    desc = firstLine(desc);
    const auto comma = desc.find(", ");
    if (pcm.rfind("hw:", 0) == 0 && comma != std::string::npos)
        desc = desc.substr(0, comma) + ": " + desc.substr(comma + 2);
    return desc.empty() ? pcm : desc;
}

} // namespace

std::vector<InputDevice> listInputDevices()
{
    std::vector<InputDevice> devices;
    void** raw = nullptr;
    if (snd_device_name_hint(-1, "pcm", &raw) < 0)
        return devices;
    alsa::Hints hints(raw);
    std::set<std::string> seen;
    for (void** entry = hints.get(); *entry; ++entry) {
        const std::string pcm = hint(*entry, "NAME");
        const std::string ioid = hint(*entry, "IOID");
        if (pcm.empty() || (!ioid.empty() && ioid != "Input"))
            continue;
        if (isAlsaHelperPcm(pcm))
            continue;
        const std::string base = pcm.substr(0, pcm.find(':'));
        if (std::any_of(std::begin(kCardVariants), std::end(kCardVariants),
                        [&](const char* prefix) { return pcm.rfind(prefix, 0) == 0; }))
            continue;
        if (!seen.insert(pcm).second)
            continue;
        InputDevice device;
        device.name = readableName(pcm, hint(*entry, "DESC"));
        if (pcm.rfind("hw:", 0) == 0) {
            // Open through the plug layer so any rate and channel count works.
            device.pcm = "plug" + pcm;
            device.ctl = "hw:CARD=" + cardOf(pcm);
        } else {
            device.pcm = pcm;
            device.ctl = base;
        }
        devices.push_back(std::move(device));
    }
    // The default device first, as the system's own choice.
    std::stable_partition(devices.begin(), devices.end(),
                          [](const InputDevice& d) { return d.pcm == "default"; });
    return devices;
}

std::vector<std::string> audioInputDeviceNames()
{
    std::vector<std::string> names;
    for (const InputDevice& device : listInputDevices())
        names.push_back(device.name);
    return names;
}

int findInputDevice(const std::vector<InputDevice>& devices, const std::string& nameOrPcm)
{
    for (std::size_t i = 0; i < devices.size(); ++i) {
        if (strcasecmp(devices[i].name.c_str(), nameOrPcm.c_str()) == 0 ||
            strcasecmp(devices[i].pcm.c_str(), nameOrPcm.c_str()) == 0)
            return static_cast<int>(i);
    }
    return -1;
}

} // namespace mirabend
