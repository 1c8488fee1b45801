#pragma once
// Coded frames that repeat the previous picture exactly, written without the
// encoder: a P picture whose macroblocks are all skipped. FLV1 (Sorenson
// H.263) and WMV2 have such pictures; decoders copy the reference and show
// one frame per packet, so a still screen costs a few hundred bytes and no
// encoding. Other codecs (H.264, msvideo1, MPEG-4) are encoded as before.
//
// WMV2 flips its rounding mode on every P picture in encoder and decoder
// alike, so a run of skipped pictures must be even to keep the encoder's
// next picture in step (see flipsRounding()).
//
// Thread contract: used by the video encode thread only.

#include "recording/engine/FfmpegHandles.h"

#include <cstdint>
#include <vector>

namespace mirabend {

class SkipFrameWriter {
public:
    // Prepares for the open encoder `codec`; false when its codec has no
    // skipped picture this writer knows.
    bool open(const AVCodecContext* codec);
    bool available() const { return m_codec != AV_CODEC_ID_NONE; }
    bool flipsRounding() const { return m_codec == AV_CODEC_ID_WMV2; }
    // A packet repeating the previous picture, stamped `pts` in the
    // encoder's time base.
    PacketPtr make(std::int64_t pts) const;

private:
    std::vector<std::uint8_t> flvPicture(std::int64_t pts) const;
    std::vector<std::uint8_t> wmv2Picture() const;

    AVCodecID m_codec = AV_CODEC_ID_NONE;
    AVRational m_timeBase{1, 1};
    int m_width = 0;
    int m_height = 0;
    // WMV2 sequence flags from the encoder's extradata.
    bool m_mspelBit = false;
    bool m_abtFlag = false;
    bool m_perMbRlBit = false;
};

} // namespace mirabend
