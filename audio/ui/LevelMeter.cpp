#include "audio/ui/LevelMeter.h"

#include "audio/ui/PictureBox.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace mirabend {
namespace {

constexpr int kSegment = 3; // lit width of one segment in pixels
constexpr int kGap = 1;

QColor segmentColour(double position, bool lit)
{
    QColor colour = position < 0.7 ? QColor(60, 210, 90) : position < 0.9 ? QColor(240, 190, 40)
                                                                           : QColor(235, 60, 50);
    return lit ? colour : colour.darker(420);
}

} // namespace

void drawLevelMeter(PictureBox& picture, double level, double hold)
{
    picture.Cls();
    const int w = picture.scaleWidth();
    const int h = picture.scaleHeight();
    const int pitch = kSegment + kGap;
    const int segments = std::max(1, (w - 2) / pitch);
    const int lit = static_cast<int>(std::lround(std::clamp(level, 0.0, 1.0) * segments));
    const int held = static_cast<int>(std::lround(std::clamp(hold, 0.0, 1.0) * segments));
    QPainter p(&picture.image());
    for (int s = 0; s < segments; ++s) {
        const double position = (s + 0.5) / segments;
        p.fillRect(1 + s * pitch, 2, kSegment, h - 4, segmentColour(position, s < lit));
    }
    if (held > 0) {
        const int x = 1 + (held - 1) * pitch;
        p.fillRect(x, 1, kSegment, h - 2, segmentColour((held - 0.5) / segments, true).lighter(130));
    }
    p.end();
    picture.update();
}

} // namespace mirabend
