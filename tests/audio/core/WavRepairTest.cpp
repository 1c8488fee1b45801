#include "audio/core/WavRepair.h"

#include "audio/core/EncoderWAV.h"
#include "audio/core/WaveFormat.h"
#include "support/ChildProcess.h"
#include "support/MediaProbe.h"
#include "support/WavFile.h"

#include <gtest/gtest.h>

namespace mirabend::test {
namespace {

// What a recording left open looks like: the reserved zeros, then audio.
std::vector<std::uint8_t> unfinished(std::size_t formatSize, std::size_t audioBytes, bool silent = false) {
    std::vector<std::uint8_t> data(formatSize + 28, 0);
    for (std::size_t i = 0; i < audioBytes; ++i)
        data.push_back(silent ? 0 : static_cast<std::uint8_t>(i * 7 + 1));
    return data;
}

TEST(WavRepair, WritesTheHeaderOfAnUnfinishedRecordingOnce) {
    WaveFormatFields ima;
    ima.formatTag = wave_tag::kImaAdpcm;
    ima.channels = 1;
    ima.samplesPerSec = 8000;
    ima.avgBytesPerSec = 4055;
    ima.blockAlign = 256;
    ima.bitsPerSample = 4;
    ima.extra = {0xF9, 0x01}; // 505 samples per block
    const struct {
        const char* what;
        std::vector<std::uint8_t> image; // empty: the default PCM
        std::size_t audioBytes;
        int rate;
        double seconds;
    } rows[] = {
        {"pcm", {}, 8000, 44100, 2000.0 / 44100},
        {"ima adpcm, two silent blocks", formatImage(ima), 512, 8000, 2 * 505 / 8000.0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        TempFolder dir;
        const std::string path = dir.file("textAudio");
        const std::vector<std::uint8_t> image = row.image.empty() ? pcmFormatImage(44100, 2) : row.image;
        const std::vector<std::uint8_t> original =
            unfinished(image.size(), row.audioBytes, !row.image.empty());
        writeFile(path, original);
        EXPECT_TRUE(hasReservedHeader(path, image));

        WavRepairOutcome outcome{};
        const Failure<WavRepairError> f =
            row.image.empty() ? repairWav(path, outcome) : repairWav(path, outcome, row.image);
        ASSERT_FALSE(f) << f.detail;
        EXPECT_EQ(outcome, WavRepairOutcome::Repaired);
        EXPECT_FALSE(hasReservedHeader(path, image));

        const WavFile wav = readWav(path);
        ASSERT_EQ(wav.bytes.size(), original.size());
        EXPECT_TRUE(wav.consistent());
        EXPECT_TRUE(std::equal(image.begin(), image.end(), wav.bytes.begin() + 20));
        EXPECT_TRUE(std::equal(original.begin() + long(28 + image.size()), original.end(),
                               wav.bytes.begin() + long(28 + image.size()))); // audio untouched
        const MediaInfo p = probe(path);
        EXPECT_EQ(p.sampleRate, row.rate);
        EXPECT_NEAR(p.audioSeconds, row.seconds, 1e-6);

        // Running it again leaves the now complete file alone.
        ASSERT_FALSE(repairWav(path, outcome));
        EXPECT_EQ(outcome, WavRepairOutcome::AlreadyComplete);
        EXPECT_EQ(readFile(path), wav.bytes);
    }
}

TEST(WavRepair, RefusesWhatItCannotRepairAndLeavesItAlone) {
    TempFolder dir;
    const struct {
        const char* name;
        std::vector<std::uint8_t> content; // empty: no file at all
        std::vector<std::uint8_t> image;
        WavRepairError expected;
    } rows[] = {
        {"absent", {}, {}, WavRepairError::OpenFailed},
        {"short", std::vector<std::uint8_t>(20, 0), {}, WavRepairError::TooShort},
        {"text", std::vector<std::uint8_t>(100, 'a'), {}, WavRepairError::NotReserved},
        {"badformat", unfinished(18, 10), {1, 2, 3}, WavRepairError::BadFormat},
    };
    for (const auto& row : rows) {
        if (!row.content.empty())
            writeFile(dir.file(row.name), row.content);
        WavRepairOutcome outcome{};
        const Failure<WavRepairError> f = row.image.empty()
                                              ? repairWav(dir.file(row.name), outcome)
                                              : repairWav(dir.file(row.name), outcome, row.image);
        EXPECT_EQ(f.code, row.expected) << row.name;
        EXPECT_FALSE(f.detail.empty()) << row.name;
        EXPECT_EQ(readFile(dir.file(row.name)), row.content) << row.name;
    }
}

TEST(WavRepair, RepairsWhatTheEncoderLeftOpen) {
    TempFolder dir;
    const std::string path = dir.file("crash.wav");
    const std::vector<std::int16_t> tone = sine(440.0, 44100, 2, 2000);
    {
        EncoderWAV enc;
        ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, path), encoder_result::kOk);
        std::int32_t used = 0;
        ASSERT_EQ(enc.Encoder_Encode(tone.data(), static_cast<std::int32_t>(tone.size() * 2), used), 0);
        // The program dies here: keep a copy of the file as it is now.
        writeFile(dir.file("copy.wav"), readFile(path));
    } // released without close: the destructor writes the header
    WavRepairOutcome outcome{};
    ASSERT_FALSE(repairWav(dir.file("copy.wav"), outcome));
    EXPECT_EQ(readFile(dir.file("copy.wav")), readFile(path)); // same as a clean close
}

int runCommand(std::vector<std::string> args) {
    args.insert(args.begin(), {"mirabend", "--repair-wav"});
    std::vector<char*> argv;
    for (std::string& a : args)
        argv.push_back(a.data());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int code = repairWavCommand(static_cast<int>(argv.size()), argv.data());
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
    return code;
}

TEST(WavRepair, CommandLine) {
    TempFolder dir;
    const std::string path = dir.file("cli.wav");
    writeFile(path, unfinished(18, 400));
    EXPECT_EQ(runCommand({path, "--rate", "abc"}), 2);
    EXPECT_EQ(runCommand({path, "--channels", "3"}), 2);
    EXPECT_EQ(runCommand({}), 2);
    EXPECT_TRUE(hasReservedHeader(path)); // nothing done on bad arguments
    EXPECT_EQ(runCommand({path, "--rate", "8000", "--channels", "1"}), 0);
    EXPECT_EQ(readWav(path).u32(24), 8000u);
    EXPECT_EQ(runCommand({path}), 0); // already complete
    EXPECT_EQ(runCommand({dir.file("none")}), 1);
}

} // namespace
} // namespace mirabend::test
