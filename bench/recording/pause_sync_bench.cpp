// A/V offset after pause/resume cycles: records with sound, pausing and
// resuming N times, then reads the file back and prints how far the sound's
// end is from the picture's end, in frames. One frame or less is the goal.
//   pause_sync_bench FILE [cycles] [fps] [--format N] [--region X,Y,W,H] [--step SECONDS] [--brief]
// --format is the control's OutputFormat (default 5, Matroska); --step the
// recorded time between pauses; --brief prints only the offset in frames.
#include "recording/engine/FfmpegHandles.h"
#include "recording/engine/Screen2Video.h"

#include <QGuiApplication>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>
#include <thread>

namespace {

using namespace std::chrono_literals;

struct Ends {
    double video = 0;
    double audio = 0;
};

Ends streamEnds(const char* file)
{
    Ends ends;
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, file, nullptr, nullptr) < 0)
        return ends;
    mirabend::InputContextPtr input(raw);
    avformat_find_stream_info(input.get(), nullptr);
    mirabend::PacketPtr packet = mirabend::makePacket();
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        const AVStream* st = input->streams[packet->stream_index];
        if (packet->pts != AV_NOPTS_VALUE) {
            const double end = (packet->pts + packet->duration) * av_q2d(st->time_base);
            double& slot = st->codecpar->codec_type == AVMEDIA_TYPE_VIDEO ? ends.video : ends.audio;
            slot = std::max(slot, end);
        }
        av_packet_unref(packet.get());
    }
    return ends;
}

void waitRecorded(mirabend::Screen2Video& r, double seconds)
{
    while (r.IsCapturing() && r.Counters().secondsRecorded < seconds)
        std::this_thread::sleep_for(10ms);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: pause_sync_bench FILE [cycles] [fps] [--format N] [--region X,Y,W,H] "
                             "[--step SECONDS] [--brief]\n");
        return 2;
    }
    int format = int(mirabend::OutputFormatCode::Matroska);
    int region[4] = {0, 0, 640, 480};
    double step = 0.7;
    bool brief = false;
    int positional = 1;
    for (int i = 2; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--format" && i + 1 < argc)
            format = std::atoi(argv[++i]);
        else if (arg == "--region" && i + 1 < argc)
            std::sscanf(argv[++i], "%d,%d,%d,%d", &region[0], &region[1], &region[2], &region[3]);
        else if (arg == "--step" && i + 1 < argc)
            step = std::atof(argv[++i]);
        else if (arg == "--brief")
            brief = true;
        else
            argv[++positional] = argv[i];
    }
    argc = positional + 1;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    av_log_set_level(AV_LOG_ERROR);
    const int cycles = argc > 2 ? std::atoi(argv[2]) : 10;
    const double fps = argc > 3 ? std::atof(argv[3]) : 24;
    mirabend::Screen2Video r;
    r.OutputFileName(QString::fromLocal8Bit(argv[1]));
    r.OutputFormat(format);
    r.FrameRate(fps);
    r.ZoomRectangle(region[0], region[1], region[0] + region[2], region[1] + region[3]);
    if (!r.StartCapture()) {
        std::fprintf(stderr, "did not start: %s\n", r.LastFailure().detail.c_str());
        return 1;
    }
    double recorded = 0;
    for (int i = 0; i < cycles; ++i) {
        recorded += step;
        waitRecorded(r, recorded);
        r.PauseCapture();
        // pauses of uneven length
        std::this_thread::sleep_for(std::chrono::milliseconds(int(step * 400) + 37 * i));
        r.ResumeCapture();
    }
    waitRecorded(r, recorded + step);
    r.StopCapture();
    const mirabend::RecorderCounters c = r.Counters();
    const Ends ends = streamEnds(argv[1]);
    const double offset = std::fabs(ends.audio - ends.video);
    if (brief) {
        std::printf("%.2f\n", offset * fps);
        return 0;
    }
    std::printf(
        "pause/resume cycles %d: picture %.3f s, sound %.3f s, offset %.3f s = %.2f frames (goal <= 1); "
        "frames written %llu, duplicated %llu, dropped %llu\n",
        cycles, ends.video, ends.audio, offset, offset * fps,
        static_cast<unsigned long long>(c.framesWritten), static_cast<unsigned long long>(c.framesDuplicated),
        static_cast<unsigned long long>(c.framesDropped));
    return 0;
}
