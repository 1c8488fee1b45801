#pragma once
// The conversion stream between the captured 16-bit PCM and the file's
// target format. Two backends: a plain copy when the target is the source
// format itself, and libavcodec + libswresample for everything else.
//
// A convert call takes one block and turns whole blocks of the target
// format into bytes (for PCM-like formats that is every whole sample frame;
// for ADPCM and GSM whole codec blocks). A remainder that does not fill a
// target block is not carried into the next call; `used` says how much of
// the input went in. Only MPEG Layer-3 (block align 1) and resampling
// converters hold samples between calls, and flush() drains them.
//
// Thread contract: one converter is driven by one thread at a time.

#include "util/core/Failure.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace mirabend {

enum class ConverterError {
    None = 0,
    BadFormat,      // an image that does not decode, or an unsupported source
    NoEncoder,      // FFmpeg has no encoder for the target tag
    CodecRefused,   // the encoder would not open with these parameters
    OutputTooSmall, // the caller's output block cannot hold the result
    EncodeFailed,   // the codec reported an error while encoding
};

struct ConvertResult {
    std::size_t used = 0;     // input bytes consumed
    std::size_t produced = 0; // output bytes written
};

class AudioConverter {
public:
    virtual ~AudioConverter() = default;

    // Output bytes one convert() of `inputBytes` (plus a flush) may need.
    virtual std::size_t outputSizeFor(std::size_t inputBytes) const = 0;
    virtual Failure<ConverterError> convert(const std::uint8_t* input, std::size_t inputBytes,
                                            std::uint8_t* output, std::size_t outputCapacity,
                                            ConvertResult& result) = 0;
    // End of stream: hands out what the converter still holds.
    virtual Failure<ConverterError> flush(std::uint8_t* output, std::size_t outputCapacity,
                                          std::size_t& produced) = 0;
};

// Opens the converter from `source` (16-bit PCM image) to `target`.
Failure<ConverterError> openConverter(const std::vector<std::uint8_t>& source,
                                      const std::vector<std::uint8_t>& target,
                                      std::unique_ptr<AudioConverter>& converter);

} // namespace mirabend
