#include "recording/engine/StampedGrabs.h"

#include <QImage>
#include <cstring>

namespace mirabend {

namespace {

RowBand rowsOf(const QRect& area) {
    return area.isEmpty() ? RowBand{} : RowBand{area.top(), area.height()};
}

bool touches(const RowBand& band, const QRect& area) {
    return !area.isEmpty() && band.top <= area.bottom() && area.top() < band.bottom();
}

} // namespace

StampedGrabs::StampedGrabs(int width, int height, bool keepCopy)
    : m_width(width)
    , m_height(height)
    , m_keepCopy(keepCopy) {}

ScreenSource::Want StampedGrabs::want(bool stamped, ScreenSource::Want plain) const {
    return stamped != m_stamping ? ScreenSource::Want::Whole : plain;
}

void StampedGrabs::keep(const ScreenGrab& grab) {
    if (!m_keepCopy || !grab.pixels)
        return;
    const std::size_t stride = std::size_t(m_width) * 4;
    m_copy.resize(stride * m_height);
    const std::uint8_t* rows = grab.pixels->data;
    for (const RowBand& b : grab.bands) {
        std::memcpy(m_copy.data() + stride * b.top, rows, stride * b.height);
        rows += stride * b.height;
    }
}

bool StampedGrabs::stamp(ScreenGrab& grab, OverlayBoard& overlay, const QDateTime& now, bool wholeOnChange) {
    keep(grab);
    const OverlayFootprint drawn = overlay.footprint(now);
    const std::size_t stride = std::size_t(m_width) * 4;
    const bool moved = !drawn.sameDrawing(m_shown) || !m_stamping;
    if (moved && !grab.whole(m_height) && m_copy.size() == stride * m_height) {
        // Redraw the old and the new place from the unstamped copy.
        std::vector<RowBand> bands = grab.bands;
        for (const RowBand& b : padBands({rowsOf(m_shown.area), rowsOf(drawn.area)}, m_height))
            bands.push_back(b);
        bands = wholeOnChange ? std::vector<RowBand>{{0, m_height}} : joinBands(std::move(bands));
        std::size_t rows = 0;
        for (const RowBand& b : bands)
            rows += std::size_t(b.height);
        PacketPtr pixels = makePacket();
        if (!pixels || av_new_packet(pixels.get(), int(rows * stride)) < 0)
            return false;
        std::uint8_t* out = pixels->data;
        for (const RowBand& b : bands) {
            std::memcpy(out, m_copy.data() + stride * b.top, stride * b.height);
            out += stride * b.height;
        }
        grab.bands = std::move(bands);
        grab.pixels = std::move(pixels);
    } else if (grab.pixels && av_packet_make_writable(grab.pixels.get()) < 0) {
        return false;
    }
    std::uint8_t* rows = grab.pixels ? grab.pixels->data : nullptr;
    for (const RowBand& b : grab.bands) {
        if (touches(b, drawn.area)) {
            QImage band(rows, m_width, b.height, int(stride), QImage::Format_RGB32);
            overlay.paint(band, now, b.top);
        }
        rows += stride * b.height;
    }
    m_pending = drawn;
    return true;
}

void StampedGrabs::recorded(bool stamped) {
    m_stamping = stamped;
    m_shown = stamped ? m_pending : OverlayFootprint{};
}

} // namespace mirabend
