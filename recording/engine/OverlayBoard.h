#pragma once
// The stamps the recorder draws onto every frame. The settings and their
// drawing belong to recording/overlay; the board keeps the settings in force
// and the painter prepared for them.
//
// Thread contract: update() and snapshot() from the UI thread; active() and
// paint() from the video capture thread.

#include "recording/overlay/OverlayPainter.h"
#include "recording/overlay/OverlaySettings.h"

#include <mutex>

namespace mirabend {

class OverlayBoard {
public:
    template <typename Change>
    OverlayReport update(Change change)
    {
        OverlaySettings copy;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            change(m_settings);
            copy = m_settings;
        }
        return m_painter.apply(copy);
    }
    OverlaySettings snapshot() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_settings;
    }
    bool active() const { return m_painter.active(); }
    void paint(QImage& frame, const QDateTime& now, int top = 0) { m_painter.paint(frame, now, top); }
    OverlayFootprint footprint(const QDateTime& now) { return m_painter.footprint(now); }

private:
    mutable std::mutex m_mutex;
    OverlaySettings m_settings;
    OverlayPainter m_painter;
};

} // namespace mirabend
