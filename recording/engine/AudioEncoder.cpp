#include "recording/engine/AudioEncoder.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
}

#include <algorithm>

namespace mirabend {

RecorderFailure AudioEncoder::open(const AudioTarget& target, int inputRate, int inputChannels,
                                   bool globalHeader)
{
    const AVCodec* codec = avcodec_find_encoder_by_name(target.encoder.c_str());
    if (!codec)
        return {RecorderError::EncoderUnavailable, "this FFmpeg has no " + target.encoder + " encoder"};
    CodecContextPtr c(avcodec_alloc_context3(codec));
    if (!c)
        return {RecorderError::EncoderUnavailable, "out of memory"};
    c->sample_rate = target.sampleRate;
    av_channel_layout_default(&c->ch_layout, target.channels);
    c->sample_fmt = codec->sample_fmts ? codec->sample_fmts[0] : AV_SAMPLE_FMT_S16;
    // libmp3lame lists 32-bit first; 16-bit planar is enough and cheaper.
    if (codec->sample_fmts) {
        for (const AVSampleFormat* f = codec->sample_fmts; *f != AV_SAMPLE_FMT_NONE; ++f) {
            if (*f == AV_SAMPLE_FMT_S16P || *f == AV_SAMPLE_FMT_S16)
                c->sample_fmt = *f;
        }
    }
    c->time_base = AVRational{1, target.sampleRate};
    if (target.bitRate > 0)
        c->bit_rate = target.bitRate;
    if (globalHeader)
        c->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    const int ret = avcodec_open2(c.get(), codec, nullptr);
    if (ret < 0)
        return {RecorderError::EncoderUnavailable,
                target.encoder + " refused " + std::to_string(target.sampleRate) + " Hz, " +
                    std::to_string(target.channels) + " channel(s): " + avErrorText(ret)};
    AVChannelLayout inLayout;
    av_channel_layout_default(&inLayout, inputChannels);
    SwrContext* raw = nullptr;
    if (swr_alloc_set_opts2(&raw, &c->ch_layout, c->sample_fmt, c->sample_rate, &inLayout, AV_SAMPLE_FMT_S16,
                            inputRate, 0, nullptr) < 0) {
        av_channel_layout_uninit(&inLayout);
        return {RecorderError::EncoderUnavailable, "cannot set up the sample conversion"};
    }
    av_channel_layout_uninit(&inLayout);
    m_resampler.reset(raw);
    if (swr_init(m_resampler.get()) < 0)
        return {RecorderError::EncoderUnavailable, "cannot set up the sample conversion"};
    // PCM has no frame size of its own: blocks of 1/20 s.
    m_frameSize = c->frame_size > 0 ? c->frame_size : std::max(64, target.sampleRate / 20);
    m_fifo.reset(av_audio_fifo_alloc(c->sample_fmt, target.channels, m_frameSize * 4));
    m_converted = makeFrame();
    if (!m_fifo || !m_converted)
        return {RecorderError::EncoderUnavailable, "out of memory"};
    m_inputRate = inputRate;
    m_inputChannels = inputChannels;
    m_codec = std::move(c);
    return {};
}

int AudioEncoder::write(const std::int16_t* samples, std::int64_t count, const Sink& sink)
{
    while (count > 0) {
        const int chunk = int(std::min<std::int64_t>(count, 8192));
        if (!samples && m_silence.size() < std::size_t(chunk * m_inputChannels))
            m_silence.assign(std::size_t(chunk * m_inputChannels), 0);
        const std::int16_t* in = samples ? samples : m_silence.data();
        const int outCapacity = swr_get_out_samples(m_resampler.get(), chunk);
        if (m_converted->nb_samples < outCapacity) {
            av_frame_unref(m_converted.get());
            m_converted->format = m_codec->sample_fmt;
            av_channel_layout_copy(&m_converted->ch_layout, &m_codec->ch_layout);
            m_converted->nb_samples = outCapacity;
            if (av_frame_get_buffer(m_converted.get(), 0) < 0)
                return AVERROR(ENOMEM);
        }
        const std::uint8_t* inPlanes[1] = {reinterpret_cast<const std::uint8_t*>(in)};
        const int got =
            swr_convert(m_resampler.get(), m_converted->extended_data, outCapacity, inPlanes, chunk);
        if (got < 0)
            return got;
        if (got > 0 && av_audio_fifo_write(m_fifo.get(), reinterpret_cast<void**>(m_converted->extended_data),
                                           got) < got)
            return AVERROR(ENOMEM);
        if (samples)
            samples += std::size_t(chunk) * std::size_t(m_inputChannels);
        count -= chunk;
        if (const int ret = encodeFrames(false, sink); ret < 0)
            return ret;
    }
    return 0;
}

int AudioEncoder::encodeFrames(bool all, const Sink& sink)
{
    const bool variable = m_codec->codec->capabilities & AV_CODEC_CAP_VARIABLE_FRAME_SIZE;
    while (av_audio_fifo_size(m_fifo.get()) >= m_frameSize || (all && av_audio_fifo_size(m_fifo.get()) > 0)) {
        const int available = std::min(av_audio_fifo_size(m_fifo.get()), m_frameSize);
        FramePtr frame = makeFrame();
        if (!frame)
            return AVERROR(ENOMEM);
        frame->format = m_codec->sample_fmt;
        av_channel_layout_copy(&frame->ch_layout, &m_codec->ch_layout);
        frame->sample_rate = m_codec->sample_rate;
        // Codecs with a fixed frame size get the last frame padded with silence.
        frame->nb_samples = variable || m_codec->frame_size == 0 ? available : m_frameSize;
        if (av_frame_get_buffer(frame.get(), 0) < 0)
            return AVERROR(ENOMEM);
        if (frame->nb_samples > available)
            av_samples_set_silence(frame->extended_data, 0, frame->nb_samples, m_codec->ch_layout.nb_channels,
                                   m_codec->sample_fmt);
        if (av_audio_fifo_read(m_fifo.get(), reinterpret_cast<void**>(frame->extended_data), available) <
            available)
            return AVERROR(EIO);
        frame->pts = m_nextPts;
        m_nextPts += frame->nb_samples;
        if (const int ret = send(frame.get(), sink); ret < 0)
            return ret;
    }
    return 0;
}

int AudioEncoder::send(const AVFrame* frame, const Sink& sink)
{
    return encodeFrame(m_codec.get(), frame, sink);
}

int AudioEncoder::finish(const Sink& sink)
{
    if (!m_codec)
        return 0;
    // What the resampler still holds.
    for (;;) {
        const int capacity = std::max(m_converted->nb_samples, 0);
        if (capacity <= 0)
            break;
        const int got = swr_convert(m_resampler.get(), m_converted->extended_data, capacity, nullptr, 0);
        if (got <= 0)
            break;
        av_audio_fifo_write(m_fifo.get(), reinterpret_cast<void**>(m_converted->extended_data), got);
    }
    if (const int ret = encodeFrames(true, sink); ret < 0)
        return ret;
    return send(nullptr, sink);
}

} // namespace mirabend
