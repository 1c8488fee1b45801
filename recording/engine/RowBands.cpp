#include "recording/engine/RowBands.h"

#include <algorithm>

namespace mirabend {

std::vector<RowBand> joinBands(std::vector<RowBand> bands, int joinGap) {
    bands.erase(std::remove_if(bands.begin(), bands.end(), [](const RowBand& b) { return b.height <= 0; }),
                bands.end());
    std::sort(bands.begin(), bands.end(), [](const RowBand& a, const RowBand& b) { return a.top < b.top; });
    std::vector<RowBand> out;
    for (const RowBand& b : bands) {
        if (!out.empty() && b.top <= out.back().bottom() + joinGap) {
            out.back().height = std::max(out.back().bottom(), b.bottom()) - out.back().top;
            continue;
        }
        out.push_back(b);
    }
    return out;
}

std::vector<RowBand> padBands(std::vector<RowBand> changed, int pictureHeight, int joinGap) {
    for (RowBand& b : changed) {
        int top = std::max(0, b.top);
        int bottom = std::min(pictureHeight, b.bottom());
        if (bottom <= top) {
            b.height = 0; // wholly outside the picture
            continue;
        }
        // One row more each way first: a change ending on an aligned row
        // still reaches the chroma row that straddles the boundary.
        top = std::max(0, top - 1) / kRowAlign * kRowAlign - kRowMargin;
        bottom = (bottom + kRowAlign) / kRowAlign * kRowAlign + kRowMargin;
        top = std::max(0, top);
        bottom = std::min(pictureHeight, bottom);
        b = {top, bottom - top};
    }
    return joinBands(std::move(changed), joinGap);
}

RowBand innerRows(const RowBand& band, int pictureHeight) {
    const int top = band.top == 0 ? 0 : band.top + kRowMargin;
    const int bottom = band.bottom() >= pictureHeight ? pictureHeight : band.bottom() - kRowMargin;
    return {top, std::max(0, bottom - top)};
}

} // namespace mirabend
