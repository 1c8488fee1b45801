#pragma once
// One recording in progress: the devices, encoders and file of a
// RecordingPlan and the five threads that move data between them.
//
//   video capture -> [video queue] -> video encode --+
//                                                     +-> [mux queue] -> mux (file)
//   audio capture -> [audio queue] -> audio encode --+
//
// Capture never waits: a full queue drops the frame or block and counts it.
// The encoders wait for room in the mux queue. Any thread that meets an end
// (window closed, screen unreadable, write failed) sets the ending flag; the
// pipeline then drains and the mux thread closes a valid file.
//
// Thread contract: start(), pause(), resume(), end(), stop() and
// stopReporting() from the owner's thread (the UI thread); running(),
// paused(), finished() and counters() from any thread. The destructor stops.

#include "recording/engine/AudioEncoder.h"
#include "recording/engine/DeviceInput.h"
#include "recording/engine/MuxWriter.h"
#include "recording/engine/OverlayBoard.h"
#include "recording/engine/RecordingPlan.h"
#include "recording/engine/ScreenSource.h"
#include "recording/engine/StageProfile.h"
#include "recording/engine/Timeline.h"
#include "recording/engine/VideoEncoder.h"
#include "util/core/BoundedQueue.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

namespace mirabend {

class CaptureSession {
public:
    CaptureSession(std::shared_ptr<OverlayBoard> overlay, std::shared_ptr<FailureLog> failures);
    ~CaptureSession();
    CaptureSession(const CaptureSession&) = delete;
    CaptureSession& operator=(const CaptureSession&) = delete;

    // Opens the devices, the encoders and the file and starts the threads.
    // A failing audio source is reported and the recording goes on without
    // sound; any other failure is returned and nothing runs.
    RecorderFailure start(const RecordingPlan& plan);
    void pause();
    void resume();
    // A chapter named `title` begins at this instant of the recording.
    void addChapter(const std::string& title) { m_mux.chapters().add(m_clock.mediaNow(av_gettime()), title); }
    // Ends the recording at this instant and returns at once: the threads
    // collect the sound the server still owes up to this instant, drain
    // and close the file by themselves.
    void end();
    // Ends the recording and waits until the file is closed.
    void stop();
    // Failures met from now on are not reported (a later recording has
    // taken over the failure log).
    void stopReporting();

    bool running() const { return m_started && !m_finished && !m_endRequested; }
    // The file is closed (or nothing was started).
    bool finished() const { return !m_started || m_finished; }
    bool paused() const { return m_clock.paused(); }
    RecorderCounters counters() const;
    const RecordingPlan& plan() const { return m_plan; }
    const VideoEncoder& videoEncoder() const { return m_videoEncoder; }
    // "damage" or "x11grab" once started; why x11grab was taken instead.
    std::string captureBackend() const { return m_screen ? m_screen->name() : ""; }
    const std::string& captureNote() const { return m_captureNote; }

private:
    struct VideoItem {
        PacketPtr packet;           // the bands' rows; null when nothing changed
        std::vector<RowBand> bands; // changed rows, or empty
        std::int64_t slot = 0;
    };
    struct AudioItem {
        PacketPtr packet;         // interleaved s16; null for silence
        std::int64_t offset = 0;  // first sample of the packet to use
        std::int64_t samples = 0; // per channel
        std::int64_t mediaUs = 0;
        int pauseEpoch = 0;
    };
    struct MuxItem {
        PacketPtr packet;
        int stream = 0;
    };

    void videoCaptureLoop();
    void audioCaptureLoop();
    void videoEncodeLoop();
    // The converted picture for `item`, built on `last` (the previous one).
    FramePtr nextPicture(const VideoItem& item, FramePtr& last);
    void audioEncodeLoop();
    void muxLoop();
    void pushToMux(PacketPtr packet, int stream);
    void producerDone();
    void fail(RecorderError code, const std::string& detail);
    void endNow(); // any thread: the recording ends at this instant

    std::shared_ptr<OverlayBoard> m_overlay;
    std::mutex m_failuresMutex; // stopReporting() against the threads' fail()
    std::shared_ptr<FailureLog> m_failures;
    RecordingPlan m_plan;
    RecordingClock m_clock;

    std::unique_ptr<ScreenSource> m_screen;
    std::string m_captureNote;
    StageProfile m_profile;
    DeviceInput m_sound;
    bool m_haveAudio = false;
    bool m_soundMissing = false; // no source: the sound track is recorded silent
    int m_screenWidth = 0;
    int m_screenHeight = 0;
    VideoEncoder m_videoEncoder;
    AudioEncoder m_audioEncoder;
    MuxWriter m_mux;

    BoundedQueue<VideoItem> m_videoQueue;
    BoundedQueue<AudioItem> m_audioQueue;
    BoundedQueue<MuxItem> m_muxQueue;
    std::atomic<int> m_muxProducers{0};

    std::atomic<bool> m_started{false};
    std::atomic<bool> m_ending{false};
    std::atomic<bool> m_writeFailed{false};
    std::atomic<bool> m_finished{false};
    std::atomic<bool> m_endRequested{false};
    std::atomic<std::int64_t> m_endStamp{0}; // wall clock when the recording ended

    std::atomic<std::uint64_t> m_framesCaptured{0};
    std::atomic<std::uint64_t> m_framesWritten{0};
    std::atomic<std::uint64_t> m_framesDropped{0};
    std::atomic<std::uint64_t> m_framesDuplicated{0};
    std::atomic<std::uint64_t> m_audioOverruns{0};
    std::atomic<std::uint64_t> m_audioSamples{0};

    std::thread m_videoCapture;
    std::thread m_audioCapture;
    std::thread m_videoEncode;
    std::thread m_audioEncode;
    std::thread m_muxThread;
};

} // namespace mirabend
