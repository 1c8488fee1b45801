#include "audio/core/FormatCatalog.h"

#include "audio/core/FfmpegConverter.h"
#include "audio/core/WaveFormat.h"

#include <algorithm>

namespace mirabend {

namespace {

std::string channelText(std::int32_t channels) {
    return channels == 2 ? "Stereo" : "Mono";
}

void addIfMade(std::vector<FormatChoice>& out, std::uint16_t tag, std::int32_t rate, std::int32_t channels,
               std::int32_t parameter, const std::string& tagName, const std::string& detail) {
    std::vector<std::uint8_t> image;
    if (ffmpegTargetImage(tag, rate, channels, parameter, image))
        return; // this FFmpeg cannot make it
    out.push_back({std::move(image), tagName,
                   kiloHertzText(static_cast<std::uint32_t>(rate)) + " " + detail + channelText(channels)});
}

} // namespace

std::vector<FormatChoice> availableFormats(std::int32_t sampleRate, std::int32_t channels) {
    std::vector<FormatChoice> out;
    if (sampleRate < 1 || channels < 1)
        return out;
    const std::string khz = kiloHertzText(static_cast<std::uint32_t>(sampleRate));
    out.push_back(
        {pcmFormatImage(sampleRate, channels, 16), "PCM", khz + " 16 Bit " + channelText(channels)});
    addIfMade(out, wave_tag::kPcm, sampleRate, channels, 8, "PCM", "8 Bit ");
    addIfMade(out, wave_tag::kMuLaw, sampleRate, channels, 0, "CCITT u-Law", "8 Bit ");
    addIfMade(out, wave_tag::kALaw, sampleRate, channels, 0, "CCITT A-Law", "8 Bit ");

    // ADPCM blocks as the classic codecs size them: 256 bytes per channel
    // per 11.025 kHz.
    const std::int32_t block = 256 * channels * std::max<std::int32_t>(1, sampleRate / 11025);
    addIfMade(out, wave_tag::kImaAdpcm, sampleRate, channels, block, "IMA ADPCM", "4 Bit ");
    addIfMade(out, wave_tag::kMsAdpcm, sampleRate, channels, block, "Microsoft ADPCM", "4 Bit ");

    // GSM 6.10 exists only as 8 kHz mono; the converter resamples to it.
    addIfMade(out, wave_tag::kGsm610, 8000, 1, 0, "GSM 6.10", "");

    for (const std::int32_t kbit : {64, 128, 192}) {
        addIfMade(out, wave_tag::kMpegLayer3, sampleRate, channels, kbit * 1000, "MPEG Layer-3",
                  std::to_string(kbit) + " kBit/s ");
    }
    return out;
}

} // namespace mirabend
