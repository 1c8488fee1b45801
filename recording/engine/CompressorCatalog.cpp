#include "recording/engine/CompressorCatalog.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <cstdlib>
#include <limits>

namespace mirabend {

namespace {

struct Entry {
    const char* name;
    const char* encoder;
};

// AVI takes all of these; the order is the order of the options window's list.
const Entry kVideo[] = {
    {"Microsoft Video 1", "msvideo1"}, {"MPEG-4", "mpeg4"},       {"H.264", "libx264"},
    {"Windows Media Video 8", "wmv2"}, {"Sorenson Spark", "flv"}, {"Motion JPEG", "mjpeg"},
};

const Entry kAudio[] = {
    {"PCM", "pcm_s16le"},
    {"MPEG Layer-3", "libmp3lame"},
    {"AAC", "aac"},
    {"Windows Media Audio 2", "wmav2"},
};

template <std::size_t N>
QStringList namesOf(const Entry (&table)[N])
{
    QStringList names;
    for (const Entry& e : table) {
        if (CompressorCatalog::haveEncoder(e.encoder))
            names << QString::fromLatin1(e.name);
    }
    return names;
}

template <std::size_t N>
std::string encoderOf(const Entry (&table)[N], const QString& name)
{
    for (const Entry& e : table) {
        if (name == QLatin1String(e.name))
            return e.encoder;
    }
    return {};
}

} // namespace

bool CompressorCatalog::haveEncoder(const std::string& encoder)
{
    return !encoder.empty() && avcodec_find_encoder_by_name(encoder.c_str()) != nullptr;
}

QStringList CompressorCatalog::videoNames()
{
    return namesOf(kVideo);
}
QStringList CompressorCatalog::audioNames()
{
    return namesOf(kAudio);
}
std::string CompressorCatalog::videoEncoder(const QString& name)
{
    return encoderOf(kVideo, name);
}
std::string CompressorCatalog::audioEncoder(const QString& name)
{
    return encoderOf(kAudio, name);
}

VideoCodecLimits CompressorCatalog::limits(const std::string& encoder)
{
    // msvideo1 codes 4x4 blocks of 15-bit colour; the others are 4:2:0
    // codecs that need even sizes.
    if (encoder == "msvideo1")
        return {"rgb555le", 4};
    if (encoder == "mjpeg")
        return {"yuvj420p", 2};
    return {"yuv420p", 2};
}

int CompressorCatalog::supportedSampleRate(const std::string& encoder, int wanted)
{
    const AVCodec* codec = avcodec_find_encoder_by_name(encoder.c_str());
    if (!codec || !codec->supported_samplerates)
        return wanted;
    int best = 0;
    int bestDistance = std::numeric_limits<int>::max();
    for (const int* rate = codec->supported_samplerates; *rate; ++rate) {
        if (*rate == wanted)
            return wanted;
        // Prefer going up (no detail lost) by weighting downward steps.
        const int distance = *rate > wanted ? *rate - wanted : 2 * (wanted - *rate);
        if (distance < bestDistance) {
            bestDistance = distance;
            best = *rate;
        }
    }
    return best ? best : wanted;
}

const QStringList& CompressorCatalog::h264Speeds()
{
    static const QStringList speeds = {QStringLiteral("ultrafast"), QStringLiteral("superfast"),
                                       QStringLiteral("veryfast"),  QStringLiteral("faster"),
                                       QStringLiteral("fast"),      QStringLiteral("medium")};
    return speeds;
}

std::vector<CompressorSetting> CompressorCatalog::videoSettings(const QString& name)
{
    const std::string encoder = videoEncoder(name);
    const QString automatic = QStringLiteral("Automatic");
    if (encoder == "libx264")
        return {{"quality", QStringLiteral("Quality (0 best, 51 smallest)"), 0, 51, 23, {}, {}},
                {"speed", QStringLiteral("Speed"), 0, int(h264Speeds().size()) - 1, 0, {}, h264Speeds()}};
    if (encoder == "mpeg4" || encoder == "wmv2")
        return {{"bitrate", QStringLiteral("Bit rate (kbit/s)"), 0, 50000, 0, automatic, {}}};
    // FFmpeg's Video 1 encoder keeps its own picture quality; what it lets
    // choose is how often a whole picture is coded, which keeps moving
    // content clean.
    if (encoder == "msvideo1")
        return {{"keyframes", QStringLiteral("Quality: a whole picture every (frames)"), 0, 300, 0, automatic, {}}};
    return {};
}

} // namespace mirabend
