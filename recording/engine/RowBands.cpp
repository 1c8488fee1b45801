#include "recording/engine/RowBands.h"

#include <algorithm>

namespace mirabend {

std::vector<RowBand> padBands(std::vector<RowBand> changed, int pictureHeight, int joinGap) {
    std::vector<RowBand> out;
    for (RowBand& b : changed) {
        int top = std::max(0, b.top);
        int bottom = std::min(pictureHeight, b.bottom());
        if (bottom <= top) {
            b.height = 0; // wholly outside the picture
            continue;
        }
        top = top / kRowAlign * kRowAlign - kRowMargin;
        bottom = (bottom + kRowAlign - 1) / kRowAlign * kRowAlign + kRowMargin;
        top = std::max(0, top);
        bottom = std::min(pictureHeight, bottom);
        b = {top, bottom - top};
    }
    changed.erase(
        std::remove_if(changed.begin(), changed.end(), [](const RowBand& b) { return b.height <= 0; }),
        changed.end());
    std::sort(changed.begin(), changed.end(),
              [](const RowBand& a, const RowBand& b) { return a.top < b.top; });
    for (const RowBand& b : changed) {
        if (!out.empty() && b.top <= out.back().bottom() + joinGap) {
            out.back().height = std::max(out.back().bottom(), b.bottom()) - out.back().top;
            continue;
        }
        out.push_back(b);
    }
    return out;
}

RowBand innerRows(const RowBand& band, int pictureHeight) {
    const int top = band.top == 0 ? 0 : band.top + kRowMargin;
    const int bottom = band.bottom() >= pictureHeight ? pictureHeight : band.bottom() - kRowMargin;
    return {top, std::max(0, bottom - top)};
}

} // namespace mirabend
