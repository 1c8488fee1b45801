// A stamped recording that grabs and converts only the changed rows shows
// the very pictures the whole-picture path shows: stamp drawn onto the
// whole grab and the whole picture converted.
#include "recording/engine/StampedGrabs.h"

#include "recording/engine/VideoEncoder.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace mirabend {
namespace {

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
    RecordingPlan plan;
    plan.fpsNum = 10;
    plan.video.encoder = "wmv2";
    plan.video.pixelFormat = "yuv420p";
    plan.video.width = kW;
    plan.video.height = kH;
    plan.video.bitRate = 1000000;
    plan.video.gopSize = 10;
    VideoEncoder encoder;
    ASSERT_FALSE(encoder.open(plan, kW, kH, false));

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
    std::vector<std::uint8_t> screen(std::size_t(kW) * kH * 4);
    for (auto& b : screen)
        b = std::uint8_t(rng());
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
