// Puts bench content on an X screen until killed:
//   screen_content still          one slide, painted once
//   screen_content slides SECONDS a new slide every SECONDS, and the pointer
//                                 moving in a small circle at 30 Hz
//   screen_content motion         two slides side by side scrolling across
//                                 the whole screen at 30 Hz (every pixel
//                                 changes; the server does the copying, so
//                                 the content costs little CPU of its own)
// The slide is a white page with a coloured title band, lines of "text" and
// a picture box, like a presentation page.
#include "recording/engine/XcbHandles.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using mirabend::XcbConnection;

std::vector<std::uint32_t> slide(int w, int h, unsigned seed) {
    std::mt19937 rng(seed);
    std::vector<std::uint32_t> px(std::size_t(w) * h, 0xffffff);
    const std::uint32_t band = 0x204080 + (seed * 0x1f3d5b & 0x3f3f3f);
    const auto fill = [&](int x0, int y0, int x1, int y1, std::uint32_t c) {
        for (int y = std::max(0, y0); y < std::min(h, y1); ++y)
            for (int x = std::max(0, x0); x < std::min(w, x1); ++x)
                px[std::size_t(y) * w + x] = c;
    };
    fill(0, 0, w, h / 6, band);
    const int line = std::max(8, h / 24);
    for (int y = h / 6 + line; y + line < h * 9 / 10; y += line * 3 / 2) {
        int x = w / 12;
        const int end = w / 2 + int(rng() % unsigned(w / 3));
        while (x < end) {
            const int word = line + int(rng() % unsigned(line * 3));
            fill(x, y, std::min(end, x + word), y + line * 2 / 3, 0x303030);
            x += word + line / 2;
        }
    }
    for (int y = h / 4; y < h * 3 / 4; ++y)
        for (int x = w * 2 / 3; x < w * 11 / 12; ++x)
            px[std::size_t(y) * w + x] =
                std::uint32_t((x * 255 / w) << 16 | (y * 255 / h) << 8 | (seed * 40 & 255));
    return px;
}

void paint(xcb_connection_t* c, xcb_window_t window, xcb_gcontext_t gc, int w, int h, int depth,
           const std::vector<std::uint32_t>& px) {
    const std::uint32_t maxBytes = xcb_get_maximum_request_length(c) * 4 - 64;
    const int rows = std::max(1, int(maxBytes / (std::uint32_t(w) * 4)));
    for (int y = 0; y < h; y += rows) {
        const int n = std::min(rows, h - y);
        xcb_put_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, window, gc, std::uint16_t(w), std::uint16_t(n), 0,
                      std::int16_t(y), 0, std::uint8_t(depth), std::uint32_t(w) * 4 * n,
                      reinterpret_cast<const std::uint8_t*>(px.data() + std::size_t(y) * w));
    }
    xcb_flush(c);
}

} // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "still";
    const double every = argc > 2 ? std::atof(argv[2]) : 5.0;
    int screenNumber = 0;
    XcbConnection conn(xcb_connect(nullptr, &screenNumber));
    if (!conn || xcb_connection_has_error(conn.get())) {
        std::fprintf(stderr, "screen_content: no display\n");
        return 1;
    }
    xcb_connection_t* c = conn.get();
    xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    const int w = screen->width_in_pixels;
    const int h = screen->height_in_pixels;
    const xcb_window_t window = xcb_generate_id(c);
    const std::uint32_t values[] = {screen->white_pixel, 1};
    xcb_create_window(c, screen->root_depth, window, screen->root, 0, 0, std::uint16_t(w), std::uint16_t(h),
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_map_window(c, window);
    const xcb_gcontext_t gc = xcb_generate_id(c);
    xcb_create_gc(c, gc, window, 0, nullptr);
    unsigned seed = 1;
    paint(c, window, gc, w, h, screen->root_depth, slide(w, h, seed));
    if (mode == "motion") {
        // A strip twice the screen's width holding two slides; each tick shows
        // the next window of it, so the whole screen moves every frame.
        const xcb_pixmap_t strip = xcb_generate_id(c);
        xcb_create_pixmap(c, screen->root_depth, strip, window, std::uint16_t(2 * w), std::uint16_t(h));
        xcb_copy_area(c, window, strip, gc, 0, 0, 0, 0, std::uint16_t(w), std::uint16_t(h));
        paint(c, window, gc, w, h, screen->root_depth, slide(w, h, 2));
        xcb_copy_area(c, window, strip, gc, 0, 0, std::int16_t(w), 0, std::uint16_t(w), std::uint16_t(h));
        for (int tick = 0;; ++tick) {
            std::this_thread::sleep_for(std::chrono::milliseconds(33));
            const int x = tick * 24 % w;
            xcb_copy_area(c, strip, window, gc, std::int16_t(x), 0, 0, 0, std::uint16_t(w), std::uint16_t(h));
            xcb_flush(c);
            if (xcb_connection_has_error(c))
                return 0;
        }
    }
    const auto start = std::chrono::steady_clock::now();
    auto nextSlide = start + std::chrono::duration<double>(every);
    for (int tick = 0;; ++tick) {
        std::this_thread::sleep_for(std::chrono::milliseconds(33));
        if (mode != "slides")
            continue;
        const auto now = std::chrono::steady_clock::now();
        if (now >= nextSlide) {
            paint(c, window, gc, w, h, screen->root_depth, slide(w, h, ++seed));
            nextSlide += std::chrono::duration<double>(every);
        }
        const double a = tick * 0.15;
        xcb_warp_pointer(c, XCB_NONE, screen->root, 0, 0, 0, 0, std::int16_t(w / 3 + std::cos(a) * 40),
                         std::int16_t(h / 2 + std::sin(a) * 40));
        xcb_flush(c);
        if (xcb_connection_has_error(c))
            return 0;
    }
}
