#pragma once
// Owning handles for xcb: the connection, replies, server-side resources
// (damage objects, XFixes regions) and the MIT-SHM segment shared with the
// X server. Each is held from the line that creates it.
//
// Thread contract: plain owning values; one thread uses a handle at a time.

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace mirabend {

struct XcbConnectionDeleter {
    void operator()(xcb_connection_t* c) const { xcb_disconnect(c); }
};
using XcbConnection = std::unique_ptr<xcb_connection_t, XcbConnectionDeleter>;

struct XcbReplyDeleter {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, XcbReplyDeleter>;

// A server-side resource freed with `destroy` while the connection lives.
// Declare it after the connection it belongs to.
class XcbResource {
public:
    using Destroy = xcb_void_cookie_t (*)(xcb_connection_t*, std::uint32_t);
    XcbResource() = default;
    XcbResource(xcb_connection_t* c, std::uint32_t id, Destroy destroy)
        : m_connection(c)
        , m_id(id)
        , m_destroy(destroy) {}
    ~XcbResource() { reset(); }
    XcbResource(const XcbResource&) = delete;
    XcbResource& operator=(const XcbResource&) = delete;
    XcbResource(XcbResource&& o) noexcept { *this = std::move(o); }
    XcbResource& operator=(XcbResource&& o) noexcept {
        if (this != &o) {
            reset();
            m_connection = o.m_connection;
            m_id = o.m_id;
            m_destroy = o.m_destroy;
            o.m_connection = nullptr;
        }
        return *this;
    }
    std::uint32_t id() const { return m_id; }
    void reset() {
        if (m_connection && m_destroy)
            m_destroy(m_connection, m_id);
        m_connection = nullptr;
    }

private:
    xcb_connection_t* m_connection = nullptr;
    std::uint32_t m_id = 0;
    Destroy m_destroy = nullptr;
};

// A System V shared memory segment attached by us and by the X server. The
// segment is marked for removal as soon as both are attached, so it goes
// away with the process however that ends.
class ShmSegment {
public:
    ShmSegment() = default;
    ~ShmSegment();
    ShmSegment(const ShmSegment&) = delete;
    ShmSegment& operator=(const ShmSegment&) = delete;

    // Creates `bytes` of shared memory and attaches the server to it.
    bool create(xcb_connection_t* c, std::size_t bytes);
    std::uint8_t* data() const { return m_data; }
    // Gives up the mapping (someone else will shmdt() it) and forgets the
    // server's attachment, which ends with the connection.
    void release();
    std::uint32_t segment() const { return m_segment; }

private:
    xcb_connection_t* m_connection = nullptr;
    std::uint8_t* m_data = nullptr;
    std::uint32_t m_segment = 0;
    bool m_serverAttached = false;
};

} // namespace mirabend
