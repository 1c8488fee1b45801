// Sound servers offer no choice of source: the server's own routing decides.
// What they show is a "Capture" element with a volume and a switch, which is
// the one line; any further element with a capture control is a line too.
#include "audio/capture/MixerLines.h"

namespace mirabend {
namespace {

class ServerCaptureLines final : public MixerLines {
public:
    explicit ServerCaptureLines(std::vector<snd_mixer_elem_t*> lines) : m_lines(std::move(lines)) {}

    int count() const override { return static_cast<int>(m_lines.size()); }
    std::string name(int index) const override { return snd_mixer_selem_get_name(m_lines[index]); }

    // Choosing the line makes sure it is not muted.
    bool select(int index) override
    {
        snd_mixer_elem_t* e = m_lines[index];
        if (!snd_mixer_selem_has_capture_switch(e))
            return true;
        return snd_mixer_selem_set_capture_switch_all(e, 1) >= 0;
    }

    int selected() const override
    {
        for (int i = 0; i < count(); ++i) {
            int on = 0;
            snd_mixer_elem_t* e = m_lines[i];
            if (snd_mixer_selem_has_capture_switch(e) &&
                snd_mixer_selem_get_capture_switch(e, SND_MIXER_SCHN_FRONT_LEFT, &on) >= 0 && on)
                return i;
        }
        return 0;
    }

    snd_mixer_elem_t* volumeElement(int index) const override
    {
        snd_mixer_elem_t* e = m_lines[index];
        return snd_mixer_selem_has_capture_volume(e) ? e : nullptr;
    }

private:
    std::vector<snd_mixer_elem_t*> m_lines;
};

} // namespace

std::unique_ptr<MixerLines> serverCaptureLines(snd_mixer_t* mixer)
{
    std::vector<snd_mixer_elem_t*> lines;
    for (snd_mixer_elem_t* e : mixerElements(mixer)) {
        if (snd_mixer_selem_has_capture_volume(e) || snd_mixer_selem_has_capture_switch(e))
            lines.push_back(e);
    }
    if (lines.empty())
        return nullptr;
    return std::make_unique<ServerCaptureLines>(std::move(lines));
}

} // namespace mirabend
