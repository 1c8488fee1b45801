#pragma once
// The audio encoder of one recording: takes interleaved 16-bit samples at the
// source's rate, converts them to the encoder's rate, layout and sample
// format, and encodes them in the fixed frame sizes the codec wants (a FIFO
// sits in between). Timestamps count samples.
//
// Thread contract: open() on the starting thread; everything else on the
// audio encode thread only.

#include "recording/engine/FfmpegHandles.h"
#include "recording/engine/RecordingPlan.h"

#include <functional>
#include <vector>

namespace mirabend {

class AudioEncoder {
public:
    using Sink = std::function<void(PacketPtr)>;

    RecorderFailure open(const AudioTarget& target, int inputRate, int inputChannels, bool globalHeader);
    AVCodecContext* context() const { return m_codec.get(); }
    int inputRate() const { return m_inputRate; }
    int inputChannels() const { return m_inputChannels; }

    // Adds `count` interleaved samples per channel; `samples` == nullptr
    // adds silence. Encodes every full frame. Returns 0 or an FFmpeg error.
    int write(const std::int16_t* samples, std::int64_t count, const Sink& sink);
    // Encodes what is left (the last frame padded if the codec needs it) and
    // drains the encoder.
    int finish(const Sink& sink);
    // Samples handed to the encoder so far, at the encoder's rate.
    std::int64_t samplesEncoded() const { return m_nextPts; }

private:
    int encodeFrames(bool all, const Sink& sink);
    int send(const AVFrame* frame, const Sink& sink);

    CodecContextPtr m_codec;
    SwrPtr m_resampler;
    AudioFifoPtr m_fifo;
    FramePtr m_converted;
    std::vector<std::int16_t> m_silence;
    int m_inputRate = 0;
    int m_inputChannels = 0;
    int m_frameSize = 0;
    std::int64_t m_nextPts = 0;
};

} // namespace mirabend
