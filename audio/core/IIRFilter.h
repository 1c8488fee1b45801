#pragma once
// One biquad section (low-pass, high-pass, band-pass, peaking equaliser)
// designed with the audio-EQ cookbook formulas in single precision and run
// in place over 8-bit unsigned or 16-bit signed samples.
//
// There is one filter memory per object: an interleaved stereo block runs
// left and right through the same memory. An owner that wants the channels
// filtered separately uses one object per channel. The memory carries over
// from block to block and is cleared by every redesign.
//
// Thread contract: one thread uses an object at a time.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace mirabend {

class IIRFilter {
public:
    enum Type : std::int32_t { LowPass = 0, HighPass = 1, BandPass = 2, Peaking = 3 };

    bool Enabled() const { return m_enabled; }
    void Enabled(bool value) { m_enabled = value; }

    // Every setter stores the value and redesigns when samplerate >= 1.
    float Bandwidth() const { return m_bandwidth; }
    void Bandwidth(float octaves);
    float GainDB() const { return m_gainDB; }
    void GainDB(float db);
    float Frequency() const { return m_frequency; }
    void Frequency(float hz);
    std::int32_t samplerate() const { return m_samplerate; }
    void samplerate(std::int32_t hz);

    std::int32_t IIRType() const { return m_type; }

    // Stores all five values and designs the filter (clearing its memory).
    void CreateBiquadIIR(std::int32_t type, float gainDB, float frequency, std::int32_t samplerate,
                         float bandwidth);

    void ProcessSamples_8bit(std::uint8_t* samples, std::size_t count);
    void ProcessSamples_16bit(std::int16_t* samples, std::size_t count);
    void ProcessSamples_8bit(std::vector<std::uint8_t>& samples) {
        ProcessSamples_8bit(samples.data(), samples.size());
    }
    void ProcessSamples_16bit(std::vector<std::int16_t>& samples) {
        ProcessSamples_16bit(samples.data(), samples.size());
    }

    // The normalised coefficients b0, b1, b2, a1, a2 (for inspection).
    struct Coefficients {
        float b0, b1, b2, a1, a2;
    };
    Coefficients coefficients() const { return {m_b0, m_b1, m_b2, m_a1, m_a2}; }

private:
    void design();
    float step(float x);

    float m_b0 = 0, m_b1 = 0, m_b2 = 0, m_a1 = 0, m_a2 = 0;
    float m_x1 = 0, m_x2 = 0, m_y1 = 0, m_y2 = 0;
    std::int32_t m_samplerate = 0;
    std::int32_t m_type = 0;
    float m_gainDB = 0;
    float m_frequency = 0;
    float m_bandwidth = 0;
    bool m_enabled = true;
};

} // namespace mirabend
