// The capture path's logic without a display: changed rows padded into
// bands, and converting only a band gives the very bytes a whole
// conversion gives.
#include "recording/engine/RowBands.h"
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
        RecordingPlan plan;
        plan.fpsNum = 10;
        plan.video.encoder = c.encoder;
        plan.video.pixelFormat = c.pixelFormat;
        plan.video.width = w;
        plan.video.height = h;
        plan.video.bitRate = 1000000;
        plan.video.gopSize = 10;
        VideoEncoder encoder;
        ASSERT_FALSE(encoder.open(plan, w, h, false));
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

} // namespace
} // namespace mirabend
