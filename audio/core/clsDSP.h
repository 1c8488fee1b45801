#pragma once
// The recorder's effects, applied in place to each captured block of 16-bit
// samples in a fixed order: amplify (bit 4), echo (bit 1), phase shifter
// (bit 2), equaliser (bit 8). Arithmetic is single precision.
//
// All effects treat a block as one stream: in stereo, left and right samples
// alternate through the same echo line, the same phaser stages and the same
// filter memories. The echo line is sample rate / 1000 x EchoLength samples
// long whatever the channel count, so in stereo it sounds after half the
// time.
//
// Invalid samplerate, Channels and EqualizerBands values raise AudioError
// 32000 and leave the previous value in place.
//
// Thread contract: one thread (the recorder's window thread) uses an object.

#include "audio/core/IIRFilter.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace mirabend {

class clsDSP {
public:
    enum Effect : std::int32_t { Echo = 1, PhaseShifter = 2, Amplify = 4, Equalizer = 8 };

    clsDSP();

    std::int32_t samplerate() const { return m_samplerate; }
    void samplerate(std::int32_t hz); // 1..96000, "invalid samplerate"
    std::int16_t Channels() const { return m_channels; }
    void Channels(std::int16_t channels); // 1 or 2, "invalid channels"

    std::int32_t EffectsUsed() const { return m_effects; }
    void EffectsUsed(std::int32_t bits) { m_effects = bits; }

    float AmplifyDB() const { return m_amplifyDB; }
    void AmplifyDB(float db) { m_amplifyDB = db; }

    std::int32_t EchoLength() const { return m_echoLength; }
    void EchoLength(std::int32_t milliseconds);
    float EchoAmp() const { return m_echoAmp; }
    void EchoAmp(float factor); // stored as at most 0.9

    float PhaseShiftDry() const { return m_dry; }
    void PhaseShiftDry(float value);
    float PhaseShiftWet() const { return m_wet; }
    void PhaseShiftWet(float value);
    float PhaseShiftFeedback() const { return m_feedback; }
    void PhaseShiftFeedback(float value);
    float PhaseShiftSweepRate() const { return m_sweepRate; }
    void PhaseShiftSweepRate(float value);
    float PhaseShiftSweepRange() const { return m_sweepRange; }
    void PhaseShiftSweepRange(float octaves);
    float PhaseShiftFrequency() const { return m_sweepFrequency; }
    void PhaseShiftFrequency(float hz);

    std::int32_t EqualizerBands() const { return static_cast<std::int32_t>(m_bands.size()); }
    void EqualizerBands(std::int32_t count); // 1..10, "Out Of Bounds!"
    // Band index is 0-based; a bad index raises AudioError 9.
    float EqualizerBandGainDB(std::int32_t band) const;
    void EqualizerBandGainDB(std::int32_t band, float db);
    std::int32_t EqualizerBandFrequency(std::int32_t band) const;

    void ProcessSamples(std::int16_t* samples, std::size_t count);
    void ProcessSamples(std::vector<std::int16_t>& samples) {
        ProcessSamples(samples.data(), samples.size());
    }

private:
    void prepareAll();
    void prepareEcho();
    void preparePhaser();
    void designBands();
    void amplify(std::int16_t* samples, std::size_t count) const;
    void echo(std::int16_t* samples, std::size_t count);
    void phaser(std::int16_t* samples, std::size_t count);
    void checkBand(std::int32_t band) const;

    std::int32_t m_effects = 0;

    std::vector<std::int16_t> m_delay;
    std::size_t m_delayPos = 0;
    float m_echoFactor = 0;
    std::int32_t m_echoLength = 100;
    float m_echoAmp = 0.4f;

    float m_amplifyDB = 3;

    float m_minPos = 0, m_maxPos = 0, m_pos = 0, m_sweepFactor = 0, m_sweepBase = 0;
    float m_stageIn[4] = {0, 0, 0, 0};
    float m_stageOut[4] = {0, 0, 0, 0};
    float m_dry = 1.0f;
    float m_wet = 1.0f;
    float m_feedback = 0.5f;
    float m_sweepRate = 1.0f;
    float m_sweepRange = 4.0f;
    float m_sweepFrequency = 100.0f;

    std::vector<float> m_gains;
    std::vector<IIRFilter> m_bands;

    std::int32_t m_samplerate = 0;
    std::int16_t m_channels = 0;
};

} // namespace mirabend
