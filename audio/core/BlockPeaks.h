#pragma once
// Per-channel peaks of a block of interleaved 16-bit samples, for the level
// meters (full scale 32768).
//
// Thread contract: a free function; any thread.

#include <cstddef>
#include <cstdint>

namespace mirabend {

struct ChannelPeaks {
    std::int32_t left = 0;  // largest |sample| of channel 0 (0..32768)
    std::int32_t right = 0; // of channel 1; equals left for mono
};

ChannelPeaks blockPeaks(const std::int16_t* samples, std::size_t count, int channels);

} // namespace mirabend
