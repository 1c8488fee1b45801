// Camera frames in each layout the preview converts itself: a frame whose
// left half is red and right half blue must come out so at any size, which
// catches swapped chroma planes, wrong byte offsets and mirrored sampling.
#include "shell/camera/FrameImage.h"

#include <QColor>
#include <gtest/gtest.h>

namespace mirabend::test {
namespace {

using F = QVideoFrameFormat;

struct Yuv {
    int y, u, v;
};
constexpr Yuv kRed{81, 90, 240};
constexpr Yuv kBlue{41, 240, 110};

// An 8x4 frame, left half red and right half blue, in `format`.
QVideoFrame halves(F::PixelFormat format) {
    QVideoFrame frame(F(QSize(8, 4), format));
    if (!frame.map(QVideoFrame::WriteOnly))
        return {};
    const auto at = [&](int plane, int x, int y) -> uchar& {
        return frame.bits(plane)[y * frame.bytesPerLine(plane) + x];
    };
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 8; ++x) {
            const Yuv c = x < 4 ? kRed : kBlue;
            const QRgb rgb = x < 4 ? qRgb(255, 0, 0) : qRgb(0, 0, 255);
            switch (format) {
            case F::Format_YUYV:
                at(0, x * 2, y) = uchar(c.y), at(0, (x & ~1) * 2 + 1, y) = uchar(c.u),
                             at(0, (x & ~1) * 2 + 3, y) = uchar(c.v);
                break;
            case F::Format_UYVY:
                at(0, x * 2 + 1, y) = uchar(c.y), at(0, (x & ~1) * 2, y) = uchar(c.u),
                                 at(0, (x & ~1) * 2 + 2, y) = uchar(c.v);
                break;
            case F::Format_YUV420P:
            case F::Format_YV12: {
                const bool yv = format == F::Format_YV12;
                at(0, x, y) = uchar(c.y), at(yv ? 2 : 1, x / 2, y / 2) = uchar(c.u),
                         at(yv ? 1 : 2, x / 2, y / 2) = uchar(c.v);
                break;
            }
            case F::Format_NV12:
            case F::Format_NV21: {
                const bool nv21 = format == F::Format_NV21;
                at(0, x, y) = uchar(c.y), at(1, (x & ~1) + (nv21 ? 1 : 0), y / 2) = uchar(c.u),
                         at(1, (x & ~1) + (nv21 ? 0 : 1), y / 2) = uchar(c.v);
                break;
            }
            default: { // 32-bit RGB in byte order
                uchar* px = &at(0, x * 4, y);
                const bool bgr = format == F::Format_BGRX8888;
                px[0] = uchar(bgr ? qBlue(rgb) : qRed(rgb)), px[1] = uchar(qGreen(rgb));
                px[2] = uchar(bgr ? qRed(rgb) : qBlue(rgb)), px[3] = 255;
                break;
            }
            }
        }
    }
    frame.unmap();
    return frame;
}

bool near(QRgb actual, QRgb expected) {
    return std::abs(qRed(actual) - qRed(expected)) < 12 && std::abs(qGreen(actual) - qGreen(expected)) < 12 &&
           std::abs(qBlue(actual) - qBlue(expected)) < 12;
}

TEST(FrameImage, EachLayoutKeepsItsColoursAndSidesAtAnySize) {
    const F::PixelFormat formats[] = {F::Format_YUYV, F::Format_UYVY, F::Format_YUV420P,  F::Format_YV12,
                                      F::Format_NV12, F::Format_NV21, F::Format_RGBX8888, F::Format_BGRX8888};
    const QSize sizes[] = {QSize(8, 4), QSize(3, 2), QSize(145, 109)};
    for (F::PixelFormat format : formats) {
        const QVideoFrame frame = halves(format);
        ASSERT_TRUE(frame.isValid()) << F::pixelFormatToString(format).toStdString();
        for (QSize size : sizes) {
            const QImage image = frameImage(frame, size);
            const std::string what = F::pixelFormatToString(format).toStdString() + " at " +
                                     std::to_string(size.width()) + "x" + std::to_string(size.height());
            ASSERT_EQ(image.size(), size) << what;
            EXPECT_TRUE(near(image.pixel(0, 0), qRgb(255, 0, 0)))
                << what << " left " << std::hex << image.pixel(0, 0);
            const QRgb right = image.pixel(size.width() - 1, size.height() - 1);
            EXPECT_TRUE(near(right, qRgb(0, 0, 255))) << what << " right " << std::hex << right;
        }
    }
    EXPECT_TRUE(frameImage(QVideoFrame(), QSize(10, 10)).isNull());
    EXPECT_TRUE(frameImage(halves(F::Format_YUYV), QSize()).isNull());
}

} // namespace
} // namespace mirabend::test
