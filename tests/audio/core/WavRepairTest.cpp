#include "audio/core/WavRepair.h"

#include "TestFiles.h"
#include "audio/core/EncoderWAV.h"
#include "audio/core/WaveFormat.h"

#include <cstring>
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

TEST(WavRepair, WritesTheHeaderOfAnUnfinishedPcmRecording) {
    TempDir dir;
    const std::string path = dir.file("textAudio");
    const std::vector<std::uint8_t> original = unfinished(18, 8000);
    writeFile(path, original);
    EXPECT_TRUE(hasReservedHeader(path));

    WavRepairOutcome outcome{};
    const Failure<WavRepairError> f = repairWav(path, outcome);
    ASSERT_FALSE(f) << f.detail;
    EXPECT_EQ(outcome, WavRepairOutcome::Repaired);
    EXPECT_FALSE(hasReservedHeader(path));

    const std::vector<std::uint8_t> file = readFile(path);
    ASSERT_EQ(file.size(), original.size());
    EXPECT_EQ(std::memcmp(file.data(), "RIFF", 4), 0);
    EXPECT_EQ(le32(file, 4), 8000u + 38);
    EXPECT_EQ(le32(file, 16), 18u);
    const std::vector<std::uint8_t> pcm = pcmFormatImage(44100, 2);
    EXPECT_TRUE(std::equal(pcm.begin(), pcm.end(), file.begin() + 20));
    EXPECT_EQ(le32(file, 42), 8000u);
    EXPECT_TRUE(std::equal(original.begin() + 46, original.end(), file.begin() + 46)); // audio untouched

    const Probe p = probeFile(path);
    EXPECT_TRUE(p.opened) << p.error;
    EXPECT_EQ(p.decodedSamples, 2000);

    // Running it again leaves the now complete file alone.
    ASSERT_FALSE(repairWav(path, outcome));
    EXPECT_EQ(outcome, WavRepairOutcome::AlreadyComplete);
    EXPECT_EQ(readFile(path), file);
}

TEST(WavRepair, UsesTheGivenFormatForCompressedRecordings) {
    TempDir dir;
    const std::string path = dir.file("adpcm.wav");
    WaveFormatFields f;
    f.formatTag = wave_tag::kImaAdpcm;
    f.channels = 1;
    f.samplesPerSec = 8000;
    f.avgBytesPerSec = 4055;
    f.blockAlign = 256;
    f.bitsPerSample = 4;
    f.extra = {0xF9, 0x01}; // 505 samples per block
    const std::vector<std::uint8_t> image = formatImage(f);
    writeFile(path, unfinished(image.size(), 512, true)); // two silent blocks
    EXPECT_TRUE(hasReservedHeader(path, image));

    WavRepairOutcome outcome{};
    ASSERT_FALSE(repairWav(path, outcome, image));
    const std::vector<std::uint8_t> file = readFile(path);
    EXPECT_EQ(le32(file, 16), 20u);
    EXPECT_EQ(le32(file, 44), 512u);
    const Probe p = probeFile(path);
    EXPECT_TRUE(p.opened) << p.error;
    EXPECT_TRUE(p.error.empty()) << p.error;
    EXPECT_EQ(p.sampleRate, 8000);
    EXPECT_EQ(p.decodedSamples, 2 * 505);
}

TEST(WavRepair, RefusesWhatItCannotRepair) {
    TempDir dir;
    WavRepairOutcome outcome{};
    EXPECT_EQ(repairWav(dir.file("absent"), outcome).code, WavRepairError::OpenFailed);

    writeFile(dir.file("short"), std::vector<std::uint8_t>(20, 0));
    EXPECT_EQ(repairWav(dir.file("short"), outcome).code, WavRepairError::TooShort);

    std::vector<std::uint8_t> text(100, 'a');
    writeFile(dir.file("text"), text);
    const Failure<WavRepairError> f = repairWav(dir.file("text"), outcome);
    EXPECT_EQ(f.code, WavRepairError::NotReserved);
    EXPECT_FALSE(f.detail.empty());
    EXPECT_EQ(readFile(dir.file("text")), text); // untouched

    const std::vector<std::uint8_t> broken = {1, 2, 3};
    writeFile(dir.file("ok"), unfinished(18, 10));
    EXPECT_EQ(repairWav(dir.file("ok"), outcome, broken).code, WavRepairError::BadFormat);
}

TEST(WavRepair, RepairsWhatTheEncoderLeftOpen) {
    TempDir dir;
    const std::string path = dir.file("crash.wav");
    const std::vector<std::int16_t> tone = sine(440.0, 44100, 2, 2000);
    {
        EncoderWAV enc;
        ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, path), encoder_result::kOk);
        std::int32_t used = 0;
        ASSERT_EQ(enc.Encoder_Encode(tone.data(), static_cast<std::int32_t>(tone.size() * 2), used), 0);
        // The program dies here: keep a copy of the file as it is now.
        writeFile(dir.file("copy.wav"), readFile(path));
    }
    WavRepairOutcome outcome{};
    ASSERT_FALSE(repairWav(dir.file("copy.wav"), outcome));
    EXPECT_EQ(readFile(dir.file("copy.wav")), readFile(path)); // same as a clean close
}

int runCommand(std::vector<std::string> args) {
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
    TempDir dir;
    const std::string path = dir.file("cli.wav");
    writeFile(path, unfinished(18, 400));
    EXPECT_EQ(runCommand({"mirabend", "--repair-wav", path, "--rate", "abc"}), 2);
    EXPECT_EQ(runCommand({"mirabend", "--repair-wav", path, "--channels", "3"}), 2);
    EXPECT_EQ(runCommand({"mirabend", "--repair-wav"}), 2);
    EXPECT_TRUE(hasReservedHeader(path)); // nothing done on bad arguments
    EXPECT_EQ(runCommand({"mirabend", "--repair-wav", path, "--rate", "8000", "--channels", "1"}), 0);
    EXPECT_EQ(le32(readFile(path), 24), 8000u);
    EXPECT_EQ(runCommand({"mirabend", "--repair-wav", path}), 0); // already complete
    EXPECT_EQ(runCommand({"mirabend", "--repair-wav", dir.file("none")}), 1);
}

} // namespace
} // namespace mirabend::test
