// The filters that look at a pixel's neighbours, and the two that turn the
// area over. Neighbourhood filters read the area and its one-pixel rim as they
// were before the first write (only the brightness where that is all they
// need); outside the image the nearest edge pixel stands in.
#include "whiteboard/filters/FilterKernels.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace mirabend::filterkernels {
namespace {

// A pixel and its eight neighbours, row by row: 0 1 2 / 3 4 5 / 6 7 8.
template <typename T>
using Window = std::array<T, 9>;

// Calls fn(window, pixel) for every pixel of the area, where the window holds
// sample() of the pixel and its neighbours as they were before the call, and
// stores what fn returns. Rows are sampled once each, just before they are
// first needed, into a ring of three: the row above (already written, so its
// old pixels come from the ring), the row itself and the row below. A small
// ring instead of a copy of the area keeps the brush cheap and spares a
// whole-canvas filter the fresh memory of a full copy.
template <typename T, typename Sample, typename Fn>
void forEachWindow(QImage& image, const QRect& area, Sample sample, Fn fn) {
    const QRect rim = area.adjusted(-1, -1, 1, 1) & image.rect();
    const int width = rim.width();
    std::vector<T> ring(3 * static_cast<std::size_t>(width));
    const auto slot = [&](int y) {
        return ring.data() + static_cast<std::ptrdiff_t>((y - rim.top()) % 3) * width;
    };
    int sampled = rim.top() - 1; // the last row copied into the ring
    const auto sampleUpTo = [&](int last) {
        while (sampled < last) {
            ++sampled;
            const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(sampled)) + rim.left();
            T* row = slot(sampled);
            for (int x = 0; x < width; ++x)
                row[x] = sample(line[x]);
        }
    };
    for (int y = area.top(); y <= area.bottom(); ++y) {
        sampleUpTo(std::min(y + 1, rim.bottom()));
        const T* up = slot(std::max(y - 1, rim.top()));
        const T* mid = slot(y);
        const T* down = slot(std::min(y + 1, rim.bottom()));
        auto* out = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = area.left(); x <= area.right(); ++x) {
            const int c = x - rim.left();
            const int l = std::max(c - 1, 0);
            const int r = std::min(c + 1, width - 1);
            out[x] =
                fn(Window<T>{up[l], up[c], up[r], mid[l], mid[c], mid[r], down[l], down[c], down[r]}, out[x]);
        }
    }
}

QRgb itself(QRgb p) {
    return p;
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
    forEachWindow<QRgb>(image, area, itself, [](const Window<QRgb>& w, QRgb centre) {
        // Red and blue summed side by side in one word: nine bytes never
        // carry out of their 16-bit lane.
        std::uint32_t redBlue = 0, green = 0;
        for (QRgb p : w) {
            redBlue += p & 0x00ff00ffu;
            green += p & 0x0000ff00u;
        }
        return withRgb(centre, static_cast<int>(((redBlue >> 16) + 4) / 9),
                       static_cast<int>(((green >> 8) + 4) / 9),
                       static_cast<int>(((redBlue & 0xffffu) + 4) / 9));
    });
}

void filterSharpen(QImage& image, const QRect& area, const FilterColours&) {
    forEachWindow<QRgb>(image, area, itself, [](const Window<QRgb>& w, QRgb centre) {
        ChannelSums s;
        s.add(centre, 5);
        for (int i : {1, 3, 5, 7})
            s.add(w[static_cast<std::size_t>(i)], -1);
        return withRgb(centre, clampByte(s.r), clampByte(s.g), clampByte(s.b));
    });
}

void filterEmboss(QImage& image, const QRect& area, const FilterColours&) {
    // Mid grey where the picture is flat; light where it gets brighter
    // towards the bottom right, dark where it gets darker.
    forEachWindow<int>(image, area, luminance, [](const Window<int>& v, QRgb centre) {
        return greyWithAlphaOf(centre, 128 + (v[8] - v[0]) / 2);
    });
}

void filterEdges(QImage& image, const QRect& area, const FilterColours&) {
    // Sobel on the brightness, drawn dark on white so a board stays a board:
    // a full black-to-white step gives black.
    forEachWindow<int>(image, area, luminance, [](const Window<int>& v, QRgb centre) {
        const int gx = (v[2] + 2 * v[5] + v[8]) - (v[0] + 2 * v[3] + v[6]);
        const int gy = (v[6] + 2 * v[7] + v[8]) - (v[0] + 2 * v[1] + v[2]);
        return greyWithAlphaOf(centre, 255 - std::min(255, (std::abs(gx) + std::abs(gy)) / 4));
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
