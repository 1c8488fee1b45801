#include "audio/core/WavRepair.h"

#include "audio/core/WaveFormat.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mirabend {

namespace {

class FileDescriptor {
public:
    explicit FileDescriptor(int fd)
        : m_fd(fd) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    int get() const { return m_fd; }

private:
    int m_fd;
};

void putLe32(std::vector<std::uint8_t>& out, std::uint32_t v) {
    for (int i = 0; i < 4; ++i)
        out.push_back(static_cast<std::uint8_t>((v >> (8 * i)) & 0xFF));
}

bool readAt(int fd, std::uint8_t* data, std::size_t size, off_t offset) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t n = ::pread(fd, data + done, size - done, offset + static_cast<off_t>(done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

std::vector<std::uint8_t> imageOrDefault(const std::vector<std::uint8_t>& image) {
    return image.empty() ? pcmFormatImage(44100, 2) : image;
}

// Reads a whole-number option value; text, signs and trailing junk are
// refused.
bool parseCount(const char* text, long& value) {
    if (!text || !*text)
        return false;
    char* end = nullptr;
    errno = 0;
    value = std::strtol(text, &end, 10);
    return errno == 0 && *end == '\0' && value > 0 && text[0] != '+' && text[0] != '-';
}

} // namespace

bool hasReservedHeader(const std::string& path, const std::vector<std::uint8_t>& formatImage) {
    const std::size_t reserved = imageOrDefault(formatImage).size() + 28;
    const FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (fd.get() < 0)
        return false;
    std::vector<std::uint8_t> head(reserved);
    if (!readAt(fd.get(), head.data(), head.size(), 0))
        return false;
    return std::all_of(head.begin(), head.end(), [](std::uint8_t b) { return b == 0; });
}

Failure<WavRepairError> repairWav(const std::string& path, WavRepairOutcome& outcome,
                                  const std::vector<std::uint8_t>& formatImage) {
    const std::vector<std::uint8_t> image = imageOrDefault(formatImage);
    WaveFormatFields fields;
    if (!parseFormatImage(image.data(), image.size(), fields))
        return {WavRepairError::BadFormat, "the format image does not decode"};
    const std::size_t reserved = image.size() + 28;

    const FileDescriptor fd(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    if (fd.get() < 0)
        return {WavRepairError::OpenFailed, path + ": " + errnoText(errno)};
    struct stat st {};
    if (::fstat(fd.get(), &st) != 0)
        return {WavRepairError::ReadFailed, path + ": " + errnoText(errno)};
    const auto size = static_cast<std::uint64_t>(st.st_size);

    std::vector<std::uint8_t> head(std::min<std::uint64_t>(size, reserved));
    if (!head.empty() && !readAt(fd.get(), head.data(), head.size(), 0))
        return {WavRepairError::ReadFailed, path + ": " + errnoText(errno)};
    if (head.size() >= 4 && std::memcmp(head.data(), "RIFF", 4) == 0) {
        outcome = WavRepairOutcome::AlreadyComplete;
        return {};
    }
    if (!std::all_of(head.begin(), head.end(), [](std::uint8_t b) { return b == 0; }))
        return {WavRepairError::NotReserved, path + " is not a WAV file that was left open"};
    if (size < reserved)
        return {WavRepairError::TooShort, path + " is shorter than a WAV header (" + std::to_string(size) +
                                              " of " + std::to_string(reserved) + " bytes)"};
    if (size > 0xFFFFFFFFull)
        return {WavRepairError::TooShort, path + " is too large for a WAV file"};

    std::vector<std::uint8_t> header;
    header.reserve(reserved);
    header.insert(header.end(), {'R', 'I', 'F', 'F'});
    putLe32(header, static_cast<std::uint32_t>(size - 8));
    header.insert(header.end(), {'W', 'A', 'V', 'E', 'f', 'm', 't', ' '});
    putLe32(header, static_cast<std::uint32_t>(image.size()));
    header.insert(header.end(), image.begin(), image.end());
    header.insert(header.end(), {'d', 'a', 't', 'a'});
    putLe32(header, static_cast<std::uint32_t>(size - reserved));

    std::size_t done = 0;
    while (done < header.size()) {
        const ssize_t n =
            ::pwrite(fd.get(), header.data() + done, header.size() - done, static_cast<off_t>(done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return {WavRepairError::WriteFailed, path + ": " + errnoText(errno)};
        done += static_cast<std::size_t>(n);
    }
    if (::fsync(fd.get()) != 0 && errno != EINVAL)
        return {WavRepairError::WriteFailed, path + ": " + errnoText(errno)};
    outcome = WavRepairOutcome::Repaired;
    return {};
}

int repairWavCommand(int argc, char** argv) {
    const char* file = nullptr;
    long rate = 44100;
    long channels = 2;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const char* next = i + 1 < argc ? argv[i + 1] : nullptr;
        if (arg == "--repair-wav") {
            file = next;
            ++i;
        } else if (arg == "--rate") {
            if (!parseCount(next, rate) || rate < 8000 || rate > 192000) {
                std::fprintf(stderr, "mirabend: --rate needs a sample rate from 8000 to 192000 Hz, not \"%s\"\n",
                             next ? next : "");
                return 2;
            }
            ++i;
        } else if (arg == "--channels") {
            if (!parseCount(next, channels) || channels > 2) {
                std::fprintf(stderr, "--channels needs 1 or 2, not \"%s\"\n", next ? next : "");
                return 2;
            }
            ++i;
        }
    }
    if (!file || !*file) {
        std::fprintf(stderr, "usage: mirabend --repair-wav FILE [--rate HZ] [--channels 1|2]\n");
        return 2;
    }
    WavRepairOutcome outcome{};
    const Failure<WavRepairError> f = repairWav(
        file, outcome, pcmFormatImage(static_cast<std::int32_t>(rate), static_cast<std::int32_t>(channels)));
    if (f) {
        std::fprintf(stderr, "Cannot repair %s: %s\n", file, f.detail.c_str());
        return 1;
    }
    if (outcome == WavRepairOutcome::AlreadyComplete)
        std::printf("%s already has a WAV header; nothing changed.\n", file);
    else
        std::printf("%s repaired: header written for %ld Hz, %ld channel(s), 16-bit PCM.\n", file, rate,
                    channels);
    return 0;
}

} // namespace mirabend
