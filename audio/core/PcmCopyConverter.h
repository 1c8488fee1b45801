#pragma once
// The conversion stream when the target format is the captured PCM itself:
// whole sample frames are copied, nothing is held between calls.
//
// Thread contract: see AudioConverter.h.

#include "audio/core/AudioConverter.h"

namespace mirabend {

class PcmCopyConverter : public AudioConverter {
public:
    explicit PcmCopyConverter(std::size_t blockAlign)
        : m_blockAlign(blockAlign ? blockAlign : 1) {}

    std::size_t outputSizeFor(std::size_t inputBytes) const override { return inputBytes; }
    Failure<ConverterError> convert(const std::uint8_t* input, std::size_t inputBytes, std::uint8_t* output,
                                    std::size_t outputCapacity, ConvertResult& result) override;
    Failure<ConverterError> flush(std::uint8_t*, std::size_t, std::size_t& produced) override {
        produced = 0;
        return {};
    }

private:
    std::size_t m_blockAlign;
};

} // namespace mirabend
