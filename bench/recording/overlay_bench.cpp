// What stamping all three overlays costs the recorder per frame.
//
// A 1280 x 720 RGB32 frame gets a date/time stamp, two lines of hatch-brush
// text and a 240 x 180 image stamp with a transparent colour at 30 %
// transparency. Printed as ratios, never as absolute times:
//  - overlay cost / frame interval at 24 fps: the share of the capture
//    thread's budget the overlays take;
//  - prepared / direct: OverlayPainter against its peer, a painter that draws
//    the same overlays from scratch every frame (text through its brush,
//    image keyed and faded) as a naive recorder would.
// Run: build with -DMIRABEND_BUILD_BENCH=ON, then bench/overlay_bench [frames].
#include "recording/overlay/HatchPatterns.h"
#include "recording/overlay/OverlayChoices.h"
#include "recording/overlay/OverlayPainter.h"
#include "recording/overlay/OverlayRendering.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QTemporaryDir>
#include <chrono>
#include <cstdio>
#include <cstdlib>

using namespace mirabend;

namespace {

using Clock = std::chrono::steady_clock;

constexpr double kFrameInterval = 1.0 / 24.0; // seconds

OverlaySettings benchSettings(const QString& imageFile) {
    OverlaySettings s;
    s.showDateTime = true;
    s.dateLeft = 20;
    s.dateTop = 660;
    s.dateColor = QColor(255, 255, 255);
    s.showText = true;
    s.text = composeOverlayText(QStringLiteral("Quarterly review"), QStringLiteral("Ada Lovelace"));
    s.textLeft = 40;
    s.textTop = 40;
    s.textFontStyle = static_cast<int>(OverlayFontStyle::Bold);
    s.textStyle = static_cast<int>(OverlayTextStyle::HatchBrush);
    s.hatchStyle = 40;
    s.showImage = true;
    s.imageFile = imageFile;
    s.imageLeft = 1000;
    s.imageTop = 40;
    s.imageTransparency = 30;
    return s;
}

// The peer: everything drawn from the settings on every frame.
void paintDirect(QImage& frame, const OverlaySettings& s, const QImage& source, const QDateTime& now) {
    QPainter painter(&frame);
    painter.setRenderHint(QPainter::Antialiasing);

    QImage keyed = source.convertToFormat(QImage::Format_ARGB32);
    const QRgb key = s.imageTransparentColor.rgb() & RGB_MASK;
    for (int y = 0; y < keyed.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(keyed.scanLine(y));
        for (int x = 0; x < keyed.width(); ++x)
            if ((line[x] & RGB_MASK) == key)
                line[x] = 0;
    }
    painter.setOpacity((100 - s.imageTransparency) / 100.0);
    painter.drawImage(s.imageLeft, s.imageTop, keyed);
    painter.setOpacity(1.0);

    const QFont textFont = overlayFont(s.textFontName, s.textFontSize, OverlayFontStyle::Bold);
    const QFontMetrics metrics(textFont);
    QPainterPath path;
    const QStringList lines = overlayTextLines(s.text);
    for (int i = 0; i < lines.size(); ++i)
        path.addText(QPointF(s.textLeft, s.textTop + metrics.ascent() + i * metrics.lineSpacing()), textFont,
                     lines.at(i));
    painter.fillPath(path, QBrush(hatchTile(s.hatchStyle, s.hatchForeColor, s.hatchBackColor)));

    painter.setFont(overlayFont(s.dateFontName, s.dateFontSize, OverlayFontStyle::Regular));
    painter.setPen(s.dateColor);
    painter.drawText(QPoint(s.dateLeft, s.dateTop + painter.fontMetrics().ascent()),
                     formatOverlayDate(s.dateFormat, now));
}

template <typename Paint>
double secondsPerFrame(int frames, Paint paint) {
    QImage frame(1280, 720, QImage::Format_RGB32);
    const QDateTime start(QDate(2026, 3, 4), QTime(17, 8, 9));
    for (int i = 0; i < 10; ++i) { // warm caches
        frame.fill(QColor(40, 90, 160));
        paint(frame, start);
    }
    double total = 0.0;
    for (int i = 0; i < frames; ++i) {
        frame.fill(QColor(40, 90, 160));
        const QDateTime now = start.addMSecs(i * 1000 / 24); // a new second every 24 frames
        const auto begin = Clock::now();
        paint(frame, now);
        total += std::chrono::duration<double>(Clock::now() - begin).count();
    }
    return total / frames;
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", QByteArray("offscreen"));
    QGuiApplication app(argc, argv);
    const int frames = argc > 1 ? std::max(1, std::atoi(argv[1])) : 480;

    QTemporaryDir dir;
    QImage stamp(240, 180, QImage::Format_RGB32);
    stamp.fill(QColor(200, 40, 40));
    QPainter(&stamp).fillRect(60, 45, 120, 90, Qt::black);
    const QString imageFile = dir.filePath(QStringLiteral("stamp.png"));
    if (!stamp.save(imageFile)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(imageFile));
        return 1;
    }
    const OverlaySettings settings = benchSettings(imageFile);

    OverlayPainter painter;
    const OverlayReport report = painter.apply(settings);
    if (!report.ok()) {
        std::fprintf(stderr, "overlay settings failed: %s\n", report.failures.front().detail.c_str());
        return 1;
    }
    const double prepared =
        secondsPerFrame(frames, [&](QImage& frame, const QDateTime& now) { painter.paint(frame, now); });
    const double direct = secondsPerFrame(
        frames, [&](QImage& frame, const QDateTime& now) { paintDirect(frame, settings, stamp, now); });

    std::printf("overlay_bench: %d frames of 1280x720, date + 2 hatch lines + 240x180 image\n", frames);
    std::printf("  overlays / frame interval @ 24 fps: %.4f\n", prepared / kFrameInterval);
    std::printf("  peer (drawn from scratch) / frame interval: %.4f\n", direct / kFrameInterval);
    std::printf("  overlays / peer: %.3f\n", prepared / direct);
    return 0;
}
