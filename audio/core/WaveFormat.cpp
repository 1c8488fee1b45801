#include "audio/core/WaveFormat.h"

#include <cstdio>

namespace mirabend {

namespace {

void putLe16(std::vector<std::uint8_t>& out, std::uint32_t v) {
    out.push_back(static_cast<std::uint8_t>(v & 0xFF));
    out.push_back(static_cast<std::uint8_t>((v >> 8) & 0xFF));
}

void putLe32(std::vector<std::uint8_t>& out, std::uint32_t v) {
    putLe16(out, v & 0xFFFF);
    putLe16(out, v >> 16);
}

std::uint16_t le16(const std::uint8_t* p) {
    return static_cast<std::uint16_t>(p[0] | (p[1] << 8));
}

std::uint32_t le32(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(le16(p)) | (static_cast<std::uint32_t>(le16(p + 2)) << 16);
}

} // namespace

std::vector<std::uint8_t> formatImage(const WaveFormatFields& f) {
    std::vector<std::uint8_t> out;
    out.reserve(kWaveFormatExSize + f.extra.size());
    putLe16(out, f.formatTag);
    putLe16(out, f.channels);
    putLe32(out, f.samplesPerSec);
    putLe32(out, f.avgBytesPerSec);
    putLe16(out, f.blockAlign);
    putLe16(out, f.bitsPerSample);
    putLe16(out, static_cast<std::uint32_t>(f.extra.size()));
    out.insert(out.end(), f.extra.begin(), f.extra.end());
    return out;
}

std::vector<std::uint8_t> pcmFormatImage(std::int32_t sampleRate, std::int32_t channels, std::int32_t bits) {
    WaveFormatFields f;
    f.formatTag = wave_tag::kPcm;
    f.channels = static_cast<std::uint16_t>(channels);
    f.samplesPerSec = static_cast<std::uint32_t>(sampleRate);
    f.bitsPerSample = static_cast<std::uint16_t>(bits);
    f.blockAlign = static_cast<std::uint16_t>(bits / 8 * channels);
    f.avgBytesPerSec = static_cast<std::uint32_t>(f.blockAlign) * f.samplesPerSec;
    return formatImage(f);
}

bool parseFormatImage(const std::uint8_t* image, std::size_t size, WaveFormatFields& out) {
    if (!image || size < 16)
        return false;
    WaveFormatFields f;
    f.formatTag = le16(image);
    f.channels = le16(image + 2);
    f.samplesPerSec = le32(image + 4);
    f.avgBytesPerSec = le32(image + 8);
    f.blockAlign = le16(image + 12);
    f.bitsPerSample = le16(image + 14);
    if (size >= kWaveFormatExSize) {
        f.extraSize = le16(image + 16);
        if (kWaveFormatExSize + f.extraSize > size)
            return false;
        f.extra.assign(image + kWaveFormatExSize, image + kWaveFormatExSize + f.extraSize);
    }
    out = std::move(f);
    return true;
}

std::string kiloHertzText(std::uint32_t sampleRate) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", sampleRate / 1000.0);
    std::string s(text);
    while (!s.empty() && s.back() == '0')
        s.pop_back();
    if (!s.empty() && s.back() == '.')
        s.pop_back();
    return s + " kHz";
}

} // namespace mirabend
