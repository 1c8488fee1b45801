#pragma once
// Feeds an encoder block after block without losing sound. Block formats
// (IMA and Microsoft ADPCM, GSM) convert only whole blocks of their input and
// leave the rest; GaplessFeed keeps that rest and puts it in front of the
// next block, so a recording in such a format is as long as one in PCM.
//
// Thread contract: used by the one thread that drives the encoder.

#include "audio/core/Encoder.h"

#include <cstdint>
#include <vector>

namespace mirabend {

class GaplessFeed {
public:
    explicit GaplessFeed(Encoder& encoder) : m_encoder(encoder) {}

    // Encodes the bytes left from earlier calls followed by `byteCount`
    // bytes at `data`; returns the encoder's result code.
    std::int32_t feed(const void* data, std::int32_t byteCount);
    // Forgets the rest (at the start of a new recording).
    void reset() { m_pending.clear(); }
    std::size_t pendingBytes() const { return m_pending.size(); }

private:
    Encoder& m_encoder;
    std::vector<std::uint8_t> m_pending;
};

} // namespace mirabend
