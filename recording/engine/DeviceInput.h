#pragma once
// One libavdevice input (x11grab, pulse, alsa) opened with its options and
// read packet by packet. Reading can be cut short from another thread.
//
// Thread contract: open() and read() on the thread that owns the input;
// interrupt() from any thread.

#include "recording/engine/FfmpegHandles.h"

#include <atomic>
#include <string>
#include <utility>
#include <vector>

namespace mirabend {

class DeviceInput {
public:
    using Options = std::vector<std::pair<std::string, std::string>>;

    // Opens `url` with the input format `format`; on failure returns false
    // and says why in `error`.
    bool open(const char* format, const std::string& url, const Options& options, std::string& error);
    // av_read_frame(); packets carry stamps in microseconds of av_gettime().
    int read(AVPacket* packet);
    void interrupt() { m_interrupted = true; }
    void close() { m_context.reset(); }
    bool isOpen() const { return m_context != nullptr; }
    const AVCodecParameters* parameters() const;
    // A packet's stamp in microseconds.
    std::int64_t stampOf(const AVPacket* packet) const;

private:
    static int onInterrupt(void* self);
    InputContextPtr m_context;
    std::atomic<bool> m_interrupted{false};
};

// The X screen: its size and the size of a window on it.
struct X11Geometry {
    static bool screenSize(const std::string& display, int& width, int& height);
    static bool windowSize(const std::string& display, std::uint32_t window, int& width, int& height);
};

} // namespace mirabend
