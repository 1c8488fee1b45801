#pragma once
// Small helpers for looking at painted frames.

#include "recording/overlay/OverlayChoices.h"
#include "recording/overlay/OverlayPainter.h"

#include <QDateTime>
#include <QImage>
#include <QRect>

namespace mirabend::test {

// Where a frame differs from its plain background, and how many pixels.
struct Ink {
    QRect box;
    int count = 0;
};

inline QImage blankFrame(QColor background, QSize size = QSize(320, 200)) {
    QImage frame(size, QImage::Format_RGB32);
    frame.fill(background);
    return frame;
}

inline Ink inkOf(const QImage& frame, QColor background) {
    Ink ink;
    const QRgb plain = background.rgb();
    for (int y = 0; y < frame.height(); ++y)
        for (int x = 0; x < frame.width(); ++x)
            if (frame.pixel(x, y) != plain) {
                ink.box |= QRect(x, y, 1, 1);
                ++ink.count;
            }
    return ink;
}

// How many pixels inside `core` differ from what `expected(x, y)` says.
template <typename Expected>
int mismatches(const QImage& frame, const QRect& core, Expected expected) {
    int wrong = 0;
    for (int y = core.top(); y <= core.bottom(); ++y)
        for (int x = core.left(); x <= core.right(); ++x)
            wrong += frame.pixel(x, y) != expected(x, y) ? 1 : 0;
    return wrong;
}

inline const QDateTime& fixedTime() {
    static const QDateTime time(QDate(2026, 3, 4), QTime(17, 8, 9));
    return time;
}

inline QImage paintedWith(const OverlaySettings& settings, QColor background,
                          OverlayReport* report = nullptr) {
    OverlayPainter painter;
    const OverlayReport result = painter.apply(settings);
    if (report)
        *report = result;
    QImage frame = blankFrame(background);
    painter.paint(frame, fixedTime());
    return frame;
}

// Text settings with an installed font, so glyph shapes are predictable.
inline OverlaySettings textSettings(const QString& text, int left, int top) {
    OverlaySettings s;
    s.showText = true;
    s.text = text;
    s.textLeft = left;
    s.textTop = top;
    s.textFontName = QStringLiteral("DejaVu Sans");
    s.textFontSize = 20;
    s.textColor = QColor(255, 0, 0);
    return s;
}

inline bool hasFailure(const OverlayReport& report, OverlayError code) {
    for (const OverlayFailure& failure : report.failures)
        if (failure.code == code)
            return true;
    return false;
}

} // namespace mirabend::test
