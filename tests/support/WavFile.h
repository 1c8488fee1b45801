#pragma once
// Reads back a WAV file as the recorders write it: RIFF header, "fmt " chunk
// of F bytes, "data" chunk, nothing else; and makes the test signals.

#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace mirabend::test {

inline std::vector<std::uint8_t> readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void writeFile(const std::string& path, const std::vector<std::uint8_t>& data) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
}

struct WavFile {
    std::vector<std::uint8_t> bytes;
    std::uint32_t u32(std::size_t at) const {
        std::uint32_t v = 0;
        if (at + 4 <= bytes.size())
            std::memcpy(&v, bytes.data() + at, 4);
        return v;
    }
    std::uint16_t u16(std::size_t at) const {
        std::uint16_t v = 0;
        if (at + 2 <= bytes.size())
            std::memcpy(&v, bytes.data() + at, 2);
        return v;
    }
    std::string tag(std::size_t at) const {
        return at + 4 <= bytes.size() ? std::string(bytes.begin() + long(at), bytes.begin() + long(at) + 4)
                                      : std::string();
    }

    // True when the header describes the file exactly.
    bool consistent() const {
        if (bytes.size() < 46 || tag(0) != "RIFF" || tag(8) != "WAVE" || tag(12) != "fmt ")
            return false;
        const std::uint32_t f = u32(16);
        return u32(4) == bytes.size() - 8 && tag(20 + f) == "data" && u32(24 + f) == bytes.size() - (28 + f);
    }
    std::uint16_t formatTag() const { return u16(20); }
    std::uint32_t dataSize() const { return u32(24 + u32(16)); }
    // The audio of a PCM file as samples.
    std::vector<std::int16_t> samples() const {
        std::vector<std::int16_t> s((bytes.size() - 46) / 2);
        std::memcpy(s.data(), bytes.data() + 46, s.size() * 2);
        return s;
    }
};

inline WavFile readWav(const std::string& path) {
    return WavFile{readFile(path)};
}

// Interleaved 16-bit sine, the same tone on every channel.
inline std::vector<std::int16_t> sine(double frequency, int rate, int channels, std::size_t frames,
                                      double amplitude = 12000.0) {
    std::vector<std::int16_t> out;
    out.reserve(frames * static_cast<std::size_t>(channels));
    for (std::size_t i = 0; i < frames; ++i) {
        const double v = amplitude * std::sin(2 * M_PI * frequency * static_cast<double>(i) / rate);
        for (int c = 0; c < channels; ++c)
            out.push_back(static_cast<std::int16_t>(std::lround(v)));
    }
    return out;
}

inline std::vector<std::uint8_t> bytesOf(const std::vector<std::int16_t>& samples) {
    std::vector<std::uint8_t> out(samples.size() * 2);
    std::memcpy(out.data(), samples.data(), out.size());
    return out;
}

} // namespace mirabend::test
