#pragma once
// The conversion stream for every target other than the captured PCM
// itself: libswresample brings the 16-bit samples to the codec's sample
// format, rate and channel layout, libavcodec encodes them.
//
// Block handling: u-Law, A-Law and PCM targets take every whole sample
// frame. ADPCM and GSM targets at the source rate and channel count take
// whole codec blocks only, the rest of the input is reported unused and
// dropped. MPEG Layer-3 (block align 1) and any resampling target keep the
// remainder in a FIFO, which flush() encodes at the end.
//
// Thread contract: see AudioConverter.h.

#include "audio/core/AudioConverter.h"
#include "audio/core/WaveFormat.h"

#include <memory>
#include <string>
#include <vector>

namespace mirabend {

Failure<ConverterError> openFfmpegConverter(const WaveFormatFields& source, const WaveFormatFields& target,
                                            std::unique_ptr<AudioConverter>& converter);

// Opens the FFmpeg encoder for `formatTag` at the given rate and channel
// count (bit rate in bit/s for MPEG Layer-3, block size in bytes for the
// ADPCM formats, 0 for the codec's default) and builds the WAVEFORMATEX
// image that describes what it produces, extra bytes included.
Failure<ConverterError> ffmpegTargetImage(std::uint16_t formatTag, std::int32_t sampleRate,
                                          std::int32_t channels, std::int32_t bitRateOrBlock,
                                          std::vector<std::uint8_t>& image);

} // namespace mirabend
