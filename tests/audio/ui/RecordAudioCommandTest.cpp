// "--record-audio" and its "--list-devices" run as their own
// process against a private PulseAudio server playing the ramp.
#include "SoundSandbox.h"
#include "support/WavFile.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>

namespace mirabend {
namespace {

using test::readWav;

struct ToolRun {
    int exitCode = -1;
    std::string output;
};

ToolRun runTool(const std::string& args) {
    ToolRun run;
    run.output = test::runShell(std::string(AUDIO_TOOL) + " " + args + " 2>&1", &run.exitCode);
    return run;
}

using RecordAudioCommandTest = test::RampTest;

TEST_F(RecordAudioCommandTest, RecordsExactlyTheAskedSecondsOfTheRamp) {
    const ToolRun run =
        runTool("--record-audio " + file("one.wav") + " --seconds 1 --device pulse --line Capture");
    ASSERT_EQ(run.exitCode, 0) << run.output;
    EXPECT_NE(run.output.find("Recorded 0:01"), std::string::npos) << run.output;
    const test::WavFile wav = readWav(file("one.wav"));
    EXPECT_TRUE(wav.consistent());
    EXPECT_EQ(wav.dataSize(), 176400u);
    EXPECT_TRUE(test::isRamp(wav.samples(), 2, 1));
}

TEST_F(RecordAudioCommandTest, MonoAdpcmWithVolumeAndEffects) {
    const ToolRun run = runTool("--record-audio " + file("adpcm.wav") +
                                " --seconds 0.5 --rate 22050 --channels 1 --format ima-adpcm --volume 32768"
                                " --device pulse --effects amplify,echo");
    ASSERT_EQ(run.exitCode, 0) << run.output;
    const test::WavFile wav = readWav(file("adpcm.wav"));
    EXPECT_TRUE(wav.consistent());
    EXPECT_EQ(wav.formatTag(), 0x11);
    EXPECT_EQ(wav.u16(22), 1);      // channels
    EXPECT_EQ(wav.u32(24), 22050u); // rate
    EXPECT_NE(sandbox.pactl("get-source-volume ramp").find("50%"), std::string::npos);
}

TEST_F(RecordAudioCommandTest, SigtermClosesAValidFile) {
    const std::string out = file("term.wav");
    test::ChildProcess child;
    ASSERT_TRUE(child.start({AUDIO_TOOL, "--record-audio", out, "--device", "pulse"}, {}, file("term.log")));
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    kill(child.pid(), SIGTERM);
    for (int i = 0; i < 100 && child.running(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(child.running());
    const test::WavFile wav = readWav(out);
    EXPECT_TRUE(wav.consistent());
    EXPECT_GT(wav.dataSize(), 44100u);
}

TEST_F(RecordAudioCommandTest, FailuresAreWordedAndExitNonZero) {
    ToolRun run = runTool("--record-audio " + file("x.wav") + " --rate fast");
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.output.find("\"fast\""), std::string::npos) << run.output;

    run = runTool("--record-audio " + file("x.wav") + " --device \"No Such Card\" --seconds 1");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.output.find("no audio input device called \"No Such Card\""), std::string::npos)
        << run.output;

    run = runTool("--record-audio " + file("x.wav") + " --device pulse --volume 70000 --seconds 1");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.output.find("65536"), std::string::npos) << run.output;

    run = runTool("--record-audio /no/such/folder/x.wav --device pulse --seconds 1");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.output.find("Could not init the encoder!"), std::string::npos) << run.output;
}

TEST_F(RecordAudioCommandTest, ListsDevicesWithTheirSources) {
    const ToolRun run = runTool("--record-audio --list-devices");
    ASSERT_EQ(run.exitCode, 0) << run.output;
    EXPECT_NE(run.output.find("PulseAudio Sound Server  [pulse]"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("* Capture"), std::string::npos) << run.output;
}

} // namespace
} // namespace mirabend
