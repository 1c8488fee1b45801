#include "support/MediaProbe.h"

#include "recording/engine/FfmpegHandles.h"

#include <cmath>

namespace mirabend::test {

MediaInfo probe(const std::string& file)
{
    MediaInfo info;
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, file.c_str(), nullptr, nullptr) < 0)
        return info;
    InputContextPtr input(raw);
    if (avformat_find_stream_info(input.get(), nullptr) < 0)
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

} // namespace mirabend::test

namespace mirabend::test {

int brightestLuma(const std::string& file, int x, int y, int w, int h, double atSeconds)
{
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, file.c_str(), nullptr, nullptr) < 0)
        return -1;
    InputContextPtr input(raw);
    if (avformat_find_stream_info(input.get(), nullptr) < 0)
        return -1;
    const int index = av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (index < 0)
        return -1;
    const AVCodecParameters* p = input->streams[index]->codecpar;
    const AVCodec* codec = avcodec_find_decoder(p->codec_id);
    CodecContextPtr decoder(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(decoder.get(), p);
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0)
        return -1;
    PacketPtr packet = makePacket();
    FramePtr frame = makeFrame();
    FramePtr gray = makeFrame();
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
                                  frame->height, AV_PIX_FMT_GRAY8, SWS_POINT, nullptr, nullptr, nullptr));
        gray->format = AV_PIX_FMT_GRAY8;
        gray->width = frame->width;
        gray->height = frame->height;
        if (!sws || av_frame_get_buffer(gray.get(), 0) < 0)
            return -1;
        sws_scale(sws.get(), frame->data, frame->linesize, 0, frame->height, gray->data, gray->linesize);
        int best = 0;
        for (int row = y; row < std::min(y + h, gray->height); ++row) {
            for (int col = x; col < std::min(x + w, gray->width); ++col)
                best = std::max(best, int(gray->data[0][row * gray->linesize[0] + col]));
        }
        return best;
    }
    return -1;
}

} // namespace mirabend::test
