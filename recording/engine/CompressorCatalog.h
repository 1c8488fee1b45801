#pragma once
// The compressors the recorder offers for AVI, by the names the options
// window shows, with the FFmpeg encoder behind each and its limits.
//
// Thread contract: stateless; any thread.

#include <QStringList>
#include <map>
#include <string>
#include <vector>

namespace mirabend {

struct VideoCodecLimits {
    std::string pixelFormat; // what the encoder takes
    int sizeMultiple = 2;    // width and height are rounded down to this
};

// One setting on a compressor's settings page.
struct CompressorSetting {
    std::string key;     // "quality", "speed", "bitrate", "keyframes"
    QString label;       // as the page shows it
    int minimum = 0;
    int maximum = 0;
    int value = 0;       // the default
    QString automatic;   // shown for `minimum` when it means "the recorder chooses"
    QStringList choices; // when not empty, the value is an index into these
};

// Values of a compressor's settings by key; a key left out keeps the default.
using CompressorSettingValues = std::map<std::string, int>;

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
    // The settings page of a video compressor from the list; empty for one
    // without real settings ("No property page").
    static std::vector<CompressorSetting> videoSettings(const QString& name);
    // The x264 speed presets the H.264 page offers, fastest first.
    static const QStringList& h264Speeds();
};

} // namespace mirabend
