#pragma once
// The video encoder of one recording: converts captured pictures (packed
// bgr0 from x11grab) to the encoder's size and pixel format and encodes
// them. H.264 goes through VA-API or NVENC when asked and present, else
// libx264.
//
// Thread contract: open() on the starting thread; everything else on the
// video encode thread only.

#include "recording/engine/FfmpegHandles.h"
#include "recording/engine/RecordingPlan.h"
#include "recording/engine/RowBands.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace mirabend {

class VideoEncoder {
public:
    RecorderFailure open(const RecordingPlan& plan, int sourceWidth, int sourceHeight, bool globalHeader);
    AVCodecContext* context() const { return m_codec.get(); }
    bool hardware() const { return m_hardware; }
    const std::string& name() const { return m_name; }
    // Why hardware acceleration was not used ("" when it was or was not asked).
    const std::string& hardwareNote() const { return m_hardwareNote; }

    // A new frame in the encoder's format holding the scaled picture.
    FramePtr convert(const std::uint8_t* bgr0, int linesize);
    // Whether convertRows() works here: the picture keeps its size and
    // frames live in memory.
    bool convertsRows() const;
    // Converts `band` of the picture (its rows start at `bgr0`) into
    // `frame`, which holds the previous picture, and writes back the band's
    // inner rows exactly as convert() would have produced them. `frame`
    // must be writable.
    bool convertRows(AVFrame* frame, const std::uint8_t* bgr0, int linesize, const RowBand& band);
    // Encodes `frame` (nullptr drains the encoder); every packet produced
    // goes to `sink`. Returns 0 or an FFmpeg error.
    int encode(const AVFrame* frame, const std::function<void(PacketPtr)>& sink);

private:
    bool openSoftware(const RecordingPlan& plan, bool globalHeader, std::string& error);
    bool openHardware(const RecordingPlan& plan, const char* encoder, bool globalHeader);
    CodecContextPtr makeContext(const AVCodec* codec, const RecordingPlan& plan, AVPixelFormat format,
                                bool globalHeader) const;

    CodecContextPtr m_codec;
    SwsPtr m_scaler;
    // Scalers for bands, by band height, most recently used first.
    std::vector<std::pair<int, SwsPtr>> m_bandScalers;
    FramePtr m_bandFrame; // the converted band before its inner rows are copied out
    BufferRefPtr m_hwDevice;
    AVPixelFormat m_swFormat = AV_PIX_FMT_NONE; // what sws produces
    int m_sourceWidth = 0;
    int m_sourceHeight = 0;
    bool m_hardware = false;
    std::string m_name;
    std::string m_hardwareNote;
};

} // namespace mirabend
