#pragma once
// Small value types the recorder hands to its users: error codes, counters,
// the output format codes and the screen rectangle.
//
// Thread contract: FailureLog may be used from any thread; the rest are
// plain values.

#include "util/core/Failure.h"

#include <cstdint>
#include <mutex>
#include <vector>

namespace mirabend {

enum class RecorderError {
    None = 0,
    BadSetting,             // a setting that cannot work (detail names it); nothing started
    DisplayUnavailable,     // no X display to record
    WindowNotFound,         // the window to record does not exist
    AudioDeviceUnavailable, // the chosen audio source cannot be opened; recording goes on without it
    EncoderUnavailable,     // the codec is not built into this FFmpeg
    OutputOpenFailed,       // the file cannot be created
    WriteFailed,            // writing failed (disk full ...): stopped, the file closed
    WindowClosed,           // the recorded window went away: the file was finished
    AudioSourceLost,        // the audio source vanished: silence from then on
    CaptureFailed,          // the screen could not be read any more: the file was finished
    AlreadyCapturing,
};
using RecorderFailure = Failure<RecorderError>;

// The values of OutputFormat().
enum class OutputFormatCode { Avi = 0, Wmv = 1, Swf = 2, Flv = 3, Mp4 = 4, Matroska = 5 };

struct ScreenRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool isEmpty() const { return width <= 0 || height <= 0; }
};

// What the UI can show while recording.
struct RecorderCounters {
    std::uint64_t framesCaptured = 0;   // frames read from the screen while recording
    std::uint64_t framesWritten = 0;    // video frames handed to the file (duplicates included)
    std::uint64_t framesDropped = 0;    // captured frames not recorded (queue full, late burst)
    std::uint64_t framesDuplicated = 0; // frames repeated to keep a constant rate
    std::uint64_t audioOverruns = 0;    // audio blocks lost because the encoder fell behind
    std::uint64_t audioSamplesWritten = 0;
    std::uint64_t bytesWritten = 0;
    double secondsRecorded = 0; // recorded time, pauses left out
};

// Failures collected from every thread; each is handed out once.
class FailureLog {
public:
    void add(RecorderFailure failure)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_last = failure;
        m_pending.push_back(std::move(failure));
    }
    std::vector<RecorderFailure> take()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        std::vector<RecorderFailure> out;
        out.swap(m_pending);
        return out;
    }
    RecorderFailure last() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_last;
    }
    void clearLast()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_last = {};
    }

private:
    mutable std::mutex m_mutex;
    std::vector<RecorderFailure> m_pending;
    RecorderFailure m_last;
};

} // namespace mirabend
