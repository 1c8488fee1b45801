// The filters that look at a pixel's neighbours, and the two that turn the
// area over. Neighbourhood filters read a copy of the area and its one-pixel
// rim taken before the first write; outside the image the nearest edge pixel
// stands in.
#include "whiteboard/filters/FilterKernels.h"

#include <array>
#include <cstdlib>

namespace mirabend::filterkernels {
namespace {

// A pixel and its eight neighbours, row by row: 0 1 2 / 3 4 5 / 6 7 8.
using Window = std::array<QRgb, 9>;

template <typename Fn>
void forEachWindow(QImage& image, const QRect& area, Fn fn) {
    const QRect rim = area.adjusted(-1, -1, 1, 1) & image.rect();
    const QImage before = image.copy(rim);
    const auto rowOf = [&](int y) {
        const int row = std::clamp(y, rim.top(), rim.bottom()) - rim.top();
        return reinterpret_cast<const QRgb*>(before.constScanLine(row));
    };
    const int lastColumn = rim.width() - 1;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const QRgb* up = rowOf(y - 1);
        const QRgb* mid = rowOf(y);
        const QRgb* down = rowOf(y + 1);
        auto* out = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = area.left(); x <= area.right(); ++x) {
            const int c = x - rim.left();
            const int l = std::max(c - 1, 0);
            const int r = std::min(c + 1, lastColumn);
            out[x] = fn(Window{up[l], up[c], up[r], mid[l], mid[c], mid[r], down[l], down[c], down[r]});
        }
    }
}

struct ChannelSums {
    int r = 0, g = 0, b = 0;
    void add(QRgb p, int weight) {
        r += weight * qRed(p);
        g += weight * qGreen(p);
        b += weight * qBlue(p);
    }
};

QRgb greyWithAlphaOf(QRgb p, int v) {
    const int c = clampByte(v);
    return withRgb(p, c, c, c);
}

} // namespace

void filterBlur(QImage& image, const QRect& area, const FilterColours&) {
    forEachWindow(image, area, [](const Window& w) {
        ChannelSums s;
        for (QRgb p : w)
            s.add(p, 1);
        return withRgb(w[4], (s.r + 4) / 9, (s.g + 4) / 9, (s.b + 4) / 9);
    });
}

void filterSharpen(QImage& image, const QRect& area, const FilterColours&) {
    forEachWindow(image, area, [](const Window& w) {
        ChannelSums s;
        s.add(w[4], 5);
        for (int i : {1, 3, 5, 7})
            s.add(w[static_cast<std::size_t>(i)], -1);
        return withRgb(w[4], clampByte(s.r), clampByte(s.g), clampByte(s.b));
    });
}

void filterEmboss(QImage& image, const QRect& area, const FilterColours&) {
    // Mid grey where the picture is flat; light where it gets brighter
    // towards the bottom right, dark where it gets darker.
    forEachWindow(image, area, [](const Window& w) {
        return greyWithAlphaOf(w[4], 128 + (luminance(w[8]) - luminance(w[0])) / 2);
    });
}

void filterEdges(QImage& image, const QRect& area, const FilterColours&) {
    // Sobel on the brightness, drawn dark on white so a board stays a board:
    // a full black-to-white step gives black.
    forEachWindow(image, area, [](const Window& w) {
        std::array<int, 9> v{};
        for (std::size_t i = 0; i < 9; ++i)
            v[i] = luminance(w[i]);
        const int gx = (v[2] + 2 * v[5] + v[8]) - (v[0] + 2 * v[3] + v[6]);
        const int gy = (v[6] + 2 * v[7] + v[8]) - (v[0] + 2 * v[1] + v[2]);
        return greyWithAlphaOf(w[4], 255 - std::min(255, (std::abs(gx) + std::abs(gy)) / 4));
    });
}

void filterMosaic(QImage& image, const QRect& area, const FilterColours&) {
    // Blocks sit on the image's own grid and average the whole block, so a
    // part filtered with the brush matches the whole-image mosaic. Every
    // block is read before any of it is written and blocks never overlap, so
    // no copy is needed.
    const QRect bounds = image.rect();
    for (int top = area.top() / kMosaicBlock * kMosaicBlock; top <= area.bottom(); top += kMosaicBlock) {
        for (int left = area.left() / kMosaicBlock * kMosaicBlock; left <= area.right();
             left += kMosaicBlock) {
            const QRect block = QRect(left, top, kMosaicBlock, kMosaicBlock) & bounds;
            ChannelSums s;
            for (int y = block.top(); y <= block.bottom(); ++y) {
                const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
                for (int x = block.left(); x <= block.right(); ++x)
                    s.add(line[x], 1);
            }
            const int n = block.width() * block.height();
            const int r = (s.r + n / 2) / n, g = (s.g + n / 2) / n, b = (s.b + n / 2) / n;
            forEachPixel(image, block & area, [r, g, b](int, int, QRgb p) { return withRgb(p, r, g, b); });
        }
    }
}

void filterMirror(QImage& image, const QRect& area, const FilterColours&) {
    for (int y = area.top(); y <= area.bottom(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::reverse(line + area.left(), line + area.right() + 1);
    }
}

void filterFlip(QImage& image, const QRect& area, const FilterColours&) {
    for (int top = area.top(), bottom = area.bottom(); top < bottom; ++top, --bottom) {
        auto* a = reinterpret_cast<QRgb*>(image.scanLine(top));
        auto* b = reinterpret_cast<QRgb*>(image.scanLine(bottom));
        std::swap_ranges(a + area.left(), a + area.right() + 1, b + area.left());
    }
}

} // namespace mirabend::filterkernels
