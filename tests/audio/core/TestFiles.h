#pragma once
// Helpers of the audio core tests: a private temporary folder, whole-file
// reads, the RIFF header fields, a sine source and libavformat's view of a
// written file.

#include <cstdint>
#include <string>
#include <vector>

namespace mirabend::test {

class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& path() const { return m_path; }
    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

std::vector<std::uint8_t> readFile(const std::string& path);
void writeFile(const std::string& path, const std::vector<std::uint8_t>& data);

std::uint32_t le32(const std::vector<std::uint8_t>& d, std::size_t at);
std::uint16_t le16(const std::vector<std::uint8_t>& d, std::size_t at);

// Interleaved 16-bit sine, the same tone on every channel.
std::vector<std::int16_t> sine(double frequency, int rate, int channels, std::size_t frames,
                               double amplitude = 12000.0);

// What libavformat and libavcodec make of a file.
struct Probe {
    bool opened = false;
    std::string error;
    int codecId = 0; // AVCodecID
    int channels = 0;
    int sampleRate = 0;
    std::int64_t decodedSamples = 0; // per channel, over the whole file
    double peak = 0;                 // largest decoded |sample|, 0..1
};
Probe probeFile(const std::string& path);

} // namespace mirabend::test
