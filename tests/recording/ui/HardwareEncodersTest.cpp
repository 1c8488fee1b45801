// The acceleration helper's probe: only hardware video encoders, each named
// once, and a listing that says for each whether this machine can use it.
#include "recording/ui/hwaccel/HardwareEncoders.h"

#include <gtest/gtest.h>
#include <set>

namespace mirabend {
namespace {

TEST(HardwareEncoders, ListsOnlyHardwareEncodersSortedAndOnce) {
    const auto encoders = hardwareEncoders();
    std::set<std::string> names;
    std::string previous;
    for (const auto& e : encoders) {
        EXPECT_TRUE(names.insert(e.name).second) << e.name;
        EXPECT_LE(previous, e.name);
        previous = e.name;
        // Software encoders never appear.
        EXPECT_NE(e.name, "libx264");
        EXPECT_NE(e.name, "mpeg4");
        if (e.device.empty()) {
            EXPECT_FALSE(e.available) << e.name;
        }
    }
}

TEST(HardwareEncoders, DescriptionSaysWhatIsAvailable) {
    EXPECT_EQ(describeHardwareEncoders({}), "This FFmpeg has no hardware video encoders built in.\n");
    const std::vector<HardwareEncoder> two = {{"h264_vaapi", "VA-API H.264", "vaapi", true},
                                              {"h264_v4l2m2m", "V4L2 mem2mem", "", false}};
    EXPECT_EQ(describeHardwareEncoders(two), "h264_vaapi  (vaapi)  available\nh264_v4l2m2m  not available\n");
}

} // namespace
} // namespace mirabend
