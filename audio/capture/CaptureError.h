#pragma once
// What went wrong in the wave-in engine. The recorder window and the command
// line turn the code into their own wording and add the detail text.

#include "util/core/Failure.h"

namespace mirabend {

enum class CaptureError {
    None,
    NoSuchDevice,   // index or name not among the input devices
    MixerUnavailable, // the device has no mixer that could be opened
    MixerFailed,    // a mixer query or change was refused
    OpenFailed,     // the PCM device could not be opened
    FormatRefused,  // 16-bit PCM at the asked rate/channels was refused
    StartFailed,    // the device would not start capturing
    BadParameters,  // buffer size/count, rate or channels out of range
    DeviceLost,     // the device vanished or failed while capturing
};

using CaptureFailure = Failure<CaptureError>;

} // namespace mirabend
