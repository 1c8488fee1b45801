// The installed program as a user drives it: a private X display, session
// bus and sound server, the real mirabend executable, remote commands from a
// second mirabend process, and the recorded file read back with libavformat.
#include "support/ChildProcess.h"
#include "support/MediaProbe.h"
#include "support/PulseServer.h"
#include "support/XvfbServer.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace mirabend::test {
namespace {

std::string mirabendPath() {
    const char* dir = std::getenv("MIRABEND_BINARY_DIR");
    return std::string(dir ? dir : ".") + "/bin/mirabend";
}

void sleepMs(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

class EndToEnd : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(xvfb.ok()) << "Xvfb did not start";
        ASSERT_FALSE(busAddress.empty()) << "dbus-daemon did not start";
        ASSERT_TRUE(pulse.ok()) << "PulseAudio did not start";
        setenv("DISPLAY", xvfb.display().c_str(), 1);
        setenv("DBUS_SESSION_BUS_ADDRESS", busAddress.c_str(), 1);
        setenv("QT_QPA_PLATFORM", "xcb", 1);
        env = {"DISPLAY=" + xvfb.display(), "DBUS_SESSION_BUS_ADDRESS=" + busAddress, "QT_QPA_PLATFORM=xcb",
               "HOME=" + home.path(), "XDG_DATA_HOME=" + home.path()};
    }

    // Runs `mirabend ARGS` to completion; returns its exit code.
    int run(const std::vector<std::string>& args) {
        std::vector<std::string> argv{mirabendPath()};
        argv.insert(argv.end(), args.begin(), args.end());
        ChildProcess client;
        if (!client.start(argv, env, home.file("client.log")))
            return -1;
        return client.wait(15000);
    }

    // Starts the main window and waits until it answers remote commands.
    bool startProgram() {
        if (!app.start({mirabendPath()}, env, home.file("mirabend.log")))
            return false;
        for (int i = 0; i < 100; ++i) {
            if (run({"--command", "start1"}) == 0)
                return true;
            sleepMs(100);
        }
        return false;
    }

    // Polls the X server's window tree for the show window LibreOffice
    // creates inside the slide pane: a nameless child at (0, 0) of the
    // pane's size.
    bool waitForShow(const std::string& size) {
        for (int i = 0; i < 120; ++i) {
            const std::string tree = home.file("tree.txt");
            ChildProcess lister;
            lister.start({"xwininfo", "-root", "-tree"}, env, tree);
            lister.wait(5000);
            std::ifstream in(tree);
            std::string line;
            while (std::getline(in, line)) {
                if (line.find("(has no name): ()") != std::string::npos &&
                    line.find(size + "+0+0") != std::string::npos)
                    return true;
            }
            sleepMs(250);
        }
        return false;
    }

    std::string log() const {
        std::ifstream in(home.file("mirabend.log"));
        std::string text, line;
        while (std::getline(in, line))
            text += line + "\n";
        return text;
    }

    XvfbServer xvfb;
    ChildProcess bus; // a private session bus
    std::string busAddress =
        bus.startReportingLine({"dbus-daemon", "--session", "--nofork", "--print-address={fd}"});
    PulseServer pulse;
    TempFolder home{"mirabend-e2e"};
    std::vector<std::string> env;
    ChildProcess app;
};

TEST_F(EndToEnd, RemoteCommandsRecordTheStageWithSoundLeaveOutPausesAndFollowTheStageSize) {
    EXPECT_NE(run({"--command", "stop"}), 0) << "no instance runs yet: the client says so";
    ASSERT_TRUE(startProgram());
    ASSERT_EQ(run({"--command", "side"}), 0);
    // The welcome presentation opens by itself when LibreOffice is there;
    // its show window fills the slide pane, 625 x 469 in Side mode.
    ASSERT_TRUE(waitForShow("625x469")) << "no slide show window filled the slide pane";
    sleepMs(500);
    const std::string file = home.file("talk.mkv");
    using Clock = std::chrono::steady_clock;
    const auto started = Clock::now();
    ASSERT_EQ(run({"--record-to", file}), 0);
    sleepMs(2000);
    ASSERT_EQ(run({"--command", "next"}), 0); // a chapter per slide and pane
    sleepMs(1000);
    ASSERT_EQ(run({"--command", "pause"}), 0);
    const auto paused = Clock::now();
    sleepMs(2000);
    ASSERT_EQ(run({"--command", "pause"}), 0);
    const auto resumed = Clock::now();
    ASSERT_EQ(run({"--command", "mix"}), 0);
    sleepMs(1000);
    ASSERT_EQ(run({"--command", "draw"}), 0);
    sleepMs(1000);
    ASSERT_EQ(run({"--command", "stop"}), 0);
    const auto stopped = Clock::now();

    // One step smaller, back on the slides: the next recording has the new
    // size (taken once the first file is done).
    ASSERT_EQ(run({"--command", "dec"}), 0);
    ASSERT_EQ(run({"--command", "slides"}), 0);
    const std::string small = home.file("small.mkv");
    bool recording = false;
    for (int i = 0; i < 60 && !recording; ++i) {
        recording = run({"--record-to", small}) == 0;
        if (!recording)
            sleepMs(500);
    }
    ASSERT_TRUE(recording) << log();
    sleepMs(2000);
    ASSERT_EQ(run({"--command", "stop"}), 0);
    // A file is finished after the stop, once the sound server has sent
    // the sound up to it (seconds from a sine source); SIGTERM lets the
    // program complete it before it exits.
    app.stop(30000);

    const MediaInfo info = probe(file);
    ASSERT_TRUE(info.opened) << file << "\n" << log();
    EXPECT_EQ(info.videoCodec, "h264");
    EXPECT_EQ(info.audioCodec, "aac");
    EXPECT_EQ(info.width, 800) << "the stage is what is recorded";
    EXPECT_EQ(info.height, 600);
    // The file is the time between start and stop less the pause. Each
    // remote command is a process start, and the capture needs a moment to
    // open its devices, so the bounds allow for a second of latency.
    const auto seconds = [](Clock::duration d) {
        return std::chrono::duration<double>(d).count();
    };
    const double wall = seconds(stopped - started);
    const double pause = seconds(resumed - paused);
    std::printf("recorded: video %.2f s (%ld frames), audio %.2f s; wall %.2f s, paused %.2f s\n",
                info.videoSeconds, info.videoPackets, info.audioSeconds, wall, pause);
    EXPECT_LT(info.videoSeconds, wall - pause + 0.5) << "the pause is left out";
    EXPECT_GT(info.videoSeconds, wall - pause - 2.5);
    EXPECT_NEAR(info.audioSeconds, info.videoSeconds, 0.5) << "sound and picture stay together";
    EXPECT_GT(info.audioRms, 0.01) << "the sine source is audible";
    // Side mode: the slide pane sits at (10, 20), 625 wide; the welcome
    // slide's white title is in its top part, on a dark ground.
    EXPECT_GT(brightestLuma(file, 10, 20, 625, 120, 1.0), 180) << "the slide is in the recording";
    EXPECT_LT(brightestLuma(file, 700, 300, 80, 80, 1.0), 120) << "beside the panes the stage is dark";
    // A chapter per slide, named with the slide's title, and one for the
    // whiteboard pane.
    std::vector<std::string> chapters;
    for (const ReadChapter& chapter : readChapters(file))
        chapters.push_back(chapter.title);
    EXPECT_EQ(chapters, (std::vector<std::string>{"Slide 2: What Mirabend does", "Whiteboard"})) << log();

    const MediaInfo smaller = probe(small);
    ASSERT_TRUE(smaller.opened) << small << "\n" << log();
    EXPECT_EQ(smaller.width, 720) << "one step below 800 x 600";
    EXPECT_EQ(smaller.height, 540);
    EXPECT_GT(brightestLuma(small, 20, 20, 500, 120, 0.5), 180) << "the slide keeps its place on the stage";
}

} // namespace
} // namespace mirabend::test
