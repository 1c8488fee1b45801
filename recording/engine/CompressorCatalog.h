#pragma once
// The compressors the recorder offers for AVI, by the names the options
// window shows, with the FFmpeg encoder behind each and its limits.
//
// Thread contract: stateless; any thread.

#include <QStringList>
#include <string>

namespace mirabend {

struct VideoCodecLimits {
    std::string pixelFormat; // what the encoder takes
    int sizeMultiple = 2;    // width and height are rounded down to this
};

class CompressorCatalog {
public:
    // Names of the compressors whose encoder this FFmpeg has, in list order.
    static QStringList videoNames();
    static QStringList audioNames();
    // The FFmpeg encoder for a name from the lists, "" for an unknown name.
    static std::string videoEncoder(const QString& name);
    static std::string audioEncoder(const QString& name);
    static bool haveEncoder(const std::string& encoder);
    static VideoCodecLimits limits(const std::string& encoder);
    // The nearest sample rate the audio encoder accepts (the first one above
    // `wanted` when there is no exact match).
    static int supportedSampleRate(const std::string& encoder, int wanted);
};

} // namespace mirabend
