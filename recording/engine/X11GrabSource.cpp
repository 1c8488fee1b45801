#include "recording/engine/X11GrabSource.h"

#include <chrono>
#include <thread>

namespace mirabend {

RecorderFailure X11GrabSource::open(const std::string& display, const CaptureTarget& target, int fpsNum,
                                    int fpsDen) {
    DeviceInput::Options options = {
        {"framerate", std::to_string(fpsNum) + "/" + std::to_string(fpsDen)},
        {"draw_mouse", target.cursor ? "1" : "0"},
    };
    // For a window the region is the zoomed part of it, relative to the window.
    if (target.window != 0)
        options.push_back({"window_id", std::to_string(target.window)});
    options.push_back(
        {"video_size", std::to_string(target.region.width) + "x" + std::to_string(target.region.height)});
    options.push_back({"grab_x", std::to_string(target.region.left)});
    options.push_back({"grab_y", std::to_string(target.region.top)});
    std::string error;
    // The X server now and then refuses a connection right after another
    // client went away; a second try a moment later gets through.
    bool opened = false;
    for (int attempt = 0; attempt < 3 && !opened; ++attempt) {
        if (attempt)
            std::this_thread::sleep_for(std::chrono::milliseconds(150));
        opened = m_input.open("x11grab", display, options, error);
    }
    if (!opened)
        return {target.window ? RecorderError::WindowNotFound : RecorderError::DisplayUnavailable, error};
    const AVCodecParameters* screen = m_input.parameters();
    m_width = screen->width;
    m_height = screen->height;
    if (screen->format != AV_PIX_FMT_BGR0)
        return {RecorderError::DisplayUnavailable,
                "the display " + display + " is not a 24/32-bit true colour screen"};
    return {};
}

int X11GrabSource::read(ScreenGrab& grab, Want) {
    PacketPtr packet = makePacket();
    const int ret = packet ? m_input.read(packet.get()) : AVERROR(ENOMEM);
    if (ret < 0)
        return ret;
    grab.stamp = m_input.stampOf(packet.get());
    grab.bands.clear();
    grab.pixels.reset();
    // A short picture (the window shrank) is skipped.
    if (packet->size < std::int64_t(m_width) * 4 * m_height)
        return AVERROR(EAGAIN);
    grab.bands.push_back({0, m_height});
    grab.pixels = std::move(packet);
    return 0;
}

} // namespace mirabend
