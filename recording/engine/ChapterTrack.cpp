#include "recording/engine/ChapterTrack.h"

#include "recording/engine/FfmpegHandles.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace mirabend {

namespace {

constexpr AVRational kMillis{1, 1000};

std::int64_t toMillis(std::int64_t us) {
    return (us + 500) / 1000;
}

// Hands `spans` to `context` as its chapters (before its header or trailer).
void setChapters(AVFormatContext* context, const std::vector<ChapterTrack::Span>& spans) {
    for (std::size_t i = 0; i < spans.size(); ++i) {
        auto* chapter = static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter)));
        if (!chapter)
            return;
        chapter->id = std::int64_t(i) + 1;
        chapter->time_base = kMillis;
        chapter->start = toMillis(spans[i].startUs);
        chapter->end = toMillis(spans[i].endUs);
        av_dict_set(&chapter->metadata, "title", spans[i].title.c_str(), 0);
        // The context frees its chapters, metadata included.
        int count = static_cast<int>(context->nb_chapters);
        av_dynarray_add(&context->chapters, &count, chapter);
        context->nb_chapters = static_cast<unsigned>(count);
    }
}

std::string vttTime(std::int64_t us) {
    const std::int64_t ms = toMillis(std::max<std::int64_t>(0, us));
    char text[32];
    std::snprintf(text, sizeof text, "%02lld:%02lld:%02lld.%03lld", static_cast<long long>(ms / 3600000),
                  static_cast<long long>(ms / 60000 % 60), static_cast<long long>(ms / 1000 % 60),
                  static_cast<long long>(ms % 1000));
    return text;
}

} // namespace

void ChapterTrack::add(std::int64_t mediaUs, std::string title) {
    std::lock_guard<std::mutex> lock(m_mutex);
    mediaUs = std::max<std::int64_t>(0, mediaUs);
    if (!m_marks.empty() && m_marks.back().mediaUs >= mediaUs) {
        m_marks.back().title = std::move(title);
        return;
    }
    m_marks.push_back({mediaUs, std::move(title)});
}

std::vector<ChapterMark> ChapterTrack::marks() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_marks;
}

void ChapterTrack::begin(const RecordingPlan& plan) {
    m_plan = plan;
    m_attached = false;
}

std::vector<ChapterTrack::Span> ChapterTrack::spans(const std::vector<ChapterMark>& marks,
                                                    std::int64_t endUs) {
    std::vector<Span> out;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        const std::int64_t start = marks[i].mediaUs;
        if (start >= endUs)
            break; // marked as the recording ended: nothing of it is in the file
        const std::int64_t end = i + 1 < marks.size() ? std::min(marks[i + 1].mediaUs, endUs) : endUs;
        out.push_back({start, end, marks[i].title});
    }
    return out;
}

std::string ChapterTrack::webVtt(const std::vector<Span>& spans) {
    std::string text = "WEBVTT\n";
    for (std::size_t i = 0; i < spans.size(); ++i) {
        text += "\n" + std::to_string(i + 1) + "\n" + vttTime(spans[i].startUs) + " --> " +
                vttTime(spans[i].endUs) + "\n" + spans[i].title + "\n";
    }
    return text;
}

std::string ChapterTrack::webVttFileFor(const std::string& video) {
    const std::size_t slash = video.find_last_of('/');
    const std::size_t dot = video.find_last_of('.');
    const std::string stem = dot != std::string::npos && (slash == std::string::npos || dot > slash)
                                 ? video.substr(0, dot)
                                 : video;
    return stem + ".chapters.vtt";
}

void ChapterTrack::attach(AVFormatContext* context, std::int64_t endUs) {
    const bool muxerTakesThem = m_plan.format == OutputFormatCode::Matroska ||
                                (m_plan.format == OutputFormatCode::Mp4 && !m_plan.liveSafe);
    if (!context || !muxerTakesThem || context->nb_chapters > 0)
        return;
    const std::vector<Span> list = spans(marks(), endUs);
    if (list.empty())
        return;
    setChapters(context, list);
    m_attached = true;
}

int ChapterTrack::finish(std::int64_t endUs) {
    if (m_attached)
        return 0;
    const std::vector<Span> list = spans(marks(), endUs);
    if (list.empty())
        return 0;
    if (m_plan.format == OutputFormatCode::Mp4 && rewriteMp4WithChapters(m_plan.file, list) >= 0)
        return 0;
    std::ofstream out(webVttFileFor(m_plan.file), std::ios::binary | std::ios::trunc);
    out << webVtt(list);
    out.close();
    return out ? 0 : AVERROR(EIO);
}

int rewriteMp4WithChapters(const std::string& file, const std::vector<ChapterTrack::Span>& spans) {
    AVFormatContext* rawIn = nullptr;
    int ret = avformat_open_input(&rawIn, file.c_str(), nullptr, nullptr);
    if (ret < 0)
        return ret;
    const InputContextPtr in(rawIn);
    if ((ret = avformat_find_stream_info(in.get(), nullptr)) < 0)
        return ret;

    const std::string copy = file + ".chapters.part";
    AVFormatContext* rawOut = nullptr;
    if ((ret = avformat_alloc_output_context2(&rawOut, nullptr, "mp4", copy.c_str())) < 0)
        return ret;
    const OutputContextPtr out(rawOut);
    for (unsigned i = 0; i < in->nb_streams; ++i) {
        AVStream* stream = avformat_new_stream(out.get(), nullptr);
        if (!stream)
            return AVERROR(ENOMEM);
        if ((ret = avcodec_parameters_copy(stream->codecpar, in->streams[i]->codecpar)) < 0)
            return ret;
        stream->codecpar->codec_tag = 0;
        stream->time_base = in->streams[i]->time_base;
    }
    // The chapter track of an MP4 begins at 0: a first chapter that starts
    // later gets one in front of it, so every chapter keeps its time.
    std::vector<ChapterTrack::Span> list = spans;
    if (!list.empty() && list.front().startUs > 0)
        list.insert(list.begin(), {0, list.front().startUs, "Start"});
    setChapters(out.get(), list);

    if ((ret = avio_open(&out->pb, copy.c_str(), AVIO_FLAG_WRITE)) < 0)
        return ret;
    const auto abandon = [&](int error) {
        avio_closep(&out->pb);
        std::remove(copy.c_str());
        return error;
    };
    if ((ret = avformat_write_header(out.get(), nullptr)) < 0)
        return abandon(ret);
    const PacketPtr packet = makePacket();
    if (!packet)
        return abandon(AVERROR(ENOMEM));
    while ((ret = av_read_frame(in.get(), packet.get())) >= 0) {
        const int index = packet->stream_index;
        av_packet_rescale_ts(packet.get(), in->streams[index]->time_base, out->streams[index]->time_base);
        packet->pos = -1;
        ret = av_interleaved_write_frame(out.get(), packet.get());
        av_packet_unref(packet.get());
        if (ret < 0)
            return abandon(ret);
    }
    if (ret != AVERROR_EOF)
        return abandon(ret);
    if ((ret = av_write_trailer(out.get())) < 0 || (out->pb->error < 0 && (ret = out->pb->error) < 0))
        return abandon(ret);
    avio_closep(&out->pb);
    if (std::rename(copy.c_str(), file.c_str()) != 0) {
        std::remove(copy.c_str());
        return AVERROR(errno);
    }
    return 0;
}

} // namespace mirabend
