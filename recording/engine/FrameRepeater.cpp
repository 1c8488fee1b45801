#include "recording/engine/FrameRepeater.h"

#include <algorithm>

namespace mirabend {

FrameRepeater::FrameRepeater(VideoEncoder& encoder, int gopSize, Sink sink)
    : m_encoder(encoder)
    , m_gop(std::max(1, gopSize))
    , m_sink(std::move(sink)) {
    m_canSkip = !encoder.hardware() && m_skips.open(encoder.context());
}

int FrameRepeater::encode(AVFrame* frame, std::int64_t slot) {
    frame->pts = slot;
    // The encoder counts its own pictures, not the skipped ones: ask for
    // the key frame when it is due in slots.
    frame->pict_type = m_canSkip && slot - m_lastKey >= m_gop ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_NONE;
    const int ret = m_encoder.encode(frame, [this](PacketPtr p) {
        if (p->flags & AV_PKT_FLAG_KEY)
            m_lastKey = p->pts;
        m_lastOut = p->pts;
        m_sink(std::move(p));
    });
    frame->pict_type = AV_PICTURE_TYPE_NONE;
    m_lastEncoded = slot;
    return ret;
}

int FrameRepeater::settleHeld(AVFrame* last) {
    if (!m_held)
        return 0;
    int ret = 0;
    if (m_run % 2 == 1 && last)
        ret = encode(last, m_held->pts);
    else
        m_sink(std::move(m_held));
    m_held.reset();
    m_run = 0;
    return ret;
}

int FrameRepeater::encodeNew(AVFrame* frame) {
    if (const int ret = settleHeld(nullptr); ret < 0)
        return ret;
    return encode(frame, frame->pts);
}

int FrameRepeater::repeat(AVFrame* last, std::int64_t slot) {
    // Only once the encoder has put out everything it was given, so the
    // skipped picture follows it in the file.
    if (m_canSkip && m_lastOut == m_lastEncoded && slot - m_lastKey < m_gop) {
        if (PacketPtr p = m_skips.make(slot)) {
            if (!m_skips.flipsRounding()) {
                m_sink(std::move(p));
                return 0;
            }
            if (m_held)
                m_sink(std::move(m_held));
            m_held = std::move(p);
            ++m_run;
            return 0;
        }
    }
    if (const int ret = settleHeld(last); ret < 0)
        return ret;
    return encode(last, slot);
}

void FrameRepeater::finish() {
    // Nothing follows the last held picture, so its run may stay odd.
    if (m_held)
        m_sink(std::move(m_held));
    m_held.reset();
    m_encoder.encode(nullptr, m_sink);
}

} // namespace mirabend
