#include "support/MediaProbe.h"

#include "recording/engine/FfmpegHandles.h"

#include <cmath>

namespace mirabend::test {
namespace {

// The file opened, with its streams read when `streams` is set; null when it does not open.
InputContextPtr openInput(const std::string& file, bool streams = true) {
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, file.c_str(), nullptr, nullptr) < 0)
        return nullptr;
    InputContextPtr input(raw);
    if (streams && avformat_find_stream_info(input.get(), nullptr) < 0)
        return nullptr;
    return input;
}

} // namespace

MediaInfo probe(const std::string& file) {
    MediaInfo info;
    const InputContextPtr input = openInput(file);
    if (!input)
        return info;
    info.opened = true;
    int videoIndex = -1;
    int audioIndex = -1;
    CodecContextPtr decoder;
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        const AVCodecParameters* p = input->streams[i]->codecpar;
        if (p->codec_type == AVMEDIA_TYPE_VIDEO && videoIndex < 0) {
            videoIndex = int(i);
            info.videoCodec = avcodec_get_name(p->codec_id);
            info.width = p->width;
            info.height = p->height;
        } else if (p->codec_type == AVMEDIA_TYPE_AUDIO && audioIndex < 0) {
            audioIndex = int(i);
            info.audioCodec = avcodec_get_name(p->codec_id);
            info.sampleRate = p->sample_rate;
            info.channels = p->ch_layout.nb_channels;
            const AVCodec* codec = avcodec_find_decoder(p->codec_id);
            decoder.reset(avcodec_alloc_context3(codec));
            avcodec_parameters_to_context(decoder.get(), p);
            if (avcodec_open2(decoder.get(), codec, nullptr) < 0)
                decoder.reset();
        }
    }
    PacketPtr packet = makePacket();
    FramePtr frame = makeFrame();
    double sum = 0;
    long long samples = 0;
    const auto drain = [&] {
        while (avcodec_receive_frame(decoder.get(), frame.get()) >= 0) {
            const int ch = frame->ch_layout.nb_channels;
            for (int c = 0; c < ch; ++c) {
                for (int s = 0; s < frame->nb_samples; ++s) {
                    double v = 0;
                    switch (frame->format) {
                    case AV_SAMPLE_FMT_S16:
                        v = reinterpret_cast<const int16_t*>(frame->data[0])[s * ch + c] / 32768.0;
                        break;
                    case AV_SAMPLE_FMT_S16P:
                        v = reinterpret_cast<const int16_t*>(frame->extended_data[c])[s] / 32768.0;
                        break;
                    case AV_SAMPLE_FMT_FLTP:
                        v = reinterpret_cast<const float*>(frame->extended_data[c])[s];
                        break;
                    case AV_SAMPLE_FMT_FLT:
                        v = reinterpret_cast<const float*>(frame->data[0])[s * ch + c];
                        break;
                    case AV_SAMPLE_FMT_U8:
                        v = (frame->data[0][s * ch + c] - 128) / 128.0;
                        break;
                    default:
                        break;
                    }
                    sum += v * v;
                }
            }
            samples += frame->nb_samples;
            av_frame_unref(frame.get());
        }
    };
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        if (packet->stream_index == videoIndex) {
            ++info.videoPackets;
            const AVStream* st = input->streams[videoIndex];
            const int64_t pts = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
            if (pts != AV_NOPTS_VALUE) {
                const double end = (pts + std::max<int64_t>(packet->duration, 0)) * av_q2d(st->time_base);
                info.videoSeconds = std::max(info.videoSeconds, end);
                const double start = pts * av_q2d(st->time_base);
                info.videoStartSeconds =
                    info.videoPackets == 1 ? start : std::min(info.videoStartSeconds, start);
            }
        } else if (packet->stream_index == audioIndex && decoder) {
            if (avcodec_send_packet(decoder.get(), packet.get()) >= 0)
                drain();
        }
        av_packet_unref(packet.get());
    }
    if (decoder) {
        avcodec_send_packet(decoder.get(), nullptr);
        drain();
        if (samples > 0 && info.sampleRate > 0) {
            info.audioSeconds = double(samples) / info.sampleRate;
            info.audioRms = std::sqrt(sum / double(samples * std::max(1, info.channels)));
        }
    }
    return info;
}

namespace {

// Calls `look` with the first frame at or after `atSeconds`, converted to
// `format`; false when no such frame decodes.
template <typename Look>
bool withFrame(const std::string& file, double atSeconds, AVPixelFormat format, Look look) {
    const InputContextPtr input = openInput(file);
    if (!input)
        return false;
    const int index = av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (index < 0)
        return false;
    const AVCodecParameters* p = input->streams[index]->codecpar;
    const AVCodec* codec = avcodec_find_decoder(p->codec_id);
    CodecContextPtr decoder(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(decoder.get(), p);
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0)
        return false;
    PacketPtr packet = makePacket();
    FramePtr frame = makeFrame();
    FramePtr out = makeFrame();
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        const bool mine = packet->stream_index == index;
        if (mine)
            avcodec_send_packet(decoder.get(), packet.get());
        av_packet_unref(packet.get());
        if (!mine || avcodec_receive_frame(decoder.get(), frame.get()) < 0)
            continue;
        const int64_t pts = frame->best_effort_timestamp;
        if (pts != AV_NOPTS_VALUE && pts * av_q2d(input->streams[index]->time_base) < atSeconds)
            continue;
        SwsPtr sws(sws_getContext(frame->width, frame->height, AVPixelFormat(frame->format), frame->width,
                                  frame->height, format, SWS_POINT, nullptr, nullptr, nullptr));
        out->format = format;
        out->width = frame->width;
        out->height = frame->height;
        if (!sws || av_frame_get_buffer(out.get(), 0) < 0)
            return false;
        sws_scale(sws.get(), frame->data, frame->linesize, 0, frame->height, out->data, out->linesize);
        look(*out);
        return true;
    }
    return false;
}

} // namespace

int brightestLuma(const std::string& file, int x, int y, int w, int h, double atSeconds) {
    int best = -1;
    withFrame(file, atSeconds, AV_PIX_FMT_GRAY8, [&](const AVFrame& gray) {
        best = 0;
        for (int row = y; row < std::min(y + h, gray.height); ++row) {
            for (int col = x; col < std::min(x + w, gray.width); ++col)
                best = std::max(best, int(gray.data[0][row * gray.linesize[0] + col]));
        }
    });
    return best;
}

std::array<int, 3> averageRgb(const std::string& file, int x, int y, int w, int h, double atSeconds) {
    std::array<int, 3> mean{-1, -1, -1};
    withFrame(file, atSeconds, AV_PIX_FMT_RGB24, [&](const AVFrame& rgb) {
        long sum[3] = {0, 0, 0};
        long count = 0;
        for (int row = y; row < std::min(y + h, rgb.height); ++row) {
            for (int col = x; col < std::min(x + w, rgb.width); ++col, ++count) {
                for (int c = 0; c < 3; ++c)
                    sum[c] += rgb.data[0][row * rgb.linesize[0] + col * 3 + c];
            }
        }
        for (int c = 0; count && c < 3; ++c)
            mean[std::size_t(c)] = int(sum[c] / count);
    });
    return mean;
}

std::vector<ReadChapter> readChapters(const std::string& file) {
    const InputContextPtr context = openInput(file, false);
    if (!context)
        return {};
    std::vector<ReadChapter> out;
    for (unsigned i = 0; i < context->nb_chapters; ++i) {
        const AVChapter* c = context->chapters[i];
        const AVDictionaryEntry* title = av_dict_get(c->metadata, "title", nullptr, 0);
        out.push_back({double(c->start) * av_q2d(c->time_base), double(c->end) * av_q2d(c->time_base),
                       title ? title->value : ""});
    }
    return out;
}

} // namespace mirabend::test
