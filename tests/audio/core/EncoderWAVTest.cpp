#include "audio/core/EncoderWAV.h"

#include "TestFiles.h"
#include "audio/core/AudioError.h"
#include "audio/core/WaveFormat.h"

#include <cstring>
#include <gtest/gtest.h>

namespace mirabend::test {
namespace {

using namespace encoder_result;

std::vector<std::uint8_t> bytesOf(const std::vector<std::int16_t>& samples) {
    std::vector<std::uint8_t> out(samples.size() * 2);
    std::memcpy(out.data(), samples.data(), out.size());
    return out;
}

TEST(EncoderWAV, PcmFileHasTheDesignedLayout) {
    TempDir dir;
    const std::string path = dir.file("take.wav");
    const std::vector<std::uint8_t> audio = bytesOf(sine(440.0, 22050, 1, 3001));
    {
        EncoderWAV enc;
        enc.SetPCMFormat(22050, 1);
        ASSERT_EQ(enc.Encoder_EncoderInit(22050, 1, path), kOk);
        std::int32_t used = 0;
        // Two blocks, the second a different size.
        ASSERT_EQ(enc.Encoder_Encode(audio.data(), 4000, used), kOk);
        EXPECT_EQ(used, 4000);
        ASSERT_EQ(
            enc.Encoder_Encode(audio.data() + 4000, static_cast<std::int32_t>(audio.size() - 4000), used),
            kOk);
        ASSERT_EQ(enc.Encoder_EncoderClose(), kOk);
    }
    const std::vector<std::uint8_t> file = readFile(path);
    const std::size_t n = audio.size();
    ASSERT_EQ(file.size(), n + 46);
    EXPECT_EQ(std::memcmp(file.data(), "RIFF", 4), 0);
    EXPECT_EQ(le32(file, 4), n + 38);
    EXPECT_EQ(std::memcmp(file.data() + 8, "WAVEfmt ", 8), 0);
    EXPECT_EQ(le32(file, 16), 18u);
    EXPECT_EQ(le16(file, 20), 1); // PCM
    EXPECT_EQ(le16(file, 22), 1); // channels
    EXPECT_EQ(le32(file, 24), 22050u);
    EXPECT_EQ(le32(file, 28), 44100u); // bytes per second
    EXPECT_EQ(le16(file, 32), 2);      // block align
    EXPECT_EQ(le16(file, 34), 16);
    EXPECT_EQ(le16(file, 36), 0); // cbSize
    EXPECT_EQ(std::memcmp(file.data() + 38, "data", 4), 0);
    EXPECT_EQ(le32(file, 42), n);
    EXPECT_TRUE(std::equal(audio.begin(), audio.end(), file.begin() + 46));

    const Probe p = probeFile(path);
    EXPECT_TRUE(p.opened) << p.error;
    EXPECT_EQ(p.sampleRate, 22050);
    EXPECT_EQ(p.decodedSamples, 3001);
}

TEST(EncoderWAV, WithoutHeaderTheFileIsExactlyTheAudio) {
    TempDir dir;
    const std::string path = dir.file("raw.pcm");
    const std::vector<std::uint8_t> audio = bytesOf(sine(1000.0, 44100, 2, 500));
    EncoderWAV enc;
    enc.WriteHeader(false);
    ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, path), kOk);
    std::int32_t used = 0;
    ASSERT_EQ(enc.Encoder_Encode(audio.data(), static_cast<std::int32_t>(audio.size()), used), kOk);
    ASSERT_EQ(enc.Encoder_EncoderClose(), kOk);
    EXPECT_EQ(readFile(path), audio);
}

TEST(EncoderWAV, RefusesOversizedBlocksPartialFramesAndCallsWithoutFile) {
    TempDir dir;
    const std::string path = dir.file("a.wav");
    EncoderWAV enc;
    std::int32_t used = -5;
    EXPECT_EQ(enc.Encoder_Encode("x", 1, used), kNoFile);
    EXPECT_EQ(enc.Encoder_EncoderMetrics(0), -1);
    EXPECT_EQ(enc.Encoder_EncoderMetrics(1), -1);
    EXPECT_EQ(enc.Encoder_EncoderMetrics(2), 0);

    ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, path), kOk);
    EXPECT_EQ(enc.Encoder_EncoderMetrics(1), 176400);
    EXPECT_EQ(enc.Encoder_EncoderMetrics(0), 4);
    std::vector<std::uint8_t> big(176401, 1);
    EXPECT_EQ(enc.Encoder_Encode(big.data(), static_cast<std::int32_t>(big.size()), used), kBlockTooLarge);
    // One second is still one block; a trailing partial frame is not used.
    EXPECT_EQ(enc.Encoder_Encode(big.data(), 176400, used), kOk);
    EXPECT_EQ(used, 176400);
    EXPECT_EQ(enc.Encoder_Encode(big.data(), 10243, used), kOk);
    EXPECT_EQ(used, 10240);
    EXPECT_EQ(enc.Encoder_EncoderClose(), kOk);
    EXPECT_EQ(enc.Encoder_EncoderClose(), kNoFile);
    EXPECT_EQ(readFile(path).size(), 46u + 176400 + 10240);
}

TEST(EncoderWAV, UnreadableInputConvertsThePreviousBlockAgain) {
    TempDir dir;
    const std::string path = dir.file("again.wav");
    EncoderWAV enc;
    enc.WriteHeader(false);
    enc.SetPCMFormat(8000, 1);
    ASSERT_EQ(enc.Encoder_EncoderInit(8000, 1, path), kOk);
    const std::vector<std::uint8_t> block = {1, 2, 3, 4};
    std::int32_t used = 0;
    ASSERT_EQ(enc.Encoder_Encode(block.data(), 4, used), kOk);
    ASSERT_EQ(enc.Encoder_Encode(nullptr, 4, used), kOk);
    ASSERT_EQ(enc.Encoder_EncoderClose(), kOk);
    EXPECT_EQ(readFile(path), (std::vector<std::uint8_t>{1, 2, 3, 4, 1, 2, 3, 4}));
}

TEST(EncoderWAV, InitRejectsBadParametersAndUncreatableFiles) {
    TempDir dir;
    EncoderWAV enc;
    EXPECT_EQ(enc.Encoder_EncoderInit(0, 2, dir.file("x.wav")), kStreamFailed);
    EXPECT_EQ(enc.Encoder_EncoderInit(44100, 0, dir.file("x.wav")), kStreamFailed);
    EXPECT_EQ(enc.Encoder_EncoderInit(44100, 2, dir.file("missing/x.wav")), kNoFile);
    EXPECT_NE(enc.lastErrorDetail().find("No such file"), std::string::npos) << enc.lastErrorDetail();
    EXPECT_FALSE(enc.isOpen());

    // A format that no converter makes fails with 7 and leaves no file.
    const std::vector<std::uint8_t> bogus = {0x34, 0x12, 1, 0, 0x44, 0xAC, 0, 0, 0,
                                             0,    0,    0, 1, 0,    8,    0, 0, 0};
    enc.SetFormat(bogus.data(), bogus.size(), "Bogus", "none");
    EXPECT_EQ(enc.Encoder_EncoderInit(44100, 1, dir.file("y.wav")), kStreamFailed);
    EXPECT_FALSE(enc.isOpen());
}

TEST(EncoderWAV, WriteHeaderIsLockedWhileRecording) {
    TempDir dir;
    EncoderWAV enc;
    ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, dir.file("lock.wav")), kOk);
    try {
        enc.WriteHeader(false);
        ADD_FAILURE() << "no error 90";
    } catch (const AudioError& e) {
        EXPECT_EQ(e.number(), 90);
        EXPECT_STREQ(e.what(), "Encoder already running!");
    }
    EXPECT_TRUE(enc.WriteHeader());
    enc.Encoder_EncoderClose();
    enc.WriteHeader(false);
    EXPECT_FALSE(enc.WriteHeader());
}

TEST(EncoderWAV, FormatNamesAndDescriptions) {
    EncoderWAV enc;
    EXPECT_EQ(enc.FormatTag(), "PCM");
    EXPECT_EQ(enc.FormatID(), "44.1 kHz 16 Bit Stereo");
    EXPECT_EQ(enc.formatImage(), pcmFormatImage(44100, 2));
    EXPECT_EQ(enc.Encoder_Description(), "Wave ACM Encoder");
    EXPECT_EQ(enc.Encoder_Extension(), "wav");

    enc.SetPCMFormat(22050, 1);
    EXPECT_EQ(enc.FormatTag(), "PCM");
    EXPECT_EQ(enc.FormatID(), "22.1 16 Bit mono");
    enc.SetPCMFormat(48000, 2);
    EXPECT_EQ(enc.FormatID(), "48 16 Bit stereo");
    enc.SetPCMFormat(8000, 1, "Mine", "custom");
    EXPECT_EQ(enc.FormatTag(), "Mine");
    EXPECT_EQ(enc.FormatID(), "custom");
    EXPECT_EQ(enc.formatImage(), pcmFormatImage(8000, 1));

    // A null image changes nothing; a large one grows the buffer.
    enc.SetFormat(nullptr, 18, "X", "Y");
    EXPECT_EQ(enc.FormatTag(), "Mine");
    std::vector<std::uint8_t> large(200000, 7);
    enc.SetFormat(large.data(), large.size(), "Large", "L");
    EXPECT_EQ(enc.formatImage(), large);
}

TEST(EncoderWAV, UnclosedRecordingKeepsTheZeroHeaderAndReleaseCompletesIt) {
    TempDir dir;
    const std::string path = dir.file("open.wav");
    const std::vector<std::uint8_t> audio = bytesOf(sine(440.0, 44100, 2, 1000));
    {
        EncoderWAV enc;
        ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, path), kOk);
        std::int32_t used = 0;
        ASSERT_EQ(enc.Encoder_Encode(audio.data(), static_cast<std::int32_t>(audio.size()), used), kOk);
        const std::vector<std::uint8_t> during = readFile(path);
        ASSERT_EQ(during.size(), audio.size() + 46);
        EXPECT_TRUE(std::all_of(during.begin(), during.begin() + 46, [](std::uint8_t b) { return b == 0; }));
    } // released without close: the destructor writes the header
    const std::vector<std::uint8_t> after = readFile(path);
    EXPECT_EQ(std::memcmp(after.data(), "RIFF", 4), 0);
    EXPECT_EQ(le32(after, 42), audio.size());
}

TEST(EncoderWAV, ReopeningReplacesTheFileAndClosesThePrevious) {
    TempDir dir;
    EncoderWAV enc;
    const std::vector<std::uint8_t> audio(4000, 9);
    std::int32_t used = 0;
    ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, dir.file("one.wav")), kOk);
    ASSERT_EQ(enc.Encoder_Encode(audio.data(), 4000, used), kOk);
    ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, dir.file("two.wav")), kOk);
    EXPECT_EQ(le32(readFile(dir.file("one.wav")), 42), 4000u); // closed with its header
    ASSERT_EQ(enc.Encoder_EncoderClose(), kOk);
    EXPECT_EQ(readFile(dir.file("two.wav")).size(), 46u);
    ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, dir.file("one.wav")), kOk);
    ASSERT_EQ(enc.Encoder_EncoderClose(), kOk);
    EXPECT_EQ(readFile(dir.file("one.wav")).size(), 46u);
}

TEST(EncoderWAV, FullDeviceGivesWriteErrorNotACrash) {
    EncoderWAV enc;
    // The reserved header cannot be written: the open fails with 10.
    EXPECT_EQ(enc.Encoder_EncoderInit(44100, 2, "/dev/full"), kWriteFailed);
    EXPECT_FALSE(enc.isOpen());
    EXPECT_NE(enc.lastErrorDetail().find("No space left"), std::string::npos) << enc.lastErrorDetail();

    enc.WriteHeader(false);
    ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, "/dev/full"), kOk);
    const std::vector<std::uint8_t> audio(10240, 1);
    std::int32_t used = 0;
    EXPECT_EQ(enc.Encoder_Encode(audio.data(), 10240, used), kWriteFailed);
    EXPECT_EQ(used, 10240);
    EXPECT_EQ(enc.Encoder_EncoderClose(), kOk);
}

} // namespace
} // namespace mirabend::test
