#include "audio/core/IIRFilter.h"

#include "support/WavFile.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace mirabend::test {
namespace {

constexpr int kRate = 44100;

std::vector<std::int16_t> tone(double frequency, std::size_t count, double amplitude) {
    return sine(frequency, kRate, 1, count, amplitude);
}

// Peak amplitude over the second half, after the filter has settled.
double settledPeak(const std::vector<std::int16_t>& s) {
    int peak = 0;
    for (std::size_t i = s.size() / 2; i < s.size(); ++i)
        peak = std::max(peak, std::abs(static_cast<int>(s[i])));
    return peak;
}

TEST(IIRFilter, EachTypePassesAndStopsWhereItShould) {
    const struct {
        int type;
        float gain;
        double frequency; // of the test tone; corner / centre at 1 kHz
        double minRatio, maxRatio;
    } rows[] = {
        {IIRFilter::Peaking, 6.0f, 1000.0, 1.98, 2.02},  {IIRFilter::Peaking, -6.0f, 1000.0, 0.496, 0.506},
        {IIRFilter::Peaking, 12.0f, 1000.0, 3.94, 4.02}, {IIRFilter::LowPass, 0, 100.0, 0.98, 1.02},
        {IIRFilter::LowPass, 0, 15000.0, 0.0, 0.02},     {IIRFilter::HighPass, 0, 15000.0, 0.98, 1.02},
        {IIRFilter::HighPass, 0, 50.0, 0.0, 0.01},       {IIRFilter::BandPass, 0, 1000.0, 0.99, 1.01},
        {IIRFilter::BandPass, 0, 15000.0, 0.0, 0.1},
    };
    for (const auto& row : rows) {
        IIRFilter f;
        f.CreateBiquadIIR(row.type, row.gain, 1000.0f, kRate, 1.0f);
        EXPECT_EQ(f.IIRType(), row.type);
        std::vector<std::int16_t> s = tone(row.frequency, 8820, 4000.0);
        f.ProcessSamples_16bit(s);
        const double ratio = settledPeak(s) / 4000.0;
        EXPECT_GE(ratio, row.minRatio)
            << "type " << row.type << " gain " << row.gain << " at " << row.frequency;
        EXPECT_LE(ratio, row.maxRatio)
            << "type " << row.type << " gain " << row.gain << " at " << row.frequency;
    }
}

TEST(IIRFilter, ClipsAtFullScaleInBothSampleWidths) {
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

    // Eight-bit samples are centred on 128.
    IIRFilter low;
    low.CreateBiquadIIR(IIRFilter::LowPass, 0.0f, 2000.0f, 8000, 1.0f);
    std::vector<std::uint8_t> silence(100, 128);
    low.ProcessSamples_8bit(silence);
    EXPECT_EQ(silence, std::vector<std::uint8_t>(100, 128));
    IIRFilter loud;
    loud.CreateBiquadIIR(IIRFilter::Peaking, 12.0f, 1000.0f, 8000, 1.0f);
    std::vector<std::uint8_t> bytes(800);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(std::lround(128 + 120 * std::sin(2 * M_PI * 1000.0 * i / 8000)));
    loud.ProcessSamples_8bit(bytes);
    EXPECT_EQ(*std::max_element(bytes.begin(), bytes.end()), 255);
    EXPECT_EQ(*std::min_element(bytes.begin(), bytes.end()), 0);

    // Disabled, nothing changes; empty input is harmless.
    loud.Enabled(false);
    std::vector<std::int16_t> kept = tone(5000.0, 256, 10000.0);
    const std::vector<std::int16_t> original = kept;
    loud.ProcessSamples_16bit(kept);
    EXPECT_EQ(kept, original);
    std::vector<std::uint8_t> keptBytes = {0, 17, 255};
    loud.ProcessSamples_8bit(keptBytes);
    EXPECT_EQ(keptBytes, (std::vector<std::uint8_t>{0, 17, 255}));
    loud.Enabled(true);
    loud.ProcessSamples_16bit(nullptr, 0);
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
    EXPECT_EQ(f.coefficients().b0, 0.0f); // nothing designed yet
    f.samplerate(kRate);
    IIRFilter reference;
    reference.CreateBiquadIIR(0, 6.0f, 1000.0f, kRate, 1.0f);
    EXPECT_EQ(f.coefficients().b0, reference.coefficients().b0);
    EXPECT_EQ(f.coefficients().a2, reference.coefficients().a2);
}

} // namespace
} // namespace mirabend::test
