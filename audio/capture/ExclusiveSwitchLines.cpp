// Recording sources as exclusive capture switches: each source is an element
// of its own, and one capture group allows only one of them switched on.
#include "audio/capture/MixerLines.h"

namespace mirabend {
namespace {

class ExclusiveSwitchLines final : public MixerLines {
public:
    ExclusiveSwitchLines(snd_mixer_t* mixer, std::vector<snd_mixer_elem_t*> sources)
        : m_mixer(mixer)
        , m_sources(std::move(sources))
    {
    }

    int count() const override { return static_cast<int>(m_sources.size()); }
    std::string name(int index) const override { return snd_mixer_selem_get_name(m_sources[index]); }

    bool select(int index) override
    {
        snd_mixer_elem_t* chosen = m_sources[index];
        const int group = snd_mixer_selem_get_capture_group(chosen);
        // Switches that are separate controls need the others cleared by
        // hand; for a "Capture Source" control clearing is a no-op and the
        // final switch-on below moves the selection.
        for (snd_mixer_elem_t* e : m_sources) {
            if (e != chosen && snd_mixer_selem_get_capture_group(e) == group)
                snd_mixer_selem_set_capture_switch_all(e, 0);
        }
        return snd_mixer_selem_set_capture_switch_all(chosen, 1) >= 0;
    }

    // The first source switched on; the last one when none is.
    int selected() const override
    {
        for (int i = 0; i < count(); ++i) {
            int on = 0;
            if (snd_mixer_selem_get_capture_switch(m_sources[i], SND_MIXER_SCHN_FRONT_LEFT, &on) >= 0 && on)
                return i;
        }
        return count() - 1;
    }

    snd_mixer_elem_t* volumeElement(int index) const override
    {
        snd_mixer_elem_t* e = m_sources[index];
        if (snd_mixer_selem_has_capture_volume(e))
            return e;
        return captureVolumeElement(m_mixer, "Capture");
    }

private:
    snd_mixer_t* m_mixer;
    std::vector<snd_mixer_elem_t*> m_sources;
};

} // namespace

std::unique_ptr<MixerLines> exclusiveSwitchLines(snd_mixer_t* mixer)
{
    std::vector<snd_mixer_elem_t*> sources;
    for (snd_mixer_elem_t* e : mixerElements(mixer)) {
        if (snd_mixer_selem_has_capture_switch(e) && snd_mixer_selem_has_capture_switch_exclusive(e))
            sources.push_back(e);
    }
    if (sources.empty())
        return nullptr;
    return std::make_unique<ExclusiveSwitchLines>(mixer, std::move(sources));
}

} // namespace mirabend
