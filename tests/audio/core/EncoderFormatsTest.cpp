// Every format the chooser offers is written through the converter and read
// back by libavformat and libavcodec, as other players would read it.
#include "TestFiles.h"
#include "audio/core/EncoderWAV.h"
#include "audio/core/FormatCatalog.h"
#include "audio/core/WaveFormat.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <cstring>
#include <gtest/gtest.h>
#include <set>

namespace mirabend::test {
namespace {

using namespace encoder_result;

AVCodecID expectedCodec(const WaveFormatFields& f) {
    switch (f.formatTag) {
    case wave_tag::kPcm:
        return f.bitsPerSample == 8 ? AV_CODEC_ID_PCM_U8 : AV_CODEC_ID_PCM_S16LE;
    case wave_tag::kMuLaw:
        return AV_CODEC_ID_PCM_MULAW;
    case wave_tag::kALaw:
        return AV_CODEC_ID_PCM_ALAW;
    case wave_tag::kImaAdpcm:
        return AV_CODEC_ID_ADPCM_IMA_WAV;
    case wave_tag::kMsAdpcm:
        return AV_CODEC_ID_ADPCM_MS;
    case wave_tag::kGsm610:
        return AV_CODEC_ID_GSM_MS;
    case wave_tag::kMpegLayer3:
        return AV_CODEC_ID_MP3;
    default:
        return AV_CODEC_ID_NONE;
    }
}

// Records two seconds of a tone in capture-sized blocks.
void record(EncoderWAV& enc, const std::string& path, int rate, int channels) {
    ASSERT_EQ(enc.Encoder_EncoderInit(rate, static_cast<std::int16_t>(channels), path), kOk)
        << enc.lastErrorDetail();
    const std::vector<std::int16_t> tone = sine(440.0, rate, channels, static_cast<std::size_t>(rate) * 2);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(tone.data());
    const std::size_t total = tone.size() * 2;
    for (std::size_t at = 0; at < total; at += 10240) {
        const auto n = static_cast<std::int32_t>(std::min<std::size_t>(10240, total - at));
        std::int32_t used = 0;
        ASSERT_EQ(enc.Encoder_Encode(bytes + at, n, used), kOk) << enc.lastErrorDetail();
        EXPECT_LE(used, n);
    }
    ASSERT_EQ(enc.Encoder_EncoderClose(), kOk) << enc.lastErrorDetail();
}

void checkFormats(int rate, int channels) {
    const std::vector<FormatChoice> formats = availableFormats(rate, channels);
    std::set<std::string> tags;
    for (const FormatChoice& choice : formats)
        tags.insert(choice.tagName);
    for (const char* expected :
         {"PCM", "CCITT u-Law", "CCITT A-Law", "IMA ADPCM", "Microsoft ADPCM", "GSM 6.10", "MPEG Layer-3"})
        EXPECT_TRUE(tags.count(expected)) << expected << " missing at " << rate << " Hz";

    TempDir dir;
    int index = 0;
    for (const FormatChoice& choice : formats) {
        SCOPED_TRACE(choice.tagName + " " + choice.description);
        WaveFormatFields fields;
        ASSERT_TRUE(parseFormatImage(choice.image.data(), choice.image.size(), fields));
        const std::string path = dir.file("f" + std::to_string(index++) + ".wav");
        EncoderWAV enc;
        enc.SetFormat(choice.image.data(), choice.image.size(), choice.tagName, choice.description);
        record(enc, path, rate, channels);

        // The header: fmt chunk of F bytes holding the image, data right after.
        const std::vector<std::uint8_t> file = readFile(path);
        const std::size_t f = choice.image.size();
        ASSERT_GT(file.size(), f + 28);
        EXPECT_EQ(le32(file, 4), file.size() - 8);
        EXPECT_EQ(le32(file, 16), f);
        EXPECT_TRUE(std::equal(choice.image.begin(), choice.image.end(), file.begin() + 20));
        EXPECT_EQ(std::memcmp(file.data() + 20 + f, "data", 4), 0);
        EXPECT_EQ(le32(file, 24 + f), file.size() - (28 + f));
        if (fields.blockAlign > 1) {
            EXPECT_EQ((file.size() - (28 + f)) % fields.blockAlign, 0u);
        }

        const Probe p = probeFile(path);
        ASSERT_TRUE(p.opened) << p.error;
        EXPECT_TRUE(p.error.empty()) << p.error;
        EXPECT_EQ(p.codecId, expectedCodec(fields));
        EXPECT_EQ(p.channels, fields.channels);
        EXPECT_EQ(p.sampleRate, static_cast<int>(fields.samplesPerSec));
        // Most of the two seconds come back, and they are not silence.
        EXPECT_GT(p.decodedSamples, static_cast<std::int64_t>(fields.samplesPerSec));
        EXPECT_GT(p.peak, 0.2);
    }
}

TEST(EncoderFormats, EveryOfferedFormatIsReadBackAt44kStereo) {
    checkFormats(44100, 2);
}

TEST(EncoderFormats, EveryOfferedFormatIsReadBackAt8kMono) {
    checkFormats(8000, 1);
}

TEST(EncoderFormats, AdpcmImagesCarryTheirExtraBytes) {
    for (const FormatChoice& choice : availableFormats(44100, 2)) {
        WaveFormatFields f;
        ASSERT_TRUE(parseFormatImage(choice.image.data(), choice.image.size(), f));
        if (f.formatTag == wave_tag::kImaAdpcm) {
            ASSERT_EQ(f.extraSize, 2);
            // Samples per block of a 2048-byte stereo block.
            EXPECT_EQ(f.blockAlign, 2048);
            EXPECT_EQ(f.extra[0] | (f.extra[1] << 8), 2041);
        } else if (f.formatTag == wave_tag::kMsAdpcm) {
            ASSERT_EQ(f.extraSize, 32);
            EXPECT_EQ(f.extra[2] | (f.extra[3] << 8), 7); // coefficient pairs
        } else if (f.formatTag == wave_tag::kGsm610) {
            EXPECT_EQ(f.blockAlign, 65);
            ASSERT_EQ(f.extraSize, 2);
            EXPECT_EQ(f.extra[0] | (f.extra[1] << 8), 320);
        } else if (f.formatTag == wave_tag::kMpegLayer3) {
            EXPECT_EQ(f.extraSize, 12);
            EXPECT_EQ(f.blockAlign, 1);
        }
    }
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
    TempDir dir;
    EncoderWAV enc;
    enc.SetPCMFormat(22050, 1);
    const std::string path = dir.file("down.wav");
    record(enc, path, 44100, 2);
    const Probe p = probeFile(path);
    ASSERT_TRUE(p.opened) << p.error;
    EXPECT_EQ(p.sampleRate, 22050);
    EXPECT_EQ(p.channels, 1);
    EXPECT_NEAR(static_cast<double>(p.decodedSamples), 44100.0, 64.0);
}

} // namespace
} // namespace mirabend::test
