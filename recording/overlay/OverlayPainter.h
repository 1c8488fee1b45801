#pragma once
// Draws the overlays onto captured frames. apply() does the expensive work
// once per change of settings (fonts, images read from disk, the transparent
// colour, the transparency, the text rendered through its brush); paint()
// then only blends ready images onto the frame, plus rendering the date/time
// stamp again when its text changes (once a second at most).
//
// Only thread-safe QtGui is used here (QImage, QPainter on a QImage, QFont),
// so both members may run outside the UI thread.
//
// Thread contract: apply() and settings() may be called from any thread (the
// UI thread, typically); paint() runs on the recording engine's capture or
// encode thread. The prepared state is swapped under a mutex, so a paint()
// racing an apply() draws either the old or the new overlays, never a mix.

#include "recording/overlay/OverlaySettings.h"

#include <QDateTime>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace mirabend {

struct OverlayReport {
    std::vector<OverlayFailure> failures; // empty when everything was found and in range
    QString dateFontFamily;               // the family actually drawn, after substitution
    QString textFontFamily;
    bool ok() const { return failures.empty(); }
};

// Where the overlays in force land on the frame and which drawing of them
// that is: two footprints with the same generation and date serial draw
// the very same pixels.
struct OverlayFootprint {
    QRect area; // frame pixels; empty when nothing is drawn
    std::uint64_t generation = 0;
    std::uint64_t dateSerial = 0;
    bool sameDrawing(const OverlayFootprint& o) const {
        return generation == o.generation && dateSerial == o.dateSerial;
    }
};

class OverlayPainter {
public:
    OverlayPainter();
    ~OverlayPainter();
    OverlayPainter(const OverlayPainter&) = delete;
    OverlayPainter& operator=(const OverlayPainter&) = delete;

    // Prepares everything `settings` needs and puts it in force. Problems
    // (an image that is missing or unreadable, an index out of range) are
    // reported, never thrown: the part concerned falls back or is left out
    // and the rest is drawn.
    OverlayReport apply(const OverlaySettings& settings);

    // The settings last applied.
    OverlaySettings settings() const;

    // Whether paint() would draw anything at all.
    bool active() const;

    // Draws the overlays in force onto `frame` (any QImage format QPainter
    // can paint on). The engine wraps its bgr0 frame without a copy in
    // QImage(data, w, h, linesize, QImage::Format_RGB32); use the constructor
    // over non-const data and do not share that QImage, or QPainter paints a
    // private copy and the frame stays untouched. `now` is the time the
    // date/time stamp shows.
    // `top` says which picture row the frame's first row is, so the
    // overlays can be drawn onto a band of rows alone.
    void paint(QImage& frame, const QDateTime& now, int top = 0);

    // What paint() at `now` draws where.
    OverlayFootprint footprint(const QDateTime& now);

private:
    struct Prepared;
    std::shared_ptr<const Prepared> current() const;
    // Renders the date stamp again when its text or settings changed;
    // m_paintMutex held.
    void refreshDate(const Prepared& prepared, const QDateTime& now);

    mutable std::mutex m_mutex; // guards m_prepared
    std::shared_ptr<const Prepared> m_prepared;

    std::mutex m_paintMutex;            // guards the date stamp cache below
    std::uint64_t m_dateGeneration = 0; // prepared state the cache was rendered for
    std::uint64_t m_dateSerial = 0;     // counts the date stamp's renders
    qint64 m_dateSecond = 0;            // the second m_dateText was formatted for
    QString m_dateText;
    QImage m_dateImage;
    QPoint m_datePosition;
};

} // namespace mirabend
