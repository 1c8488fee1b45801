#include "recording/engine/DeviceInput.h"

extern "C" {
#include <libavdevice/avdevice.h>
}

#include <cstdlib>
#include <mutex>
#include <xcb/xcb.h>

namespace mirabend {

namespace {

void registerDevices()
{
    static std::once_flag once;
    std::call_once(once, [] { avdevice_register_all(); });
}

struct ConnectionDeleter {
    void operator()(xcb_connection_t* c) const { xcb_disconnect(c); }
};
struct ReplyDeleter {
    void operator()(void* r) const { std::free(r); }
};
using Connection = std::unique_ptr<xcb_connection_t, ConnectionDeleter>;

Connection connect(const std::string& display, int& screenNumber)
{
    Connection c(xcb_connect(display.empty() ? nullptr : display.c_str(), &screenNumber));
    if (c && xcb_connection_has_error(c.get()))
        return nullptr;
    return c;
}

} // namespace

int DeviceInput::onInterrupt(void* self)
{
    return static_cast<DeviceInput*>(self)->m_interrupted ? 1 : 0;
}

bool DeviceInput::open(const char* format, const std::string& url, const Options& options, std::string& error)
{
    registerDevices();
    const AVInputFormat* input = av_find_input_format(format);
    if (!input) {
        error = std::string("this FFmpeg has no ") + format + " input";
        return false;
    }
    AVFormatContext* raw = avformat_alloc_context();
    if (!raw) {
        error = "out of memory";
        return false;
    }
    raw->interrupt_callback.callback = &DeviceInput::onInterrupt;
    raw->interrupt_callback.opaque = this;
    Dictionary dict;
    for (const auto& [key, value] : options)
        dict.set(key.c_str(), value);
    // avformat_open_input() frees the context itself when it fails.
    const int ret = avformat_open_input(&raw, url.c_str(), input, dict.slot());
    if (ret < 0) {
        error = std::string(format) + " \"" + url + "\": " + avErrorText(ret);
        return false;
    }
    m_context.reset(raw);
    if (m_context->nb_streams < 1) {
        error = std::string(format) + " \"" + url + "\" has no stream";
        m_context.reset();
        return false;
    }
    return true;
}

int DeviceInput::read(AVPacket* packet)
{
    if (!m_context)
        return AVERROR(EINVAL);
    return av_read_frame(m_context.get(), packet);
}

const AVCodecParameters* DeviceInput::parameters() const
{
    return m_context ? m_context->streams[0]->codecpar : nullptr;
}

std::int64_t DeviceInput::stampOf(const AVPacket* packet) const
{
    const std::int64_t pts = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
    if (pts == AV_NOPTS_VALUE || !m_context)
        return av_gettime();
    return av_rescale_q(pts, m_context->streams[0]->time_base, AVRational{1, 1000000});
}

bool X11Geometry::screenSize(const std::string& display, int& width, int& height)
{
    int number = 0;
    Connection c = connect(display, number);
    if (!c)
        return false;
    xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(c.get()));
    for (int i = 0; i < number && it.rem; ++i)
        xcb_screen_next(&it);
    if (!it.rem)
        return false;
    width = it.data->width_in_pixels;
    height = it.data->height_in_pixels;
    return true;
}

bool X11Geometry::windowSize(const std::string& display, std::uint32_t window, int& width, int& height)
{
    int number = 0;
    Connection c = connect(display, number);
    if (!c)
        return false;
    std::unique_ptr<xcb_get_geometry_reply_t, ReplyDeleter> reply(
        xcb_get_geometry_reply(c.get(), xcb_get_geometry(c.get(), window), nullptr));
    if (!reply)
        return false;
    width = reply->width;
    height = reply->height;
    return true;
}

} // namespace mirabend
