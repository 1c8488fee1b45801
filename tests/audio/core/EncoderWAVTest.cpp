// The WAV writer: its file layout, its error codes, and every format the
// chooser offers written through the converter and read back by libavformat
// and libavcodec, as other players would read it.
#include "audio/core/EncoderWAV.h"

#include "audio/core/AudioError.h"
#include "audio/core/FormatCatalog.h"
#include "audio/core/WaveFormat.h"
#include "support/ChildProcess.h"
#include "support/MediaProbe.h"
#include "support/WavFile.h"

#include <gtest/gtest.h>
#include <map>
#include <set>

namespace mirabend::test {
namespace {

using namespace encoder_result;

// Records `seconds` of a tone in capture-sized blocks.
void record(EncoderWAV& enc, const std::string& path, int rate, int channels, int seconds = 2) {
    ASSERT_EQ(enc.Encoder_EncoderInit(rate, static_cast<std::int16_t>(channels), path), kOk)
        << enc.lastErrorDetail();
    const std::vector<std::uint8_t> tone =
        bytesOf(sine(440.0, rate, channels, static_cast<std::size_t>(rate * seconds)));
    for (std::size_t at = 0; at < tone.size(); at += 10240) {
        const auto n = static_cast<std::int32_t>(std::min<std::size_t>(10240, tone.size() - at));
        std::int32_t used = 0;
        ASSERT_EQ(enc.Encoder_Encode(tone.data() + at, n, used), kOk) << enc.lastErrorDetail();
        EXPECT_LE(used, n);
    }
    ASSERT_EQ(enc.Encoder_EncoderClose(), kOk) << enc.lastErrorDetail();
}

TEST(EncoderWAV, PcmFileHasTheDesignedLayout) {
    TempFolder dir;
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
    const WavFile wav = readWav(path);
    ASSERT_EQ(wav.bytes.size(), audio.size() + 46);
    EXPECT_TRUE(wav.consistent());
    // fmt size, PCM, mono, rate, bytes per second, block align, bits, cbSize.
    const std::pair<std::size_t, std::uint32_t> fields[] = {{16, 18},    {20, 1}, {22, 1},  {24, 22050},
                                                            {28, 44100}, {32, 2}, {34, 16}, {36, 0}};
    for (const auto& [at, value] : fields)
        EXPECT_EQ(at == 16 || at == 24 || at == 28 ? wav.u32(at) : wav.u16(at), value) << "at " << at;
    EXPECT_TRUE(std::equal(audio.begin(), audio.end(), wav.bytes.begin() + 46));
    const MediaInfo p = probe(path);
    EXPECT_EQ(p.sampleRate, 22050);
    EXPECT_NEAR(p.audioSeconds * 22050, 3001, 0.5);
}

TEST(EncoderWAV, WithoutHeaderTheFileIsTheAudioAndUnreadableInputRepeatsTheLastBlock) {
    TempFolder dir;
    const std::string path = dir.file("raw.pcm");
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

TEST(EncoderWAV, RefusedCallsAnswerTheirCodes) {
    TempFolder dir;
    EncoderWAV enc;
    std::int32_t used = -5;
    EXPECT_EQ(enc.Encoder_Encode("x", 1, used), kNoFile);
    EXPECT_EQ(enc.Encoder_EncoderMetrics(1), -1);
    EXPECT_EQ(enc.Encoder_EncoderInit(0, 2, dir.file("x.wav")), kStreamFailed);
    EXPECT_EQ(enc.Encoder_EncoderInit(44100, 0, dir.file("x.wav")), kStreamFailed);
    EXPECT_EQ(enc.Encoder_EncoderInit(44100, 2, dir.file("missing/x.wav")), kNoFile);
    EXPECT_NE(enc.lastErrorDetail().find("No such file"), std::string::npos) << enc.lastErrorDetail();
    EXPECT_FALSE(enc.isOpen());

    const std::string path = dir.file("a.wav");
    ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, path), kOk);
    EXPECT_EQ(enc.Encoder_EncoderMetrics(1), 176400);
    EXPECT_EQ(enc.Encoder_EncoderMetrics(0), 4);
    try {
        enc.WriteHeader(false);
        ADD_FAILURE() << "no error 90";
    } catch (const AudioError& e) {
        EXPECT_EQ(e.number(), 90);
        EXPECT_STREQ(e.what(), "Encoder already running!");
    }
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

    // A format that no converter makes fails with 7 and leaves no file.
    const std::vector<std::uint8_t> bogus = {0x34, 0x12, 1, 0, 0x44, 0xAC, 0, 0, 0,
                                             0,    0,    0, 1, 0,    8,    0, 0, 0};
    enc.SetFormat(bogus.data(), bogus.size(), "Bogus", "none");
    EXPECT_EQ(enc.Encoder_EncoderInit(44100, 1, dir.file("y.wav")), kStreamFailed);
    EXPECT_FALSE(enc.isOpen());
}

TEST(EncoderWAV, FormatImagesAreCopiedWhateverTheirSize) {
    EncoderWAV enc;
    enc.SetPCMFormat(8000, 1, "Mine", "custom");
    EXPECT_EQ(enc.FormatID(), "custom");
    EXPECT_EQ(enc.formatImage(), pcmFormatImage(8000, 1));
    enc.SetFormat(nullptr, 18, "X", "Y"); // a null image changes nothing
    EXPECT_EQ(enc.FormatTag(), "Mine");
    std::vector<std::uint8_t> large(200000, 7); // grows the buffer
    enc.SetFormat(large.data(), large.size(), "Large", "L");
    EXPECT_EQ(enc.formatImage(), large);
}

TEST(EncoderWAV, ReopeningClosesThePreviousAndReplacesTheFile) {
    TempFolder dir;
    EncoderWAV enc;
    const std::vector<std::uint8_t> audio(4000, 9);
    std::int32_t used = 0;
    ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, dir.file("one.wav")), kOk);
    ASSERT_EQ(enc.Encoder_Encode(audio.data(), 4000, used), kOk);
    ASSERT_EQ(enc.Encoder_EncoderInit(44100, 2, dir.file("two.wav")), kOk);
    EXPECT_EQ(readWav(dir.file("one.wav")).dataSize(), 4000u); // closed with its header
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

// The decoder libavcodec picks for a format, as other players name it.
std::string expectedDecoder(const WaveFormatFields& f) {
    const std::map<std::uint16_t, std::string> names = {
        {wave_tag::kMuLaw, "pcm_mulaw"},
        {wave_tag::kALaw, "pcm_alaw"},
        {wave_tag::kImaAdpcm, "adpcm_ima_wav"},
        {wave_tag::kMsAdpcm, "adpcm_ms"},
        {wave_tag::kGsm610, "gsm_ms"},
        {wave_tag::kMpegLayer3, "mp3"},
        {wave_tag::kPcm, f.bitsPerSample == 8 ? "pcm_u8" : "pcm_s16le"}};
    const auto it = names.find(f.formatTag);
    return it == names.end() ? "unknown format tag" : it->second;
}

TEST(EncoderFormats, EveryOfferedFormatIsReadBack) {
    for (const auto& [rate, channels] : {std::pair{44100, 2}, std::pair{8000, 1}}) {
        const std::vector<FormatChoice> formats = availableFormats(rate, channels);
        std::set<std::string> tags;
        for (const FormatChoice& choice : formats)
            tags.insert(choice.tagName);
        for (const char* expected : {"PCM", "CCITT u-Law", "CCITT A-Law", "IMA ADPCM", "Microsoft ADPCM",
                                     "GSM 6.10", "MPEG Layer-3"})
            EXPECT_TRUE(tags.count(expected)) << expected << " missing at " << rate << " Hz";

        TempFolder dir;
        int index = 0;
        for (const FormatChoice& choice : formats) {
            SCOPED_TRACE(choice.tagName + " " + choice.description + " at " + std::to_string(rate));
            WaveFormatFields fields;
            ASSERT_TRUE(parseFormatImage(choice.image.data(), choice.image.size(), fields));
            const std::string path = dir.file("f" + std::to_string(index++) + ".wav");
            EncoderWAV enc;
            enc.SetFormat(choice.image.data(), choice.image.size(), choice.tagName, choice.description);
            record(enc, path, rate, channels);

            // The header: fmt chunk of F bytes holding the image, data right after.
            const WavFile wav = readWav(path);
            EXPECT_TRUE(wav.consistent());
            EXPECT_EQ(wav.u32(16), choice.image.size());
            EXPECT_TRUE(std::equal(choice.image.begin(), choice.image.end(), wav.bytes.begin() + 20));
            if (fields.formatTag == wave_tag::kPcm) {
                EXPECT_EQ(fields.blockAlign, fields.channels * fields.bitsPerSample / 8);
                EXPECT_EQ(fields.avgBytesPerSec, fields.blockAlign * fields.samplesPerSec);
            }
            if (fields.blockAlign > 1) {
                EXPECT_EQ(wav.dataSize() % fields.blockAlign, 0u);
            }
            const MediaInfo p = probe(path);
            ASSERT_TRUE(p.opened);
            EXPECT_EQ(p.audioCodec, expectedDecoder(fields));
            EXPECT_EQ(p.channels, fields.channels);
            EXPECT_EQ(p.sampleRate, static_cast<int>(fields.samplesPerSec));
            // Most of the two seconds come back, and they are not silence.
            EXPECT_GT(p.audioSeconds, 1.0);
            EXPECT_GT(p.audioRms, 0.14);
        }
    }
}

TEST(EncoderFormats, BlockFormatImagesCarryTheirExtraBytes) {
    const struct {
        std::uint16_t tag;
        std::uint16_t extraSize, blockAlign; // 0: not checked
        std::size_t wordAt;
        int word; // little-endian word in the extra bytes, -1: not checked
    } rows[] = {
        {wave_tag::kImaAdpcm, 2, 2048, 0, 2041}, // samples per 2048-byte stereo block
        {wave_tag::kMsAdpcm, 32, 0, 2, 7},       // coefficient pairs
        {wave_tag::kGsm610, 2, 65, 0, 320},
        {wave_tag::kMpegLayer3, 12, 1, 0, -1},
    };
    std::set<std::uint16_t> seen;
    for (const FormatChoice& choice : availableFormats(44100, 2)) {
        WaveFormatFields f;
        ASSERT_TRUE(parseFormatImage(choice.image.data(), choice.image.size(), f));
        for (const auto& row : rows) {
            if (row.tag != f.formatTag)
                continue;
            seen.insert(row.tag);
            ASSERT_EQ(f.extraSize, row.extraSize) << choice.tagName;
            if (row.blockAlign) {
                EXPECT_EQ(f.blockAlign, row.blockAlign) << choice.tagName;
            }
            if (row.word >= 0) {
                EXPECT_EQ(f.extra[row.wordAt] | (f.extra[row.wordAt + 1] << 8), row.word) << choice.tagName;
            }
        }
    }
    EXPECT_EQ(seen.size(), std::size(rows));
}

class ScriptedChooser : public FormatChooser {
public:
    explicit ScriptedChooser(std::string wanted)
        : m_wanted(std::move(wanted)) {}
    std::optional<std::size_t> choose(const std::vector<FormatChoice>& formats,
                                      const std::string& title) override {
        m_title = title;
        for (std::size_t i = 0; i < formats.size(); ++i) {
            if (formats[i].tagName == m_wanted)
                return i;
        }
        return std::nullopt;
    }
    std::string m_title;

private:
    std::string m_wanted;
};

TEST(EncoderFormats, SelectFormatTakesTheChoiceOrAnswers11) {
    EncoderWAV enc;
    ScriptedChooser ima("IMA ADPCM");
    EXPECT_EQ(enc.SelectFormat(44100, 2, ima, "Output format"), kOk);
    EXPECT_EQ(ima.m_title, "Output format");
    EXPECT_EQ(enc.FormatTag(), "IMA ADPCM");
    EXPECT_EQ(enc.FormatID(), "44.1 kHz 4 Bit Stereo");
    EXPECT_EQ(enc.formatImage().size(), 20u); // 18 + cbSize 2

    ScriptedChooser cancel("no such format");
    EXPECT_EQ(enc.SelectFormat(44100, 2, cancel, "Output format"), kChooserCancelled);
    EXPECT_EQ(enc.FormatTag(), "IMA ADPCM");
    EXPECT_EQ(enc.SelectFormat(0, 2, ima, "Output format"), kChooserCancelled); // nothing to offer
}

TEST(EncoderFormats, PcmAtAnotherRateIsResampled) {
    TempFolder dir;
    EncoderWAV enc;
    enc.SetPCMFormat(22050, 1);
    const std::string path = dir.file("down.wav");
    record(enc, path, 44100, 2);
    const MediaInfo p = probe(path);
    EXPECT_EQ(p.sampleRate, 22050);
    EXPECT_EQ(p.channels, 1);
    EXPECT_NEAR(p.audioSeconds, 2.0, 0.003);
}

} // namespace
} // namespace mirabend::test
