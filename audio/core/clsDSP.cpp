#include "audio/core/clsDSP.h"

#include "audio/core/AudioError.h"

#include <cmath>

namespace mirabend {

namespace {

constexpr float kPi = 3.1415927f;
constexpr std::int32_t kMaxBands = 10;

inline std::int16_t clipRound(float v) {
    if (v > 32767.0f)
        return 32767;
    if (v > -32768.0f)
        return static_cast<std::int16_t>(std::lrintf(v));
    return -32768;
}

} // namespace

clsDSP::clsDSP() {
    EqualizerBands(7);
}

void clsDSP::samplerate(std::int32_t hz) {
    if (hz < 1 || hz > 96000)
        throw AudioError(audio_error::kInvalidProperty, "invalid samplerate");
    m_samplerate = hz;
    prepareAll();
}

void clsDSP::Channels(std::int16_t channels) {
    if (channels < 1 || channels > 2)
        throw AudioError(audio_error::kInvalidProperty, "invalid channels");
    m_channels = channels;
    prepareAll();
}

void clsDSP::EchoLength(std::int32_t milliseconds) {
    m_echoLength = milliseconds;
    prepareEcho();
}

void clsDSP::EchoAmp(float factor) {
    m_echoAmp = factor > 0.9f ? 0.9f : factor;
    prepareEcho();
}

void clsDSP::PhaseShiftDry(float value) {
    m_dry = value;
    preparePhaser();
}

void clsDSP::PhaseShiftWet(float value) {
    m_wet = value;
    preparePhaser();
}

void clsDSP::PhaseShiftFeedback(float value) {
    m_feedback = value;
    preparePhaser();
}

void clsDSP::PhaseShiftSweepRate(float value) {
    m_sweepRate = value;
    preparePhaser();
}

void clsDSP::PhaseShiftSweepRange(float octaves) {
    m_sweepRange = octaves;
    preparePhaser();
}

void clsDSP::PhaseShiftFrequency(float hz) {
    m_sweepFrequency = hz;
    preparePhaser();
}

void clsDSP::EqualizerBands(std::int32_t count) {
    if (count < 1 || count > kMaxBands)
        throw AudioError(audio_error::kInvalidProperty, "Out Of Bounds!");
    m_bands.assign(static_cast<std::size_t>(count), IIRFilter());
    m_gains.assign(static_cast<std::size_t>(count), 0.0f);
    designBands();
}

void clsDSP::checkBand(std::int32_t band) const {
    if (band < 0 || band >= EqualizerBands())
        throw AudioError(audio_error::kSubscriptOutOfRange, "Subscript out of range");
}

float clsDSP::EqualizerBandGainDB(std::int32_t band) const {
    checkBand(band);
    return m_gains[static_cast<std::size_t>(band)];
}

void clsDSP::EqualizerBandGainDB(std::int32_t band, float db) {
    checkBand(band);
    m_gains[static_cast<std::size_t>(band)] = db;
    designBands();
}

std::int32_t clsDSP::EqualizerBandFrequency(std::int32_t band) const {
    checkBand(band);
    return static_cast<std::int32_t>(std::lrintf(m_bands[static_cast<std::size_t>(band)].Frequency()));
}

void clsDSP::prepareAll() {
    if (m_samplerate == 0 || m_channels == 0)
        return;
    prepareEcho();
    preparePhaser();
    designBands();
}

void clsDSP::prepareEcho() {
    if (m_samplerate == 0)
        return;
    const double length = std::nearbyint(m_samplerate / 1000.0 * m_echoLength);
    m_delay.assign(length > 0 ? static_cast<std::size_t>(length) : 0, 0);
    m_delayPos = 0;
    m_echoFactor = m_echoAmp;
}

void clsDSP::preparePhaser() {
    if (m_samplerate == 0)
        return;
    const float rate = static_cast<float>(m_samplerate);
    const float range = std::pow(2.0f, m_sweepRange);
    m_minPos = kPi * m_sweepFrequency / rate;
    m_maxPos = kPi * m_sweepFrequency * range / rate;
    m_sweepBase = std::pow(range, 2.0f * m_sweepRate / rate);
    m_sweepFactor = m_sweepBase;
    m_pos = m_minPos;
}

void clsDSP::designBands() {
    if (m_samplerate == 0)
        return;
    const std::int32_t n = EqualizerBands();
    const double fmax = std::nearbyint(m_samplerate / 3.0);
    const float bandwidth = static_cast<float>(std::log(fmax / 80.0) / 4.0);
    for (std::int32_t i = 0; i < n; ++i) {
        // A single band has no spacing to speak of; it sits in the middle of
        // the logarithmic range.
        const double position = n > 1 ? static_cast<double>(i) / (n - 1) : 0.5;
        const double frequency = 80.0 * std::pow(fmax / 80.0, position);
        m_bands[static_cast<std::size_t>(i)].CreateBiquadIIR(
            IIRFilter::Peaking, m_gains[static_cast<std::size_t>(i)], static_cast<float>(frequency),
            m_samplerate, bandwidth);
    }
}

void clsDSP::ProcessSamples(std::int16_t* samples, std::size_t count) {
    if (m_samplerate == 0 || m_channels == 0 || !samples)
        return;
    if (m_effects & Amplify)
        amplify(samples, count);
    if (m_effects & Echo)
        echo(samples, count);
    if (m_effects & PhaseShifter)
        phaser(samples, count);
    if (m_effects & Equalizer) {
        for (IIRFilter& band : m_bands)
            band.ProcessSamples_16bit(samples, count);
    }
}

void clsDSP::amplify(std::int16_t* samples, std::size_t count) const {
    const float factor = std::pow(10.0f, m_amplifyDB / 20.0f);
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = clipRound(static_cast<float>(samples[i]) * factor);
}

void clsDSP::echo(std::int16_t* samples, std::size_t count) {
    if (m_delay.empty())
        return;
    const std::size_t length = m_delay.size();
    for (std::size_t i = 0; i < count; ++i) {
        std::int32_t out = static_cast<std::int32_t>(samples[i]) + m_delay[m_delayPos];
        if (out > 32767)
            out = 32767;
        else if (out < -32768)
            out = -32768;
        samples[i] = static_cast<std::int16_t>(out);
        m_delay[m_delayPos] = clipRound(static_cast<float>(out) * m_echoFactor);
        if (++m_delayPos >= length)
            m_delayPos = 0;
    }
}

void clsDSP::phaser(std::int16_t* samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const float x = static_cast<float>(samples[i]) / 32767.0f;
        const float c = (1.0f - m_pos) / (1.0f + m_pos);
        float in = x + m_feedback * m_stageOut[3];
        for (int s = 0; s < 4; ++s) {
            const float y = (in + m_stageOut[s]) * c - m_stageIn[s];
            m_stageIn[s] = in;
            m_stageOut[s] = y;
            in = y;
        }
        const float result = m_stageOut[3] * m_wet + x * m_dry;
        m_pos *= m_sweepFactor;
        if (m_pos > m_maxPos)
            m_sweepFactor = 1.0f / m_sweepBase;
        else if (m_pos < m_minPos)
            m_sweepFactor = m_sweepBase;
        samples[i] = clipRound(result * 32767.0f);
    }
}

} // namespace mirabend
