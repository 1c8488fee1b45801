#pragma once
// The filters' inner loops, behind applyFilter(). Every kernel gets a 32-bit
// image (RGB32 or ARGB32) and an area that lies inside it and is not empty; it
// keeps each pixel's alpha byte. Line pointers are fetched afresh after every
// write, since the first write may detach an image that shares its pixels.

#include <QImage>
#include <QRect>
#include <algorithm>

namespace mirabend::filterkernels {

struct FilterColours {
    QRgb fore;
    QRgb fill;
};

using FilterKernel = void (*)(QImage& image, const QRect& area, const FilterColours& colours);

inline int clampByte(int value) {
    return std::clamp(value, 0, 255);
}

// Rec. 601 weights in 1/256 (77 + 150 + 29 = 256), rounded: white stays 255.
inline int luminance(QRgb c) {
    return (77 * qRed(c) + 150 * qGreen(c) + 29 * qBlue(c) + 128) >> 8;
}

inline QRgb withRgb(QRgb alphaFrom, int r, int g, int b) {
    return (alphaFrom & 0xff000000u) | (static_cast<QRgb>(r) << 16) | (static_cast<QRgb>(g) << 8) |
           static_cast<QRgb>(b);
}

// Calls fn(x, y, pixel) for every pixel of the area and stores what it returns.
template <typename Fn>
void forEachPixel(QImage& image, const QRect& area, Fn fn) {
    for (int y = area.top(); y <= area.bottom(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = area.left(); x <= area.right(); ++x)
            line[x] = fn(x, y, line[x]);
    }
}

// Point filters: each pixel from itself alone.
void filterGrey(QImage& image, const QRect& area, const FilterColours& colours);
void filterInvert(QImage& image, const QRect& area, const FilterColours& colours);
void filterSepia(QImage& image, const QRect& area, const FilterColours& colours);
void filterBrighter(QImage& image, const QRect& area, const FilterColours& colours);
void filterDarker(QImage& image, const QRect& area, const FilterColours& colours);
void filterMoreContrast(QImage& image, const QRect& area, const FilterColours& colours);
void filterLessContrast(QImage& image, const QRect& area, const FilterColours& colours);
void filterTwoColours(QImage& image, const QRect& area, const FilterColours& colours);
void filterPosterise(QImage& image, const QRect& area, const FilterColours& colours);
void filterNoise(QImage& image, const QRect& area, const FilterColours& colours);

// Neighbourhood and geometric filters.
void filterBlur(QImage& image, const QRect& area, const FilterColours& colours);
void filterSharpen(QImage& image, const QRect& area, const FilterColours& colours);
void filterEmboss(QImage& image, const QRect& area, const FilterColours& colours);
void filterEdges(QImage& image, const QRect& area, const FilterColours& colours);
void filterMosaic(QImage& image, const QRect& area, const FilterColours& colours);
void filterMirror(QImage& image, const QRect& area, const FilterColours& colours);
void filterFlip(QImage& image, const QRect& area, const FilterColours& colours);

// The filters' strengths, as docs/whiteboard-filters.md gives them.
constexpr int kBrightnessStep = 32;
constexpr int kPosteriseLevels = 4;
constexpr int kNoiseAmplitude = 24;
constexpr int kMosaicBlock = 8;

} // namespace mirabend::filterkernels
