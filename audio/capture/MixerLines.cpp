#include "audio/capture/MixerLines.h"

#include <algorithm>
#include <cctype>

namespace mirabend {
namespace {

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool contains(const std::string& text, const char* part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

int lineKindFromName(const std::string& name)
{
    const std::string n = lower(name);
    if (contains(n, "mic"))
        return LineMicrophone;
    if (contains(n, "line"))
        return LineLineIn;
    if (n == "cd" || contains(n, "cd ") || contains(n, "compact"))
        return LineCompactDisc;
    if (contains(n, "aux"))
        return LineAuxiliary;
    if (contains(n, "phone") && !contains(n, "headphone"))
        return LineTelephone;
    if (contains(n, "beep") || contains(n, "speaker"))
        return LinePCSpeaker;
    if (contains(n, "synth") || contains(n, "midi"))
        return LineSynthesizer;
    if (contains(n, "digital") || contains(n, "iec958") || contains(n, "spdif"))
        return LineDigital;
    if (contains(n, "mix") || contains(n, "wave") || contains(n, "pcm"))
        return LineWaveOut;
    if (contains(n, "video") || contains(n, "analog"))
        return LineAnalog;
    return LineUndefined;
}

std::string lineKindName(int kind)
{
    switch (kind) {
    case LineAnalog: return "Analog";
    case LineAuxiliary: return "Auxiliary";
    case LineCompactDisc: return "Compact Disc";
    case LineDigital: return "Digital";
    case LineLineIn: return "Line-In";
    case LineMicrophone: return "Microphone";
    case LinePCSpeaker: return "PC Speaker";
    case LineSynthesizer: return "Synthesizer";
    case LineTelephone: return "Telephone";
    case LineUndefined: return "Undefined";
    case LineWaveOut: return "WaveOut";
    default: return "Unknown";
    }
}

std::vector<snd_mixer_elem_t*> mixerElements(snd_mixer_t* mixer)
{
    std::vector<snd_mixer_elem_t*> elements;
    for (snd_mixer_elem_t* e = snd_mixer_first_elem(mixer); e; e = snd_mixer_elem_next(e)) {
        if (snd_mixer_selem_is_active(e))
            elements.push_back(e);
    }
    return elements;
}

snd_mixer_elem_t* captureVolumeElement(snd_mixer_t* mixer, const std::string& name)
{
    for (snd_mixer_elem_t* e : mixerElements(mixer)) {
        if (snd_mixer_selem_has_capture_volume(e) && name == snd_mixer_selem_get_name(e))
            return e;
    }
    return nullptr;
}

CaptureMixer::CaptureMixer(alsa::Mixer mixer, std::unique_ptr<MixerLines> lines)
    : m_mixer(std::move(mixer))
    , m_lines(std::move(lines))
{
}

std::unique_ptr<CaptureMixer> CaptureMixer::open(const std::string& ctl, CaptureFailure* failure)
{
    auto fail = [&](int err, const char* step) {
        if (failure)
            *failure = {CaptureError::MixerUnavailable, "mixer \"" + ctl + "\": " + step + ": " + snd_strerror(err)};
        return nullptr;
    };
    snd_mixer_t* raw = nullptr;
    int err = snd_mixer_open(&raw, 0);
    alsa::Mixer mixer(raw);
    if (err < 0)
        return fail(err, "open");
    if ((err = snd_mixer_attach(mixer.get(), ctl.c_str())) < 0)
        return fail(err, "attach");
    if ((err = snd_mixer_selem_register(mixer.get(), nullptr, nullptr)) < 0)
        return fail(err, "register");
    if ((err = snd_mixer_load(mixer.get())) < 0)
        return fail(err, "load");
    std::unique_ptr<MixerLines> lines = exclusiveSwitchLines(mixer.get());
    if (!lines)
        lines = sourceEnumLines(mixer.get());
    if (!lines)
        lines = serverCaptureLines(mixer.get());
    return std::unique_ptr<CaptureMixer>(new CaptureMixer(std::move(mixer), std::move(lines)));
}

// Picks up changes made by other programs (or by the card itself when one of
// its exclusive switches turned another off).
void CaptureMixer::refresh()
{
    snd_mixer_handle_events(m_mixer.get());
}

int CaptureMixer::lineCount()
{
    return m_lines ? m_lines->count() : 0;
}

std::string CaptureMixer::lineName(int index)
{
    if (!m_lines || index < 0 || index >= m_lines->count())
        return {};
    return m_lines->name(index);
}

bool CaptureMixer::selectLine(int index)
{
    if (!m_lines || index < 0 || index >= m_lines->count())
        return false;
    refresh();
    const bool ok = m_lines->select(index);
    refresh();
    return ok;
}

int CaptureMixer::selectedLine()
{
    if (!m_lines || m_lines->count() == 0)
        return 0;
    refresh();
    return m_lines->selected();
}

int CaptureMixer::lineType(int index)
{
    if (index == -1)
        index = selectedLine();
    const std::string name = lineName(index);
    return name.empty() ? 0 : lineKindFromName(name);
}

bool CaptureMixer::volume(int index, long* value)
{
    if (!m_lines || index < 0 || index >= m_lines->count())
        return false;
    refresh();
    snd_mixer_elem_t* e = m_lines->volumeElement(index);
    return e && snd_mixer_selem_get_capture_volume(e, SND_MIXER_SCHN_FRONT_LEFT, value) >= 0;
}

bool CaptureMixer::setVolume(int index, long value)
{
    if (!m_lines || index < 0 || index >= m_lines->count())
        return false;
    snd_mixer_elem_t* e = m_lines->volumeElement(index);
    // Every channel of the line gets the same value.
    return e && snd_mixer_selem_set_capture_volume_all(e, value) >= 0;
}

VolumeRange CaptureMixer::volumeRange(int index)
{
    VolumeRange range;
    if (!m_lines || index < 0 || index >= m_lines->count())
        return range;
    if (snd_mixer_elem_t* e = m_lines->volumeElement(index))
        snd_mixer_selem_get_capture_volume_range(e, &range.min, &range.max);
    return range;
}

int CaptureMixer::volumeChannels(int index)
{
    if (!m_lines || index < 0 || index >= m_lines->count())
        return 0;
    snd_mixer_elem_t* e = m_lines->volumeElement(index);
    if (!e)
        return 0;
    if (snd_mixer_selem_is_capture_mono(e))
        return 1;
    int channels = 0;
    for (int c = 0; c <= SND_MIXER_SCHN_LAST; ++c) {
        if (snd_mixer_selem_has_capture_channel(e, static_cast<snd_mixer_selem_channel_id_t>(c)))
            ++channels;
    }
    return channels;
}

} // namespace mirabend
