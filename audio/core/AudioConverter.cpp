#include "audio/core/AudioConverter.h"

#include "audio/core/FfmpegConverter.h"
#include "audio/core/PcmCopyConverter.h"
#include "audio/core/WaveFormat.h"

namespace mirabend {

Failure<ConverterError> openConverter(const std::vector<std::uint8_t>& source,
                                      const std::vector<std::uint8_t>& target,
                                      std::unique_ptr<AudioConverter>& converter) {
    converter.reset();
    WaveFormatFields in;
    WaveFormatFields out;
    if (!parseFormatImage(source.data(), source.size(), in) || in.formatTag != wave_tag::kPcm ||
        in.bitsPerSample != 16 || in.channels < 1 || in.samplesPerSec < 1)
        return {ConverterError::BadFormat, "the source must be 16-bit PCM"};
    if (!parseFormatImage(target.data(), target.size(), out))
        return {ConverterError::BadFormat, "the target format image does not decode"};

    const bool samePcm = out.formatTag == wave_tag::kPcm && out.bitsPerSample == 16 &&
                         out.channels == in.channels && out.samplesPerSec == in.samplesPerSec;
    if (samePcm) {
        converter = std::make_unique<PcmCopyConverter>(in.blockAlign);
        return {};
    }
    return openFfmpegConverter(in, out, converter);
}

} // namespace mirabend
