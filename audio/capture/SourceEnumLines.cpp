// Recording sources as the items of one enumerated element ("Input Source"
// on most HD-audio codecs); the level is set on the "Capture" element.
#include "audio/capture/MixerLines.h"

#include <cstring>

namespace mirabend {
namespace {

bool isSourceEnum(snd_mixer_elem_t* e)
{
    if (!snd_mixer_selem_is_enumerated(e) || !snd_mixer_selem_is_enum_capture(e))
        return false;
    const char* name = snd_mixer_selem_get_name(e);
    // A capture-only enumeration is a source choice whatever it is called;
    // global ones (modes, jack functions) only when their name says so.
    return !snd_mixer_selem_is_enum_playback(e) || std::strstr(name, "Source") || std::strstr(name, "Input");
}

class SourceEnumLines final : public MixerLines {
public:
    SourceEnumLines(snd_mixer_t* mixer, snd_mixer_elem_t* element)
        : m_mixer(mixer)
        , m_element(element)
    {
    }

    int count() const override { return snd_mixer_selem_get_enum_items(m_element); }

    std::string name(int index) const override
    {
        char buffer[128] = {};
        if (snd_mixer_selem_get_enum_item_name(m_element, index, sizeof buffer - 1, buffer) < 0)
            return {};
        return buffer;
    }

    bool select(int index) override
    {
        const auto item = static_cast<unsigned>(index);
        if (snd_mixer_selem_set_enum_item(m_element, SND_MIXER_SCHN_FRONT_LEFT, item) < 0)
            return false;
        // A per-channel enumeration gets the same source on the right.
        unsigned current = 0;
        if (snd_mixer_selem_get_enum_item(m_element, SND_MIXER_SCHN_FRONT_RIGHT, &current) >= 0)
            snd_mixer_selem_set_enum_item(m_element, SND_MIXER_SCHN_FRONT_RIGHT, item);
        return true;
    }

    int selected() const override
    {
        unsigned item = 0;
        if (snd_mixer_selem_get_enum_item(m_element, SND_MIXER_SCHN_FRONT_LEFT, &item) < 0)
            return 0;
        return static_cast<int>(item);
    }

    snd_mixer_elem_t* volumeElement(int index) const override
    {
        if (snd_mixer_elem_t* own = captureVolumeElement(m_mixer, name(index)))
            return own;
        if (snd_mixer_elem_t* capture = captureVolumeElement(m_mixer, "Capture"))
            return capture;
        for (snd_mixer_elem_t* e : mixerElements(m_mixer)) {
            if (snd_mixer_selem_has_capture_volume(e))
                return e;
        }
        return nullptr;
    }

private:
    snd_mixer_t* m_mixer;
    snd_mixer_elem_t* m_element;
};

} // namespace

std::unique_ptr<MixerLines> sourceEnumLines(snd_mixer_t* mixer)
{
    for (snd_mixer_elem_t* e : mixerElements(mixer)) {
        if (isSourceEnum(e) && snd_mixer_selem_get_enum_items(e) > 0)
            return std::make_unique<SourceEnumLines>(mixer, e);
    }
    return nullptr;
}

} // namespace mirabend
