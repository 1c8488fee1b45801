// What each whiteboard filter costs on a full-HD canvas.
//
// Printed as ratios, never as absolute times:
//  - filter / copy: one whole-canvas filter against its peer, a plain copy
//    of the same 1920 x 1080 RGB32 image into a ready buffer (one pass over
//    every pixel), timed side by side;
//  - share of 1 s: the whole-canvas filter against the one-second budget a
//    user waits at most after choosing a filter;
//  - brush / copy: the filter tool's largest square (64 x 64) on that canvas,
//    which must not touch the rest of the image.
// Run: build with -DMIRABEND_BUILD_BENCH=ON, then bench/whiteboard_filters_bench [runs].
#include "whiteboard/filters/ImageFilters.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace mirabend;

namespace {

using Clock = std::chrono::steady_clock;

// A board with something on it: a colour gradient crossed by dark strokes.
QImage benchCanvas() {
    QImage image(1920, 1080, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const bool stroke = (x + y) % 97 < 4 || (x * 3 - y) % 151 < 3;
            line[x] = stroke ? qRgb(20, 20, 30) : qRgb(x * 255 / 1920, y * 255 / 1080, 200);
        }
    }
    return image;
}

// Median seconds of `runs` calls of work(image) on fresh deep copies of source.
template <typename Work>
double medianSeconds(const QImage& source, int runs, Work work) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        QImage image = source.copy();
        const auto start = Clock::now();
        work(image);
        times.push_back(std::chrono::duration<double>(Clock::now() - start).count());
    }
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    return times[static_cast<std::size_t>(runs / 2)];
}

} // namespace

int main(int argc, char** argv) {
    const int runs = std::max(1, argc > 1 ? std::atoi(argv[1]) : 7);
    const QImage canvas = benchCanvas();
    const QRgb fore = qRgb(0, 0, 0), fill = qRgb(255, 255, 255);
    QImage peer(canvas.size(), canvas.format()); // written once before timing, so no page faults
    peer.fill(0);

    std::printf("%-14s %14s %12s %14s\n", "filter", "filter / copy", "share of 1 s", "brush / copy");
    for (const ImageFilter& f : imageFilters()) {
        const double copy = medianSeconds(canvas, runs, [&peer](QImage& image) {
            std::memcpy(peer.bits(), image.constBits(), static_cast<std::size_t>(image.sizeInBytes()));
        });
        const double whole = medianSeconds(
            canvas, runs, [&](QImage& image) { applyFilter(image, f.number, fore, fill, QRect()); });
        const double brush = medianSeconds(canvas, runs, [&](QImage& image) {
            applyFilterAt(image, f.number, QPoint(960, 540), filterBrushSize(8), fore, fill);
        });
        std::printf("%-14s %14.2f %12.3f %14.4f\n", qPrintable(f.name), whole / copy, whole, brush / copy);
    }
    return 0;
}
