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

TEST_F(MixerLinesTest, EachLayoutChoosesItsSourceAndSetsItsVolumeOnTheCard) {
    const struct {
        const char* layout;
        std::vector<std::string> names;
        int startsOn;
        int choose;
        const char *sourceControl, *sourceValue; // saved after choosing
        int volumeMax, volume;
        const char *volumeControl, *volumeValue, *untouched, *untouchedValue;
    } rows[] = {
        // clang-format off
        // Exclusive switches; the volume goes to the chosen line only.
        {"switches", {"Line", "CD", "Mic"}, 0, 1, "Capture Source", "2 2",
         31, 7, "CD Capture Volume", "7", "Line Capture Volume", "11 11"},
        // An input source list sharing one capture volume.
        {"enum", {"Mic", "Front Mic", "Line"}, 2, 1, "Input Source", "1",
         63, 50, "Capture Volume", "50 50", "Input Source", "1"},
        // A sound server: one line, unmuted by choosing it.
        {"server", {"Capture"}, 0, 0, "Capture Switch", "1 1",
         65536, 32768, "Capture Volume", "32768 32768", "Master Playback Volume", "65536 65536"},
        // clang-format on
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.layout);
        WaveInRecorder rec;
        selectLayout(rec, row.layout);
        ASSERT_EQ(lineNames(rec), row.names);
        EXPECT_EQ(rec.MixerLineName(0).size(), 64u);
        EXPECT_EQ(rec.SelectedMixerLine(), row.startsOn);
        ASSERT_TRUE(rec.SelectMixerLine(row.choose));
        EXPECT_EQ(sandbox.saved(row.layout, row.sourceControl), row.sourceValue);
        EXPECT_EQ(rec.SelectedMixerLine(), row.choose);
        EXPECT_FALSE(rec.SelectMixerLine(3));
        EXPECT_EQ(sandbox.saved(row.layout, row.sourceControl), row.sourceValue);
        EXPECT_EQ(rec.MixerLineVolumeRange().max, row.volumeMax);
        rec.MixerLineVolume(row.volume);
        EXPECT_EQ(rec.MixerLineVolume(), row.volume);
        EXPECT_EQ(sandbox.saved(row.layout, row.volumeControl), row.volumeValue);
        EXPECT_EQ(sandbox.saved(row.layout, row.untouched), row.untouchedValue);
    }
}

TEST_F(MixerLinesTest, LineKindsFollowTheLineNames) {
    WaveInRecorder rec;
    selectLayout(rec, "switches");
    ASSERT_TRUE(rec.SelectMixerLine(2)); // Mic
    EXPECT_EQ(sandbox.saved("switches", "Capture Source"), "0 0");
    EXPECT_EQ(rec.MixerLineVolume(), 10);
    EXPECT_EQ(rec.MixerLineType(-1), LineMicrophone);
    EXPECT_EQ(lineKindName(rec.MixerLineType(1)), "Compact Disc");
    selectLayout(rec, "enum");
    EXPECT_EQ(rec.MixerLineType(1), LineMicrophone);
    EXPECT_EQ(rec.MixerLineType(2), LineLineIn);
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
