#include "audio/core/clsDSP.h"
#include "audio/ui/RecordAudioCommand.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace mirabend {
namespace {

std::optional<std::string> parse(std::vector<std::string> args, RecordAudioOptions& o) {
    args.insert(args.begin(), "mirabend");
    std::vector<char*> argv;
    for (std::string& a : args)
        argv.push_back(a.data());
    return parseRecordAudioOptions(static_cast<int>(argv.size()), argv.data(), o);
}

TEST(RecordAudioOptions, DefaultsAndEveryOption) {
    RecordAudioOptions o;
    ASSERT_FALSE(parse({"--record-audio", "a.wav"}, o));
    EXPECT_EQ(o.file, "a.wav");
    EXPECT_EQ(o.rate, 44100);
    EXPECT_EQ(o.channels, 2);
    EXPECT_EQ(o.effects, 0);
    EXPECT_EQ(o.format, "pcm");
    EXPECT_LT(o.seconds, 0);

    RecordAudioOptions all;
    ASSERT_FALSE(parse({"--record-audio", "b.wav", "--seconds", "2.5", "--device", "pulse", "--line",
                        "Capture", "--volume", "32768", "--rate", "22050", "--channels", "1", "--effects",
                        "amplify,eq", "--format", "ima-adpcm"},
                       all));
    EXPECT_DOUBLE_EQ(all.seconds, 2.5);
    EXPECT_EQ(all.device, "pulse");
    EXPECT_EQ(all.line, "Capture");
    EXPECT_EQ(all.volume, 32768);
    EXPECT_EQ(all.rate, 22050);
    EXPECT_EQ(all.channels, 1);
    EXPECT_EQ(all.effects, clsDSP::Amplify | clsDSP::Equalizer);
    EXPECT_EQ(all.format, "ima-adpcm");

    RecordAudioOptions listing; // listing needs no file
    ASSERT_FALSE(parse({"--record-audio", "--list-devices"}, listing));
    EXPECT_TRUE(listing.listDevices);
}

TEST(RecordAudioOptions, BadValuesAreNamedInTheError) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"--record-audio"}, "needs a file name"},
        {{"--record-audio", "a.wav", "--rate", "fast"}, "\"fast\""},
        {{"--record-audio", "a.wav", "--rate", "7"}, "8000 to 192000 Hz, not \"7\""},
        {{"--record-audio", "a.wav", "--rate", "192001"}, "8000 to 192000 Hz"},
        {{"--record-audio", "a.wav", "--channels", "3"}, "1 or 2"},
        {{"--record-audio", "a.wav", "--seconds", "-1"}, "positive"},
        {{"--record-audio", "a.wav", "--volume", "loud"}, "whole number"},
        {{"--record-audio", "a.wav", "--effects", "amplify,reverb"}, "reverb"},
        {{"--record-audio", "a.wav", "--format", "ogg"}, "\"ogg\""},
        {{"--record-audio", "a.wav", "--seconds"}, "needs"},
        {{"--record-audio", "a.wav", "--frobnicate"}, "unknown option"},
    };
    for (const auto& [args, expected] : cases) {
        RecordAudioOptions o;
        const auto error = parse(args, o);
        ASSERT_TRUE(error) << args.back();
        EXPECT_NE(error->find(expected), std::string::npos) << *error;
    }
}

} // namespace
} // namespace mirabend
