#pragma once
// Recording time. Both devices stamp their data with the same wall clock
// (microseconds, av_gettime()); the recording clock turns such a stamp into
// media time: time since the start with every pause cut out. Video frames
// are then placed on the 1/fps grid, audio blocks on the sample count.
//
// Thread contract: RecordingClock may be used from any thread (the UI thread
// pauses and resumes, the capture threads ask for media time). FrameGrid and
// AudioTimeline belong to one thread each.

#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

namespace mirabend {

class RecordingClock {
public:
    // The recording's time begins at the first captured frame; later calls
    // change nothing. Pauses asked for before it are kept.
    void start(std::int64_t now);
    bool started() const;
    // A second pause while paused, or a resume while running, is ignored.
    void pause(std::int64_t now);
    void resume(std::int64_t now);
    bool paused() const;
    // Media time of a wall-clock stamp, or nothing when the stamp lies
    // before the start or inside a pause (still open or closed since).
    std::optional<std::int64_t> mediaTime(std::int64_t stamp) const;
    // Media time now (the paused instant while paused).
    std::int64_t mediaNow(std::int64_t now) const;
    int pauseCount() const;

    // The parts of the span [stamp, stamp + length) that are recorded: an
    // audio block may begin before the start or run into a pause.
    struct Segment {
        std::int64_t offsetUs; // from the span's start
        std::int64_t lengthUs;
        std::int64_t mediaUs; // media time of the segment's start
        int epoch;            // pauses begun before the segment
    };
    std::vector<Segment> segments(std::int64_t stamp, std::int64_t length) const;

private:
    struct Pause {
        std::int64_t begin;
        std::int64_t end; // INT64_MAX while open
    };
    mutable std::mutex m_mutex;
    std::int64_t m_start = 0;
    bool m_started = false;
    bool m_pendingPause = false;
    std::vector<Pause> m_pauses;
};

// Maps frame stamps to slots of the 1/fps grid. A frame whose slot is not
// past the last one is refused (x11grab delivers a burst of catch-up frames
// with nearly equal stamps after a stall); a frame that skips slots leaves a
// gap that the caller may fill.
//
// The grid's phase follows the grabber: the first frame (and the first after
// each pause) sits exactly on its nearest slot and later frames are measured
// from it, so frames that arrive every 1/fps with some jitter land on
// consecutive slots instead of flickering between two.
class FrameGrid {
public:
    FrameGrid(int fpsNum, int fpsDen)
        : m_num(fpsNum)
        , m_den(fpsDen)
    {
    }
    // The nearest slot of a media time, ignoring the phase.
    std::int64_t slotOf(std::int64_t mediaUs) const;
    // The slot for the frame, or nothing when it must be dropped.
    std::optional<std::int64_t> place(std::int64_t mediaUs);
    // Takes the phase from the next frame (after a pause).
    void reanchor() { m_anchored = false; }
    std::int64_t lastSlot() const { return m_last; }

private:
    std::int64_t slotStart(std::int64_t slot) const;
    int m_num;
    int m_den;
    std::int64_t m_last = -1;
    std::int64_t m_offsetUs = 0;
    bool m_anchored = false;
};

// Keeps the audio sample count in step with media time. Blocks are laid end
// to end; when a block's stamp says the count is off by more than the
// tolerance (the first block, the first after a pause, a stall), silence is
// put in front of it or its start is cut.
class AudioTimeline {
public:
    AudioTimeline(int sampleRate, std::int64_t toleranceUs);
    struct Placement {
        std::int64_t silence = 0;  // samples of silence to write first
        std::int64_t skip = 0;     // samples to cut from the start of the block
        std::int64_t position = 0; // sample index of the first written sample of the block
    };
    Placement place(std::int64_t mediaUs, std::int64_t samples);
    // The next block is laid on its stamp exactly (after a pause).
    void resync() { m_resync = true; }
    std::int64_t written() const { return m_written; }

private:
    int m_rate;
    std::int64_t m_tolerance;
    std::int64_t m_written = 0;
    bool m_resync = true;
};

} // namespace mirabend
