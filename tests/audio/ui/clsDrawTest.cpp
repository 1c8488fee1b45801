// The waveform and the 22-bar spectrum, checked on the pixels drawn.
#include "audio/ui/clsDraw.h"

#include "audio/ui/PictureBox.h"

#include <cmath>
#include <gtest/gtest.h>

namespace mirabend {
namespace {

std::vector<std::int16_t> tone(int bin, double amplitude, std::size_t count = 1024) {
    std::vector<std::int16_t> s(count);
    for (std::size_t n = 0; n < count; ++n)
        s[n] =
            static_cast<std::int16_t>(std::lround(amplitude * std::sin(2 * M_PI * bin * double(n) / 1024.0)));
    return s;
}

class clsDrawTest : public ::testing::Test {
protected:
    clsDrawTest() {
        picture.resize(96, 60);
        picture.Cls();
    }
    PictureBox picture;
    clsDraw draw;
};

TEST_F(clsDrawTest, BlocksShorterThanTheTransformChangeNothing) {
    const QImage before = picture.image().copy();
    draw.DrawFrequencies(tone(10, 32767, 512), picture);
    for (int b = 0; b < clsDraw::kBars; ++b)
        EXPECT_EQ(draw.barLevel(b), 0.0);
    EXPECT_EQ(picture.image(), before);
}

TEST_F(clsDrawTest, FullScaleToneHoldsItsBarAndSilenceLetsItFall) {
    const auto loud = tone(10, 32767); // bins 9..12 belong to bar 2
    for (int i = 0; i < 5; ++i) {
        draw.DrawFrequencies(loud, picture);
        EXPECT_DOUBLE_EQ(draw.barLevel(2), 1.0);
    }
    EXPECT_LT(draw.barLevel(15), 0.05);

    const std::vector<std::int16_t> silence(1024, 0);
    double expected = 1.0;
    for (int i = 0; i < 16; ++i) {
        draw.DrawFrequencies(silence, picture);
        expected = std::max(0.0, expected - 0.07);
        EXPECT_NEAR(draw.barLevel(2), expected, 1e-9) << "call " << i;
    }
    EXPECT_EQ(draw.barLevel(2), 0.0);
}

TEST_F(clsDrawTest, BarsSitAtAFixedPitchWithLevelColours) {
    draw.DrawFrequencies(tone(10, 32767), picture);
    const QImage& img = picture.image();
    const int h = picture.scaleHeight();
    const QColor full(255, 255, 50);
    // Bar 2 covers x 12..14 from y 2 to h - 3; x 15 is the gap.
    for (int x = 12; x <= 14; ++x) {
        EXPECT_EQ(img.pixelColor(x, 2), full) << x;
        EXPECT_EQ(img.pixelColor(x, h - 3), full) << x;
    }
    EXPECT_EQ(img.pixelColor(15, h - 3), picture.background());
    EXPECT_EQ(img.pixelColor(13, h - 2), picture.background());
    EXPECT_EQ(img.pixelColor(13, 1), picture.background());
    EXPECT_EQ(clsDraw::barColour(0.0), QColor(255, 0, 50));
}

TEST_F(clsDrawTest, PositiveSamplesAreDrawnBelowTheCentreLine) {
    picture.resize(120, 60);
    const std::vector<std::int16_t> positive(2048, 16000);
    draw.DrawAmplitudes(positive, picture);
    const QImage& img = picture.image();
    const int c = 30;
    const int expectedY = static_cast<int>(std::lround((c - 2) * (16000 / 32767.0) + c));
    int brightBelow = 0, brightAbove = 0;
    for (int x = 5; x < 110; ++x) {
        for (int y = 0; y < 60; ++y) {
            if (qGray(img.pixel(x, y)) > 200)
                (y > c ? brightBelow : brightAbove)++;
        }
    }
    EXPECT_GT(brightBelow, 100);
    EXPECT_EQ(brightAbove, 0);
    EXPECT_GT(qGray(img.pixel(60, expectedY)), 200);
}

} // namespace
} // namespace mirabend
