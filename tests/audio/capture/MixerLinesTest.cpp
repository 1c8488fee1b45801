// Device list and recording-source lines over the three mixer layouts that
// the test control plugin plays. The plugin saves every value it is sent, so
// each check reads what reached the "card", not what the engine remembers.
#include "SoundSandbox.h"
#include "audio/capture/WaveInRecorder.h"

#include <fstream>
#include <gtest/gtest.h>

namespace mirabend {
namespace {

using test::SoundSandbox;

std::string clean(const std::string& field) {
    return field.substr(0, field.find('\0'));
}

class MixerLinesTest : public ::testing::Test {
protected:
    int indexOf(WaveInRecorder& rec, const std::string& pcm) {
        rec.DeviceCount();
        return findInputDevice(rec.devices(), pcm);
    }

    void selectLayout(WaveInRecorder& rec, const std::string& layout) {
        const int index = indexOf(rec, "mixtest_" + layout);
        ASSERT_GE(index, 0) << layout << " test device is not listed";
        ASSERT_TRUE(rec.SelectDevice(index)) << rec.lastFailure().detail;
    }

    std::vector<std::string> lineNames(WaveInRecorder& rec) {
        std::vector<std::string> names;
        for (int i = 0; i < rec.MixerLineCount(); ++i)
            names.push_back(clean(rec.MixerLineName(i)));
        return names;
    }

    static int line(const std::vector<std::string>& names, const std::string& name) {
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (names[i] == name)
                return static_cast<int>(i);
        }
        return -1;
    }

    SoundSandbox sandbox{MIXTEST_PLUGIN};
};

TEST_F(MixerLinesTest, ListsUserDevicesWithReadableNamesAndLeavesHelpersOut) {
    const std::vector<InputDevice> devices = listInputDevices();
    const int index = findInputDevice(devices, "mixtest_enum");
    ASSERT_GE(index, 0);
    EXPECT_EQ(devices[static_cast<std::size_t>(index)].name, "Test card with an input source list");
    EXPECT_EQ(devices[static_cast<std::size_t>(index)].ctl, "mixtest_enum");
    EXPECT_EQ(findInputDevice(devices, "Test sound server"), findInputDevice(devices, "MIXTEST_SERVER"));
    for (const char* helper : {"null", "samplerate", "speexrate", "upmix", "vdownmix", "jack"})
        EXPECT_EQ(findInputDevice(devices, helper), -1) << helper;
    EXPECT_EQ(audioInputDeviceNames().size(), devices.size());

    WaveInRecorder rec;
    const std::string name = rec.DeviceName(indexOf(rec, "mixtest_enum"));
    ASSERT_EQ(name.size(), 32u);
    EXPECT_EQ(clean(name), "Test card with an input source");
    EXPECT_EQ(name[31], '\0');
    const std::string shortName = rec.DeviceName(indexOf(rec, "mixtest_server"));
    EXPECT_EQ(shortName, std::string("Test sound server") + std::string(15, '\0'));
}

TEST_F(MixerLinesTest, WithoutADeviceThereAreNoLinesAndARefusedIndexKeepsTheMixer) {
    WaveInRecorder rec;
    EXPECT_EQ(rec.SelectedDevice(), -1);
    EXPECT_EQ(rec.MixerLineCount(), 0);
    EXPECT_FALSE(rec.SelectMixerLine(0));
    EXPECT_EQ(rec.MixerLineVolume(), 0);
    selectLayout(rec, "switches");
    const int chosen = rec.SelectedDevice();
    EXPECT_FALSE(rec.SelectDevice(-1));
    EXPECT_FALSE(rec.SelectDevice(rec.DeviceCount()));
    EXPECT_EQ(rec.lastFailure().code, CaptureError::NoSuchDevice);
    EXPECT_EQ(rec.SelectedDevice(), chosen);
    EXPECT_EQ(rec.MixerLineCount(), 3);
}

TEST_F(MixerLinesTest, ExclusiveSwitchesChooseTheCaptureSource) {
    WaveInRecorder rec;
    selectLayout(rec, "switches");
    const std::vector<std::string> names = lineNames(rec);
    ASSERT_EQ(names.size(), 3u);
    const int mic = line(names, "Mic"), lineIn = line(names, "Line"), cd = line(names, "CD");
    ASSERT_TRUE(mic >= 0 && lineIn >= 0 && cd >= 0);
    EXPECT_EQ(rec.MixerLineName(0).size(), 64u);
    EXPECT_EQ(rec.SelectedMixerLine(), lineIn); // the card starts on Line

    ASSERT_TRUE(rec.SelectMixerLine(mic));
    EXPECT_EQ(sandbox.saved("switches", "Capture Source"), "0 0");
    EXPECT_EQ(rec.SelectedMixerLine(), mic);
    EXPECT_EQ(rec.MixerLineType(-1), LineMicrophone);
    EXPECT_EQ(lineKindName(rec.MixerLineType(cd)), "Compact Disc");

    ASSERT_TRUE(rec.SelectMixerLine(cd));
    EXPECT_EQ(sandbox.saved("switches", "Capture Source"), "2 2");
    EXPECT_EQ(rec.SelectedMixerLine(), cd);
    EXPECT_FALSE(rec.SelectMixerLine(3));
    EXPECT_EQ(sandbox.saved("switches", "Capture Source"), "2 2");
}

TEST_F(MixerLinesTest, VolumeGoesToTheSelectedLineOnEveryChannel) {
    WaveInRecorder rec;
    selectLayout(rec, "switches");
    const std::vector<std::string> names = lineNames(rec);
    ASSERT_TRUE(rec.SelectMixerLine(line(names, "Mic")));
    EXPECT_EQ(rec.MixerLineVolume(), 10);
    EXPECT_EQ(rec.MixerLineVolumeRange().max, 31);
    rec.MixerLineVolume(25);
    EXPECT_EQ(sandbox.saved("switches", "Mic Capture Volume"), "25 25");
    EXPECT_EQ(sandbox.saved("switches", "Line Capture Volume"), "11 11");
    EXPECT_EQ(rec.MixerLineVolume(), 25);

    ASSERT_TRUE(rec.SelectMixerLine(line(names, "CD"))); // CD is a mono line
    EXPECT_EQ(rec.MixerLineVolume(), 12);
    rec.MixerLineVolume(7);
    EXPECT_EQ(sandbox.saved("switches", "CD Capture Volume"), "7");
    EXPECT_EQ(sandbox.saved("switches", "Mic Capture Volume"), "25 25");
}

TEST_F(MixerLinesTest, InputSourceListChoosesTheItemAndSharesOneCaptureVolume) {
    WaveInRecorder rec;
    selectLayout(rec, "enum");
    ASSERT_EQ(lineNames(rec), (std::vector<std::string>{"Mic", "Front Mic", "Line"}));
    EXPECT_EQ(rec.SelectedMixerLine(), 2);
    ASSERT_TRUE(rec.SelectMixerLine(1));
    EXPECT_EQ(sandbox.saved("enum", "Input Source"), "1");
    EXPECT_EQ(rec.SelectedMixerLine(), 1);
    EXPECT_EQ(rec.MixerLineType(1), LineMicrophone);
    EXPECT_EQ(rec.MixerLineType(2), LineLineIn);

    EXPECT_EQ(rec.MixerLineVolumeRange().max, 63);
    rec.MixerLineVolume(50);
    EXPECT_EQ(sandbox.saved("enum", "Capture Volume"), "50 50");
    EXPECT_EQ(rec.MixerLineVolume(), 50);
}

TEST_F(MixerLinesTest, SoundServerShowsOneCaptureLine) {
    WaveInRecorder rec;
    selectLayout(rec, "server");
    ASSERT_EQ(lineNames(rec), std::vector<std::string>{"Capture"});
    EXPECT_EQ(rec.SelectedMixerLine(), 0);
    EXPECT_EQ(sandbox.saved("server", "Capture Switch"), "0 0");
    ASSERT_TRUE(rec.SelectMixerLine(0)); // choosing it unmutes it
    EXPECT_EQ(sandbox.saved("server", "Capture Switch"), "1 1");
    EXPECT_EQ(rec.MixerLineVolumeRange().max, 65536);
    rec.MixerLineVolume(32768);
    EXPECT_EQ(sandbox.saved("server", "Capture Volume"), "32768 32768");
    EXPECT_EQ(sandbox.saved("server", "Master Playback Volume"), "65536 65536");
}

TEST(LineKinds, NamesMapToKinds) {
    const std::pair<const char*, int> rows[] = {{"Front Mic", LineMicrophone},
                                                {"Line", LineLineIn},
                                                {"Capture", LineUndefined},
                                                {"Stereo Mix", LineWaveOut}};
    for (const auto& [name, kind] : rows)
        EXPECT_EQ(lineKindFromName(name), kind) << name;
    EXPECT_EQ(lineKindName(12345), "Unknown");
}

} // namespace
} // namespace mirabend
