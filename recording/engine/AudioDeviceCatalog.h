#pragma once
// The sound sources the recorder can take sound from: the sources of a
// PulseAudio or PipeWire server with their ports (input pins) on a desktop,
// or the ALSA capture devices where no sound server runs.
//
// Thread contract: UI thread only.

#include <QString>
#include <QStringList>
#include <memory>
#include <string>
#include <vector>

namespace mirabend {

struct AudioDeviceInfo {
    QString name;        // shown to the user
    std::string backend; // libavdevice input: "pulse" or "alsa"
    std::string id;      // source or PCM name handed to the input
    QStringList pins;    // port descriptions, shown
    std::vector<std::string> pinIds;
    int activePin = 0;
};

class AudioDeviceCatalog {
public:
    virtual ~AudioDeviceCatalog() = default;
    virtual const std::vector<AudioDeviceInfo>& devices() const = 0;
    // Makes `pin` the port the source records from. False when the server
    // refused; `error` says why.
    virtual bool selectPin(const AudioDeviceInfo& device, int pin, std::string& error) = 0;

    // The sound server's sources when one answers, else ALSA's capture
    // devices. The system default comes first.
    static std::unique_ptr<AudioDeviceCatalog> discover();
};

// One file per backend.
std::unique_ptr<AudioDeviceCatalog> makePulseAudioCatalog(); // nullptr when no server answers
std::unique_ptr<AudioDeviceCatalog> makeAlsaCatalog();

} // namespace mirabend
