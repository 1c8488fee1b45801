#pragma once
// Repair of recordings that were never closed: such a file starts with the
// encoder's reserved header (28 + F zero bytes) followed by the audio. The
// repair writes the header from the file's length and the format the
// recording used (16-bit PCM 44.1 kHz stereo unless told otherwise).
//
// Thread contract: free functions; any thread, one call per file at a time.

#include "util/core/Failure.h"

#include <cstdint>
#include <string>
#include <vector>

namespace mirabend {

enum class WavRepairError {
    None = 0,
    OpenFailed, // the file cannot be opened for reading and writing
    ReadFailed,
    TooShort,    // shorter than the reserved header
    NotReserved, // starts neither with a zero header nor with "RIFF"
    BadFormat,   // the format image given does not decode
    WriteFailed,
};

enum class WavRepairOutcome {
    Repaired,       // the header was written
    AlreadyComplete // the file starts with "RIFF"; nothing was changed
};

// True when `path` starts with the reserved zero header of a PCM recording
// (46 zero bytes) or of `formatImage` when one is given.
bool hasReservedHeader(const std::string& path, const std::vector<std::uint8_t>& formatImage = {});

// Writes the header of a never-closed recording in place. `formatImage` is
// the WAVEFORMATEX the recording used; empty means 16-bit PCM, 44100 Hz,
// stereo. The audio is left untouched.
Failure<WavRepairError> repairWav(const std::string& path, WavRepairOutcome& outcome,
                                  const std::vector<std::uint8_t>& formatImage = {});

// "mirabend --repair-wav FILE [--rate HZ] [--channels 1|2]": repairs FILE,
// prints what it did; exit code 0 on success or when already complete, 1 on
// failure, 2 on bad arguments.
int repairWavCommand(int argc, char** argv);

} // namespace mirabend
