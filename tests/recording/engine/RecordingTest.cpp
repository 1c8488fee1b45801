// Real recordings of a private Xvfb screen with sound from a private
// PulseAudio server, read back with libavformat.
#include "recording/engine/Screen2Video.h"
#include "support/ChildProcess.h"
#include "support/MediaProbe.h"
#include "support/PulseServer.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <QCoreApplication>
#include <QWidget>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/wait.h>
#include <thread>
#include <utility>
#include <vector>

namespace mirabend {
namespace {

using namespace std::chrono_literals;
using test::probe;

class RecordingTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { s_pulse = new test::PulseServer; }
    static void TearDownTestSuite() {
        delete s_pulse;
        s_pulse = nullptr;
    }
    void SetUp() override {
        ASSERT_TRUE(s_pulse->ok()) << "PulseAudio could not be started";
        ASSERT_FALSE(m_folder.path().empty());
    }

    // Records for `seconds` of recording time (pauses not counted).
    static void recordFor(Screen2Video& r, double seconds) {
        while (r.IsCapturing() && r.Counters().secondsRecorded < seconds)
            std::this_thread::sleep_for(20ms);
    }
    static std::vector<RecorderFailure> failuresOf(Screen2Video& r, RecorderError code) {
        std::vector<RecorderFailure> out;
        for (const RecorderFailure& f : r.TakeFailures()) {
            if (f.code == code)
                out.push_back(f);
        }
        return out;
    }
    static std::string driver() { return RECORD_SCREEN_DRIVER; }
    // Records the top left w x h of the screen into `name` in `format`.
    std::string configure(Screen2Video& r, const std::string& name, int format, int w = 320, int h = 240) {
        const std::string file = m_folder.file(name);
        r.OutputFileName(QString::fromStdString(file));
        r.OutputFormat(format);
        r.FrameRate(10);
        r.ZoomRectangle(0, 0, w, h);
        return file;
    }

    static test::PulseServer* s_pulse;
    test::TempFolder m_folder{"mirabend-rec"};
};

test::PulseServer* RecordingTest::s_pulse = nullptr;

struct FormatCase {
    int format;
    const char* extension;
    const char* video;
    const char* audio;
    int width;
    int height;
};

TEST_F(RecordingTest, EveryFormatReadsBackWithItsCodecsSizeFramesAndSound) {
    const FormatCase cases[] = {
        {0, "avi", "msvideo1", "pcm_s16le", 320, 240},
        {1, "wmv", "wmv2", "wmav2", 0, 0},
        {2, "swf", "flv1", "mp3", 320, 240},
        {3, "flv", "flv1", "mp3", 322, 242},
        {4, "mp4", "h264", "aac", 0, 0},
        {5, "mkv", "h264", "aac", 0, 0},
    };
    for (const FormatCase& c : cases) {
        SCOPED_TRACE(c.extension);
        Screen2Video r;
        const std::string file = configure(r, std::string("out.") + c.extension, c.format, 400, 300);
        r.FrameRate(12);
        r.AviWidth(c.width);
        r.AviHeight(c.height);
        r.SwfWidth(c.width);
        r.SwfHeight(c.height);
        r.FlvWidth(c.width);
        r.FlvHeight(c.height);
        r.WmvProfileIndex(0); // follows the recorded size
        ASSERT_TRUE(r.StartCapture()) << r.LastFailure().detail;
        recordFor(r, 1.5);
        r.StopCapture();
        const test::MediaInfo info = probe(file);
        ASSERT_TRUE(info.opened);
        EXPECT_EQ(info.videoCodec, c.video);
        EXPECT_EQ(info.audioCodec, c.audio);
        // FLV asked for 322x242 and gets the even size below it.
        EXPECT_EQ(info.width, c.width ? c.width / 2 * 2 : 400);
        EXPECT_EQ(info.height, c.height ? c.height / 2 * 2 : 300);
        EXPECT_NEAR(double(info.videoPackets), 1.5 * 12, 2.0);
        EXPECT_NEAR(info.audioSeconds, 1.5, 0.45);
        EXPECT_GT(info.audioRms, 0.05) << "the sine source should be audible";
        EXPECT_TRUE(failuresOf(r, RecorderError::AudioDeviceUnavailable).empty());
    }
}

// Key pictures among a file's video packets, and the whole file's bytes.
std::pair<int, std::string> keyPacketsAndBytes(const std::string& file) {
    int keys = 0;
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, file.c_str(), nullptr, nullptr) == 0) {
        const int video = av_find_best_stream(raw, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
        AVPacket* packet = av_packet_alloc();
        while (av_read_frame(raw, packet) >= 0) {
            keys += packet->stream_index == video && (packet->flags & AV_PKT_FLAG_KEY);
            av_packet_unref(packet);
        }
        av_packet_free(&packet);
        avformat_close_input(&raw);
    }
    std::ifstream in(file, std::ios::binary);
    return {keys, std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>())};
}

// What a compressor's settings page chose is what the encoder wrote: x264
// names its rate factor and speed in the stream, Video 1 its key pictures.
TEST_F(RecordingTest, CompressorSettingsReachTheWrittenStream) {
    const struct {
        int format;
        const char* compressor;
        std::vector<std::pair<std::string, int>> settings;
        std::vector<std::string> written; // in the stream's bytes
        int keys;                         // key pictures in 12 frames, or -1
    } cases[] = {
        {5, "H.264", {}, {"crf=23.0", "subme=0"}, -1},
        {5, "H.264", {{"quality", 30}, {"speed", 5}}, {"crf=30.0", "subme=7"}, -1},
        {0, "Microsoft Video 1", {}, {}, 1},
        {0, "Microsoft Video 1", {{"keyframes", 3}}, {}, 4},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.compressor) + " with " + std::to_string(c.settings.size()) + " settings");
        Screen2Video r;
        const std::string file = configure(r, c.format == 0 ? "set.avi" : "set.mkv", c.format, 160, 120);
        r.AudioEnabled(false);
        r.FrameRate(12);
        r.VideoCompressorIndex(r.VideoCompressors().FindByName(QString::fromLatin1(c.compressor)));
        for (const auto& [key, value] : c.settings)
            r.VideoCompressorSetting(QString::fromLatin1(c.compressor), key, value);
        ASSERT_TRUE(r.StartCapture()) << r.LastFailure().detail;
        recordFor(r, 0.95);
        r.StopCapture();
        const test::MediaInfo info = probe(file);
        ASSERT_TRUE(info.opened);
        ASSERT_NEAR(double(info.videoPackets), 12, 1);
        const auto [keys, bytes] = keyPacketsAndBytes(file);
        for (const std::string& needle : c.written)
            EXPECT_NE(bytes.find(needle), std::string::npos) << needle;
        if (c.keys >= 0) {
            EXPECT_NEAR(keys, c.keys * info.videoPackets / 12.0, 1);
        }
    }
}

TEST_F(RecordingTest, PausesLeaveNoGapAndKeepSoundInStepUnderAnOverlay) {
    Screen2Video r;
    const std::string file = configure(r, "paused.mkv", 5);
    r.TextColor(0xffffff);
    r.TextFontSize(36);
    r.Text(QStringLiteral("MIRABEND"), 10, 150);
    r.ShowText(true);
    ASSERT_TRUE(r.StartCapture()) << r.LastFailure().detail;
    for (int i = 0; i < 3; ++i) {
        recordFor(r, 0.5 * (i + 1));
        r.PauseCapture();
        EXPECT_TRUE(r.IsPaused());
        std::this_thread::sleep_for(400ms);
        r.ResumeCapture();
    }
    recordFor(r, 2.0);
    r.StopCapture();
    const RecorderCounters counters = r.Counters();
    const test::MediaInfo info = probe(file);
    ASSERT_TRUE(info.opened);
    // 2 s recorded while 3.2 s passed.
    EXPECT_NEAR(info.videoSeconds, 2.0, 0.25);
    EXPECT_NEAR(double(info.videoPackets), 20, 2);
    EXPECT_NEAR(info.audioSeconds, info.videoSeconds, 0.15);
    EXPECT_LE(counters.framesDuplicated, 2u) << "a pause must not be filled with frozen frames";
    // The Xvfb screen is black: white text shows where it was put and
    // nowhere else.
    EXPECT_GT(test::brightestLuma(file, 0, 140, 320, 100), 200);
    EXPECT_LT(test::brightestLuma(file, 0, 0, 320, 100), 40);
}

TEST_F(RecordingTest, AWarmUpOfOneTickStillClosesAValidFile) {
    // The options window's warm-up stops the recording one 50 ms tick after
    // starting it; hardware acceleration is not asked there, but asking for
    // it where there is none must fall back to software and say so.
    Screen2Video r;
    const std::string file = configure(r, "pretemp.mp4", 4);
    r.HardwareAcceleration(true);
    ASSERT_TRUE(r.StartCapture()) << r.LastFailure().detail;
    std::this_thread::sleep_for(50ms);
    r.StopCapture();
    EXPECT_FALSE(r.IsCapturing());
    if (!r.HardwareAccelerationInUse()) {
        EXPECT_TRUE(r.VideoEncoderInUse().startsWith(QStringLiteral("libx264")))
            << r.VideoEncoderInUse().toStdString();
    }
    const test::MediaInfo info = probe(file);
    EXPECT_TRUE(info.opened);
    EXPECT_EQ(info.videoCodec, "h264");
    // Stopping twice, pausing after the stop and starting again are harmless.
    r.StopCapture();
    r.PauseCapture();
    ASSERT_TRUE(r.StartCapture()) << r.LastFailure().detail;
    EXPECT_FALSE(r.IsPaused());
    r.StopCapture();
}

TEST_F(RecordingTest, ABackgroundStopIsDoneWithItsFileBeforeTheNextRecordingOpensIt) {
    // The sine source delivers 2 s blocks: the sound up to a stop arrives
    // long after it.
    Screen2Video r;
    const std::string first = configure(r, "first.mkv", 5);
    ASSERT_TRUE(r.StartCapture()) << r.LastFailure().detail;
    recordFor(r, 2.5);
    r.StopCaptureInBackground();
    EXPECT_FALSE(r.IsCapturing());
    // The same file once more at once, shorter: the last recording must be
    // done with it before the next one opens it.
    r.ZoomRectangle(0, 0, 240, 180);
    ASSERT_TRUE(r.StartCapture()) << r.LastFailure().detail;
    recordFor(r, 1.0);
    r.StopCaptureInBackground();
    r.WaitForFinish();
    EXPECT_FALSE(r.IsFinishing());
    EXPECT_TRUE(r.TakeFailures().empty());

    const test::MediaInfo info = probe(first);
    ASSERT_TRUE(info.opened);
    EXPECT_EQ(info.width, 240);
    EXPECT_NEAR(info.videoSeconds, 1.0, 0.25);
    EXPECT_NEAR(info.audioSeconds, info.videoSeconds, 0.15) << "the late sound is collected after the stop";
}

TEST_F(RecordingTest, WithoutASoundServerTheRecordingGoesOnWithSilence) {
    // Point the sound clients at a server that does not exist: the device
    // list falls back to ALSA, whose default device leads nowhere here.
    const std::string saved = getenv("PULSE_SERVER") ? getenv("PULSE_SERVER") : "";
    setenv("PULSE_SERVER", ("unix:" + m_folder.file("no-server")).c_str(), 1);
    Screen2Video r;
    const std::string file = configure(r, "mute.avi", 0);
    const bool started = r.StartCapture();
    setenv("PULSE_SERVER", saved.c_str(), 1);
    ASSERT_TRUE(started) << r.LastFailure().detail;
    recordFor(r, 1.0);
    r.StopCapture();
    EXPECT_EQ(failuresOf(r, RecorderError::AudioDeviceUnavailable).size(), 1u);
    const test::MediaInfo info = probe(file);
    ASSERT_TRUE(info.opened);
    EXPECT_EQ(info.videoCodec, "msvideo1");
    EXPECT_EQ(info.audioCodec, "pcm_s16le") << "the sound track is kept, silent";
    EXPECT_EQ(info.audioRms, 0.0);
    EXPECT_NEAR(info.audioSeconds, info.videoSeconds, 0.2);
    EXPECT_NEAR(double(info.videoPackets), 10, 2);
}

TEST_F(RecordingTest, SettingsThatCannotWorkRefuseToStart) {
    Screen2Video r;
    const std::string file = m_folder.file("never.flv");
    r.OutputFileName(QString::fromStdString(file));
    r.OutputFormat(3);
    r.FlvVideoBitrate(QStringLiteral("12x"));
    EXPECT_FALSE(r.StartCapture());
    EXPECT_EQ(r.LastFailure().code, RecorderError::BadSetting);
    EXPECT_NE(r.LastFailure().detail.find("FLV video bitrate"), std::string::npos);
    EXPECT_FALSE(r.IsCapturing());
    EXPECT_NE(access(file.c_str(), F_OK), 0) << "nothing is written for a refused start";

    r.FlvVideoBitrate(QStringLiteral("500000"));
    r.CaptureWindowHandle(QStringLiteral("4194303"));
    EXPECT_FALSE(r.StartCapture());
    EXPECT_EQ(r.LastFailure().code, RecorderError::WindowNotFound);
    r.CaptureWindowHandle(QStringLiteral("abc"));
    EXPECT_FALSE(r.StartCapture());
    EXPECT_EQ(r.LastFailure().code, RecorderError::BadSetting);
}

TEST_F(RecordingTest, ARecordedWindowThatClosesFinishesTheFile) {
    auto window = std::make_unique<QWidget>();
    window->resize(200, 150);
    window->show();
    for (int i = 0; i < 50 && !window->isVisible(); ++i)
        QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    std::this_thread::sleep_for(200ms);
    QCoreApplication::processEvents();

    Screen2Video r;
    const std::string file = m_folder.file("window.avi");
    r.OutputFileName(QString::fromStdString(file));
    r.CaptureWindowHandle(QString::number(window->winId()));
    r.AudioEnabled(false);
    r.FrameRate(10);
    ASSERT_TRUE(r.StartCapture()) << r.LastFailure().detail;
    recordFor(r, 1.0);
    window.reset();
    QCoreApplication::processEvents();
    for (int i = 0; i < 300 && r.IsCapturing(); ++i) {
        QCoreApplication::processEvents();
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_FALSE(r.IsCapturing()) << "the recording ends with its window";
    r.StopCapture();
    EXPECT_EQ(failuresOf(r, RecorderError::WindowClosed).size(), 1u);
    const test::MediaInfo info = probe(file);
    ASSERT_TRUE(info.opened);
    EXPECT_EQ(info.width, 200);
    EXPECT_GE(info.videoPackets, 8);
}

TEST_F(RecordingTest, AVanishingAudioSourceIsReportedAndSilenceFollows) {
    // A sound server of its own, stopped mid-recording (a source merely
    // unloaded is moved to the default source by the server itself).
    auto server = std::make_unique<test::PulseServer>();
    ASSERT_TRUE(server->ok());
    Screen2Video r;
    ASSERT_GT(r.AudioDevices().Count(), 0);
    const std::string file = configure(r, "lost.mkv", 5);
    ASSERT_TRUE(r.StartCapture()) << r.LastFailure().detail;
    recordFor(r, 0.8);
    server.reset();
    recordFor(r, 2.5);
    EXPECT_TRUE(r.IsCapturing());
    r.StopCapture();
    EXPECT_EQ(failuresOf(r, RecorderError::AudioSourceLost).size(), 1u);
    const test::MediaInfo info = probe(file);
    ASSERT_TRUE(info.opened);
    EXPECT_NEAR(info.videoSeconds, 2.5, 0.3);
    EXPECT_NEAR(info.audioSeconds, info.videoSeconds, 0.3);
}

TEST_F(RecordingTest, ABadOptionValueIsNamedOnOneLineAndRecordsNothing) {
    {
        std::ofstream notImage(m_folder.file("notes.png"));
        notImage << "not a picture";
    }
    const std::string out = m_folder.file("never.avi");
    const struct {
        std::vector<std::string> args;
        std::string expected;
    } cases[] = {
        {{"--fps", "abc"}, "--fps: \"abc\" is not a number"},
        {{"--fps", "0"}, "--fps: 0 is not a frame rate from 1 to 240"},
        {{"--size", "0x0"}, "--size: \"0x0\""},
        {{"--image", m_folder.file("notes.png")},
         "--image: " + m_folder.file("notes.png") + " is not an image"},
        {{"--image", m_folder.file("gone.png")}, "--image: there is no file"},
        {{"--video-bitrate", "fast"}, "--video-bitrate: \"fast\""},
        {{"--window", "main"}, "--window: \"main\""},
        {{"--fps"}, "--fps needs a value"},
        {{"--frobnicate"}, "unknown option --frobnicate"},
    };
    const auto run = [&](std::vector<std::string> args) {
        const std::string log = m_folder.file("bad.log");
        test::ChildProcess tool;
        // A runtime folder, or Qt's own warning about it would come first.
        EXPECT_TRUE(tool.start(args, {"XDG_RUNTIME_DIR=" + m_folder.path()}, log));
        const int code = tool.wait(30000);
        std::ifstream in(log);
        const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        return std::make_pair(code, text);
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {driver(), "--record-screen", out};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const auto [code, text] = run(args);
        SCOPED_TRACE(text);
        EXPECT_EQ(code, 2);
        EXPECT_EQ(text.rfind("mirabend: ", 0), 0u);
        EXPECT_NE(text.find(c.expected), std::string::npos) << c.expected;
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << "one line, not the whole help";
    }
    const auto [code, text] = run({driver(), "--record-screen", m_folder.file("talk.xyz")});
    EXPECT_EQ(code, 2);
    EXPECT_NE(text.find("--record-screen: unknown extension \"xyz\""), std::string::npos) << text;
    EXPECT_NE(access(out.c_str(), F_OK), 0) << "nothing is recorded";
}

TEST_F(RecordingTest, TheCommandLineStopsCleanlyOnSigterm) {
    const std::string file = m_folder.file("term.avi");
    test::ChildProcess recorder;
    ASSERT_TRUE(recorder.start({driver(), "--record-screen", file, "--no-audio", "--fps", "10"}, {},
                               m_folder.file("term.log")));
    std::this_thread::sleep_for(2s);
    kill(recorder.pid(), SIGTERM);
    EXPECT_EQ(recorder.wait(20000), 0);
    const test::MediaInfo info = probe(file);
    ASSERT_TRUE(info.opened);
    EXPECT_EQ(info.videoCodec, "msvideo1");
    EXPECT_EQ(info.width, 560);
    EXPECT_GE(info.videoPackets, 8);

    // The lists name what can be chosen: the designed compressor names and
    // the sound server's sources with their pins.
    test::ChildProcess lister;
    ASSERT_TRUE(lister.start({driver(), "--list-devices", "--list-codecs"}, {}, m_folder.file("list.log")));
    EXPECT_EQ(lister.wait(20000), 0);
    std::ifstream listing(m_folder.file("list.log"));
    const std::string text((std::istreambuf_iterator<char>(listing)), std::istreambuf_iterator<char>());
    for (const char* expected : {"Microsoft Video 1", "Windows Media Video 8", "Sorenson Spark", "PCM",
                                 "MPEG Layer-3", "Windows Media Audio 2", "Sine source", "Screen: 1280x1024"})
        EXPECT_NE(text.find(expected), std::string::npos) << expected << " missing from:\n" << text;
}

} // namespace
} // namespace mirabend
