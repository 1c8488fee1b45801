#pragma once
// Reads back a WAV file as the recorder writes it: RIFF header, "fmt " chunk
// of F bytes, "data" chunk, nothing else.

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace mirabend::test {

struct WavFile {
    std::vector<unsigned char> bytes;
    std::uint32_t u32(std::size_t at) const
    {
        std::uint32_t v = 0;
        std::memcpy(&v, bytes.data() + at, 4);
        return v;
    }
    std::uint16_t u16(std::size_t at) const
    {
        std::uint16_t v = 0;
        std::memcpy(&v, bytes.data() + at, 2);
        return v;
    }
    std::string tag(std::size_t at) const { return std::string(bytes.begin() + long(at), bytes.begin() + long(at) + 4); }

    // True when the header describes the file exactly.
    bool consistent() const
    {
        if (bytes.size() < 46 || tag(0) != "RIFF" || tag(8) != "WAVE" || tag(12) != "fmt ")
            return false;
        const std::uint32_t f = u32(16);
        return u32(4) == bytes.size() - 8 && tag(20 + f) == "data" && u32(24 + f) == bytes.size() - (28 + f);
    }
    std::uint16_t formatTag() const { return u16(20); }
    std::uint32_t dataSize() const { return u32(24 + u32(16)); }
    // The audio of a PCM file as samples.
    std::vector<std::int16_t> samples() const
    {
        std::vector<std::int16_t> s((bytes.size() - 46) / 2);
        std::memcpy(s.data(), bytes.data() + 46, s.size() * 2);
        return s;
    }
};

inline WavFile readWav(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    WavFile w;
    w.bytes.assign(std::istreambuf_iterator<char>(in), {});
    return w;
}

} // namespace mirabend::test
