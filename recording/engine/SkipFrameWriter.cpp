#include "recording/engine/SkipFrameWriter.h"

namespace mirabend {

namespace {

// Most significant bit first, as both codecs read their pictures.
class BitWriter {
public:
    void put(std::uint32_t value, int bits) {
        for (int i = bits - 1; i >= 0; --i)
            bit((value >> i) & 1u);
    }
    void bit(std::uint32_t b) {
        if (m_used == 0)
            m_bytes.push_back(0);
        if (b)
            m_bytes.back() |= std::uint8_t(0x80u >> m_used);
        m_used = (m_used + 1) % 8;
    }
    void ones(int count) {
        for (int i = 0; i < count; ++i)
            bit(1);
    }
    // Pads to whole bytes plus a little slack for readers that look ahead.
    std::vector<std::uint8_t> finish() {
        m_used = 0;
        m_bytes.insert(m_bytes.end(), 2, 0);
        return std::move(m_bytes);
    }

private:
    std::vector<std::uint8_t> m_bytes;
    int m_used = 0;
};

// The 0 / 10 / 11 code for a value 0..2.
void put012(BitWriter& w, int value) {
    if (value == 0)
        w.bit(0);
    else
        w.put(value == 1 ? 0b10u : 0b11u, 2);
}

} // namespace

bool SkipFrameWriter::open(const AVCodecContext* codec) {
    m_codec = AV_CODEC_ID_NONE;
    if (!codec || codec->pix_fmt != AV_PIX_FMT_YUV420P)
        return false;
    m_width = codec->width;
    m_height = codec->height;
    m_timeBase = codec->time_base;
    if (codec->codec_id == AV_CODEC_ID_FLV1) {
        m_codec = AV_CODEC_ID_FLV1;
        return true;
    }
    if (codec->codec_id == AV_CODEC_ID_WMV2 && codec->extradata_size >= 4) {
        // 5 bits rate, 11 bits bit rate, then the sequence flags.
        const std::uint32_t ext = std::uint32_t(codec->extradata[0]) << 24 |
                                  std::uint32_t(codec->extradata[1]) << 16 |
                                  std::uint32_t(codec->extradata[2]) << 8 | codec->extradata[3];
        const auto flag = [&](int index) {
            return ((ext >> (31 - 16 - index)) & 1u) != 0;
        };
        m_mspelBit = flag(0);
        const bool loopFilter = flag(1);
        m_abtFlag = flag(2);
        m_perMbRlBit = flag(5);
        // A loop filter would touch the skipped blocks' edges.
        if (loopFilter)
            return false;
        m_codec = AV_CODEC_ID_WMV2;
        return true;
    }
    return false;
}

std::vector<std::uint8_t> SkipFrameWriter::flvPicture(std::int64_t pts) const {
    BitWriter w;
    w.put(1, 17); // picture start code
    w.put(1, 5);  // version: 11-bit escapes, as the encoder writes
    w.put(std::uint32_t(pts * 30 * m_timeBase.num / m_timeBase.den) & 0xffu, 8); // temporal reference
    if (m_width <= 255 && m_height <= 255) {
        w.put(0, 3);
        w.put(std::uint32_t(m_width), 8);
        w.put(std::uint32_t(m_height), 8);
    } else {
        w.put(1, 3);
        w.put(std::uint32_t(m_width), 16);
        w.put(std::uint32_t(m_height), 16);
    }
    w.put(1, 2); // an inter picture (a disposable one is dropped by decoders right after a key frame)
    w.put(0, 1); // no deblocking
    w.put(2, 5); // quantiser (unused: nothing is coded)
    w.put(0, 1); // no extra information
    w.ones(((m_width + 15) / 16) * ((m_height + 15) / 16)); // every macroblock not coded
    return w.finish();
}

std::vector<std::uint8_t> SkipFrameWriter::wmv2Picture() const {
    BitWriter w;
    w.put(1, 1); // P picture
    w.put(2, 5); // quantiser (unused)
    // Skip flags one per macroblock ("MPEG" style), all set. The row-wise
    // form would be shorter, but some decoders drop such a picture instead
    // of showing it.
    w.put(1, 2);
    w.ones(((m_width + 15) / 16) * ((m_height + 15) / 16));
    put012(w, 0); // coded block pattern table
    if (m_mspelBit)
        w.bit(0);
    if (m_abtFlag) {
        w.bit(1); // one transform type for the picture
        put012(w, 0);
    }
    if (m_perMbRlBit)
        w.bit(0);
    put012(w, 0); // run-level table
    w.bit(0);     // DC table
    w.bit(0);     // motion vector table
    return w.finish();
}

PacketPtr SkipFrameWriter::make(std::int64_t pts) const {
    if (!available())
        return nullptr;
    const std::vector<std::uint8_t> bytes = m_codec == AV_CODEC_ID_FLV1 ? flvPicture(pts) : wmv2Picture();
    PacketPtr packet = makePacket();
    if (!packet || av_new_packet(packet.get(), int(bytes.size())) < 0)
        return nullptr;
    std::copy(bytes.begin(), bytes.end(), packet->data);
    packet->pts = packet->dts = pts;
    packet->duration = 1;
    return packet;
}

} // namespace mirabend
