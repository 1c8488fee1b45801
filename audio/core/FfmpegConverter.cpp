#include "audio/core/FfmpegConverter.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/audio_fifo.h>
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libavutil/samplefmt.h>
#include <libswresample/swresample.h>
}

#include <algorithm>
#include <cstring>

namespace mirabend {

namespace {

struct CodecContextDeleter {
    void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
};
struct SwrDeleter {
    void operator()(SwrContext* s) const { swr_free(&s); }
};
struct FifoDeleter {
    void operator()(AVAudioFifo* f) const { av_audio_fifo_free(f); }
};
struct FrameDeleter {
    void operator()(AVFrame* f) const { av_frame_free(&f); }
};
struct PacketDeleter {
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};
using CodecContextPtr = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
using SwrPtr = std::unique_ptr<SwrContext, SwrDeleter>;
using FifoPtr = std::unique_ptr<AVAudioFifo, FifoDeleter>;
using FramePtr = std::unique_ptr<AVFrame, FrameDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, PacketDeleter>;

// Owns the plane pointers and the sample memory of av_samples_alloc.
class SampleBuffer {
public:
    SampleBuffer() = default;
    SampleBuffer(const SampleBuffer&) = delete;
    SampleBuffer& operator=(const SampleBuffer&) = delete;
    ~SampleBuffer() {
        if (m_planes)
            av_freep(&m_planes[0]);
        av_freep(&m_planes);
    }
    bool allocate(int channels, int samples, AVSampleFormat format) {
        m_capacity = samples;
        return av_samples_alloc_array_and_samples(&m_planes, nullptr, channels, samples, format, 0) >= 0;
    }
    std::uint8_t** planes() const { return m_planes; }
    int capacity() const { return m_capacity; }

private:
    std::uint8_t** m_planes = nullptr;
    int m_capacity = 0;
};

std::string avText(int err) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(err, text, sizeof text);
    return text;
}

void putLe16(std::vector<std::uint8_t>& out, std::uint32_t v) {
    out.push_back(static_cast<std::uint8_t>(v & 0xFF));
    out.push_back(static_cast<std::uint8_t>((v >> 8) & 0xFF));
}

AVCodecID codecFor(const WaveFormatFields& f) {
    switch (f.formatTag) {
    case wave_tag::kPcm:
        switch (f.bitsPerSample) {
        case 8:
            return AV_CODEC_ID_PCM_U8;
        case 16:
            return AV_CODEC_ID_PCM_S16LE;
        case 24:
            return AV_CODEC_ID_PCM_S24LE;
        case 32:
            return AV_CODEC_ID_PCM_S32LE;
        default:
            return AV_CODEC_ID_NONE;
        }
    case wave_tag::kMuLaw:
        return AV_CODEC_ID_PCM_MULAW;
    case wave_tag::kALaw:
        return AV_CODEC_ID_PCM_ALAW;
    case wave_tag::kImaAdpcm:
        return AV_CODEC_ID_ADPCM_IMA_WAV;
    case wave_tag::kMsAdpcm:
        return AV_CODEC_ID_ADPCM_MS;
    case wave_tag::kGsm610:
        return AV_CODEC_ID_GSM_MS;
    case wave_tag::kMpegLayer3:
        return AV_CODEC_ID_MP3;
    default:
        return AV_CODEC_ID_NONE;
    }
}

AVSampleFormat pickSampleFormat(const AVCodec* codec) {
    if (!codec->sample_fmts)
        return AV_SAMPLE_FMT_S16;
    for (const AVSampleFormat* f = codec->sample_fmts; *f != AV_SAMPLE_FMT_NONE; ++f) {
        if (*f == AV_SAMPLE_FMT_S16 || *f == AV_SAMPLE_FMT_S16P)
            return *f;
    }
    return codec->sample_fmts[0];
}

// Opens the encoder for `f`'s tag, rate and channels. `parameter` is the bit
// rate (MP3) or block size (ADPCM); 0 keeps the codec's default.
Failure<ConverterError> openEncoder(const WaveFormatFields& f, std::int64_t parameter, CodecContextPtr& out) {
    const AVCodecID id = codecFor(f);
    if (id == AV_CODEC_ID_NONE)
        return {ConverterError::BadFormat, "no converter for format tag " + std::to_string(f.formatTag)};
    const AVCodec* codec = avcodec_find_encoder(id);
    if (!codec)
        return {ConverterError::NoEncoder, std::string("FFmpeg has no encoder for ") + avcodec_get_name(id)};
    if (f.channels < 1 || f.samplesPerSec < 1)
        return {ConverterError::BadFormat, "the target format has no channels or no rate"};
    CodecContextPtr ctx(avcodec_alloc_context3(codec));
    if (!ctx)
        return {ConverterError::CodecRefused, "out of memory"};
    ctx->sample_rate = static_cast<int>(f.samplesPerSec);
    av_channel_layout_default(&ctx->ch_layout, f.channels);
    ctx->sample_fmt = pickSampleFormat(codec);
    ctx->time_base = AVRational{1, ctx->sample_rate};
    if (id == AV_CODEC_ID_MP3 && parameter > 0)
        ctx->bit_rate = parameter;
    if ((id == AV_CODEC_ID_ADPCM_IMA_WAV || id == AV_CODEC_ID_ADPCM_MS) && parameter > 0)
        av_opt_set_int(ctx->priv_data, "block_size", parameter, 0);
    const int err = avcodec_open2(ctx.get(), codec, nullptr);
    if (err < 0)
        return {ConverterError::CodecRefused, std::string(codec->name) + " refused " +
                                                  std::to_string(f.samplesPerSec) + " Hz, " +
                                                  std::to_string(f.channels) + " channels: " + avText(err)};
    out = std::move(ctx);
    return {};
}

// The image of what an opened encoder produces.
std::vector<std::uint8_t> imageOf(const AVCodecContext& ctx, std::uint16_t tag) {
    WaveFormatFields f;
    f.formatTag = tag;
    f.channels = static_cast<std::uint16_t>(ctx.ch_layout.nb_channels);
    f.samplesPerSec = static_cast<std::uint32_t>(ctx.sample_rate);
    const int frame = ctx.frame_size;
    switch (ctx.codec_id) {
    case AV_CODEC_ID_ADPCM_IMA_WAV:
        f.bitsPerSample = 4;
        f.blockAlign = static_cast<std::uint16_t>(ctx.block_align);
        f.avgBytesPerSec =
            static_cast<std::uint32_t>(static_cast<std::int64_t>(ctx.block_align) * ctx.sample_rate / frame);
        putLe16(f.extra, static_cast<std::uint32_t>(frame));
        break;
    case AV_CODEC_ID_ADPCM_MS:
        f.bitsPerSample = 4;
        f.blockAlign = static_cast<std::uint16_t>(ctx.block_align);
        f.avgBytesPerSec =
            static_cast<std::uint32_t>(static_cast<std::int64_t>(ctx.block_align) * ctx.sample_rate / frame);
        if (ctx.extradata_size > 0) {
            f.extra.assign(ctx.extradata, ctx.extradata + ctx.extradata_size);
        } else {
            // Samples per block, then the seven standard coefficient pairs.
            static const std::int16_t coef[7][2] = {{256, 0}, {512, -256}, {0, 0},     {192, 64},
                                                    {240, 0}, {460, -208}, {392, -232}};
            putLe16(f.extra, static_cast<std::uint32_t>(frame));
            putLe16(f.extra, 7);
            for (const auto& c : coef) {
                putLe16(f.extra, static_cast<std::uint16_t>(c[0]));
                putLe16(f.extra, static_cast<std::uint16_t>(c[1]));
            }
        }
        break;
    case AV_CODEC_ID_GSM_MS:
        f.bitsPerSample = 0;
        f.blockAlign = static_cast<std::uint16_t>(ctx.block_align > 0 ? ctx.block_align : 65);
        f.avgBytesPerSec = static_cast<std::uint32_t>(static_cast<std::int64_t>(f.blockAlign) *
                                                      ctx.sample_rate / (frame > 0 ? frame : 320));
        putLe16(f.extra, static_cast<std::uint32_t>(frame > 0 ? frame : 320));
        break;
    case AV_CODEC_ID_MP3: {
        // MPEGLAYER3WAVEFORMAT: wID, fdwFlags, nBlockSize, nFramesPerBlock,
        // nCodecDelay.
        const std::int64_t bitRate = ctx.bit_rate;
        const int samplesPerFrame = ctx.sample_rate >= 32000 ? 1152 : 576;
        f.bitsPerSample = 0;
        f.blockAlign = 1;
        f.avgBytesPerSec = static_cast<std::uint32_t>(bitRate / 8);
        putLe16(f.extra, 1);
        putLe16(f.extra, 2);
        putLe16(f.extra, 0);
        putLe16(f.extra, static_cast<std::uint32_t>(bitRate * samplesPerFrame / 8 / ctx.sample_rate));
        putLe16(f.extra, 1);
        putLe16(f.extra, 1393);
        break;
    }
    default: { // PCM, u-Law, A-Law
        const int bits = av_get_bits_per_sample(ctx.codec_id);
        f.bitsPerSample = static_cast<std::uint16_t>(bits);
        f.blockAlign = static_cast<std::uint16_t>(bits / 8 * f.channels);
        f.avgBytesPerSec = f.blockAlign * f.samplesPerSec;
        break;
    }
    }
    return formatImage(f);
}

class FfmpegConverter : public AudioConverter {
public:
    FfmpegConverter(const WaveFormatFields& source, const WaveFormatFields& target)
        : m_source(source)
        , m_target(target) {}

    Failure<ConverterError> open();

    std::size_t outputSizeFor(std::size_t inputBytes) const override;
    Failure<ConverterError> convert(const std::uint8_t* input, std::size_t inputBytes, std::uint8_t* output,
                                    std::size_t outputCapacity, ConvertResult& result) override;
    Failure<ConverterError> flush(std::uint8_t* output, std::size_t outputCapacity,
                                  std::size_t& produced) override;

private:
    Failure<ConverterError> resampleIntoFifo(const std::uint8_t* input, int frames);
    Failure<ConverterError> encodeFromFifo(bool finish, std::uint8_t* output, std::size_t capacity,
                                           std::size_t& produced);
    Failure<ConverterError> drainPackets(std::uint8_t* output, std::size_t capacity, std::size_t& produced);

    WaveFormatFields m_source;
    WaveFormatFields m_target;
    CodecContextPtr m_ctx;
    SwrPtr m_swr;
    FifoPtr m_fifo;
    FramePtr m_frame;
    PacketPtr m_packet;
    SampleBuffer m_scratch;
    int m_chunk = 0; // samples per encoded frame
    bool m_holdsRemainder = false;
    bool m_wholeBlocksOnly = false;
    bool m_flushed = false;
    std::int64_t m_pts = 0;
};

Failure<ConverterError> FfmpegConverter::open() {
    std::int64_t parameter = 0;
    if (m_target.formatTag == wave_tag::kMpegLayer3)
        parameter = static_cast<std::int64_t>(m_target.avgBytesPerSec) * 8;
    else if (m_target.formatTag == wave_tag::kImaAdpcm || m_target.formatTag == wave_tag::kMsAdpcm)
        parameter = m_target.blockAlign;
    if (Failure<ConverterError> f = openEncoder(m_target, parameter, m_ctx))
        return f;
    if ((m_target.formatTag == wave_tag::kImaAdpcm || m_target.formatTag == wave_tag::kMsAdpcm) &&
        m_ctx->block_align != m_target.blockAlign)
        return {ConverterError::CodecRefused,
                "the encoder cannot make blocks of " + std::to_string(m_target.blockAlign) + " bytes"};

    AVChannelLayout inLayout;
    av_channel_layout_default(&inLayout, m_source.channels);
    SwrContext* raw = nullptr;
    int err = swr_alloc_set_opts2(&raw, &m_ctx->ch_layout, m_ctx->sample_fmt, m_ctx->sample_rate, &inLayout,
                                  AV_SAMPLE_FMT_S16, static_cast<int>(m_source.samplesPerSec), 0, nullptr);
    m_swr.reset(raw);
    av_channel_layout_uninit(&inLayout);
    if (err < 0 || (err = swr_init(m_swr.get())) < 0)
        return {ConverterError::CodecRefused, "resampler: " + avText(err)};

    const bool resampling =
        m_source.samplesPerSec != m_target.samplesPerSec || m_source.channels != m_target.channels;
    const bool fixedFrames = m_ctx->frame_size > 0;
    m_holdsRemainder = fixedFrames && (m_target.blockAlign <= 1 || resampling);
    m_wholeBlocksOnly = fixedFrames && !m_holdsRemainder;
    m_chunk = fixedFrames ? m_ctx->frame_size : 4096;

    const int oneSecond = static_cast<int>(m_target.samplesPerSec) + m_chunk + 256;
    m_fifo.reset(av_audio_fifo_alloc(m_ctx->sample_fmt, m_ctx->ch_layout.nb_channels, oneSecond * 2));
    m_frame.reset(av_frame_alloc());
    m_packet.reset(av_packet_alloc());
    if (!m_fifo || !m_frame || !m_packet ||
        !m_scratch.allocate(m_ctx->ch_layout.nb_channels, oneSecond, m_ctx->sample_fmt))
        return {ConverterError::CodecRefused, "out of memory"};
    m_frame->format = m_ctx->sample_fmt;
    m_frame->sample_rate = m_ctx->sample_rate;
    m_frame->nb_samples = m_chunk;
    if (av_channel_layout_copy(&m_frame->ch_layout, &m_ctx->ch_layout) < 0 ||
        av_frame_get_buffer(m_frame.get(), 0) < 0)
        return {ConverterError::CodecRefused, "out of memory"};
    return {};
}

std::size_t FfmpegConverter::outputSizeFor(std::size_t inputBytes) const {
    const std::size_t frames = inputBytes / std::max<std::size_t>(m_source.blockAlign, 1);
    const std::size_t targetFrames =
        frames * m_target.samplesPerSec / std::max<std::uint32_t>(m_source.samplesPerSec, 1) +
        static_cast<std::size_t>(m_chunk) + 512;
    std::size_t bytes = 0;
    if (m_target.formatTag == wave_tag::kMpegLayer3)
        bytes = targetFrames * 5 / 4 * m_target.channels + 7200; // LAME's own bound
    else if (m_ctx->frame_size > 0)
        bytes = (targetFrames / static_cast<std::size_t>(m_chunk) + 2) * m_target.blockAlign;
    else
        bytes = targetFrames * std::max<std::size_t>(m_target.blockAlign, 1);
    return bytes + 16384;
}

Failure<ConverterError> FfmpegConverter::resampleIntoFifo(const std::uint8_t* input, int frames) {
    const std::size_t stride = m_source.blockAlign;
    while (frames > 0 || !input) {
        // Feed at most half the scratch capacity at a time so the output fits.
        const int take = input ? std::min(frames, m_scratch.capacity() / 2) : 0;
        const std::uint8_t* in[1] = {input};
        const int got =
            swr_convert(m_swr.get(), m_scratch.planes(), m_scratch.capacity(), input ? in : nullptr, take);
        if (got < 0)
            return {ConverterError::EncodeFailed, "resampler: " + avText(got)};
        if (got > 0 &&
            av_audio_fifo_write(m_fifo.get(), reinterpret_cast<void**>(m_scratch.planes()), got) < got)
            return {ConverterError::EncodeFailed, "out of memory"};
        if (!input) {
            if (got == 0)
                break;
            continue;
        }
        input += static_cast<std::size_t>(take) * stride;
        frames -= take;
    }
    return {};
}

Failure<ConverterError> FfmpegConverter::drainPackets(std::uint8_t* output, std::size_t capacity,
                                                      std::size_t& produced) {
    for (;;) {
        const int err = avcodec_receive_packet(m_ctx.get(), m_packet.get());
        if (err == AVERROR(EAGAIN) || err == AVERROR_EOF)
            return {};
        if (err < 0)
            return {ConverterError::EncodeFailed, avText(err)};
        const auto size = static_cast<std::size_t>(m_packet->size);
        if (produced + size > capacity) {
            av_packet_unref(m_packet.get());
            return {ConverterError::OutputTooSmall, "output block too small for the encoded data"};
        }
        std::memcpy(output + produced, m_packet->data, size);
        produced += size;
        av_packet_unref(m_packet.get());
    }
}

Failure<ConverterError> FfmpegConverter::encodeFromFifo(bool finish, std::uint8_t* output,
                                                        std::size_t capacity, std::size_t& produced) {
    const bool fixed = m_ctx->frame_size > 0;
    const bool smallLast = m_ctx->codec->capabilities & AV_CODEC_CAP_SMALL_LAST_FRAME;
    for (;;) {
        const int available = av_audio_fifo_size(m_fifo.get());
        int take = std::min(available, m_chunk);
        if (take == 0 || (fixed && take < m_chunk && !finish))
            break;
        if (av_frame_make_writable(m_frame.get()) < 0)
            return {ConverterError::EncodeFailed, "out of memory"};
        int frameSamples = take;
        if (fixed && take < m_chunk && !smallLast) {
            // The codec wants whole frames: pad the last one with silence.
            av_samples_set_silence(m_frame->data, take, m_chunk - take, m_ctx->ch_layout.nb_channels,
                                   m_ctx->sample_fmt);
            frameSamples = m_chunk;
        }
        if (av_audio_fifo_read(m_fifo.get(), reinterpret_cast<void**>(m_frame->data), take) < take)
            return {ConverterError::EncodeFailed, "sample FIFO underrun"};
        m_frame->nb_samples = frameSamples;
        m_frame->pts = m_pts;
        m_pts += frameSamples;
        const int err = avcodec_send_frame(m_ctx.get(), m_frame.get());
        if (err < 0)
            return {ConverterError::EncodeFailed, avText(err)};
        if (Failure<ConverterError> f = drainPackets(output, capacity, produced))
            return f;
    }
    return {};
}

Failure<ConverterError> FfmpegConverter::convert(const std::uint8_t* input, std::size_t inputBytes,
                                                 std::uint8_t* output, std::size_t outputCapacity,
                                                 ConvertResult& result) {
    result = {};
    if (m_flushed)
        return {ConverterError::EncodeFailed, "the stream has ended"};
    int frames = static_cast<int>(inputBytes / m_source.blockAlign);
    if (m_wholeBlocksOnly)
        frames -= frames % m_chunk;
    if (frames > 0) {
        if (Failure<ConverterError> f = resampleIntoFifo(input, frames))
            return f;
    }
    result.used = static_cast<std::size_t>(frames) * m_source.blockAlign;
    Failure<ConverterError> f = encodeFromFifo(false, output, outputCapacity, result.produced);
    return f;
}

Failure<ConverterError> FfmpegConverter::flush(std::uint8_t* output, std::size_t outputCapacity,
                                               std::size_t& produced) {
    produced = 0;
    if (m_flushed)
        return {};
    m_flushed = true;
    if (Failure<ConverterError> f = resampleIntoFifo(nullptr, 0))
        return f;
    if (Failure<ConverterError> f = encodeFromFifo(true, output, outputCapacity, produced))
        return f;
    const int err = avcodec_send_frame(m_ctx.get(), nullptr);
    if (err < 0 && err != AVERROR_EOF)
        return {ConverterError::EncodeFailed, avText(err)};
    return drainPackets(output, outputCapacity, produced);
}

} // namespace

Failure<ConverterError> openFfmpegConverter(const WaveFormatFields& source, const WaveFormatFields& target,
                                            std::unique_ptr<AudioConverter>& converter) {
    auto c = std::make_unique<FfmpegConverter>(source, target);
    if (Failure<ConverterError> f = c->open())
        return f;
    converter = std::move(c);
    return {};
}

Failure<ConverterError> ffmpegTargetImage(std::uint16_t formatTag, std::int32_t sampleRate,
                                          std::int32_t channels, std::int32_t bitRateOrBlock,
                                          std::vector<std::uint8_t>& image) {
    WaveFormatFields f;
    f.formatTag = formatTag;
    f.channels = static_cast<std::uint16_t>(channels);
    f.samplesPerSec = static_cast<std::uint32_t>(sampleRate);
    f.bitsPerSample = formatTag == wave_tag::kPcm ? static_cast<std::uint16_t>(bitRateOrBlock) : 0;
    CodecContextPtr ctx;
    const std::int64_t parameter = formatTag == wave_tag::kPcm ? 0 : bitRateOrBlock;
    if (Failure<ConverterError> failure = openEncoder(f, parameter, ctx))
        return failure;
    image = imageOf(*ctx, formatTag);
    return {};
}

} // namespace mirabend
