#include "recording/ui/hwaccel/HardwareEncoders.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/buffer.h>
#include <libavutil/hwcontext.h>
#include <libavutil/log.h>
}

#include <algorithm>
#include <map>
#include <memory>

namespace mirabend {

namespace {

struct BufferUnref {
    void operator()(AVBufferRef* ref) const { av_buffer_unref(&ref); }
};

// The device an encoder runs on: from its hardware configurations, else from
// the suffix of its name (some wrappers announce no configuration).
std::string deviceOf(const AVCodec* codec) {
    for (int i = 0;; ++i) {
        const AVCodecHWConfig* config = avcodec_get_hw_config(codec, i);
        if (!config)
            break;
        if (config->device_type != AV_HWDEVICE_TYPE_NONE)
            return av_hwdevice_get_type_name(config->device_type);
    }
    const std::string name = codec->name;
    static const std::pair<const char*, const char*> kSuffixes[] = {
        {"_vaapi", "vaapi"},
        {"_nvenc", "cuda"},
        {"_qsv", "qsv"},
        {"_vulkan", "vulkan"},
        {"_v4l2m2m", ""},
        {"_amf", ""},
        {"_videotoolbox", "videotoolbox"},
    };
    for (const auto& [suffix, device] : kSuffixes) {
        const std::string s = suffix;
        if (name.size() > s.size() && name.compare(name.size() - s.size(), s.size(), s) == 0)
            return device;
    }
    return {};
}

bool isHardware(const AVCodec* codec) {
    if (codec->capabilities & AV_CODEC_CAP_HARDWARE)
        return true;
    const std::string name = codec->name;
    for (const char* tag : {"_vaapi", "_nvenc", "_qsv", "_vulkan", "_v4l2m2m", "_amf"}) {
        if (name.find(tag) != std::string::npos)
            return true;
    }
    return false;
}

bool deviceOpens(const std::string& device, std::map<std::string, bool>& cache) {
    if (device.empty())
        return false;
    const auto found = cache.find(device);
    if (found != cache.end())
        return found->second;
    bool opens = false;
    const AVHWDeviceType type = av_hwdevice_find_type_by_name(device.c_str());
    if (type != AV_HWDEVICE_TYPE_NONE) {
        AVBufferRef* raw = nullptr;
        opens = av_hwdevice_ctx_create(&raw, type, nullptr, nullptr, 0) >= 0;
        std::unique_ptr<AVBufferRef, BufferUnref> owned(raw);
    }
    cache[device] = opens;
    return opens;
}

} // namespace

std::vector<HardwareEncoder> hardwareEncoders() {
    std::vector<HardwareEncoder> result;
    std::map<std::string, bool> devices;
    // Opening a device that is not there is the normal case; keep libav quiet.
    const int logLevel = av_log_get_level();
    av_log_set_level(AV_LOG_QUIET);
    void* state = nullptr;
    while (const AVCodec* codec = av_codec_iterate(&state)) {
        if (!av_codec_is_encoder(codec) || codec->type != AVMEDIA_TYPE_VIDEO || !isHardware(codec))
            continue;
        HardwareEncoder encoder;
        encoder.name = codec->name;
        encoder.description = codec->long_name ? codec->long_name : "";
        encoder.device = deviceOf(codec);
        encoder.available = deviceOpens(encoder.device, devices);
        result.push_back(std::move(encoder));
    }
    av_log_set_level(logLevel);
    std::sort(result.begin(), result.end(),
              [](const HardwareEncoder& a, const HardwareEncoder& b) { return a.name < b.name; });
    return result;
}

std::string describeHardwareEncoders(const std::vector<HardwareEncoder>& encoders) {
    if (encoders.empty())
        return "This FFmpeg has no hardware video encoders built in.\n";
    std::string text;
    for (const HardwareEncoder& e : encoders) {
        text += e.name;
        if (!e.device.empty())
            text += "  (" + e.device + ")";
        text += e.available ? "  available" : "  not available";
        text += "\n";
    }
    return text;
}

} // namespace mirabend
