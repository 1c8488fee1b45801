#pragma once
// WAVEFORMATEX images: the little-endian byte layout that a WAV file's
// "fmt " chunk holds (18 bytes plus cbSize extra bytes). The encoder keeps
// its target format as such an image, so a format from the chooser, from a
// caller or from PCM defaults is written to the file byte for byte.
//
// Thread contract: plain values and free functions; any thread.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace mirabend {

namespace wave_tag {
constexpr std::uint16_t kPcm = 0x0001;
constexpr std::uint16_t kMsAdpcm = 0x0002;
constexpr std::uint16_t kALaw = 0x0006;
constexpr std::uint16_t kMuLaw = 0x0007;
constexpr std::uint16_t kImaAdpcm = 0x0011;
constexpr std::uint16_t kGsm610 = 0x0031;
constexpr std::uint16_t kMpegLayer3 = 0x0055;
} // namespace wave_tag

constexpr std::size_t kWaveFormatExSize = 18; // WAVEFORMATEX without extra bytes

// The fields of a WAVEFORMATEX image, decoded.
struct WaveFormatFields {
    std::uint16_t formatTag = 0;
    std::uint16_t channels = 0;
    std::uint32_t samplesPerSec = 0;
    std::uint32_t avgBytesPerSec = 0;
    std::uint16_t blockAlign = 0;
    std::uint16_t bitsPerSample = 0;
    std::uint16_t extraSize = 0;     // cbSize
    std::vector<std::uint8_t> extra; // the cbSize bytes after the 18
};

// Builds the 18-byte image of 16-bit PCM (block align 2 x channels, byte rate
// block align x rate, cbSize 0).
std::vector<std::uint8_t> pcmFormatImage(std::int32_t sampleRate, std::int32_t channels,
                                         std::int32_t bitsPerSample = 16);

// Encodes the fields (cbSize is taken from extra.size()).
std::vector<std::uint8_t> formatImage(const WaveFormatFields& fields);

// Decodes an image. Returns false when it is shorter than 16 bytes or its
// cbSize promises more bytes than it holds. A 16-byte image (no cbSize)
// decodes with extraSize 0.
bool parseFormatImage(const std::uint8_t* image, std::size_t size, WaveFormatFields& out);

// "44.1 kHz", "8 kHz", "22.05 kHz": the rate in kHz without trailing zeros.
std::string kiloHertzText(std::uint32_t sampleRate);

} // namespace mirabend
