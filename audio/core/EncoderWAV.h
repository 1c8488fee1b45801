#pragma once
// Writes captured 16-bit PCM into a RIFF/WAVE file, through a conversion
// stream into the chosen target format (PCM by default).
//
// File layout (F = format size, 18 for PCM): "RIFF", file size - 8, "WAVE",
// "fmt ", F, the F-byte format image, "data", data size, the audio. No other
// chunk and no pad byte. The 28 + F header bytes are reserved as zeros when
// the file is opened and written when it is closed, so a recording that was
// never closed starts with zeros (see WavRepair.h).
//
// Thread contract: one thread (the recorder's window thread) drives an
// encoder; nothing here locks.

#include "audio/core/AudioConverter.h"
#include "audio/core/Encoder.h"
#include "audio/core/FormatCatalog.h"
#include "util/core/Failure.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace mirabend {

class EncoderWAV : public Encoder {
public:
    EncoderWAV();
    ~EncoderWAV() override; // closes an open file as Encoder_EncoderClose does
    EncoderWAV(const EncoderWAV&) = delete;
    EncoderWAV& operator=(const EncoderWAV&) = delete;

    std::int32_t Encoder_EncoderInit(std::int32_t sampleRate, std::int16_t channels,
                                     const std::string& fileName) override;
    std::int32_t Encoder_Encode(const void* data, std::int32_t byteCount,
                                std::int32_t& bytesConsumed) override;
    std::int32_t Encoder_EncoderMetrics(std::int32_t index) const override;
    // Also returns 10 when the flush or the header could not be written
    // (the file is closed either way).
    std::int32_t Encoder_EncoderClose() override;
    std::string Encoder_Description() const override;
    std::string Encoder_Extension() const override;

    // True (the default): reserve and write the header. Raises AudioError 90
    // "Encoder already running!" when set while a file is open.
    bool WriteHeader() const { return m_writeHeader; }
    void WriteHeader(bool value);

    std::string FormatTag() const { return m_formatTag; }
    std::string FormatID() const { return m_formatId; }

    // Copies `size` bytes of a WAVEFORMATEX image as the target format.
    // Nothing happens for a null image. Takes effect at the next open.
    void SetFormat(const void* image, std::size_t size, const std::string& tagName,
                   const std::string& description);
    // 16-bit PCM; empty names become "PCM" and e.g. "44.1 16 Bit stereo".
    void SetPCMFormat(std::int32_t sampleRate, std::int32_t channels, const std::string& tagName = {},
                      const std::string& description = {});
    // Offers availableFormats(sampleRate, channels) through `chooser`; 0 and
    // the chosen format, or 11 (cancelled, or nothing to choose).
    std::int32_t SelectFormat(std::int32_t sampleRate, std::int32_t channels, FormatChooser& chooser,
                              const std::string& title);

    // The target format image (its used length only).
    std::vector<std::uint8_t> formatImage() const;
    bool isOpen() const { return m_fd >= 0; }
    const std::string& fileName() const { return m_fileName; }
    // What went wrong in the last call that did not return 0 ("No space
    // left on device", "no encoder for format tag 0x31" ...).
    const std::string& lastErrorDetail() const { return m_lastError; }

private:
    std::int32_t closeFile();
    bool writeAll(const std::uint8_t* data, std::size_t size, bool trimOnFailure = true);
    bool writeHeaderNow();

    std::vector<std::uint8_t> m_format; // target image; grows past 131072 bytes if needed
    std::size_t m_formatSize = 0;
    std::string m_formatTag;
    std::string m_formatId;
    std::vector<std::uint8_t> m_source; // WAVEFORMATEX of the input
    std::uint16_t m_sourceBlockAlign = 0;
    std::uint32_t m_sourceByteRate = 0;
    std::vector<std::uint8_t> m_openFormat; // the image the open file was started with
    std::uint16_t m_targetBlockAlign = 1;
    std::unique_ptr<AudioConverter> m_converter;
    std::vector<std::uint8_t> m_input;
    std::vector<std::uint8_t> m_output;
    int m_fd = -1;
    std::string m_fileName;
    bool m_writeHeader = true;
    std::string m_lastError;
};

} // namespace mirabend
