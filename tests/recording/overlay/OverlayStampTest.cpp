// The image stamp and the texture brush: files on disk, the transparent
// colour, the transparency, and what happens when a file is missing.
#include "FrameProbe.h"

#include <QFile>
#include <QPainter>
#include <QTemporaryDir>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace mirabend::test {
namespace {

const QColor kBlue(0, 0, 255);
const QRgb kRed = qRgb(255, 0, 0);

class OverlayStamp : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }

    // A red 40 x 30 picture with a black 10 x 10 hole at (5, 5).
    QString redWithBlackHole(const char* name) {
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(kRed);
        QPainter(&image).fillRect(5, 5, 10, 10, Qt::black);
        const QString file = m_dir.filePath(QLatin1String(name));
        EXPECT_TRUE(image.save(file));
        return file;
    }

    OverlaySettings imageSettings(const QString& file, int left, int top, int transparency = 0) {
        OverlaySettings s;
        s.showImage = true;
        s.imageFile = file;
        s.imageLeft = left;
        s.imageTop = top;
        s.imageTransparency = transparency;
        return s;
    }

    QTemporaryDir m_dir;
};

TEST_F(OverlayStamp, ImageLandsAtItsPositionWithTheTransparentColourLeftOut) {
    for (const char* name : {"stamp.png", "stamp.bmp"}) {
        OverlayReport report;
        const QImage frame = paintedWith(imageSettings(redWithBlackHole(name), 60, 70), kBlue, &report);
        EXPECT_TRUE(report.ok()) << name;
        const Ink ink = inkOf(frame, kBlue);
        EXPECT_EQ(ink.box, QRect(60, 70, 40, 30)) << name;
        EXPECT_EQ(ink.count, 40 * 30 - 10 * 10) << name;
        EXPECT_EQ(frame.pixel(60 + 20, 70 + 20), kRed);
        EXPECT_EQ(frame.pixel(60 + 9, 70 + 9), kBlue.rgb()) << "black is the transparent colour";
    }
    OverlaySettings s = imageSettings(redWithBlackHole("stamp.png"), 0, 0);
    s.imageTransparentColor = QColor(255, 0, 0);
    const QImage frame = paintedWith(s, kBlue);
    EXPECT_EQ(inkOf(frame, kBlue).box, QRect(5, 5, 10, 10));
    EXPECT_EQ(frame.pixel(9, 9), qRgb(0, 0, 0));
    // Half outside the frame, the stamp is clipped.
    const QImage clipped = paintedWith(imageSettings(redWithBlackHole("stamp.png"), -20, 185), kBlue);
    EXPECT_EQ(inkOf(clipped, kBlue).box, QRect(0, 185, 20, 15));
}

TEST_F(OverlayStamp, TransparencyBlendsWithTheFrame) {
    const QString file = redWithBlackHole("stamp.png");
    struct Case {
        int transparency;
        int red;
        int blue;
    };
    // Red over blue at (100 - t) % opacity.
    for (const Case& c : {Case{0, 255, 0}, Case{25, 191, 64}, Case{50, 128, 128}, Case{90, 26, 230}}) {
        const QRgb pixel = paintedWith(imageSettings(file, 0, 0, c.transparency), kBlue).pixel(30, 20);
        EXPECT_NEAR(qRed(pixel), c.red, 2) << c.transparency;
        EXPECT_EQ(qGreen(pixel), 0) << c.transparency;
        EXPECT_NEAR(qBlue(pixel), c.blue, 2) << c.transparency;
    }
    EXPECT_EQ(inkOf(paintedWith(imageSettings(file, 0, 0, 100), kBlue), kBlue).count, 0);
    EXPECT_EQ(inkOf(paintedWith(imageSettings(file, 0, 0, 250), kBlue), kBlue).count, 0) << "clamped to 100";
    EXPECT_EQ(paintedWith(imageSettings(file, 0, 0, -5), kBlue).pixel(30, 20), kRed) << "clamped to 0";
}

TEST_F(OverlayStamp, MissingOrCorruptImageIsReportedAndPaintsNothing) {
    OverlayReport report;
    const QString missing = m_dir.filePath(QStringLiteral("nowhere.bmp"));
    QImage frame = paintedWith(imageSettings(missing, 0, 0), kBlue, &report);
    ASSERT_EQ(report.failures.size(), 1u);
    EXPECT_EQ(report.failures.front().code, OverlayError::ImageFileMissing);
    EXPECT_NE(report.failures.front().detail.find("nowhere.bmp"), std::string::npos);
    EXPECT_EQ(inkOf(frame, kBlue).count, 0);

    const QString corrupt = m_dir.filePath(QStringLiteral("corrupt.jpg"));
    {
        QFile file(corrupt);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("\xff\xd8\xff\xe0 this is not a picture");
    }
    frame = paintedWith(imageSettings(corrupt, 0, 0), kBlue, &report);
    ASSERT_EQ(report.failures.size(), 1u);
    EXPECT_EQ(report.failures.front().code, OverlayError::ImageFileUnreadable);
    EXPECT_EQ(inkOf(frame, kBlue).count, 0);

    // The other overlays are still drawn.
    OverlaySettings both = textSettings(QStringLiteral("Hi"), 100, 100);
    both.showImage = true;
    both.imageFile = missing;
    frame = paintedWith(both, kBlue, &report);
    EXPECT_TRUE(hasFailure(report, OverlayError::ImageFileMissing));
    EXPECT_GT(inkOf(frame, kBlue).count, 20);
}

TEST_F(OverlayStamp, TextureBrushTilesTheImageFromTheFrameOrigin) {
    QImage texture(16, 16, QImage::Format_RGB32);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            texture.setPixel(x, y, qRgb(x * 16, y * 16, 128));
    const QString file = m_dir.filePath(QStringLiteral("texture.bmp"));
    ASSERT_TRUE(texture.save(file));

    OverlaySettings s = textSettings(QString(QChar(0x2588)), 29, 13);
    s.textFontSize = 40;
    s.textStyle = static_cast<int>(OverlayTextStyle::TextureBrush);
    s.textureFile = file;
    OverlayReport report;
    QImage frame = paintedWith(s, kBlue, &report);
    EXPECT_TRUE(report.ok());
    const QRect core = inkOf(frame, kBlue).box.adjusted(3, 3, -3, -3);
    ASSERT_GT(core.width(), 16);
    EXPECT_EQ(mismatches(frame, core, [&](int x, int y) { return texture.pixel(x % 16, y % 16); }), 0);

    // Without its texture the caption still shows, in the plain text colour.
    s.textureFile = m_dir.filePath(QStringLiteral("gone.bmp"));
    frame = paintedWith(s, kBlue, &report);
    EXPECT_TRUE(hasFailure(report, OverlayError::TextureFileMissing));
    EXPECT_EQ(frame.pixel(core.center()), kRed);
}

TEST_F(OverlayStamp, PaintsIntoTheFrameBufferItIsHandedWithoutCopying) {
    // As the recorder hands its frames: an RGB32 image over a bgr0 buffer
    // with padded lines.
    const int width = 64, height = 48, linesize = 64 * 4 + 32;
    std::vector<uchar> buffer(static_cast<std::size_t>(linesize * height), 0);
    QImage frame(buffer.data(), width, height, linesize, QImage::Format_RGB32);

    OverlayPainter painter;
    painter.apply(imageSettings(redWithBlackHole("stamp.png"), 2, 3));
    painter.paint(frame, fixedTime());
    const uchar* pixel = buffer.data() + 20 * linesize + 30 * 4; // frame (30, 20), inside the stamp
    EXPECT_EQ(pixel[0], 0);                                      // blue
    EXPECT_EQ(pixel[1], 0);                                      // green
    EXPECT_EQ(pixel[2], 255);                                    // red
    EXPECT_EQ(frame.constBits(), buffer.data());
}

TEST_F(OverlayStamp, FramePaintedDuringApplyShowsEitherTheOldOrTheNewOverlays) {
    const QString file = redWithBlackHole("stamp.png");
    const OverlaySettings left = imageSettings(file, 0, 0);
    const OverlaySettings right = imageSettings(file, 200, 100);
    OverlayPainter painter;
    painter.apply(left);
    EXPECT_EQ(painter.settings(), left);

    std::atomic<bool> done{false};
    std::thread ui([&] {
        for (int i = 0; i < 200; ++i)
            painter.apply(i % 2 ? left : right);
        done = true;
    });
    int mixed = 0, frames = 0;
    while (!done || frames < 10) {
        QImage frame = blankFrame(kBlue);
        painter.paint(frame, fixedTime());
        const QRect box = inkOf(frame, kBlue).box;
        mixed += box == QRect(0, 0, 40, 30) || box == QRect(200, 100, 40, 30) ? 0 : 1;
        ++frames;
    }
    ui.join();
    EXPECT_EQ(mixed, 0);
    EXPECT_EQ(painter.settings(), left);
    EXPECT_NE(painter.settings(), right);
}

} // namespace
} // namespace mirabend::test
