// The capture path's logic without a display: changed rows padded into
// bands, and converting only a band, stamped or not, gives the very bytes
// a whole conversion of the whole stamped picture gives.
#include "recording/engine/RowBands.h"
#include "recording/engine/StampedGrabs.h"
#include "recording/engine/VideoEncoder.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace mirabend {
namespace {

TEST(RowBandsTest, ChangedRowsArePaddedAlignedClampedAndMerged) {
    struct Case {
        const char* name;
        std::vector<RowBand> changed;
        std::vector<RowBand> bands;
    };
    const Case cases[] = {
        {"one row in the middle", {{100, 1}}, {{88, 24}}},
        {"at the top", {{0, 3}}, {{0, 16}}},
        {"at the bottom of an odd height", {{235, 4}}, {{224, 15}}},
        {"close together merge", {{10, 2}, {40, 2}}, {{0, 56}}},
        {"far apart stay apart", {{10, 2}, {150, 2}}, {{0, 24}, {136, 32}}},
        {"overlapping, out of order", {{60, 20}, {50, 20}}, {{40, 56}}},
        {"on aligned rows", {{88, 32}}, {{72, 64}}},
        {"wholly outside the picture", {{500, 16}, {-40, 10}}, {}},
        {"partly above the picture", {{-5, 10}}, {{0, 16}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(padBands(c.changed, 239), c.bands);
    }
    EXPECT_EQ(innerRows({88, 24}, 239), (RowBand{96, 8}));
    EXPECT_EQ(innerRows({0, 16}, 239), (RowBand{0, 8}));
    EXPECT_EQ(innerRows({224, 15}, 239), (RowBand{232, 7}));
}

std::vector<std::uint8_t> noise(int w, int h, unsigned seed) {
    std::mt19937 rng(seed);
    std::vector<std::uint8_t> px(std::size_t(w) * h * 4);
    for (auto& b : px)
        b = std::uint8_t(rng());
    return px;
}

RecordingPlan planFor(const char* encoder, const char* pixelFormat, int w, int h) {
    RecordingPlan plan;
    plan.fpsNum = 10;
    plan.video.encoder = encoder;
    plan.video.pixelFormat = pixelFormat;
    plan.video.width = w;
    plan.video.height = h;
    plan.video.bitRate = 1000000;
    plan.video.gopSize = 10;
    return plan;
}

TEST(RowBandsTest, ConvertingChangedBandsEqualsConvertingTheWholePicture) {
    struct Case {
        const char* encoder;
        const char* pixelFormat;
        std::vector<RowBand> changed;
    };
    constexpr int w = 320;
    constexpr int h = 240;
    const Case cases[] = {
        {"wmv2", "yuv420p", {{101, 13}}},
        {"wmv2", "yuv420p", {{88, 32}}},
        {"wmv2", "yuv420p", {{0, 5}, {230, 10}}},
        {"msvideo1", "rgb555le", {{37, 50}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.encoder) + " " + c.pixelFormat);
        VideoEncoder encoder;
        ASSERT_FALSE(encoder.open(planFor(c.encoder, c.pixelFormat, w, h), w, h, false));
        ASSERT_TRUE(encoder.convertsRows());
        const std::vector<std::uint8_t> before = noise(w, h, 1);
        std::vector<std::uint8_t> after = before;
        const std::vector<std::uint8_t> changed = noise(w, h, 2);
        for (const RowBand& b : c.changed)
            std::copy_n(changed.begin() + b.top * w * 4, b.height * w * 4, after.begin() + b.top * w * 4);

        FramePtr frame = encoder.convert(before.data(), w * 4);
        const FramePtr expected = encoder.convert(after.data(), w * 4);
        ASSERT_TRUE(frame && expected);
        for (const RowBand& b : padBands(c.changed, h))
            ASSERT_TRUE(encoder.convertRows(frame.get(), after.data() + b.top * w * 4, w * 4, b));
        const auto format = AVPixelFormat(frame->format);
        for (int p = 0; p < av_pix_fmt_count_planes(format); ++p) {
            const int rows = p ? h / 2 : h;
            const int bytes = av_image_get_linesize(format, w, p);
            for (int y = 0; y < rows; ++y)
                ASSERT_EQ(0, std::memcmp(frame->data[p] + y * frame->linesize[p],
                                         expected->data[p] + y * expected->linesize[p], std::size_t(bytes)))
                    << "plane " << p << " row " << y;
        }
    }
}

constexpr int kW = 320;
constexpr int kH = 240;

struct Step {
    const char* name;
    std::vector<RowBand> changed; // rows the screen changed in
    int second;                   // the clock's seconds
    int dateTop;                  // where the date stamp sits
    int maxRows;                  // most rows the step may hand on
};

PacketPtr rowsOf(const std::vector<std::uint8_t>& picture, const std::vector<RowBand>& bands) {
    const std::size_t stride = kW * 4;
    std::size_t rows = 0;
    for (const RowBand& b : bands)
        rows += std::size_t(b.height);
    PacketPtr packet = makePacket();
    if (av_new_packet(packet.get(), int(rows * stride)) < 0)
        return nullptr;
    std::uint8_t* out = packet->data;
    for (const RowBand& b : bands) {
        std::memcpy(out, picture.data() + stride * b.top, stride * b.height);
        out += stride * b.height;
    }
    return packet;
}

void expectSamePicture(const AVFrame* a, const AVFrame* b) {
    const auto format = AVPixelFormat(a->format);
    for (int p = 0; p < 3; ++p) {
        const int rows = p ? kH / 2 : kH;
        const int bytes = av_image_get_linesize(format, kW, p);
        for (int y = 0; y < rows; ++y)
            ASSERT_EQ(0, std::memcmp(a->data[p] + y * a->linesize[p], b->data[p] + y * b->linesize[p],
                                     std::size_t(bytes)))
                << "plane " << p << " row " << y;
    }
}

TEST(StampedGrabsTest, ChangedRowsWithTheStampShowWhatWholeStampedPicturesShow) {
    const Step steps[] = {
        {"the first picture", {}, 0, 100, kH},
        {"still, same second", {}, 0, 100, 0},
        {"still, the seconds tick", {}, 1, 100, 80},
        {"a change crossing the stamp", {{90, 30}}, 1, 100, 80},
        {"a change elsewhere as the seconds tick", {{200, 10}}, 2, 100, 136},
        {"the stamp moves", {}, 2, 30, 160},
    };
    VideoEncoder encoder;
    ASSERT_FALSE(encoder.open(planFor("wmv2", "yuv420p", kW, kH), kW, kH, false));

    OverlayBoard banded;
    OverlayBoard whole;
    const auto settings = [](int dateTop) {
        return [dateTop](OverlaySettings& s) {
            s.showDateTime = true;
            s.dateFormat = 4; // hh:mm:ss
            s.dateLeft = 20;
            s.dateTop = dateTop;
            s.dateColor = QColor(250, 240, 10);
            s.showText = true;
            s.text = QStringLiteral("Lecture 3");
            s.textLeft = 150;
            s.textTop = 120;
        };
    };
    StampedGrabs stamps(kW, kH, true);
    std::mt19937 rng(7);
    std::vector<std::uint8_t> screen = noise(kW, kH, 3);
    const QDateTime start(QDate(2026, 3, 4), QTime(9, 15, 0));
    int dateTop = -1;
    FramePtr last;
    for (const Step& step : steps) {
        SCOPED_TRACE(step.name);
        if (step.dateTop != dateTop) {
            banded.update(settings(step.dateTop));
            whole.update(settings(step.dateTop));
            dateTop = step.dateTop;
        }
        for (const RowBand& b : step.changed)
            for (std::size_t i = std::size_t(b.top) * kW * 4; i < std::size_t(b.bottom()) * kW * 4; ++i)
                screen[i] = std::uint8_t(rng());
        const QDateTime now = start.addSecs(step.second);

        std::vector<std::uint8_t> stamped = screen;
        QImage picture(stamped.data(), kW, kH, kW * 4, QImage::Format_RGB32);
        whole.paint(picture, now);
        const FramePtr expected = encoder.convert(stamped.data(), kW * 4);

        ScreenGrab grab;
        grab.bands = stamps.want(true, ScreenSource::Want::Changes) == ScreenSource::Want::Whole
                         ? std::vector<RowBand>{{0, kH}}
                         : padBands(step.changed, kH);
        grab.pixels = grab.bands.empty() ? nullptr : rowsOf(screen, grab.bands);
        ASSERT_TRUE(stamps.stamp(grab, banded, now, false));
        stamps.recorded(true);
        int rows = 0;
        const std::uint8_t* data = grab.pixels ? grab.pixels->data : nullptr;
        for (const RowBand& b : grab.bands) {
            rows += b.height;
            if (b.height == kH) {
                last = encoder.convert(data, kW * 4);
            } else {
                ASSERT_EQ(0, av_frame_make_writable(last.get()));
                ASSERT_TRUE(encoder.convertRows(last.get(), data, kW * 4, b));
            }
            data += std::size_t(b.height) * kW * 4;
        }
        EXPECT_LE(rows, step.maxRows);
        ASSERT_TRUE(last && expected);
        expectSamePicture(last.get(), expected.get());
    }
    // Stamping stops: the next grab is whole, to wipe the stamp off.
    stamps.recorded(false);
    EXPECT_EQ(stamps.want(false, ScreenSource::Want::Changes), ScreenSource::Want::Changes);
    stamps.recorded(true);
    EXPECT_EQ(stamps.want(false, ScreenSource::Want::Changes), ScreenSource::Want::Whole);
}

} // namespace
} // namespace mirabend
