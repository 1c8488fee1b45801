#pragma once
// The formats the converter can make from captured 16-bit PCM of a given
// rate and channel count: what the output-format chooser offers. Each entry
// carries the complete WAVEFORMATEX image that EncoderWAV::SetFormat takes.
//
// Thread contract: free functions; any thread.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace mirabend {

struct FormatChoice {
    std::vector<std::uint8_t> image; // WAVEFORMATEX, extra bytes included
    std::string tagName;             // "PCM", "IMA ADPCM", "MPEG Layer-3" ...
    std::string description;         // "44.1 kHz 16 Bit Stereo", "8 kHz Mono" ...
};

// Lists PCM (16 and 8 bit), CCITT u-Law and A-Law, IMA ADPCM, Microsoft
// ADPCM, GSM 6.10 (8 kHz mono, which the converter resamples to) and MPEG
// Layer-3 at a few bit rates. Formats whose FFmpeg encoder is missing or
// refuses the rate are left out. Empty for a rate or channel count below 1.
std::vector<FormatChoice> availableFormats(std::int32_t sampleRate, std::int32_t channels);

// The dialog side of the chooser. The recorder window implements it with
// its own dialog; nothing is chosen when it returns no index.
class FormatChooser {
public:
    virtual ~FormatChooser() = default;
    virtual std::optional<std::size_t> choose(const std::vector<FormatChoice>& formats,
                                              const std::string& title) = 0;
};

} // namespace mirabend
