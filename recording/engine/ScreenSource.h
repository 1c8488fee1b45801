#pragma once
// Where the recorded picture comes from. A source waits for the next frame
// time, grabs and hands over the rows that changed since the previous grab
// (full-width bands of packed bgr0), or nothing when the screen stood still.
// Two backends: DamageScreenSource (DAMAGE + MIT-SHM + XFixes: grabs only
// what changed) and X11GrabSource (libavdevice x11grab: the whole picture
// every time), the fallback when an extension is missing or
// MIRABEND_CAPTURE=x11grab asks for it.
//
// Thread contract: openScreenSource() on the starting thread; read() and
// unread() on the video capture thread only; interrupt() from any thread.

#include "recording/engine/FfmpegHandles.h"
#include "recording/engine/RecordingPlan.h"
#include "recording/engine/RowBands.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace mirabend {

struct ScreenGrab {
    std::int64_t stamp = 0; // wall clock in microseconds (av_gettime())
    // Rows that differ from the previous grab, top to bottom; empty when
    // nothing changed.
    std::vector<RowBand> bands;
    // The bands' rows one after another, width * 4 bytes each; null when
    // nothing changed.
    PacketPtr pixels;

    bool unchanged() const { return bands.empty(); }
    bool whole(int height) const {
        return bands.size() == 1 && bands[0].top == 0 && bands[0].height == height;
    }
};

class ScreenSource {
public:
    // What the caller needs of the next grab.
    enum class Want {
        Changes,       // only the changed rows
        WholeOnChange, // the whole picture when anything changed (the encoder scales)
        Whole,         // the whole picture every time (an overlay draws on it)
    };

    virtual ~ScreenSource() = default;
    virtual int width() const = 0;
    virtual int height() const = 0;
    // "damage" or "x11grab".
    virtual const char* name() const = 0;
    // Whether every grab is the whole picture, whatever is asked.
    virtual bool grabsWholePictures() const { return false; }
    // Waits for the next frame time and grabs. Returns 0, AVERROR(EAGAIN)
    // to be called again, or an error when the screen or window cannot be
    // read any more.
    virtual int read(ScreenGrab& grab, Want want) = 0;
    // The grab was not recorded (pause, late frame, full queue): its rows
    // count as changed again at the next read.
    virtual void unread(const ScreenGrab& grab) = 0;
    virtual void interrupt() = 0;
};

// The damage-tracking source when the display offers what it needs, else
// x11grab. Null with `failure` set when neither can read the screen;
// `note` says why the fallback was taken ("" when it was not).
std::unique_ptr<ScreenSource> openScreenSource(const std::string& display, const CaptureTarget& target,
                                               int fpsNum, int fpsDen, RecorderFailure& failure,
                                               std::string& note);

} // namespace mirabend
