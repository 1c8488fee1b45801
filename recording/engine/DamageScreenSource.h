#pragma once
// The screen source that grabs only what changed. The DAMAGE extension
// watches the root window (so every window drawn over the recorded area,
// children and pop-ups included, is seen); at each frame time the damaged
// rows of the recorded area are grabbed through MIT-SHM straight into the
// buffer that is handed on (no copy, no picture kept) and only those rows
// are handed on. A still screen costs one event poll per frame.
// The pointer is drawn from the XFixes cursor image, as x11grab draws it,
// onto the rows handed on.
//
// Thread contract: as ScreenSource; open() on the starting thread.

#include "recording/engine/ScreenSource.h"
#include "recording/engine/XcbHandles.h"

#include <atomic>
#include <utility>
#include <vector>

namespace mirabend {

class DamageScreenSource : public ScreenSource {
public:
    // Opens on the target; false with `why` set when the display lacks an
    // extension this source needs (the caller falls back to x11grab) or
    // the target cannot be read.
    bool open(const std::string& display, const CaptureTarget& target, int fpsNum, int fpsDen,
              std::string& why);
    int width() const override { return m_width; }
    int height() const override { return m_height; }
    const char* name() const override { return "damage"; }
    int read(ScreenGrab& grab, Want want) override;
    void unread(const ScreenGrab& grab) override;
    void interrupt() override { m_interrupted = true; }

private:
    struct Cursor {
        int left = 0; // in the recorded area
        int top = 0;
        int width = 0;
        int height = 0;
        std::uint32_t serial = 0;
        std::vector<std::uint32_t> argb; // premultiplied
        bool shown = false;
    };

    bool waitForFrameTime();
    // Polls the events; false when the connection broke or the window went.
    bool takeEvents(bool& damaged);
    bool refreshOrigin();
    bool fetchDamage(std::vector<RowBand>& changed);
    void fetchCursor(std::vector<RowBand>& changed);
    // The bands' rows from the server, the pointer drawn on them.
    PacketPtr grabBands(const std::vector<RowBand>& bands, int& error);
    void drawCursor(std::uint8_t* rows, const RowBand& band) const;

    struct PoolDeleter {
        void operator()(AVBufferPool* p) const { av_buffer_pool_uninit(&p); }
    };
    // Picture-sized MIT-SHM buffers the server grabs into and the rows are
    // handed on in, used again once the encoder lets go (fresh memory every
    // frame would cost a page fault per 4 KB). The pool outlives this source
    // until its last buffer comes back; the server lets go of the segments
    // when the connection closes.
    static AVBufferRef* allocShared(void* self, std::size_t size);
    std::unique_ptr<AVBufferPool, PoolDeleter> m_pool;
    XcbConnection m_connection;
    // The pool's shared segments: mapping address and server id.
    std::vector<std::pair<const std::uint8_t*, std::uint32_t>> m_segments;
    XcbResource m_damage;
    XcbResource m_region;
    std::uint32_t m_root = 0;
    std::uint32_t m_drawable = 0; // the window or the root
    std::uint32_t m_window = 0;   // 0 when recording a screen area
    int m_grabLeft = 0;           // of the recorded area in the drawable
    int m_grabTop = 0;
    int m_originX = 0; // of the recorded area on the root
    int m_originY = 0;
    int m_width = 0;
    int m_height = 0;
    std::uint8_t m_damageNotify = 0; // the extension's event code
    bool m_drawCursor = false;
    Cursor m_cursor;
    bool m_first = true;
    std::vector<RowBand> m_owed;  // rows of grabs that were not recorded
    std::int64_t m_periodNum = 0; // frame period = m_periodNum / m_periodDen microseconds
    std::int64_t m_periodDen = 1;
    std::int64_t m_tickBase = 0;
    std::int64_t m_ticks = 0;
    std::atomic<bool> m_interrupted{false};
};

} // namespace mirabend
