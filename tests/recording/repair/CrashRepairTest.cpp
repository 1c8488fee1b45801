// Recordings killed with SIGKILL in every format, found in the list of
// recordings in progress, repaired, and read back: the header's duration is
// right, FFmpeg decodes them without a complaint and GStreamer reads them.
#include "recording/repair/RecordingJournal.h"
#include "recording/repair/VideoRepair.h"
#include "support/ChildProcess.h"
#include "support/MediaProbe.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <sys/stat.h>
#include <thread>

namespace mirabend::test {
namespace {

using namespace std::chrono_literals;

const char* const kFormats[] = {"avi", "wmv", "flv", "swf", "mp4", "mkv"};
// Killed after half a minute, a repaired file keeps all but its last second.
constexpr int kKillAfterSeconds = 30;

std::string readAll(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// What the file's header says it lasts, without guessing from the bit rate.
// SWF keeps a frame count and rate instead, which libavformat does not read.
double headerSeconds(const std::string& file) {
    if (file.size() > 4 && file.compare(file.size() - 4, 4, ".swf") == 0) {
        const std::string bytes = readAll(file);
        if (bytes.size() < 21 || bytes.compare(0, 3, "FWS") != 0)
            return -1;
        const int bits = std::uint8_t(bytes[8]) >> 3;
        const std::size_t at = 8 + std::size_t(5 + 4 * bits + 7) / 8;
        const double rate = std::uint8_t(bytes[at + 1]) + std::uint8_t(bytes[at]) / 256.0;
        const int frames = std::uint8_t(bytes[at + 2]) | std::uint8_t(bytes[at + 3]) << 8;
        return rate > 0 ? frames / rate : -1;
    }
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, file.c_str(), nullptr, nullptr) < 0)
        return -1;
    std::unique_ptr<AVFormatContext, void (*)(AVFormatContext*)> ctx(
        raw, [](AVFormatContext* c) { avformat_close_input(&c); });
    if (avformat_find_stream_info(ctx.get(), nullptr) < 0 || ctx->duration <= 0 ||
        ctx->duration_estimation_method == AVFMT_DURATION_FROM_BITRATE)
        return -1;
    return double(ctx->duration) / AV_TIME_BASE;
}

// The duration gst-discoverer-1.0 printed ("Duration: 0:00:30.016000000").
double discoveredSeconds(const std::string& text) {
    const std::size_t at = text.find("Duration: ");
    int hours = 0, minutes = 0;
    double seconds = 0;
    if (at == std::string::npos ||
        std::sscanf(text.c_str() + at, "Duration: %d:%d:%lf", &hours, &minutes, &seconds) != 3)
        return -1;
    return hours * 3600.0 + minutes * 60.0 + seconds;
}

// Runs a program to its end; its exit code and everything it printed.
std::pair<int, std::string> run(const std::vector<std::string>& argv, const std::string& log,
                                const std::vector<std::string>& env = {}) {
    ChildProcess child;
    if (!child.start(argv, env, log))
        return {-1, "cannot start " + argv[0]};
    const int code = child.wait(120000);
    return {code, readAll(log)};
}

class CrashRepair : public ::testing::Test {
protected:
    std::string file(const std::string& name) const { return m_folder.file(name); }
    std::string stateHome() const { return m_folder.file("state"); }

    TempFolder m_folder{"mirabend-repair"};
};

TEST_F(CrashRepair, KilledRecordingsOfEveryFormatAreListedRepairedAndPlay) {
    ::mkdir(stateHome().c_str(), 0700);
    const std::vector<std::string> env = {"XDG_STATE_HOME=" + stateHome(),
                                          "XDG_RUNTIME_DIR=" + m_folder.path()};
    std::vector<std::unique_ptr<ChildProcess>> recorders;
    for (const char* format : kFormats) {
        recorders.push_back(std::make_unique<ChildProcess>());
        ASSERT_TRUE(
            recorders.back()->start({RECORD_SCREEN_DRIVER, "--record-screen",
                                     file(std::string("killed.") + format), "--region", "0,0,320,240"},
                                    env, file(std::string(format) + ".log")));
    }
    // Each recorder lists its file once it has created it and is about to
    // record; from then on every one records for the same half minute.
    const RecordingJournal journal(stateHome() + "/mirabend/recordings");
    const auto listedEntries = [&journal] {
        std::error_code ec;
        std::size_t n = 0;
        for (const auto& entry : std::filesystem::directory_iterator(journal.folder(), ec))
            n += entry.path().extension() == ".rec";
        return n;
    };
    for (int waited = 0; waited < 600 && listedEntries() < std::size(kFormats); ++waited)
        std::this_thread::sleep_for(100ms);
    ASSERT_EQ(listedEntries(), std::size(kFormats)) << readAll(file("avi.log"));
    std::this_thread::sleep_for(std::chrono::seconds(kKillAfterSeconds));
    for (auto& recorder : recorders) {
        ::kill(recorder->pid(), SIGKILL);
        recorder->stop();
    }

    std::vector<std::string> listed = journal.unfinished();
    std::sort(listed.begin(), listed.end());
    std::vector<std::string> expected;
    for (const char* format : kFormats)
        expected.push_back(file(std::string("killed.") + format));
    std::sort(expected.begin(), expected.end());
    ASSERT_EQ(listed, expected) << readAll(file("avi.log"));

    for (const char* format : kFormats) {
        SCOPED_TRACE(format);
        const std::string killed = file(std::string("killed.") + format);
        if (std::string(format) == "mp4" || std::string(format) == "mkv") {
            // Written live-safe: it plays before any repair, up to its last
            // second or two.
            const MediaInfo before = probe(killed);
            EXPECT_EQ(before.videoCodec, "h264");
            EXPECT_GE(before.videoSeconds, kKillAfterSeconds - 5);
        }
        if (std::string(format) == "wmv") {
            // The command-line mode, as a user would run it.
            const auto [code, text] =
                run({REPAIR_VIDEO_DRIVER, "--repair-video", killed}, file("repair.log"), env);
            EXPECT_EQ(code, 0) << text;
            EXPECT_NE(text.find("repaired"), std::string::npos) << text;
        } else {
            VideoRepairReport report;
            double lastShare = 0;
            const VideoRepairFailure failure = repairVideo(killed, report, [&](double share) {
                EXPECT_GE(share, lastShare);
                lastShare = share;
                return true;
            });
            ASSERT_FALSE(failure) << failure.detail;
            EXPECT_EQ(lastShare, 1.0);
            journal.remove(killed);
        }

        const MediaInfo info = probe(killed);
        ASSERT_TRUE(info.opened);
        EXPECT_FALSE(info.audioCodec.empty()) << "the sound track is kept";
        const double header = headerSeconds(killed);
        EXPECT_GE(header, kKillAfterSeconds - 1) << "all but the last moments are kept";
        EXPECT_NEAR(header, info.videoSeconds, 0.5) << "the header says how long the pictures last";

        const auto [code, complaints] =
            run({"ffmpeg", "-nostdin", "-v", "error", "-i", killed, "-f", "null", "-"},
                file(std::string(format) + "-decode.log"));
        EXPECT_EQ(code, 0);
        EXPECT_EQ(complaints, "") << "ffmpeg decodes it without an error";

        // GStreamer has no SWF demuxer at all, for a whole file or a repaired one.
        if (haveProgram("gst-discoverer-1.0") && std::string(format) != "swf") {
            const auto [gstCode, found] =
                run({"gst-discoverer-1.0", killed}, file(std::string(format) + "-gst.log"));
            EXPECT_EQ(gstCode, 0) << found;
            EXPECT_EQ(found.find("Missing plugins"), std::string::npos) << found;
            EXPECT_NEAR(discoveredSeconds(found), header, 0.5) << found;
        }
    }
    EXPECT_TRUE(journal.unfinished().empty());
}

TEST_F(CrashRepair, AFileThatCannotBeRepairedIsLeftAsItWas) {
    const std::string broken = file("notes.avi");
    {
        std::ofstream out(broken, std::ios::binary);
        out << std::string(4096, 'x');
    }
    VideoRepairReport report;
    const VideoRepairFailure failure = repairVideo(broken, report);
    EXPECT_EQ(failure.code, VideoRepairError::Unreadable) << failure.detail;
    EXPECT_EQ(readAll(broken), std::string(4096, 'x'));
    EXPECT_FALSE(std::ifstream(file(".repairing-notes.avi")).good()) << "no half-written copy is left";
    EXPECT_EQ(repairVideo(file("gone.mkv"), report).code, VideoRepairError::FileMissing);

    const auto [code, text] = run({REPAIR_VIDEO_DRIVER, "--repair-video", broken}, file("cli.log"));
    EXPECT_EQ(code, 1);
    EXPECT_EQ(text.rfind("mirabend: cannot repair ", 0), 0u) << text;
}

} // namespace
} // namespace mirabend::test
