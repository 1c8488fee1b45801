#include "TestFiles.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace mirabend::test {

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "mirabend-audio-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(m_path, ec);
}

std::vector<std::uint8_t> readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeFile(const std::string& path, const std::vector<std::uint8_t>& data) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
}

std::uint32_t le32(const std::vector<std::uint8_t>& d, std::size_t at) {
    return static_cast<std::uint32_t>(d.at(at)) | (static_cast<std::uint32_t>(d.at(at + 1)) << 8) |
           (static_cast<std::uint32_t>(d.at(at + 2)) << 16) |
           (static_cast<std::uint32_t>(d.at(at + 3)) << 24);
}

std::uint16_t le16(const std::vector<std::uint8_t>& d, std::size_t at) {
    return static_cast<std::uint16_t>(d.at(at) | (d.at(at + 1) << 8));
}

std::vector<std::int16_t> sine(double frequency, int rate, int channels, std::size_t frames,
                               double amplitude) {
    std::vector<std::int16_t> out;
    out.reserve(frames * static_cast<std::size_t>(channels));
    for (std::size_t i = 0; i < frames; ++i) {
        const double v = amplitude * std::sin(2 * M_PI * frequency * static_cast<double>(i) / rate);
        for (int c = 0; c < channels; ++c)
            out.push_back(static_cast<std::int16_t>(std::lround(v)));
    }
    return out;
}

namespace {
struct FormatCloser {
    void operator()(AVFormatContext* f) const { avformat_close_input(&f); }
};
struct CodecFreer {
    void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
};
struct PacketFreer {
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};
struct FrameFreer {
    void operator()(AVFrame* f) const { av_frame_free(&f); }
};

void collect(AVCodecContext* dec, AVFrame* frame, Probe& p) {
    while (avcodec_receive_frame(dec, frame) == 0) {
        p.decodedSamples += frame->nb_samples;
        const int ch = frame->ch_layout.nb_channels;
        const bool planar = av_sample_fmt_is_planar(static_cast<AVSampleFormat>(frame->format));
        for (int c = 0; c < (planar ? ch : 1); ++c) {
            const int n = frame->nb_samples * (planar ? 1 : ch);
            for (int i = 0; i < n; ++i) {
                double v = 0;
                switch (frame->format) {
                case AV_SAMPLE_FMT_S16:
                case AV_SAMPLE_FMT_S16P:
                    v = reinterpret_cast<const std::int16_t*>(frame->data[c])[i] / 32768.0;
                    break;
                case AV_SAMPLE_FMT_FLT:
                case AV_SAMPLE_FMT_FLTP:
                    v = reinterpret_cast<const float*>(frame->data[c])[i];
                    break;
                case AV_SAMPLE_FMT_U8:
                    v = (frame->data[c][i] - 128) / 128.0;
                    break;
                case AV_SAMPLE_FMT_S32:
                case AV_SAMPLE_FMT_S32P:
                    v = reinterpret_cast<const std::int32_t*>(frame->data[c])[i] / 2147483648.0;
                    break;
                default:
                    break;
                }
                p.peak = std::max(p.peak, std::fabs(v));
            }
        }
    }
}
} // namespace

Probe probeFile(const std::string& path) {
    Probe p;
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, path.c_str(), nullptr, nullptr) < 0) {
        p.error = "avformat_open_input failed";
        return p;
    }
    std::unique_ptr<AVFormatContext, FormatCloser> fmt(raw);
    if (avformat_find_stream_info(fmt.get(), nullptr) < 0 || fmt->nb_streams != 1) {
        p.error = "no single stream";
        return p;
    }
    const AVCodecParameters* par = fmt->streams[0]->codecpar;
    p.opened = true;
    p.codecId = par->codec_id;
    p.channels = par->ch_layout.nb_channels;
    p.sampleRate = par->sample_rate;

    const AVCodec* codec = avcodec_find_decoder(par->codec_id);
    if (!codec) {
        p.error = "no decoder";
        return p;
    }
    std::unique_ptr<AVCodecContext, CodecFreer> dec(avcodec_alloc_context3(codec));
    if (avcodec_parameters_to_context(dec.get(), par) < 0 || avcodec_open2(dec.get(), codec, nullptr) < 0) {
        p.error = "decoder refused the stream";
        return p;
    }
    std::unique_ptr<AVPacket, PacketFreer> pkt(av_packet_alloc());
    std::unique_ptr<AVFrame, FrameFreer> frame(av_frame_alloc());
    while (av_read_frame(fmt.get(), pkt.get()) >= 0) {
        if (avcodec_send_packet(dec.get(), pkt.get()) < 0)
            p.error = "decoding failed";
        av_packet_unref(pkt.get());
        collect(dec.get(), frame.get(), p);
    }
    avcodec_send_packet(dec.get(), nullptr);
    collect(dec.get(), frame.get(), p);
    return p;
}

} // namespace mirabend::test
