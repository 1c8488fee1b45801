#pragma once
// One running capture: the open PCM device, a pool of `count` buffers of
// `size` bytes, and the capture thread that fills them.
//
// Buffers circulate through two bounded queues of indices: the capture thread
// takes a free buffer, fills it completely and queues it as filled; the
// consumer takes filled buffers in order and gives each one back when done.
// When no buffer is free (the consumer is behind) the capture thread lets the
// device's own buffer fill while it has room; once it has not, it reads into a
// scratch block and counts each lost buffer, so the device never overruns on
// the consumer's account. Device overruns are recovered and counted; a device that
// fails for good ends the thread and is reported through failure().
//
// Thread contract:
//  - start(), stop(), takeFilled(), buffer(), giveBack(): the consumer
//    thread (the WaveInRecorder's owner).
//  - the wake callback runs on the capture thread after each filled buffer
//    and after a failure; it must return quickly and not call back in.
//  - failure() and stats(): any thread.

#include "audio/capture/AlsaHandles.h"
#include "audio/capture/CaptureError.h"
#include "util/core/BoundedQueue.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace mirabend {

struct CaptureBuffer {
    std::vector<std::int16_t> samples; // BufferSize / 2 samples, interleaved left, right
    int bytesRecorded = 0;
};

struct CaptureStats {
    std::uint64_t buffersFilled = 0;  // handed to the consumer
    std::uint64_t buffersDropped = 0; // lost because no buffer was free
    std::uint64_t overruns = 0;       // device overruns recovered
};

struct CaptureFormat {
    unsigned rate = 44100;
    unsigned channels = 2;
    int bufferSize = 10240; // bytes per buffer
    int bufferCount = 5;
};

class WaveCaptureSession {
public:
    using Wake = std::function<void()>;

    // Opens `pcm` for 16-bit capture and starts the thread. Returns null and
    // fills `failure` when the device or the format is refused.
    static std::unique_ptr<WaveCaptureSession> start(const std::string& pcm, const CaptureFormat& format, Wake wake,
                                                 CaptureFailure* failure);
    ~WaveCaptureSession();
    WaveCaptureSession(const WaveCaptureSession&) = delete;
    WaveCaptureSession& operator=(const WaveCaptureSession&) = delete;

    // Ends the thread and closes the device. Filled buffers not yet taken are
    // discarded. Safe to call twice.
    void stop();

    std::optional<int> takeFilled();
    CaptureBuffer& buffer(int index) { return m_buffers[static_cast<std::size_t>(index)]; }
    void giveBack(int index);

    CaptureFailure failure() const;
    CaptureStats stats() const;
    unsigned rate() const { return m_format.rate; }
    unsigned channels() const { return m_format.channels; }

private:
    WaveCaptureSession(alsa::Pcm pcm, const CaptureFormat& format, Wake wake);
    void run();
    bool recover(int err);
    bool deviceHasRoom(long framesPerBuffer);
    void fail(CaptureError code, std::string detail);

    alsa::Pcm m_pcm;
    const CaptureFormat m_format;
    const Wake m_wake;
    std::vector<CaptureBuffer> m_buffers;
    BoundedQueue<int> m_free;
    BoundedQueue<int> m_filled;
    long m_deviceFrames = 0; // size of the device's own buffer
    std::atomic<bool> m_stop{false};
    std::atomic<std::uint64_t> m_buffersFilled{0};
    std::atomic<std::uint64_t> m_buffersDropped{0};
    std::atomic<std::uint64_t> m_overruns{0};
    mutable std::mutex m_failureMutex;
    CaptureFailure m_failure;
    std::thread m_thread;
};

} // namespace mirabend
