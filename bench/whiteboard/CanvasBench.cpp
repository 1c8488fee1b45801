// The whiteboard canvas on a 1920 x 1080 picture, per mouse event:
//  1. 1000 pencil moves and 1000 rubber-band rectangle moves through the
//     editor, each beside a peer: the same shape drawn straight with
//     QPainter on a picture of the same size, alternately;
//  2. a flood fill of the whole canvas, beside QImage::fill of it.
// Prints the median and 99th percentile per event, the ratios to the peer,
// and the 99th percentile against a quarter of a 60 Hz frame (4 ms).
#include "whiteboard/model/CanvasEditor.h"

#include <QPainter>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

using namespace mirabend;
using Clock = std::chrono::steady_clock;

double ms(Clock::time_point a, Clock::time_point b) {
    return std::chrono::duration<double, std::milli>(b - a).count();
}

double percentile(std::vector<double> v, double p) {
    std::sort(v.begin(), v.end());
    return v[std::min(v.size() - 1, static_cast<std::size_t>(p * static_cast<double>(v.size())))];
}

QPoint pathPoint(int i) {
    return QPoint(960 + static_cast<int>(700 * std::sin(i * 0.013)),
                  540 + static_cast<int>(400 * std::cos(i * 0.021)));
}

struct Timings {
    std::vector<double> ours;
    std::vector<double> peer;
};

Timings run(int tool, const std::function<void(QPainter&, QPoint, QPoint)>& peerDraw) {
    const QSize size(1920, 1080);
    CanvasEditor editor(size);
    editor.setViewport(size);
    editor.selectTool(tool);
    editor.state().WidthIndex = 2;
    QImage peerImage(size, QImage::Format_RGB32);
    peerImage.fill(Qt::white);
    Timings t;
    const QPoint start = pathPoint(0);
    editor.MouseDown(ButtonLeft, 0, start);
    QPoint last = start;
    for (int i = 1; i <= 1000; ++i) {
        const QPoint p = pathPoint(i);
        auto a = Clock::now();
        editor.MouseMove(ButtonLeft, 0, p);
        auto b = Clock::now();
        t.ours.push_back(ms(a, b));
        a = Clock::now();
        {
            QPainter painter(&peerImage);
            peerDraw(painter, tool == ToolPencil ? last : start, p);
        }
        b = Clock::now();
        t.peer.push_back(ms(a, b));
        last = p;
    }
    editor.MouseUp(ButtonLeft, 0, last);
    return t;
}

void report(const char* name, const Timings& t) {
    const double m = percentile(t.ours, 0.5), p99 = percentile(t.ours, 0.99);
    const double pm = percentile(t.peer, 0.5), pp99 = percentile(t.peer, 0.99);
    std::printf(
        "%-22s median %.3f ms  p99 %.3f ms | peer median %.3f ms  p99 %.3f ms | ratio median %.2f  p99 %.2f "
        "| p99 / 4 ms %.2f %s\n",
        name, m, p99, pm, pp99, m / pm, p99 / pp99, p99 / 4.0, p99 < 4.0 ? "(within)" : "(OVER)");
}

} // namespace

int main() {
    report("pencil moves", run(ToolPencil, [](QPainter& p, QPoint a, QPoint b) {
               p.setPen(QPen(Qt::black, 3, Qt::SolidLine, Qt::RoundCap));
               p.drawLine(a, b);
           }));
    report("rubber-band rectangle", run(ToolRectangle, [](QPainter& p, QPoint a, QPoint b) {
               // The peer erases and draws a box too, under XOR.
               p.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
               p.setPen(QPen(Qt::white, 3));
               p.drawRect(QRect(a, b).normalized());
               p.drawRect(QRect(a, b).normalized());
           }));

    std::vector<double> fills, peers;
    for (int round = 0; round < 9; ++round) {
        CanvasEditor editor(QSize(1920, 1080));
        editor.selectTool(ToolFill);
        editor.setForeColor(round % 2 ? qRgb(255, 0, 0) : qRgb(0, 0, 255));
        auto a = Clock::now();
        editor.MouseDown(ButtonLeft, 0, QPoint(960, 540));
        auto b = Clock::now();
        fills.push_back(ms(a, b));
        QImage peer(1920, 1080, QImage::Format_RGB32);
        peer.fill(Qt::white); // touched once, as the canvas is
        a = Clock::now();
        peer.fill(round % 2 ? Qt::red : Qt::blue);
        b = Clock::now();
        peers.push_back(ms(a, b));
    }
    const double f = percentile(fills, 0.5), pf = percentile(peers, 0.5);
    std::printf("%-22s median %.2f ms | peer QImage::fill %.2f ms | ratio %.1f\n", "full-canvas flood fill",
                f, pf, f / pf);
    return 0;
}
