#include "audio/core/IIRFilter.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace mirabend::test {
namespace {

constexpr int kRate = 44100;

std::vector<std::int16_t> tone(double frequency, std::size_t count, double amplitude) {
    std::vector<std::int16_t> out(count);
    for (std::size_t i = 0; i < count; ++i)
        out[i] =
            static_cast<std::int16_t>(std::lround(amplitude * std::sin(2 * M_PI * frequency * i / kRate)));
    return out;
}

// Peak amplitude over the second half, after the filter has settled.
double settledPeak(const std::vector<std::int16_t>& s) {
    int peak = 0;
    for (std::size_t i = s.size() / 2; i < s.size(); ++i)
        peak = std::max(peak, std::abs(static_cast<int>(s[i])));
    return peak;
}

TEST(IIRFilter, PeakingGainAtCentreFrequencyIsTheDesignedGain) {
    for (const float gain : {6.0f, -6.0f, 12.0f}) {
        IIRFilter f;
        f.CreateBiquadIIR(IIRFilter::Peaking, gain, 1000.0f, kRate, 1.0f);
        std::vector<std::int16_t> s = tone(1000.0, 8820, 4000.0);
        f.ProcessSamples_16bit(s);
        const double expected = 4000.0 * std::pow(10.0, gain / 20.0);
        EXPECT_NEAR(settledPeak(s), expected, expected * 0.01) << "gain " << gain;
    }
}

TEST(IIRFilter, PassAndStopBandsOfTheOtherTypes) {
    struct Case {
        int type;
        double frequency; // of the test tone
        double minRatio, maxRatio;
    };
    // Corner / centre at 1 kHz.
    const Case cases[] = {
        {IIRFilter::LowPass, 100.0, 0.98, 1.02},    {IIRFilter::LowPass, 15000.0, 0.0, 0.02},
        {IIRFilter::HighPass, 15000.0, 0.98, 1.02}, {IIRFilter::HighPass, 50.0, 0.0, 0.01},
        {IIRFilter::BandPass, 1000.0, 0.99, 1.01},  {IIRFilter::BandPass, 15000.0, 0.0, 0.1},
    };
    for (const Case& c : cases) {
        IIRFilter f;
        f.CreateBiquadIIR(c.type, 0.0f, 1000.0f, kRate, 1.0f);
        EXPECT_EQ(f.IIRType(), c.type);
        std::vector<std::int16_t> s = tone(c.frequency, 44100, 10000.0);
        f.ProcessSamples_16bit(s);
        const double ratio = settledPeak(s) / 10000.0;
        EXPECT_GE(ratio, c.minRatio) << "type " << c.type << " at " << c.frequency;
        EXPECT_LE(ratio, c.maxRatio) << "type " << c.type << " at " << c.frequency;
    }
}

TEST(IIRFilter, ClipsAtFullScaleAndWritesMinusOneAsMinus32768) {
    IIRFilter f;
    f.CreateBiquadIIR(IIRFilter::Peaking, 12.0f, 1000.0f, kRate, 1.0f);
    std::vector<std::int16_t> s = tone(1000.0, 4410, 32767.0);
    f.ProcessSamples_16bit(s);
    EXPECT_EQ(*std::max_element(s.begin(), s.end()), 32767);
    EXPECT_EQ(*std::min_element(s.begin(), s.end()), -32768);

    // An all-pass identity (peaking with 0 dB) maps -32767 to y = -1.0
    // exactly, which is written as -32768; +32767 stays 32767.
    IIRFilter identity;
    identity.CreateBiquadIIR(IIRFilter::Peaking, 0.0f, 1000.0f, kRate, 1.0f);
    std::vector<std::int16_t> edge = {-32767, 32767, 0, 1234};
    identity.ProcessSamples_16bit(edge);
    EXPECT_EQ(edge, (std::vector<std::int16_t>{-32768, 32767, 0, 1234}));
}

TEST(IIRFilter, DisabledOrEmptyInputIsLeftAlone) {
    IIRFilter f;
    f.CreateBiquadIIR(IIRFilter::LowPass, 0.0f, 100.0f, kRate, 1.0f);
    f.Enabled(false);
    std::vector<std::int16_t> s = tone(5000.0, 256, 10000.0);
    const std::vector<std::int16_t> original = s;
    f.ProcessSamples_16bit(s);
    EXPECT_EQ(s, original);
    std::vector<std::uint8_t> bytes = {0, 17, 255};
    f.ProcessSamples_8bit(bytes);
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{0, 17, 255}));

    f.Enabled(true);
    std::vector<std::int16_t> empty;
    f.ProcessSamples_16bit(empty);
    f.ProcessSamples_16bit(nullptr, 0);
    EXPECT_TRUE(empty.empty());
}

TEST(IIRFilter, EightBitSamplesAreCentredOn128AndClipped) {
    IIRFilter f;
    f.CreateBiquadIIR(IIRFilter::LowPass, 0.0f, 2000.0f, 8000, 1.0f);
    std::vector<std::uint8_t> silence(100, 128);
    f.ProcessSamples_8bit(silence);
    EXPECT_TRUE(std::all_of(silence.begin(), silence.end(), [](std::uint8_t v) { return v == 128; }));

    IIRFilter loud;
    loud.CreateBiquadIIR(IIRFilter::Peaking, 12.0f, 1000.0f, 8000, 1.0f);
    std::vector<std::uint8_t> s(800);
    for (std::size_t i = 0; i < s.size(); ++i)
        s[i] = static_cast<std::uint8_t>(std::lround(128 + 120 * std::sin(2 * M_PI * 1000.0 * i / 8000)));
    loud.ProcessSamples_8bit(s);
    EXPECT_EQ(*std::max_element(s.begin(), s.end()), 255);
    EXPECT_EQ(*std::min_element(s.begin(), s.end()), 0);
}

TEST(IIRFilter, MemoryCarriesAcrossBlocksAndIsClearedByRedesign) {
    IIRFilter whole;
    IIRFilter split;
    whole.CreateBiquadIIR(IIRFilter::LowPass, 0.0f, 500.0f, kRate, 1.0f);
    split.CreateBiquadIIR(IIRFilter::LowPass, 0.0f, 500.0f, kRate, 1.0f);
    std::vector<std::int16_t> a = tone(300.0, 1000, 8000.0);
    std::vector<std::int16_t> b(a.begin(), a.begin() + 400);
    std::vector<std::int16_t> c(a.begin() + 400, a.end());
    whole.ProcessSamples_16bit(a);
    split.ProcessSamples_16bit(b);
    split.ProcessSamples_16bit(c);
    b.insert(b.end(), c.begin(), c.end());
    EXPECT_EQ(a, b);

    // After a redesign the first output depends on the first input only.
    split.Frequency(500.0f);
    std::vector<std::int16_t> impulse = {10000, 0};
    split.ProcessSamples_16bit(impulse);
    const IIRFilter::Coefficients k = split.coefficients();
    EXPECT_EQ(impulse[0], std::lrintf(k.b0 * (10000.0f / 32767.0f) * 32767.0f));
}

TEST(IIRFilter, SettersRedesignOnlyOnceARateIsKnown) {
    IIRFilter f;
    f.Frequency(1000.0f);
    f.Bandwidth(1.0f);
    f.GainDB(6.0f);
    EXPECT_FLOAT_EQ(f.Frequency(), 1000.0f);
    EXPECT_EQ(f.coefficients().b0, 0.0f); // nothing designed yet
    f.samplerate(kRate);
    EXPECT_NE(f.coefficients().b0, 0.0f);

    IIRFilter reference;
    reference.CreateBiquadIIR(0, 6.0f, 1000.0f, kRate, 1.0f);
    EXPECT_EQ(f.coefficients().b0, reference.coefficients().b0);
    EXPECT_EQ(f.coefficients().a2, reference.coefficients().a2);
}

} // namespace
} // namespace mirabend::test
