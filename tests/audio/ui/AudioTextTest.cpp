#include "audio/ui/AudioText.h"

#include <gtest/gtest.h>

namespace mirabend {
namespace {

TEST(AudioText, ElapsedTimeIsMinutesAndTwoDigitSeconds) {
    EXPECT_EQ(elapsedText(0), "0:00");
    EXPECT_EQ(elapsedText(999), "0:00");
    EXPECT_EQ(elapsedText(65432), "1:05");
    EXPECT_EQ(elapsedText(3600000), "60:00");
}

TEST(AudioText, SizesChangeUnitAtTheDesignedBorders) {
    EXPECT_EQ(sizeText(0), "0 bytes");
    EXPECT_EQ(sizeText(1023), "1023 bytes");
    EXPECT_EQ(sizeText(1024), "1 KB");
    EXPECT_EQ(sizeText(1536), "2 KB"); // halves round up
    EXPECT_EQ(sizeText(1048574), "1024 KB");
    EXPECT_EQ(sizeText(1048575), "1.0 MB");
    EXPECT_EQ(sizeText(3 * 1048576 + 524288), "3.5 MB");
    EXPECT_EQ(sizeText(1073741822), "1024.0 MB");
    EXPECT_EQ(sizeText(1073741823), "1.00 GB");
}

} // namespace
} // namespace mirabend
