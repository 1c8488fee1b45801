#pragma once
// The recording sources ("lines") of an input device's mixer, and the mixer
// that owns them.
//
// Sound cards and sound servers show their recording sources in three ways,
// each handled by one backend:
//  - exclusive capture switches: one element per source, and switching one on
//    switches the others off (cards with a "Capture Source" control, which
//    alsa-lib's simple mixer presents as such switches);
//  - a capture-source enumeration: one enumerated element ("Input Source")
//    whose items are the sources, the volume on a "Capture" element;
//  - sound servers (PulseAudio, PipeWire): no choice of source, one "Capture"
//    line with a volume and a switch.
//
// Thread contract: a CaptureMixer and its lines are used by one thread (the
// owner of the WaveInRecorder).

#include "audio/capture/AlsaHandles.h"
#include "audio/capture/CaptureError.h"

#include <memory>
#include <string>
#include <vector>

namespace mirabend {

// Source line types, numbered as the classic mixer component types so a
// stored code keeps its meaning.
enum MixerLineKind : int {
    LineUndefined = 0x1000,
    LineDigital = 0x1001,
    LineLineIn = 0x1002,
    LineMicrophone = 0x1003,
    LineSynthesizer = 0x1004,
    LineCompactDisc = 0x1005,
    LineTelephone = 0x1006,
    LinePCSpeaker = 0x1007,
    LineWaveOut = 0x1008,
    LineAuxiliary = 0x1009,
    LineAnalog = 0x100A,
};

// Guesses the kind of a source from its name ("Front Mic" -> microphone).
int lineKindFromName(const std::string& name);
// "Microphone", "Line-In", ... and "Unknown" for any other code.
std::string lineKindName(int kind);

struct VolumeRange {
    long min = 0;
    long max = 0;
};

// One layout of recording sources over an alsa simple mixer.
class MixerLines {
public:
    virtual ~MixerLines() = default;
    virtual int count() const = 0;
    virtual std::string name(int index) const = 0;
    virtual bool select(int index) = 0;
    virtual int selected() const = 0;
    // The element whose capture volume belongs to that line, or null.
    virtual snd_mixer_elem_t* volumeElement(int index) const = 0;
};

// Each returns null when the mixer does not show that layout.
std::unique_ptr<MixerLines> exclusiveSwitchLines(snd_mixer_t* mixer);
std::unique_ptr<MixerLines> sourceEnumLines(snd_mixer_t* mixer);
std::unique_ptr<MixerLines> serverCaptureLines(snd_mixer_t* mixer);

// The active simple elements of a mixer, in the mixer's order.
std::vector<snd_mixer_elem_t*> mixerElements(snd_mixer_t* mixer);
// The first active element called `name` with a capture volume, or null.
snd_mixer_elem_t* captureVolumeElement(snd_mixer_t* mixer, const std::string& name);

class CaptureMixer {
public:
    // Opens the mixer of control device `ctl` ("hw:CARD=PCH", "pulse", ...).
    static std::unique_ptr<CaptureMixer> open(const std::string& ctl, CaptureFailure* failure);

    int lineCount();
    std::string lineName(int index);
    bool selectLine(int index);
    int selectedLine();
    int lineType(int index);
    // Volume of a line in the mixer's own units; false when it has none.
    bool volume(int index, long* value);
    bool setVolume(int index, long value);
    VolumeRange volumeRange(int index);
    int volumeChannels(int index);

private:
    CaptureMixer(alsa::Mixer mixer, std::unique_ptr<MixerLines> lines);
    void refresh();

    alsa::Mixer m_mixer;
    std::unique_ptr<MixerLines> m_lines; // null: the mixer has no recording sources
};

} // namespace mirabend
