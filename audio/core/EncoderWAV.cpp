#include "audio/core/EncoderWAV.h"

#include "audio/core/AudioError.h"
#include "audio/core/WaveFormat.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace mirabend {

namespace {

constexpr std::size_t kInitialFormatBuffer = 131072;
constexpr std::uint64_t kMaxWavFileSize = 0xFFFFFFFFull;

void putTag(std::vector<std::uint8_t>& out, const char* tag) {
    out.insert(out.end(), tag, tag + 4);
}

void putLe32(std::vector<std::uint8_t>& out, std::uint32_t v) {
    for (int i = 0; i < 4; ++i)
        out.push_back(static_cast<std::uint8_t>((v >> (8 * i)) & 0xFF));
}

std::string cutAtNul(const std::string& s) {
    return s.substr(0, s.find('\0'));
}

} // namespace

EncoderWAV::EncoderWAV()
    : m_format(kInitialFormatBuffer, 0) {
    const std::vector<std::uint8_t> pcm = pcmFormatImage(44100, 2);
    SetFormat(pcm.data(), pcm.size(), "PCM", "44.1 kHz 16 Bit Stereo");
}

EncoderWAV::~EncoderWAV() {
    if (isOpen())
        closeFile();
}

void EncoderWAV::WriteHeader(bool value) {
    if (isOpen())
        throw AudioError(audio_error::kEncoderRunning, "Encoder already running!");
    m_writeHeader = value;
}

void EncoderWAV::SetFormat(const void* image, std::size_t size, const std::string& tagName,
                           const std::string& description) {
    if (!image)
        return;
    if (size > m_format.size())
        m_format.resize(size, 0);
    std::memcpy(m_format.data(), image, size);
    m_formatSize = size;
    m_formatTag = tagName;
    m_formatId = description;
}

void EncoderWAV::SetPCMFormat(std::int32_t sampleRate, std::int32_t channels, const std::string& tagName,
                              const std::string& description) {
    std::string text = description;
    if (text.empty()) {
        // The rate in kHz to one decimal, without a trailing ".0".
        char kilo[32];
        std::snprintf(kilo, sizeof kilo, "%.1f", sampleRate / 1000.0);
        std::string k(kilo);
        if (k.size() > 2 && k.compare(k.size() - 2, 2, ".0") == 0)
            k.resize(k.size() - 2);
        text = k + " " + "16" + " Bit " + (channels == 2 ? "stereo" : "mono");
    }
    const std::vector<std::uint8_t> image = pcmFormatImage(sampleRate, channels);
    SetFormat(image.data(), kWaveFormatExSize, tagName.empty() ? std::string("PCM") : tagName, text);
}

std::int32_t EncoderWAV::SelectFormat(std::int32_t sampleRate, std::int32_t channels, FormatChooser& chooser,
                                      const std::string& title) {
    const std::vector<FormatChoice> formats = availableFormats(sampleRate, channels);
    if (formats.empty()) {
        m_lastError = "no format can be made from " + std::to_string(sampleRate) + " Hz";
        return encoder_result::kChooserCancelled;
    }
    const std::optional<std::size_t> chosen = chooser.choose(formats, title);
    if (!chosen || *chosen >= formats.size())
        return encoder_result::kChooserCancelled;
    const FormatChoice& choice = formats[*chosen];
    WaveFormatFields fields;
    if (!parseFormatImage(choice.image.data(), choice.image.size(), fields))
        return encoder_result::kChooserCancelled;
    SetFormat(choice.image.data(), kWaveFormatExSize + fields.extraSize, cutAtNul(choice.tagName),
              cutAtNul(choice.description));
    return encoder_result::kOk;
}

std::vector<std::uint8_t> EncoderWAV::formatImage() const {
    return {m_format.begin(), m_format.begin() + static_cast<std::ptrdiff_t>(m_formatSize)};
}

std::int32_t EncoderWAV::Encoder_EncoderInit(std::int32_t sampleRate, std::int16_t channels,
                                             const std::string& fileName) {
    if (isOpen())
        closeFile();
    m_lastError.clear();
    if (sampleRate < 1 || channels < 1) {
        m_lastError = "sample rate and channels must be at least 1";
        return encoder_result::kStreamFailed;
    }
    m_source = pcmFormatImage(sampleRate, channels);
    m_sourceBlockAlign = static_cast<std::uint16_t>(2 * channels);
    m_sourceByteRate =
        static_cast<std::uint32_t>(m_sourceBlockAlign) * static_cast<std::uint32_t>(sampleRate);

    m_openFormat = formatImage();
    WaveFormatFields target;
    m_targetBlockAlign = 1;
    if (parseFormatImage(m_openFormat.data(), m_openFormat.size(), target) && target.blockAlign > 0)
        m_targetBlockAlign = target.blockAlign;
    if (Failure<ConverterError> f = openConverter(m_source, m_openFormat, m_converter)) {
        m_lastError = f.detail;
        return encoder_result::kStreamFailed;
    }
    m_input.assign(m_sourceByteRate, 0);
    m_output.assign(m_converter->outputSizeFor(m_input.size()), 0);

    const int fd = ::open(fileName.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        m_lastError = fileName + ": " + errnoText(errno);
        m_converter.reset();
        return encoder_result::kNoFile;
    }
    m_fd = fd;
    m_fileName = fileName;
    if (m_writeHeader) {
        const std::vector<std::uint8_t> reserved(m_openFormat.size() + 28, 0);
        if (!writeAll(reserved.data(), reserved.size())) {
            const std::string detail = m_lastError;
            closeFile();
            m_lastError = detail;
            return encoder_result::kWriteFailed;
        }
    }
    return encoder_result::kOk;
}

std::int32_t EncoderWAV::Encoder_Encode(const void* data, std::int32_t byteCount,
                                        std::int32_t& bytesConsumed) {
    bytesConsumed = 0;
    if (!isOpen())
        return encoder_result::kNoFile;
    if (byteCount < 0)
        return encoder_result::kConvertFailed;
    const auto count = static_cast<std::size_t>(byteCount);
    if (count > m_input.size())
        return encoder_result::kBlockTooLarge;
    // Without readable input the previous input block is converted again.
    if (data && count)
        std::memcpy(m_input.data(), data, count);

    ConvertResult r;
    const Failure<ConverterError> f =
        m_converter->convert(m_input.data(), count, m_output.data(), m_output.size(), r);
    bytesConsumed = static_cast<std::int32_t>(r.used);
    // What the converter produced reaches the file even when it then failed.
    if (!writeAll(m_output.data(), r.produced))
        return encoder_result::kWriteFailed;
    if (f) {
        m_lastError = f.detail;
        return r.used > 0 ? encoder_result::kOk : encoder_result::kConvertFailed;
    }
    return encoder_result::kOk;
}

std::int32_t EncoderWAV::Encoder_EncoderMetrics(std::int32_t index) const {
    if (index != 0 && index != 1)
        return 0;
    if (!isOpen())
        return -1;
    return index == 1 ? static_cast<std::int32_t>(m_sourceByteRate) : m_sourceBlockAlign;
}

std::int32_t EncoderWAV::Encoder_EncoderClose() {
    if (!isOpen())
        return encoder_result::kNoFile;
    return closeFile();
}

std::int32_t EncoderWAV::closeFile() {
    std::int32_t result = encoder_result::kOk;
    if (m_converter) {
        std::size_t produced = 0;
        const Failure<ConverterError> f = m_converter->flush(m_output.data(), m_output.size(), produced);
        if (f)
            m_lastError = f.detail;
        if (produced && !writeAll(m_output.data(), produced))
            result = encoder_result::kWriteFailed;
    }
    if (m_writeHeader && !writeHeaderNow())
        result = encoder_result::kWriteFailed;
    m_converter.reset();
    if (::close(m_fd) != 0 && result == encoder_result::kOk) {
        m_lastError = m_fileName + ": " + errnoText(errno);
        result = encoder_result::kWriteFailed;
    }
    m_fd = -1;
    m_fileName.clear();
    return result;
}

bool EncoderWAV::writeHeaderNow() {
    const off_t end = ::lseek(m_fd, 0, SEEK_END);
    const std::size_t formatSize = m_openFormat.size();
    if (end < static_cast<off_t>(formatSize + 28)) {
        m_lastError = "the reserved header is missing";
        return false;
    }
    const auto fileSize = static_cast<std::uint64_t>(end);
    std::vector<std::uint8_t> header;
    header.reserve(formatSize + 28);
    putTag(header, "RIFF");
    putLe32(header, static_cast<std::uint32_t>(fileSize - 8));
    putTag(header, "WAVE");
    putTag(header, "fmt ");
    putLe32(header, static_cast<std::uint32_t>(formatSize));
    header.insert(header.end(), m_openFormat.begin(), m_openFormat.end());
    putTag(header, "data");
    const std::uint64_t p = 24 + formatSize;
    putLe32(header, static_cast<std::uint32_t>(fileSize - (p + 4)));
    if (::lseek(m_fd, 0, SEEK_SET) != 0) {
        m_lastError = m_fileName + ": " + errnoText(errno);
        return false;
    }
    return writeAll(header.data(), header.size(), false);
}

// Writes everything or reports why not. After a short append the file is cut
// back to whole blocks of the target format, so the audio that did reach the
// disk still decodes.
bool EncoderWAV::writeAll(const std::uint8_t* data, std::size_t size, bool trimOnFailure) {
    const off_t start = ::lseek(m_fd, 0, SEEK_CUR);
    // The RIFF sizes are 32-bit: a WAV file stops at 4 GiB like a full disk.
    if (trimOnFailure && m_writeHeader && start >= 0 &&
        static_cast<std::uint64_t>(start) + size > kMaxWavFileSize) {
        m_lastError = m_fileName + ": a WAV file cannot grow past 4 GiB";
        return false;
    }
    std::size_t done = 0;
    while (done < size) {
        const ssize_t n = ::write(m_fd, data + done, size - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            m_lastError = m_fileName + ": " + (n < 0 ? errnoText(errno) : std::string("nothing written"));
            if (trimOnFailure && start >= 0 && done > 0) {
                const off_t keep = start + static_cast<off_t>(done / m_targetBlockAlign * m_targetBlockAlign);
                if (::ftruncate(m_fd, keep) == 0)
                    ::lseek(m_fd, keep, SEEK_SET);
            }
            return false;
        }
        done += static_cast<std::size_t>(n);
    }
    return true;
}

std::string EncoderWAV::Encoder_Description() const {
    return "Wave ACM Encoder";
}

std::string EncoderWAV::Encoder_Extension() const {
    return "wav";
}

} // namespace mirabend
