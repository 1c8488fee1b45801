// The analogue video standard and tuner mute as handed to a V4L2 device, and
// the names the Camera Settings bar shows for formats.
#include "shell/camera/AnalogueInput.h"

#include "shell/camera/CameraNames.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>
#include <vector>

namespace mirabend {
namespace {

// A device that accepts the standards in its mask and records what it got.
class FakeAnalogueInput final : public AnalogueInput {
public:
    FakeAnalogueInput(std::uint64_t standards, bool mute)
        : m_standards(standards)
        , m_mute(mute) {}
    std::uint64_t supportedStandards() const override { return m_standards; }
    bool setStandard(std::uint64_t standard) override {
        handed.push_back(standard);
        return true;
    }
    bool hasMute() const override { return m_mute; }
    bool setMute(bool muted) override {
        mutes.push_back(muted);
        return true;
    }
    std::vector<std::uint64_t> handed;
    std::vector<bool> mutes;

private:
    std::uint64_t m_standards;
    bool m_mute;
};

TEST(AnalogueInput, EachListEntryReachesATunerThatKnowsItAndNothingElseDoes) {
    struct Row {
        int index;
        std::uint64_t expected;
    };
    const Row rows[] = {
        {0, 0}, // Digital sensor: no standard at all
        {1, V4L2_STD_NTSC_M},
        {2, V4L2_STD_NTSC_M_JP},
        {3, V4L2_STD_NTSC_443},
        {4, V4L2_STD_PAL_B},
        {11, V4L2_STD_SECAM_B},
        {19, V4L2_STD_PAL_Nc},
        {20, 0},
        {-1, 0}, // outside the list
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.index);
        EXPECT_EQ(videoStandardId(row.index), row.expected);
        FakeAnalogueInput tvCard(V4L2_STD_ALL, true);
        EXPECT_EQ(applyStandard(tvCard, row.index), row.expected);
        EXPECT_EQ(tvCard.handed,
                  row.expected ? std::vector<std::uint64_t>{row.expected} : std::vector<std::uint64_t>{});
        // A PAL-only card ignores the others quietly.
        FakeAnalogueInput palCard(V4L2_STD_PAL, false);
        const bool pal = (row.expected & V4L2_STD_PAL) != 0;
        EXPECT_EQ(applyStandard(palCard, row.index), pal ? row.expected : 0);
        EXPECT_EQ(palCard.handed.size(), pal ? 1u : 0u);
        // A webcam has none.
        FakeAnalogueInput webcam(0, false);
        EXPECT_EQ(applyStandard(webcam, row.index), 0u);
        EXPECT_TRUE(webcam.handed.empty());
    }
    // Every other entry names a standard of its own.
    std::uint64_t seen = 0;
    for (int index = 1; index < 20; ++index) {
        EXPECT_NE(videoStandardId(index), 0u) << index;
        EXPECT_EQ(seen & videoStandardId(index), 0u) << index;
        seen |= videoStandardId(index);
    }
}

TEST(AnalogueInput, MuteReachesOnlyADeviceThatHasIt) {
    FakeAnalogueInput tuner(V4L2_STD_ALL, true);
    EXPECT_TRUE(applyMute(tuner, true));
    EXPECT_TRUE(applyMute(tuner, false));
    EXPECT_EQ(tuner.mutes, (std::vector<bool>{true, false}));
    FakeAnalogueInput webcam(0, false);
    EXPECT_FALSE(applyMute(webcam, true));
    EXPECT_TRUE(webcam.mutes.empty());
}

TEST(CameraNames, FormatsReadAsAUserReadsThem) {
    using F = QVideoFrameFormat;
    struct Row {
        QSize size;
        F::PixelFormat pixels;
        float fps;
        const char* name;
    };
    const Row rows[] = {
        {{1280, 720}, F::Format_Jpeg, 30.0f, "1280x720 MJPEG 30 fps"},
        {{640, 480}, F::Format_YUYV, 30.0f, "640x480 YUY2 30 fps"},
        {{320, 240}, F::Format_YUV420P, 15.0f, "320x240 I420 15 fps"},
        {{720, 576}, F::Format_UYVY, 25.0f, "720x576 UYVY 25 fps"},
        {{720, 480}, F::Format_NV12, 29.97f, "720x480 NV12 29.97 fps"},
        {{1920, 1080}, F::Format_XRGB8888, 7.5f, "1920x1080 RGB32 7.50 fps"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(formatName(row.size, row.pixels, row.fps), QString::fromLatin1(row.name));
    EXPECT_EQ(withoutRepeats({"a", "b", "a", "c", "b"}), (QStringList{"a", "b", "c"}));
}

} // namespace
} // namespace mirabend
