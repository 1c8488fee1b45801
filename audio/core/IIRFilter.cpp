#include "audio/core/IIRFilter.h"

#include <cmath>

namespace mirabend {

namespace {

constexpr float kTwoPi = 6.2831855f;
constexpr float kLn2 = 0.6931472f;

// Round half to even, as the sample write-back requires (lrintf under the
// default rounding mode).
inline long roundEven(float v) {
    return std::lrintf(v);
}

} // namespace

void IIRFilter::Bandwidth(float octaves) {
    m_bandwidth = octaves;
    if (m_samplerate >= 1)
        design();
}

void IIRFilter::GainDB(float db) {
    m_gainDB = db;
    if (m_samplerate >= 1)
        design();
}

void IIRFilter::Frequency(float hz) {
    m_frequency = hz;
    if (m_samplerate >= 1)
        design();
}

void IIRFilter::samplerate(std::int32_t hz) {
    m_samplerate = hz;
    if (m_samplerate >= 1)
        design();
}

void IIRFilter::CreateBiquadIIR(std::int32_t type, float gainDB, float frequency, std::int32_t rate,
                                float bandwidth) {
    m_type = type;
    m_gainDB = gainDB;
    m_frequency = frequency;
    m_samplerate = rate;
    m_bandwidth = bandwidth;
    design();
}

void IIRFilter::design() {
    const float a = std::pow(10.0f, m_gainDB / 40.0f);
    const float omega = kTwoPi * m_frequency / static_cast<float>(m_samplerate);
    const float sn = std::sin(omega);
    const float cs = std::cos(omega);
    const float arg = kLn2 / 2.0f * m_bandwidth * omega / sn;
    const float sinh = (std::exp(arg) - std::exp(-arg)) / 2.0f;
    const float alpha = sn * sinh;

    float b0 = 0, b1 = 0, b2 = 0, a0 = 0, a1 = 0, a2 = 0;
    switch (m_type) {
    case LowPass:
        b0 = (1 - cs) / 2;
        b1 = 1 - cs;
        b2 = (1 - cs) / 2;
        a0 = 1 + alpha;
        a1 = -2 * cs;
        a2 = 1 - alpha;
        break;
    case HighPass:
        b0 = (1 + cs) / 2;
        b1 = -(1 + cs);
        b2 = (1 + cs) / 2;
        a0 = 1 + alpha;
        a1 = -2 * cs;
        a2 = 1 - alpha;
        break;
    case BandPass:
        b0 = alpha;
        b1 = 0;
        b2 = -alpha;
        a0 = 1 + alpha;
        a1 = -2 * cs;
        a2 = 1 - alpha;
        break;
    case Peaking:
        b0 = 1 + alpha * a;
        b1 = -2 * cs;
        b2 = 1 - alpha * a;
        a0 = 1 + alpha / a;
        a1 = -2 * cs;
        a2 = 1 - alpha / a;
        break;
    default:
        break; // undefined types leave everything at 0
    }
    if (a0 != 0) {
        m_b0 = b0 / a0;
        m_b1 = b1 / a0;
        m_b2 = b2 / a0;
        m_a1 = a1 / a0;
        m_a2 = a2 / a0;
    } else {
        m_b0 = m_b1 = m_b2 = m_a1 = m_a2 = 0;
    }
    m_x1 = m_x2 = m_y1 = m_y2 = 0;
}

inline float IIRFilter::step(float x) {
    const float y = m_b0 * x + m_b1 * m_x1 + m_b2 * m_x2 - m_a1 * m_y1 - m_a2 * m_y2;
    m_x2 = m_x1;
    m_x1 = x;
    m_y2 = m_y1;
    m_y1 = y;
    return y;
}

void IIRFilter::ProcessSamples_8bit(std::uint8_t* samples, std::size_t count) {
    if (!m_enabled || !samples)
        return;
    for (std::size_t i = 0; i < count; ++i) {
        const float y = step((static_cast<float>(samples[i]) - 128.0f) / 127.0f);
        if (y > 1)
            samples[i] = 255;
        else if (y > -1)
            samples[i] = static_cast<std::uint8_t>(roundEven(y * 127.0f + 128.0f));
        else
            samples[i] = 0;
    }
}

void IIRFilter::ProcessSamples_16bit(std::int16_t* samples, std::size_t count) {
    if (!m_enabled || !samples)
        return;
    for (std::size_t i = 0; i < count; ++i) {
        const float y = step(static_cast<float>(samples[i]) / 32767.0f);
        if (y > 1)
            samples[i] = 32767;
        else if (y > -1)
            samples[i] = static_cast<std::int16_t>(roundEven(y * 32767.0f));
        else
            samples[i] = -32768;
    }
}

} // namespace mirabend
