#include "audio/core/PcmCopyConverter.h"

#include <cstring>

namespace mirabend {

Failure<ConverterError> PcmCopyConverter::convert(const std::uint8_t* input, std::size_t inputBytes,
                                                  std::uint8_t* output, std::size_t outputCapacity,
                                                  ConvertResult& result) {
    result = {};
    const std::size_t whole = inputBytes / m_blockAlign * m_blockAlign;
    if (whole > outputCapacity)
        return {ConverterError::OutputTooSmall, "output block smaller than the input"};
    if (whole)
        std::memcpy(output, input, whole);
    result.used = whole;
    result.produced = whole;
    return {};
}

} // namespace mirabend
