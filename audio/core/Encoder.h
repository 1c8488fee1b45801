#pragma once
// The encoder interface of the audio recorder: open with a file name, feed
// blocks of 16-bit PCM, close. Results are numeric codes, 0 for success; the
// recorder window words them ("Could not init the encoder!", "Write error
// (no disk space left?)!").
//
// Thread contract: an encoder is used by one thread at a time (the window
// thread of the recorder); it holds no locks.

#include <cstdint>
#include <string>

namespace mirabend {

// Result codes of the encoder operations.
namespace encoder_result {
constexpr std::int32_t kOk = 0;
constexpr std::int32_t kNoFile = 2;            // no file open, or it could not be created
constexpr std::int32_t kStreamFailed = 7;      // converter failed to open, or rate/channels below 1
constexpr std::int32_t kBlockTooLarge = 8;     // block larger than the input block (one second)
constexpr std::int32_t kConvertFailed = 9;     // conversion failed and consumed nothing
constexpr std::int32_t kWriteFailed = 10;      // fewer bytes written than produced (disk full)
constexpr std::int32_t kChooserCancelled = 11; // the format chooser was cancelled or failed
} // namespace encoder_result

class Encoder {
public:
    virtual ~Encoder() = default;

    // Opens the converter from 16-bit PCM at `sampleRate`/`channels` and
    // creates (replaces) `fileName`.
    virtual std::int32_t Encoder_EncoderInit(std::int32_t sampleRate, std::int16_t channels,
                                             const std::string& fileName) = 0;
    // Converts `byteCount` bytes at `data` and appends them to the file;
    // `bytesConsumed` receives the input bytes the converter used.
    virtual std::int32_t Encoder_Encode(const void* data, std::int32_t byteCount,
                                        std::int32_t& bytesConsumed) = 0;
    // 1: input bytes per second; 0: input block alignment; others: 0.
    // -1 for 0 and 1 while no file is open.
    virtual std::int32_t Encoder_EncoderMetrics(std::int32_t index) const = 0;
    // Flushes, writes the header and closes; 2 when nothing is open.
    virtual std::int32_t Encoder_EncoderClose() = 0;
    virtual std::string Encoder_Description() const = 0;
    // File name extension without the point ("wav").
    virtual std::string Encoder_Extension() const = 0;
};

} // namespace mirabend
