#pragma once
// "mirabend --record-audio FILE [options]": records from an input device to a
// WAV file without a window, through the same chain as the recorder window
// (effects, then the encoder). Runs until --seconds of audio are written, or
// until Ctrl+C / SIGTERM, which close the file properly. On a terminal it
// shows elapsed time, file size and a level meter.
//
// Thread contract: runs on the calling thread; the capture thread only wakes
// it.

#include <optional>
#include <string>

namespace mirabend {

struct RecordAudioOptions {
    std::string file;
    double seconds = -1; // < 0: until interrupted
    std::string device;  // readable name or ALSA name; empty: the default device
    std::string line;    // recording source name or index
    long volume = -1;    // in the mixer's units; < 0: leave as is
    int rate = 44100;
    int channels = 2;
    int effects = 0;     // clsDSP effect bits
    std::string format = "pcm";
    bool listDevices = false;
};

// Reads the options from argv; returns an error text for bad arguments.
std::optional<std::string> parseRecordAudioOptions(int argc, char** argv, RecordAudioOptions& options);

// Exit codes: 0 done, 1 failure (device, file, disk), 2 bad arguments.
int recordAudioCommand(int argc, char** argv);

} // namespace mirabend
