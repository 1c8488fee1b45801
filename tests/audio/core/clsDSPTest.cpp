#include "audio/core/clsDSP.h"

#include "audio/core/AudioError.h"

#include <cmath>
#include <complex>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace mirabend::test {
namespace {

clsDSP prepared(int rate, short channels, int effects) {
    clsDSP dsp;
    dsp.samplerate(rate);
    dsp.Channels(channels);
    dsp.EffectsUsed(effects);
    return dsp;
}

TEST(clsDSP, InvalidPropertiesRaiseTheirErrorsAndKeepThePreviousValue) {
    clsDSP dsp;
    dsp.samplerate(96000);
    dsp.Channels(2);
    dsp.EqualizerBands(10);
    const struct {
        std::function<void()> set;
        int number;
        const char* text;
    } rows[] = {
        {[&] { dsp.samplerate(96001); }, 32000, "invalid samplerate"},
        {[&] { dsp.samplerate(0); }, 32000, "invalid samplerate"},
        {[&] { dsp.Channels(3); }, 32000, "invalid channels"},
        {[&] { dsp.Channels(0); }, 32000, "invalid channels"},
        {[&] { dsp.EqualizerBands(11); }, 32000, "Out Of Bounds!"},
        {[&] { dsp.EqualizerBands(0); }, 32000, "Out Of Bounds!"},
        {[&] { dsp.EqualizerBandGainDB(10, 3.0f); }, 9, "Subscript out of range"},
    };
    for (const auto& row : rows) {
        try {
            row.set();
            ADD_FAILURE() << "expected error " << row.number << " \"" << row.text << "\"";
        } catch (const AudioError& e) {
            EXPECT_EQ(e.number(), row.number);
            EXPECT_STREQ(e.what(), row.text);
        }
    }
    EXPECT_EQ(dsp.samplerate(), 96000);
    EXPECT_EQ(dsp.Channels(), 2);
    EXPECT_EQ(dsp.EqualizerBands(), 10);
    dsp.EchoAmp(1.5f);
    EXPECT_FLOAT_EQ(dsp.EchoAmp(), 0.9f);

    // Without effects, or before rate and channels, nothing changes.
    std::vector<std::int16_t> block = {1, -2, 30000, -30000, 0, 77};
    const std::vector<std::int16_t> original = block;
    clsDSP idle = prepared(44100, 2, 0);
    idle.ProcessSamples(block);
    clsDSP unprepared;
    unprepared.EffectsUsed(15);
    unprepared.ProcessSamples(block);
    EXPECT_EQ(block, original);
}

TEST(clsDSP, BandsAreSpacedLogarithmicallyFrom80HzToAThirdOfTheRate) {
    clsDSP dsp = prepared(44100, 2, 0);
    ASSERT_EQ(dsp.EqualizerBands(), 7);
    EXPECT_EQ(dsp.EqualizerBandFrequency(0), 80);
    EXPECT_EQ(dsp.EqualizerBandFrequency(6), 14700);
    const double step = std::pow(14700.0 / 80.0, 1.0 / 6.0);
    for (int i = 1; i < 6; ++i)
        EXPECT_NEAR(dsp.EqualizerBandFrequency(i), 80.0 * std::pow(step, i), 1.0) << "band " << i;

    dsp.EqualizerBands(1); // a single band sits mid-range
    EXPECT_EQ(dsp.EqualizerBandFrequency(0), std::lround(std::sqrt(80.0 * 14700.0)));
}

TEST(clsDSP, AmplifyScalesRoundsAndClips) {
    clsDSP dsp = prepared(44100, 1, clsDSP::Amplify);
    dsp.AmplifyDB(6.0f);
    const float factor = std::pow(10.0f, 6.0f / 20.0f);
    std::vector<std::int16_t> block = {1000, -1000, 3, 20000, -20000, 0};
    dsp.ProcessSamples(block);
    EXPECT_EQ(block[0], std::lrintf(1000 * factor));
    EXPECT_EQ(block[1], std::lrintf(-1000 * factor));
    EXPECT_EQ(block[2], 6);
    EXPECT_EQ(block[3], 32767);
    EXPECT_EQ(block[4], -32768);
    EXPECT_EQ(block[5], 0);
}

TEST(clsDSP, EchoImpulseResponseDecaysByTheFactorEveryDelay) {
    // 1000 Hz and 10 ms give a delay line of 10 samples.
    clsDSP dsp = prepared(1000, 1, clsDSP::Echo);
    dsp.EchoLength(10);
    std::vector<std::int16_t> first(25, 0);
    first[0] = 10000;
    dsp.ProcessSamples(first);
    std::vector<std::int16_t> second(25, 0); // the tail carries into the next block
    dsp.ProcessSamples(second);

    std::vector<std::int16_t> out = first;
    out.insert(out.end(), second.begin(), second.end());
    float expected = 10000;
    for (std::size_t i = 0; i < out.size(); ++i) {
        if (i % 10 == 0) {
            EXPECT_EQ(out[i], std::lrintf(expected)) << "at " << i;
            expected = static_cast<float>(std::lrintf(expected * 0.4f));
        } else {
            EXPECT_EQ(out[i], 0) << "at " << i;
        }
    }

    // In stereo the line keeps its length in samples: the echo comes back
    // after 10 interleaved samples, i.e. 5 frames.
    clsDSP stereo = prepared(1000, 2, clsDSP::Echo);
    stereo.EchoLength(10);
    std::vector<std::int16_t> s(12, 0);
    s[0] = 10000;
    stereo.ProcessSamples(s);
    EXPECT_EQ(s[10], 4000);
}

TEST(clsDSP, AmplifyRunsBeforeEchoAndChangingTheEchoDropsItsTail) {
    // Amplified first, the impulse clips at 32767 and that is what echoes.
    clsDSP dsp = prepared(1000, 1, clsDSP::Amplify | clsDSP::Echo);
    dsp.AmplifyDB(6.0f);
    dsp.EchoLength(10);
    std::vector<std::int16_t> block(15, 0);
    block[0] = 20000;
    dsp.ProcessSamples(block);
    EXPECT_EQ(block[0], 32767);
    EXPECT_EQ(block[10], std::lrintf(32767 * 0.4f));
    dsp.EchoAmp(0.4f);
    std::vector<std::int16_t> next(20, 0);
    dsp.ProcessSamples(next);
    EXPECT_EQ(next, std::vector<std::int16_t>(20, 0));
}

TEST(clsDSP, PhaserStagesAreAllPassWithTheDesignedPhase) {
    // Without sweep, dry signal and feedback the phaser is four first-order
    // all-pass stages with the fixed coefficient c at the minimum position:
    // H(z) = ((c - z^-1) / (1 - c z^-1))^4, magnitude 1.
    const int rate = 44100;
    clsDSP dsp = prepared(rate, 1, clsDSP::PhaseShifter);
    dsp.PhaseShiftSweepRate(0.0f);
    dsp.PhaseShiftDry(0.0f);
    dsp.PhaseShiftWet(1.0f);
    dsp.PhaseShiftFeedback(0.0f);
    dsp.PhaseShiftFrequency(400.0f);

    const float position = 3.1415927f * 400.0f / rate;
    const double c = (1.0 - position) / (1.0 + position);
    const double frequency = 1000.0;
    const double w = 2 * M_PI * frequency / rate;
    const std::complex<double> z1 = std::polar(1.0, -w);
    const std::complex<double> stage = (c - z1) / (1.0 - c * z1);
    const std::complex<double> h = std::pow(stage, 4);
    EXPECT_NEAR(std::abs(h), 1.0, 1e-9);

    const double amplitude = 10000.0;
    std::vector<std::int16_t> block(8820);
    for (std::size_t n = 0; n < block.size(); ++n)
        block[n] = static_cast<std::int16_t>(std::lround(amplitude * std::sin(w * n)));
    dsp.ProcessSamples(block);
    for (std::size_t n = 4410; n < block.size(); ++n) {
        const double expected = amplitude * std::abs(h) * std::sin(w * n + std::arg(h));
        ASSERT_NEAR(block[n], expected, 4.0) << "at " << n;
    }
}

TEST(clsDSP, EqualizerIsTransparentAtZeroGainAndBoostsItsBand) {
    clsDSP dsp = prepared(44100, 1, clsDSP::Equalizer);
    std::vector<std::int16_t> x(8820);
    const double f3 = dsp.EqualizerBandFrequency(3);
    for (std::size_t n = 0; n < x.size(); ++n)
        x[n] = static_cast<std::int16_t>(std::lround(2000 * std::sin(2 * M_PI * f3 * n / 44100)));
    std::vector<std::int16_t> y = x;
    dsp.ProcessSamples(y);
    for (std::size_t n = 0; n < x.size(); ++n)
        ASSERT_NEAR(y[n], x[n], 1) << "at " << n;

    dsp.EqualizerBandGainDB(3, 12.0f);
    EXPECT_FLOAT_EQ(dsp.EqualizerBandGainDB(3), 12.0f);
    y = x;
    dsp.ProcessSamples(y);
    int peak = 0;
    for (std::size_t n = y.size() / 2; n < y.size(); ++n)
        peak = std::max(peak, std::abs(static_cast<int>(y[n])));
    EXPECT_GT(peak, 2000 * 3.5); // about +12 dB, give or take the neighbours
}

} // namespace
} // namespace mirabend::test
