#include "recording/repair/VideoRepair.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/error.h>
}

#include <cstdio>
#include <memory>
#include <sys/stat.h>
#include <vector>

namespace mirabend {

namespace {

struct InputCloser {
    void operator()(AVFormatContext* c) const { avformat_close_input(&c); }
};
struct OutputCloser {
    void operator()(AVFormatContext* c) const {
        if (c->pb)
            avio_closep(&c->pb);
        avformat_free_context(c);
    }
};
struct PacketFreer {
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};
using Input = std::unique_ptr<AVFormatContext, InputCloser>;
using Output = std::unique_ptr<AVFormatContext, OutputCloser>;
using Packet = std::unique_ptr<AVPacket, PacketFreer>;

std::string errorText(int err) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(err, text, sizeof text);
    return text;
}

// The repaired copy is written beside the original, so the final rename
// stays on one file system; the extension is kept for the format.
std::string temporaryName(const std::string& file) {
    const std::size_t slash = file.rfind('/');
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    return file.substr(0, start) + ".repairing-" + file.substr(start);
}

struct StreamState {
    int out = -1; // output stream index, -1 when left out
    Packet held;  // last packet read, written once the next arrives
    std::int64_t lastDts = AV_NOPTS_VALUE;
    std::int64_t firstPts = AV_NOPTS_VALUE; // of the first picture, in the input's time base
    std::int64_t firstSlot = 0;             // its place on the frame grid
};

// Millisecond containers (Matroska, FLV, ASF) round each picture's time, and
// the recorder's pictures start half a frame late there (the muxer shifts
// them by the AAC encoder's priming), so the roundings sit on the edge of two
// frames: a player that resamples to the frame rate then sees two pictures
// for one frame. Constant-rate pictures are put back on their frame grid.
void snapToFrameGrid(StreamState& s, AVPacket& packet, const AVStream& in, const AVStream& out) {
    const AVRational rate = in.avg_frame_rate.num > 0 ? in.avg_frame_rate : in.r_frame_rate;
    if (in.codecpar->codec_type != AVMEDIA_TYPE_VIDEO || rate.num <= 0 || rate.den <= 0 ||
        out.time_base.den > 1000 || packet.pts != packet.dts)
        return;
    const AVRational frame = av_inv_q(rate);
    if (s.firstPts == AV_NOPTS_VALUE) {
        s.firstPts = packet.pts;
        s.firstSlot = av_rescale_q(packet.pts, in.time_base, frame);
    }
    const std::int64_t slot = s.firstSlot + av_rescale_q(packet.pts - s.firstPts, in.time_base, frame);
    packet.pts = packet.dts = av_rescale_q(slot, frame, out.time_base);
    packet.duration = av_rescale_q(1, frame, out.time_base);
}

} // namespace

VideoRepairFailure repairVideo(const std::string& file, VideoRepairReport& report,
                               const std::function<bool(double)>& progress) {
    report = {};
    struct stat info {};
    if (::stat(file.c_str(), &info) != 0)
        return {VideoRepairError::FileMissing, file + ": " + errnoText(errno)};
    const AVOutputFormat* format = av_guess_format(nullptr, file.c_str(), nullptr);
    if (!format)
        return {VideoRepairError::UnknownFormat, file + ": no video format has this file name's extension"};

    AVFormatContext* raw = nullptr;
    int ret = avformat_open_input(&raw, file.c_str(), nullptr, nullptr);
    if (ret < 0)
        return {VideoRepairError::Unreadable, file + ": " + errorText(ret)};
    Input input(raw);
    // A damaged file's streams are found from what is there.
    if ((ret = avformat_find_stream_info(input.get(), nullptr)) < 0)
        return {VideoRepairError::Unreadable, file + ": " + errorText(ret)};

    raw = nullptr;
    ret = avformat_alloc_output_context2(&raw, format, nullptr, nullptr);
    if (ret < 0 || !raw)
        return {VideoRepairError::WriteFailed,
                "no " + std::string(format->name) + " muxer: " + errorText(ret)};
    Output output(raw);
    std::vector<StreamState> streams(input->nb_streams);
    bool haveVideo = false;
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        const AVStream* in = input->streams[i];
        const AVMediaType type = in->codecpar->codec_type;
        if ((type != AVMEDIA_TYPE_VIDEO && type != AVMEDIA_TYPE_AUDIO) ||
            in->codecpar->codec_id == AV_CODEC_ID_NONE)
            continue;
        AVStream* out = avformat_new_stream(output.get(), nullptr);
        if (!out || avcodec_parameters_copy(out->codecpar, in->codecpar) < 0)
            return {VideoRepairError::WriteFailed, "cannot copy the streams of " + file};
        out->codecpar->codec_tag = 0;
        out->time_base = in->time_base;
        out->avg_frame_rate = in->avg_frame_rate;
        out->r_frame_rate = in->r_frame_rate;
        streams[i].out = out->index;
        haveVideo = haveVideo || type == AVMEDIA_TYPE_VIDEO;
    }
    if (!haveVideo)
        return {VideoRepairError::Unreadable, file + ": no video stream is left in it"};

    const std::string temporary = temporaryName(file);
    if ((ret = avio_open(&output->pb, temporary.c_str(), AVIO_FLAG_WRITE)) < 0)
        return {VideoRepairError::WriteFailed, "cannot create " + temporary + ": " + errorText(ret)};
    const auto fail = [&](VideoRepairError code, const std::string& detail) -> VideoRepairFailure {
        output.reset();
        std::remove(temporary.c_str());
        return {code, detail};
    };
    if ((ret = avformat_write_header(output.get(), nullptr)) < 0)
        return fail(VideoRepairError::WriteFailed,
                    "cannot write the header of " + temporary + ": " + errorText(ret));

    const std::int64_t size = avio_size(input->pb);
    std::int64_t endUs = 0;
    const auto write = [&](StreamState& s, Packet packet) -> int {
        AVStream* in = input->streams[packet->stream_index];
        AVStream* out = output->streams[s.out];
        if (packet->dts == AV_NOPTS_VALUE)
            packet->dts = packet->pts;
        if (packet->pts == AV_NOPTS_VALUE)
            packet->pts = packet->dts;
        if (packet->dts == AV_NOPTS_VALUE)
            return 0; // no time: nothing to place it at
        av_packet_rescale_ts(packet.get(), in->time_base, out->time_base);
        snapToFrameGrid(s, *packet, *in, *out);
        // The tail of a damaged file can repeat or reorder a stamp; keep
        // the stream's time running forward.
        if (s.lastDts != AV_NOPTS_VALUE && packet->dts <= s.lastDts) {
            if (in->codecpar->codec_type == AVMEDIA_TYPE_VIDEO)
                return 0;
            packet->dts = s.lastDts + 1;
            if (packet->pts < packet->dts)
                packet->pts = packet->dts;
        }
        s.lastDts = packet->dts;
        const std::int64_t end = av_rescale_q(packet->pts + packet->duration, out->time_base, AV_TIME_BASE_Q);
        if (end > endUs)
            endUs = end;
        packet->stream_index = s.out;
        packet->pos = -1;
        ++report.packets;
        return av_interleaved_write_frame(output.get(), packet.get());
    };

    int readCount = 0;
    for (;;) {
        Packet packet(av_packet_alloc());
        if (!packet)
            return fail(VideoRepairError::WriteFailed, "out of memory");
        if (av_read_frame(input.get(), packet.get()) < 0)
            break; // the end, or where the damage starts
        StreamState& s = streams[std::size_t(packet->stream_index)];
        if (s.out < 0 || (packet->flags & AV_PKT_FLAG_CORRUPT))
            continue;
        // Each packet is written once the next of its stream has been read:
        // the last one of a killed recording may be cut short.
        std::swap(s.held, packet);
        if (packet && (ret = write(s, std::move(packet))) < 0)
            return fail(VideoRepairError::WriteFailed, "writing " + temporary + " failed: " + errorText(ret));
        if (progress && ++readCount % 64 == 0 && size > 0 &&
            !progress(double(avio_tell(input->pb)) / double(size)))
            return fail(VideoRepairError::Cancelled, file + " was left as it was");
    }
    if ((ret = av_write_trailer(output.get())) < 0)
        return fail(VideoRepairError::WriteFailed, "finishing " + temporary + " failed: " + errorText(ret));
    if (output->pb->error < 0)
        return fail(VideoRepairError::WriteFailed,
                    "writing " + temporary + " failed: " + errorText(output->pb->error));
    if ((ret = avio_closep(&output->pb)) < 0)
        return fail(VideoRepairError::WriteFailed, "closing " + temporary + " failed: " + errorText(ret));
    if (report.packets == 0)
        return fail(VideoRepairError::Unreadable, file + ": not one whole picture could be read");
    if (std::rename(temporary.c_str(), file.c_str()) != 0)
        return fail(VideoRepairError::WriteFailed, "cannot replace " + file + ": " + errnoText(errno));
    report.seconds = double(endUs - std::max<std::int64_t>(
                                        0, input->start_time == AV_NOPTS_VALUE ? 0 : input->start_time)) /
                     AV_TIME_BASE;
    if (progress)
        progress(1.0);
    return {};
}

} // namespace mirabend
