#include "audio/core/BlockPeaks.h"

#include <cstdlib>

namespace mirabend {

ChannelPeaks blockPeaks(const std::int16_t* samples, std::size_t count, int channels) {
    ChannelPeaks peaks;
    if (!samples)
        return peaks;
    const std::size_t step = channels == 2 ? 2 : 1;
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t v = std::abs(static_cast<std::int32_t>(samples[i]));
        std::int32_t& peak = (step == 2 && (i & 1)) ? peaks.right : peaks.left;
        if (v > peak)
            peak = v;
    }
    if (step == 1)
        peaks.right = peaks.left;
    return peaks;
}

} // namespace mirabend
