#include "shell/camera/AnalogueInput.h"

#include <array>
#include <linux/videodev2.h>

namespace mirabend {

namespace {

// In the order of the Camera Settings bar's standards list.
constexpr std::array<std::uint64_t, 20> kStandards = {
    0,                  // Digital sensor
    V4L2_STD_NTSC_M,    // NTSC (M), 7.5 IRE black
    V4L2_STD_NTSC_M_JP, // NTSC (M), 0 IRE black (Japan)
    V4L2_STD_NTSC_443,  // NTSC-433
    V4L2_STD_PAL_B,     // PAL B
    V4L2_STD_PAL_D,     // PAL D
    V4L2_STD_PAL_H,     // PAL H
    V4L2_STD_PAL_I,     // PAL I
    V4L2_STD_PAL_M,     // PAL M
    V4L2_STD_PAL_N,     // PAL N
    V4L2_STD_PAL_60,    // PAL-60
    V4L2_STD_SECAM_B,   // SECAM B
    V4L2_STD_SECAM_D,   // SECAM D
    V4L2_STD_SECAM_G,   // SECAM G
    V4L2_STD_SECAM_H,   // SECAM H
    V4L2_STD_SECAM_K,   // SECAM K
    V4L2_STD_SECAM_K1,  // SECAM K1
    V4L2_STD_SECAM_L,   // SECAM L
    V4L2_STD_SECAM_LC,  // SECAM L1 (L prime)
    V4L2_STD_PAL_Nc,    // Combination (N), Argentina
};

} // namespace

std::uint64_t videoStandardId(int index) {
    if (index < 0 || index >= static_cast<int>(kStandards.size()))
        return 0;
    return kStandards[static_cast<std::size_t>(index)];
}

std::uint64_t applyStandard(AnalogueInput& input, int index) {
    const std::uint64_t standard = videoStandardId(index);
    if (standard == 0 || (input.supportedStandards() & standard) == 0)
        return 0;
    return input.setStandard(standard) ? standard : 0;
}

bool applyMute(AnalogueInput& input, bool muted) {
    return input.hasMute() && input.setMute(muted);
}

} // namespace mirabend
