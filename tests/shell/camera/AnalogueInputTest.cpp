// The analogue video standard and tuner mute as handed to a V4L2 device, and
// the names the Camera Settings bar shows for formats.
#include "FakeCameraControl.h"
#include "shell/camera/CameraNames.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>
#include <vector>

namespace mirabend::test {
namespace {

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
        // A TV card knows them all, a PAL-only card ignores the others
        // quietly, and a webcam has none.
        for (const std::uint64_t mask :
             {std::uint64_t(V4L2_STD_ALL), std::uint64_t(V4L2_STD_PAL), std::uint64_t(0)}) {
            AnalogueLog log;
            FakeAnalogueInput card(mask, false, log);
            const std::uint64_t handed = row.expected & mask;
            EXPECT_EQ(applyStandard(card, row.index), handed) << mask;
            EXPECT_EQ(log.standards,
                      handed ? std::vector<std::uint64_t>{handed} : std::vector<std::uint64_t>{});
        }
    }
    // Every other entry names a standard of its own.
    std::uint64_t seen = 0;
    for (int index = 1; index < 20; ++index) {
        EXPECT_NE(videoStandardId(index), 0u) << index;
        EXPECT_EQ(seen & videoStandardId(index), 0u) << index;
        seen |= videoStandardId(index);
    }
    // Mute reaches only a device that has it.
    AnalogueLog log;
    FakeAnalogueInput tuner(V4L2_STD_ALL, true, log), webcam(0, false, log);
    EXPECT_TRUE(applyMute(tuner, true));
    EXPECT_FALSE(applyMute(webcam, false));
    EXPECT_EQ(log.mutes, std::vector<bool>{true});
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
}

} // namespace
} // namespace mirabend::test
