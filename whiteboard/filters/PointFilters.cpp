// The filters that compute each pixel from itself alone. Per-channel curves
// go through a 256-entry table built once per call.
#include "whiteboard/filters/FilterKernels.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace mirabend::filterkernels {
namespace {

using ChannelTable = std::array<std::uint8_t, 256>;

template <typename Curve>
ChannelTable makeTable(Curve curve) {
    ChannelTable table{};
    for (int c = 0; c < 256; ++c)
        table[static_cast<std::size_t>(c)] = static_cast<std::uint8_t>(clampByte(curve(c)));
    return table;
}

void applyTable(QImage& image, const QRect& area, const ChannelTable& t) {
    forEachPixel(image, area,
                 [&t](int, int, QRgb p) { return withRgb(p, t[qRed(p)], t[qGreen(p)], t[qBlue(p)]); });
}

// Stretches (factor > 1) or squeezes (factor < 1) the channel around mid grey.
ChannelTable contrastTable(double factor) {
    return makeTable([factor](int c) { return static_cast<int>(std::lround(128.0 + (c - 128) * factor)); });
}

// A fixed integer hash of the pixel's place: the same image always gets the
// same grain, whichever part of it is filtered and in whatever order.
int noiseAt(int x, int y) {
    constexpr std::uint32_t kSeed = 0x6d697261u;
    std::uint32_t h =
        (static_cast<std::uint32_t>(x) * 0x9e3779b1u) ^ (static_cast<std::uint32_t>(y) * 0x85ebca77u) ^ kSeed;
    h ^= h >> 15;
    h *= 0x2c1b3c6du;
    h ^= h >> 12;
    h *= 0x297a2d39u;
    h ^= h >> 15;
    return static_cast<int>(h % (2 * kNoiseAmplitude + 1)) - kNoiseAmplitude;
}

} // namespace

void filterGrey(QImage& image, const QRect& area, const FilterColours&) {
    forEachPixel(image, area, [](int, int, QRgb p) {
        const int v = luminance(p);
        return withRgb(p, v, v, v);
    });
}

void filterInvert(QImage& image, const QRect& area, const FilterColours&) {
    forEachPixel(image, area, [](int, int, QRgb p) { return p ^ 0x00ffffffu; });
}

void filterSepia(QImage& image, const QRect& area, const FilterColours&) {
    // The usual sepia matrix in 1/1024, rounded.
    forEachPixel(image, area, [](int, int, QRgb p) {
        const int r = qRed(p), g = qGreen(p), b = qBlue(p);
        return withRgb(p, clampByte((402 * r + 787 * g + 194 * b + 512) >> 10),
                       clampByte((357 * r + 702 * g + 172 * b + 512) >> 10),
                       clampByte((279 * r + 547 * g + 134 * b + 512) >> 10));
    });
}

void filterBrighter(QImage& image, const QRect& area, const FilterColours&) {
    applyTable(image, area, makeTable([](int c) { return c + kBrightnessStep; }));
}

void filterDarker(QImage& image, const QRect& area, const FilterColours&) {
    applyTable(image, area, makeTable([](int c) { return c - kBrightnessStep; }));
}

void filterMoreContrast(QImage& image, const QRect& area, const FilterColours&) {
    applyTable(image, area, contrastTable(1.5));
}

void filterLessContrast(QImage& image, const QRect& area, const FilterColours&) {
    applyTable(image, area, contrastTable(0.5));
}

void filterTwoColours(QImage& image, const QRect& area, const FilterColours& colours) {
    const QRgb dark = colours.fore & 0x00ffffffu;
    const QRgb light = colours.fill & 0x00ffffffu;
    forEachPixel(image, area, [dark, light](int, int, QRgb p) {
        return (p & 0xff000000u) | (luminance(p) < 128 ? dark : light);
    });
}

void filterPosterise(QImage& image, const QRect& area, const FilterColours&) {
    // Each channel snaps to the nearest of the levels 0, 85, 170, 255.
    constexpr int steps = kPosteriseLevels - 1;
    applyTable(image, area, makeTable([](int c) { return (c * steps + 127) / 255 * 255 / steps; }));
}

void filterNoise(QImage& image, const QRect& area, const FilterColours&) {
    // One offset for all three channels: grain in brightness, not in hue.
    forEachPixel(image, area, [](int x, int y, QRgb p) {
        const int d = noiseAt(x, y);
        return withRgb(p, clampByte(qRed(p) + d), clampByte(qGreen(p) + d), clampByte(qBlue(p) + d));
    });
}

} // namespace mirabend::filterkernels
