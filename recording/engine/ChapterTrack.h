#pragma once
// Chapters of one recording: a title at a media time (the recording's own
// time, pauses cut out), marked while the recording runs and written with
// the file when it closes.
//
// Matroska takes the chapters with its trailer. An MP4 written in fragments
// (so that a crash leaves a playable file) has its index at the front and
// cannot take them late, so once it is closed it is copied, stream for
// stream, into a plain MP4 that carries them; a copy that fails leaves the
// fragmented file as it was and the chapters go to the WebVTT file instead.
// Formats without chapters (AVI, WMV, FLV, SWF) get the chapters as a WebVTT
// file next to the video: "talk.avi" -> "talk.chapters.vtt".
//
// Thread contract: add() and marks() from any thread; begin(), attach() and
// finish() from the thread that writes the file (the mux thread).

#include "recording/engine/RecordingPlan.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

struct AVFormatContext;

namespace mirabend {

struct ChapterMark {
    std::int64_t mediaUs = 0;
    std::string title;
};

class ChapterTrack {
public:
    // Marks a chapter. A mark at the time of the one before replaces it (a
    // pane switch and the slide it shows land on the same instant).
    void add(std::int64_t mediaUs, std::string title);
    std::vector<ChapterMark> marks() const;

    // The file the chapters belong to.
    void begin(const RecordingPlan& plan);
    // Before the trailer: hands the chapters to a muxer that writes them
    // itself. `endUs` is the end of the recording.
    void attach(AVFormatContext* context, std::int64_t endUs);
    // After the file is closed: the chapters the muxer could not take. 0 or
    // an FFmpeg error; the video file is valid either way.
    int finish(std::int64_t endUs);

    // The chapters that fit before `endUs`, each with its end (the next
    // one's start, the last one's `endUs`).
    struct Span {
        std::int64_t startUs;
        std::int64_t endUs;
        std::string title;
    };
    static std::vector<Span> spans(const std::vector<ChapterMark>& marks, std::int64_t endUs);
    static std::string webVtt(const std::vector<Span>& spans);
    static std::string webVttFileFor(const std::string& video);

private:
    mutable std::mutex m_mutex;
    std::vector<ChapterMark> m_marks;
    RecordingPlan m_plan;
    bool m_attached = false;
};

// Copies `file` (an MP4) into a plain MP4 with `spans` as its chapters and
// puts the copy in its place. 0 or the FFmpeg error; on error `file` is
// untouched.
int rewriteMp4WithChapters(const std::string& file, const std::vector<ChapterTrack::Span>& spans);

} // namespace mirabend
