#include "recording/engine/MuxWriter.h"

#include <algorithm>
#include <cstdio>

namespace mirabend {

MuxWriter::~MuxWriter()
{
    close();
}

bool MuxWriter::needsGlobalHeader(const std::string& muxer)
{
    const AVOutputFormat* format = av_guess_format(muxer.c_str(), nullptr, nullptr);
    return format && (format->flags & AVFMT_GLOBALHEADER);
}

RecorderFailure MuxWriter::open(const RecordingPlan& plan, const AVCodecContext* video,
                                const AVCodecContext* audio)
{
    AVFormatContext* raw = nullptr;
    int ret = avformat_alloc_output_context2(&raw, nullptr, plan.muxer.c_str(), plan.file.c_str());
    if (ret < 0 || !raw)
        return {RecorderError::OutputOpenFailed, "no " + plan.muxer + " muxer: " + avErrorText(ret)};
    m_context.reset(raw);
    const AVCodecContext* codecs[2] = {video, audio};
    for (int i = 0; i < 2; ++i) {
        if (!codecs[i])
            continue;
        AVStream* stream = avformat_new_stream(m_context.get(), nullptr);
        if (!stream || avcodec_parameters_from_context(stream->codecpar, codecs[i]) < 0)
            return {RecorderError::OutputOpenFailed, "cannot add a stream to the " + plan.muxer + " file"};
        stream->time_base = codecs[i]->time_base;
        if (i == 0) {
            stream->avg_frame_rate = codecs[i]->framerate;
            stream->r_frame_rate = codecs[i]->framerate;
        }
        m_streams[i] = stream;
    }
    ret = avio_open(&m_context->pb, plan.file.c_str(), AVIO_FLAG_WRITE);
    if (ret < 0)
        return {RecorderError::OutputOpenFailed, "cannot create " + plan.file + ": " + avErrorText(ret)};
    m_fileOpen = true;
    // Long buffering in the interleaver costs memory and, on a crash, data.
    m_context->max_interleave_delta = 2000000;
    Dictionary options;
    if (plan.liveSafe) {
        // A file cut off by a crash or a kill still plays up to its last
        // fragment or cluster (half a second).
        if (plan.format == OutputFormatCode::Mp4) {
            options.set("movflags", "frag_keyframe+empty_moov+default_base_moof");
            options.set("frag_duration", "500000");
        } else {
            options.set("cluster_time_limit", "500");
        }
    }
    // Every packet reaches the file at once: a recording killed mid-way
    // loses at most what the interleaver holds, and the repair at the next
    // start has the rest.
    options.set("flush_packets", "1");
    ret = avformat_write_header(m_context.get(), options.slot());
    if (ret < 0) {
        // Leave no empty file behind for a recording that never started.
        avio_closep(&m_context->pb);
        m_fileOpen = false;
        std::remove(plan.file.c_str());
        return {RecorderError::OutputOpenFailed,
                "cannot write the " + plan.muxer + " header: " + avErrorText(ret)};
    }
    m_headerWritten = true;
    m_chapters.begin(plan);
    return {};
}

int MuxWriter::write(AVPacket* packet, int stream, AVRational codecTimeBase)
{
    if (!m_headerWritten || stream < 0 || stream > 1 || !m_streams[stream])
        return AVERROR(EINVAL);
    av_packet_rescale_ts(packet, codecTimeBase, m_streams[stream]->time_base);
    packet->stream_index = m_streams[stream]->index;
    if (packet->pts != AV_NOPTS_VALUE)
        m_endUs = std::max(m_endUs, av_rescale_q(packet->pts + packet->duration, m_streams[stream]->time_base,
                                                 AV_TIME_BASE_Q));
    const int ret = av_interleaved_write_frame(m_context.get(), packet);
    if (m_context->pb) {
        const std::int64_t pos = avio_tell(m_context->pb);
        if (pos > 0)
            m_bytes = std::uint64_t(pos);
        if (ret >= 0 && m_context->pb->error < 0)
            return m_context->pb->error;
    }
    return ret;
}

int MuxWriter::close()
{
    int result = 0;
    const bool fileWritten = m_headerWritten;
    if (m_headerWritten) {
        m_chapters.attach(m_context.get(), m_endUs);
        result = av_write_trailer(m_context.get());
        m_headerWritten = false;
    }
    if (m_fileOpen) {
        if (m_context->pb && m_context->pb->error < 0 && result >= 0)
            result = m_context->pb->error;
        avio_closep(&m_context->pb);
        m_fileOpen = false;
    }
    m_context.reset();
    m_streams[0] = m_streams[1] = nullptr;
    if (fileWritten && result >= 0)
        result = m_chapters.finish(m_endUs);
    return result;
}

} // namespace mirabend
