#pragma once
// Owning handles for FFmpeg's C objects. Every object is held by one of these
// from the line that creates it, so no path (error, stop, exception) leaks it.
//
// Thread contract: plain owning values; one thread uses a handle at a time.

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/audio_fifo.h>
#include <libavutil/buffer.h>
#include <libavutil/frame.h>
#include <libavutil/time.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <string>

namespace mirabend {

struct CodecContextDeleter {
    void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
};
struct FrameDeleter {
    void operator()(AVFrame* f) const { av_frame_free(&f); }
};
struct PacketDeleter {
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};
struct SwsDeleter {
    void operator()(SwsContext* s) const { sws_freeContext(s); }
};
struct SwrDeleter {
    void operator()(SwrContext* s) const { swr_free(&s); }
};
struct AudioFifoDeleter {
    void operator()(AVAudioFifo* f) const { av_audio_fifo_free(f); }
};
struct BufferRefDeleter {
    void operator()(AVBufferRef* b) const { av_buffer_unref(&b); }
};
struct DictionaryDeleter {
    void operator()(AVDictionary* d) const { av_dict_free(&d); }
};
// An input opened with avformat_open_input().
struct InputContextDeleter {
    void operator()(AVFormatContext* f) const { avformat_close_input(&f); }
};
// An output context; the file itself is closed by OutputFile, which knows
// whether it was opened.
struct OutputContextDeleter {
    void operator()(AVFormatContext* f) const { avformat_free_context(f); }
};

using CodecContextPtr = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
using FramePtr = std::unique_ptr<AVFrame, FrameDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, PacketDeleter>;
using SwsPtr = std::unique_ptr<SwsContext, SwsDeleter>;
using SwrPtr = std::unique_ptr<SwrContext, SwrDeleter>;
using AudioFifoPtr = std::unique_ptr<AVAudioFifo, AudioFifoDeleter>;
using BufferRefPtr = std::unique_ptr<AVBufferRef, BufferRefDeleter>;
using InputContextPtr = std::unique_ptr<AVFormatContext, InputContextDeleter>;
using OutputContextPtr = std::unique_ptr<AVFormatContext, OutputContextDeleter>;

// AVDictionary is filled through a pointer to the pointer; this keeps the
// pointer owned while FFmpeg fills and empties it.
class Dictionary {
public:
    Dictionary() = default;
    ~Dictionary() { av_dict_free(&m_dict); }
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;
    void set(const char* key, const std::string& value) { av_dict_set(&m_dict, key, value.c_str(), 0); }
    AVDictionary** slot() { return &m_dict; }

private:
    AVDictionary* m_dict = nullptr;
};

inline FramePtr makeFrame()
{
    return FramePtr(av_frame_alloc());
}
inline PacketPtr makePacket()
{
    return PacketPtr(av_packet_alloc());
}

// Sends one frame (null: drain) to an encoder and hands every packet it
// gives back to `sink`. Returns 0 or a negative FFmpeg error.
template <typename Sink>
int encodeFrame(AVCodecContext* codec, const AVFrame* frame, const Sink& sink)
{
    int ret = avcodec_send_frame(codec, frame);
    if (ret < 0 && ret != AVERROR_EOF)
        return ret;
    for (;;) {
        PacketPtr packet = makePacket();
        if (!packet)
            return AVERROR(ENOMEM);
        ret = avcodec_receive_packet(codec, packet.get());
        if (ret == AVERROR(EAGAIN) || ret == AVERROR_EOF)
            return 0;
        if (ret < 0)
            return ret;
        sink(std::move(packet));
    }
}

// FFmpeg's text for an error code.
inline std::string avErrorText(int err)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(err, text, sizeof text);
    return text;
}

} // namespace mirabend
