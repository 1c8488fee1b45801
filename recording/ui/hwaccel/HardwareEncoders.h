#pragma once
// Which hardware video encoders this machine offers: every encoder that
// libavcodec was built with and that runs on a hardware device (VA-API,
// NVENC/CUDA, Quick Sync, V4L2 memory-to-memory, Vulkan), and whether the
// device it needs can be opened here.
//
// Thread contract: any thread; no shared state.

#include <string>
#include <vector>

namespace mirabend {

struct HardwareEncoder {
    std::string name;        // "h264_vaapi"
    std::string description; // libavcodec's long name
    std::string device;      // "vaapi", "cuda", ... (empty when the encoder needs none)
    bool available = false;  // the device could be opened on this machine
};

// All hardware encoders, sorted by name.
std::vector<HardwareEncoder> hardwareEncoders();

// One line per encoder, "h264_vaapi  (vaapi)  available" / "not available";
// a single explaining line when there are none.
std::string describeHardwareEncoders(const std::vector<HardwareEncoder>& encoders);

} // namespace mirabend
