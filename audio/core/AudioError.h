#pragma once
// The numbered errors of the audio classes. Invalid property values (a
// sample rate of 0, an equaliser with eleven bands, a transform index past
// the end) raise these; everything else reports through result codes or
// Failure values. The numbers and texts are part of the program's interface:
// callers may show them as they stand.

#include <stdexcept>
#include <string>

namespace mirabend {

class AudioError : public std::runtime_error {
public:
    AudioError(int number, const std::string& text)
        : std::runtime_error(text)
        , m_number(number) {}
    int number() const noexcept { return m_number; }

private:
    int m_number;
};

namespace audio_error {
constexpr int kSubscriptOutOfRange = 9; // "Subscript out of range"
constexpr int kEncoderRunning = 90;     // "Encoder already running!"
constexpr int kInvalidSamples = 380;    // transform size not a power of two
constexpr int kIndexOutOfRange = 381;   // transform index or size unknown
constexpr int kInvalidProperty = 32000; // effects: rate, channels, bands
} // namespace audio_error

} // namespace mirabend
