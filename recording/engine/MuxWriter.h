#pragma once
// The output file: one libavformat muxer with a video and (optionally) an
// audio stream. Packets arrive stamped in their encoder's time base and are
// rescaled to the stream's (each muxer picks its own: mp4 1/12288, mkv, flv
// and asf 1/1000, avi and swf 1/fps).
//
// Thread contract: open() on the starting thread, then write() and close()
// on the mux thread only. bytesWritten() from any thread.

#include "recording/engine/ChapterTrack.h"
#include "recording/engine/FfmpegHandles.h"
#include "recording/engine/RecordingPlan.h"

#include <atomic>

namespace mirabend {

class MuxWriter {
public:
    ~MuxWriter();
    // Whether the muxer wants codec headers out of band (set before the
    // encoders open).
    static bool needsGlobalHeader(const std::string& muxer);

    RecorderFailure open(const RecordingPlan& plan, const AVCodecContext* video, const AVCodecContext* audio);
    // stream 0 is video, 1 audio. Returns 0 or the FFmpeg error.
    int write(AVPacket* packet, int stream, AVRational codecTimeBase);
    // Writes the trailer and closes the file. Returns 0 or the first error.
    int close();
    std::uint64_t bytesWritten() const { return m_bytes; }
    // Chapters marked while recording; written when the file closes.
    ChapterTrack& chapters() { return m_chapters; }

private:
    OutputContextPtr m_context;
    AVStream* m_streams[2] = {nullptr, nullptr};
    bool m_fileOpen = false;
    bool m_headerWritten = false;
    std::atomic<std::uint64_t> m_bytes{0};
    ChapterTrack m_chapters;
    std::int64_t m_endUs = 0; // end of the last packet written, in microseconds
};

} // namespace mirabend
