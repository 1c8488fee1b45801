#include "recording/engine/DamageScreenSource.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <thread>
#include <xcb/damage.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

namespace mirabend {

namespace {

bool hasExtension(xcb_connection_t* c, xcb_extension_t* ext) {
    const xcb_query_extension_reply_t* data = xcb_get_extension_data(c, ext);
    return data && data->present;
}

} // namespace

// ---- ShmSegment ---------------------------------------------------------------

ShmSegment::~ShmSegment() {
    if (m_serverAttached && m_connection && !xcb_connection_has_error(m_connection))
        xcb_shm_detach(m_connection, m_segment);
    if (m_data)
        shmdt(m_data);
}

void ShmSegment::release() {
    m_data = nullptr;
    m_serverAttached = false;
}

bool ShmSegment::create(xcb_connection_t* c, std::size_t bytes) {
    const int id = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    if (id < 0)
        return false;
    void* data = shmat(id, nullptr, 0);
    if (data == reinterpret_cast<void*>(-1)) {
        shmctl(id, IPC_RMID, nullptr);
        return false;
    }
    m_connection = c;
    m_data = static_cast<std::uint8_t*>(data);
    m_segment = xcb_generate_id(c);
    XcbReply<xcb_generic_error_t> error(
        xcb_request_check(c, xcb_shm_attach_checked(c, m_segment, std::uint32_t(id), 0)));
    // Both sides are attached (or the server refused): the segment is freed
    // once the last of them lets go.
    shmctl(id, IPC_RMID, nullptr);
    m_serverAttached = !error;
    return m_serverAttached;
}

// ---- opening --------------------------------------------------------------------

bool DamageScreenSource::open(const std::string& display, const CaptureTarget& target, int fpsNum, int fpsDen,
                              std::string& why) {
    if (const char* forced = std::getenv("MIRABEND_CAPTURE"); forced && std::strcmp(forced, "x11grab") == 0) {
        why = "MIRABEND_CAPTURE=x11grab";
        return false;
    }
    int screenNumber = 0;
    for (int attempt = 0; attempt < 3 && !m_connection; ++attempt) {
        if (attempt)
            std::this_thread::sleep_for(std::chrono::milliseconds(150));
        m_connection.reset(xcb_connect(display.c_str(), &screenNumber));
        if (m_connection && xcb_connection_has_error(m_connection.get()))
            m_connection.reset();
    }
    if (!m_connection) {
        why = "cannot connect to " + display;
        return false;
    }
    xcb_connection_t* c = m_connection.get();
    xcb_prefetch_extension_data(c, &xcb_damage_id);
    xcb_prefetch_extension_data(c, &xcb_xfixes_id);
    xcb_prefetch_extension_data(c, &xcb_shm_id);
    for (auto [ext, name] : {std::pair{&xcb_damage_id, "DAMAGE"}, std::pair{&xcb_xfixes_id, "XFIXES"},
                             std::pair{&xcb_shm_id, "MIT-SHM"}}) {
        if (!hasExtension(c, ext)) {
            why = std::string("the display has no ") + name + " extension";
            return false;
        }
    }
    // Each extension must be told which version the client speaks before use.
    XcbReply<xcb_xfixes_query_version_reply_t> fixes(
        xcb_xfixes_query_version_reply(c, xcb_xfixes_query_version(c, 4, 0), nullptr));
    XcbReply<xcb_damage_query_version_reply_t> damage(
        xcb_damage_query_version_reply(c, xcb_damage_query_version(c, 1, 1), nullptr));
    XcbReply<xcb_shm_query_version_reply_t> shm(
        xcb_shm_query_version_reply(c, xcb_shm_query_version(c), nullptr));
    if (!fixes || fixes->major_version < 2 || !damage || !shm) {
        why = "the display's DAMAGE, XFIXES or MIT-SHM extension is too old";
        return false;
    }
    m_damageNotify = xcb_get_extension_data(c, &xcb_damage_id)->first_event + XCB_DAMAGE_NOTIFY;

    xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(c));
    for (int i = 0; i < screenNumber && it.rem; ++i)
        xcb_screen_next(&it);
    if (!it.rem) {
        why = "the display has no screen " + std::to_string(screenNumber);
        return false;
    }
    m_root = it.data->root;
    m_window = target.window;
    m_drawable = m_window ? m_window : m_root;
    XcbReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(c, xcb_get_geometry(c, m_drawable), nullptr));
    if (!geometry) {
        why = "window " + std::to_string(m_window) + " not found";
        return false;
    }
    if (geometry->depth != 24 && geometry->depth != 32) {
        why = "the picture is not 24/32-bit true colour";
        return false;
    }
    if (m_window) {
        // The region is the zoomed part of the window, relative to it; an
        // empty one means all of it.
        const ScreenRect& r = target.region;
        const bool zoomed = r.width > 0 && r.height > 0;
        m_grabLeft = zoomed ? std::max(0, r.left) : 0;
        m_grabTop = zoomed ? std::max(0, r.top) : 0;
        m_width = zoomed ? std::min(r.width, geometry->width - m_grabLeft) : geometry->width;
        m_height = zoomed ? std::min(r.height, geometry->height - m_grabTop) : geometry->height;
        // Its end is seen at once, even on a still screen.
        const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(c, m_window, XCB_CW_EVENT_MASK, &mask);
    } else {
        m_grabLeft = m_originX = target.region.left;
        m_grabTop = m_originY = target.region.top;
        m_width = target.region.width;
        m_height = target.region.height;
    }
    if (m_width <= 0 || m_height <= 0) {
        why = "the recorded area is empty";
        return false;
    }
    // Try one segment first: a remote display cannot share memory.
    {
        ShmSegment probe;
        if (!probe.create(c, 4096)) {
            why = "the display cannot share memory with this program";
            return false;
        }
    }
    m_pool.reset(av_buffer_pool_init2(std::size_t(m_width) * 4 * m_height + AV_INPUT_BUFFER_PADDING_SIZE,
                                      this, &DamageScreenSource::allocShared, nullptr));
    if (!m_pool) {
        why = "out of memory";
        return false;
    }
    m_damage = XcbResource(c, xcb_generate_id(c), &xcb_damage_destroy);
    xcb_damage_create(c, m_damage.id(), m_root, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    m_region = XcbResource(c, xcb_generate_id(c), &xcb_xfixes_destroy_region);
    xcb_xfixes_create_region(c, m_region.id(), 0, nullptr);
    m_drawCursor = target.cursor;
    if (m_window && !refreshOrigin()) {
        why = "window " + std::to_string(m_window) + " not found";
        return false;
    }
    xcb_flush(c);
    m_periodNum = std::int64_t(1000000) * fpsDen;
    m_periodDen = std::max(1, fpsNum);
    return true;
}

// ---- one frame -------------------------------------------------------------------

bool DamageScreenSource::waitForFrameTime() {
    std::int64_t now = av_gettime();
    if (m_tickBase == 0)
        m_tickBase = now;
    std::int64_t due = m_tickBase + m_ticks * m_periodNum / m_periodDen;
    if (now - due > m_periodNum / m_periodDen) {
        // A stall: take up the rhythm from now instead of catching up with
        // a burst of frames.
        m_tickBase = now;
        m_ticks = 0;
        due = now;
    }
    ++m_ticks;
    while ((now = av_gettime()) < due) {
        if (m_interrupted)
            return false;
        std::this_thread::sleep_for(std::chrono::microseconds(std::min<std::int64_t>(due - now, 20000)));
    }
    return !m_interrupted;
}

bool DamageScreenSource::takeEvents(bool& damaged) {
    xcb_connection_t* c = m_connection.get();
    bool alive = true;
    while (XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(c)}) {
        const int type = event->response_type & 0x7f;
        if (type == m_damageNotify)
            damaged = true;
        else if (type == XCB_DESTROY_NOTIFY && m_window &&
                 reinterpret_cast<xcb_destroy_notify_event_t*>(event.get())->window == m_window)
            alive = false;
        else if (type == XCB_UNMAP_NOTIFY && m_window &&
                 reinterpret_cast<xcb_unmap_notify_event_t*>(event.get())->window == m_window)
            damaged = true;
    }
    return alive && !xcb_connection_has_error(c);
}

bool DamageScreenSource::refreshOrigin() {
    xcb_connection_t* c = m_connection.get();
    XcbReply<xcb_translate_coordinates_reply_t> at(
        xcb_translate_coordinates_reply(c, xcb_translate_coordinates(c, m_window, m_root, 0, 0), nullptr));
    if (!at)
        return false;
    m_originX = at->dst_x + m_grabLeft;
    m_originY = at->dst_y + m_grabTop;
    return true;
}

bool DamageScreenSource::fetchDamage(std::vector<RowBand>& changed) {
    xcb_connection_t* c = m_connection.get();
    // Damage drawn from here on raises a new event and is grabbed next time.
    xcb_damage_subtract(c, m_damage.id(), XCB_NONE, m_region.id());
    XcbReply<xcb_xfixes_fetch_region_reply_t> region(
        xcb_xfixes_fetch_region_reply(c, xcb_xfixes_fetch_region(c, m_region.id()), nullptr));
    if (!region)
        return false;
    if (m_window && !refreshOrigin())
        return false;
    const xcb_rectangle_t* rects = xcb_xfixes_fetch_region_rectangles(region.get());
    const int count = xcb_xfixes_fetch_region_rectangles_length(region.get());
    for (int i = 0; i < count; ++i) {
        const xcb_rectangle_t& r = rects[i];
        if (r.x >= m_originX + m_width || r.x + r.width <= m_originX)
            continue;
        changed.push_back({r.y - m_originY, r.height});
    }
    return true;
}

void DamageScreenSource::fetchCursor(std::vector<RowBand>& changed) {
    xcb_connection_t* c = m_connection.get();
    XcbReply<xcb_xfixes_get_cursor_image_reply_t> image(
        xcb_xfixes_get_cursor_image_reply(c, xcb_xfixes_get_cursor_image(c), nullptr));
    if (!image)
        return;
    Cursor next;
    next.left = image->x - image->xhot - m_originX;
    next.top = image->y - image->yhot - m_originY;
    next.width = image->width;
    next.height = image->height;
    next.serial = image->cursor_serial;
    next.shown = true;
    if (m_cursor.shown && next.left == m_cursor.left && next.top == m_cursor.top &&
        next.serial == m_cursor.serial)
        return;
    const std::uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(image.get());
    next.argb.assign(pixels, pixels + std::size_t(next.width) * next.height);
    if (m_cursor.shown)
        changed.push_back({m_cursor.top, m_cursor.height});
    changed.push_back({next.top, next.height});
    m_cursor = std::move(next);
}

AVBufferRef* DamageScreenSource::allocShared(void* self, std::size_t size) {
    auto* source = static_cast<DamageScreenSource*>(self);
    ShmSegment segment;
    if (!segment.create(source->m_connection.get(), size))
        return nullptr;
    std::uint8_t* data = segment.data();
    const std::uint32_t id = segment.segment();
    // From here the buffer owns our mapping; the server's attachment ends
    // with the connection.
    segment.release();
    AVBufferRef* buffer = av_buffer_create(
        data, size, [](void*, std::uint8_t* d) { shmdt(d); }, nullptr, 0);
    if (!buffer) {
        shmdt(data);
        return nullptr;
    }
    source->m_segments.emplace_back(data, id);
    return buffer;
}

PacketPtr DamageScreenSource::grabBands(const std::vector<RowBand>& bands, int& error) {
    const std::size_t rowBytes = std::size_t(m_width) * 4;
    std::size_t rows = 0;
    for (const RowBand& b : bands)
        rows += std::size_t(b.height);
    PacketPtr packet = makePacket();
    if (packet)
        packet->buf = av_buffer_pool_get(m_pool.get());
    if (!packet || !packet->buf) {
        error = AVERROR(ENOMEM);
        return nullptr;
    }
    packet->data = packet->buf->data;
    packet->size = int(rows * rowBytes);
    const auto segment = std::find_if(m_segments.begin(), m_segments.end(),
                                      [&](const auto& s) { return s.first == packet->data; });
    if (segment == m_segments.end()) {
        error = AVERROR(ENOMEM);
        return nullptr;
    }
    // The server writes each band straight into the packet's shared memory.
    xcb_connection_t* c = m_connection.get();
    std::vector<xcb_shm_get_image_cookie_t> cookies;
    std::size_t offset = 0;
    for (const RowBand& b : bands) {
        cookies.push_back(xcb_shm_get_image(
            c, m_drawable, std::int16_t(m_grabLeft), std::int16_t(m_grabTop + b.top), std::uint16_t(m_width),
            std::uint16_t(b.height), ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP, segment->second, std::uint32_t(offset)));
        offset += std::size_t(b.height) * rowBytes;
    }
    bool ok = true;
    for (const xcb_shm_get_image_cookie_t& cookie : cookies) {
        xcb_generic_error_t* rawError = nullptr;
        XcbReply<xcb_shm_get_image_reply_t> reply(xcb_shm_get_image_reply(c, cookie, &rawError));
        XcbReply<xcb_generic_error_t> failed(rawError);
        ok = ok && reply && !failed;
    }
    if (!ok) {
        error = AVERROR(EIO);
        return nullptr;
    }
    if (m_drawCursor && m_cursor.shown) {
        std::uint8_t* rowsOut = packet->data;
        for (const RowBand& b : bands) {
            drawCursor(rowsOut, b);
            rowsOut += std::size_t(b.height) * rowBytes;
        }
    }
    return packet;
}

void DamageScreenSource::drawCursor(std::uint8_t* rows, const RowBand& band) const {
    const Cursor& k = m_cursor;
    const int top = std::max({band.top, k.top, 0});
    const int bottom = std::min({band.bottom(), k.top + k.height, m_height});
    const int left = std::max(k.left, 0);
    const int right = std::min(k.left + k.width, m_width);
    for (int y = top; y < bottom; ++y) {
        auto* dst = reinterpret_cast<std::uint32_t*>(rows + std::size_t(y - band.top) * m_width * 4);
        const std::uint32_t* src = k.argb.data() + std::size_t(y - k.top) * k.width;
        for (int x = left; x < right; ++x) {
            const std::uint32_t s = src[x - k.left];
            const std::uint32_t a = s >> 24;
            if (a == 0)
                continue;
            if (a == 255) {
                dst[x] = s & 0xffffff;
                continue;
            }
            // Premultiplied: source + destination * (1 - alpha).
            std::uint32_t out = 0;
            for (int shift = 0; shift < 24; shift += 8) {
                const std::uint32_t d = (dst[x] >> shift) & 0xff;
                const std::uint32_t v = ((s >> shift) & 0xff) + (d * (255 - a) + 127) / 255;
                out |= std::min<std::uint32_t>(v, 255) << shift;
            }
            dst[x] = out;
        }
    }
}

int DamageScreenSource::read(ScreenGrab& grab, Want want) {
    if (!waitForFrameTime())
        return AVERROR_EXIT;
    grab.stamp = av_gettime();
    grab.bands.clear();
    grab.pixels.reset();
    bool damaged = false;
    if (!takeEvents(damaged))
        return AVERROR(EIO);
    std::vector<RowBand> changed = std::move(m_owed);
    m_owed.clear();
    if (m_first) {
        damaged = true;
        changed.push_back({0, m_height});
    }
    if (damaged && !fetchDamage(changed))
        return AVERROR(EIO);
    if (m_drawCursor)
        fetchCursor(changed);
    const std::vector<RowBand> bands = padBands(std::move(changed), m_height);
    m_first = false;
    const bool whole = want == Want::Whole || (want == Want::WholeOnChange && !bands.empty());
    grab.bands = whole ? std::vector<RowBand>{{0, m_height}} : bands;
    if (grab.bands.empty())
        return 0;
    int error = 0;
    grab.pixels = grabBands(grab.bands, error);
    if (!grab.pixels) {
        m_owed = grab.bands;
        grab.bands.clear();
        return error;
    }
    return 0;
}

void DamageScreenSource::unread(const ScreenGrab& grab) {
    m_owed.insert(m_owed.end(), grab.bands.begin(), grab.bands.end());
}

} // namespace mirabend
