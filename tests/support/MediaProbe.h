#pragma once
// Reads a recorded file back with libavformat: codecs, sizes, counted
// packets and the loudness of the decoded sound.

#include <array>
#include <string>
#include <vector>

namespace mirabend::test {

struct MediaInfo {
    bool opened = false;
    std::string videoCodec;
    std::string audioCodec;
    int width = 0;
    int height = 0;
    int sampleRate = 0;
    int channels = 0;
    long videoPackets = 0;
    double videoSeconds = 0;      // last video packet's end
    double videoStartSeconds = 0; // first video packet's start
    double audioSeconds = 0;      // decoded samples / rate
    double audioRms = 0;          // of the decoded sound, 0..1
};

MediaInfo probe(const std::string& file);

} // namespace mirabend::test

namespace mirabend::test {

// The brightest luma (0..255) in a rectangle of the first decoded video
// frame at or after `atSeconds`, or -1 when no such frame decodes.
int brightestLuma(const std::string& file, int x, int y, int w, int h, double atSeconds = 0.0);

// The mean red, green and blue (0..255) of a rectangle of the first decoded
// video frame at or after `atSeconds`; -1 each when no such frame decodes.
std::array<int, 3> averageRgb(const std::string& file, int x, int y, int w, int h, double atSeconds = 0.0);

} // namespace mirabend::test

namespace mirabend::test {

struct ReadChapter {
    double start; // seconds
    double end;
    std::string title;
};

// The chapters the container carries, in order; empty when it has none or
// does not open.
std::vector<ReadChapter> readChapters(const std::string& file);

} // namespace mirabend::test
