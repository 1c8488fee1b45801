#pragma once
// Puts pictures on their slots through the video encoder and repeats the
// last picture where nothing changed. A repeat is a skipped picture written
// without the encoder where the codec has one (SkipFrameWriter) and no key
// frame is due; otherwise the encoder encodes the last picture again. Key
// frames stay on the encoder's spacing in slots, skipped pictures counted.
// Runs of skipped WMV2 pictures are kept even (the last of a run is held
// back, and encoded for real if the run turns out odd).
//
// Thread contract: used by the video encode thread only.

#include "recording/engine/SkipFrameWriter.h"
#include "recording/engine/VideoEncoder.h"

#include <functional>

namespace mirabend {

class FrameRepeater {
public:
    using Sink = std::function<void(PacketPtr)>;
    FrameRepeater(VideoEncoder& encoder, int gopSize, Sink sink);

    // Call with the picture encoded last before it is changed into the
    // next one: settles a held-back skipped picture.
    int beforeChange(AVFrame* last) { return settleHeld(last); }
    // Encodes a new picture at frame->pts. Returns 0 or an FFmpeg error.
    int encodeNew(AVFrame* frame);
    // Repeats `last` (the picture encoded last) at `slot`.
    int repeat(AVFrame* last, std::int64_t slot);
    // Writes what is held back and drains the encoder.
    void finish();
    bool skipsPictures() const { return m_canSkip; }

private:
    int encode(AVFrame* frame, std::int64_t slot);
    int settleHeld(AVFrame* last);

    VideoEncoder& m_encoder;
    SkipFrameWriter m_skips;
    bool m_canSkip = false;
    std::int64_t m_gop = 1;
    Sink m_sink;
    std::int64_t m_lastKey = -1;     // slot of the last key frame out of the encoder
    std::int64_t m_lastEncoded = -1; // slot of the last picture handed to the encoder
    std::int64_t m_lastOut = -1;     // slot of the last packet out of the encoder
    PacketPtr m_held;
    int m_run = 0; // skipped pictures in the current still run, the held one included
};

} // namespace mirabend
