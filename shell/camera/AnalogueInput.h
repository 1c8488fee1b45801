#pragma once
// The analogue side of a capture device (a TV card or a video input): its
// video standard and its tuner's sound mute. Qt Multimedia offers neither,
// so V4l2Input reaches them through V4L2 ioctls; tests use a fake.
//
// applyStandard and applyMute hold the rules: the 20 designed standards map
// onto V4L2 standard ids, "Digital sensor" (index 0) sets none, and a device
// that does not know a standard or has no mute ignores the request quietly.
//
// Thread contract: UI thread only.

#include <QString>
#include <cstdint>
#include <functional>
#include <memory>

namespace mirabend {

class AnalogueInput {
public:
    virtual ~AnalogueInput() = default;
    // The standards the device accepts (a V4L2_STD_* mask); 0 for a digital
    // sensor.
    virtual std::uint64_t supportedStandards() const = 0;
    virtual bool setStandard(std::uint64_t standard) = 0;
    virtual bool hasMute() const = 0;
    virtual bool setMute(bool muted) = 0;
};

// Opens the analogue side of the named capture device; null when the device
// has none (or is not a V4L2 device at all).
using AnalogueInputOpener = std::function<std::unique_ptr<AnalogueInput>(const QString& deviceName)>;

// The V4L2 standard id for an entry of the designed standards list; 0 for
// "Digital sensor" and for indexes outside the list.
std::uint64_t videoStandardId(int index);

// Hands the standard to the device when it accepts it; returns the id handed
// over, 0 when nothing was.
std::uint64_t applyStandard(AnalogueInput& input, int index);

// Sets the tuner's mute when the device has one; returns whether it did.
bool applyMute(AnalogueInput& input, bool muted);

} // namespace mirabend
