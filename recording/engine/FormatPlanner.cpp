#include "recording/engine/FormatPlanner.h"

#include "recording/engine/CompressorCatalog.h"
#include "recording/engine/WmvProfile.h"

extern "C" {
#include <libavutil/rational.h>
}

#include <QFileInfo>
#include <cmath>

namespace mirabend {

namespace {

constexpr int kMaxSide = 8192;

// What the compressor's settings page chose (CompressorCatalog::videoSettings).
void applyCompressorSettings(const std::string& encoder, const CompressorSettingValues& values, VideoTarget& video)
{
    const auto value = [&values](const char* key) {
        const auto found = values.find(key);
        return found == values.end() ? -1 : found->second;
    };
    if (encoder == "libx264") {
        if (value("quality") >= 0)
            video.quality = std::min(51, value("quality"));
        const int speed = value("speed");
        if (speed >= 0 && speed < CompressorCatalog::h264Speeds().size())
            video.preset = CompressorCatalog::h264Speeds().at(speed).toStdString();
    } else if ((encoder == "mpeg4" || encoder == "wmv2") && value("bitrate") > 0) {
        video.bitRate = std::int64_t(value("bitrate")) * 1000;
    } else if (encoder == "msvideo1" && value("keyframes") > 0) {
        video.keyframeInterval = value("keyframes");
    }
}

RecorderFailure bad(const QString& what)
{
    return {RecorderError::BadSetting, what.toStdString()};
}

// Bitrate in bit/s from the AVI field, which the options window gives in
// kbit/s ("128"); a value of 1000 or more is taken as bit/s already.
std::int64_t aviBitrate(double value)
{
    if (value <= 0)
        return 128000;
    return value < 1000 ? std::int64_t(value * 1000) : std::int64_t(value);
}

// A generous rate for the codecs that have no bitrate field (AVI MPEG-4,
// WMV8 and Sorenson): about 0.15 bit per pixel, enough for screen content.
std::int64_t defaultVideoBitrate(int w, int h, double fps)
{
    return std::max<std::int64_t>(300000, std::int64_t(0.15 * w * h * fps));
}

// Fits a requested size to the codec: rounds down to the codec's multiple;
// 0 stands for the captured size.
RecorderFailure applySize(int wantW, int wantH, int captureW, int captureH, const VideoCodecLimits& limits,
                          VideoTarget& video)
{
    const int w = wantW > 0 ? wantW : captureW;
    const int h = wantH > 0 ? wantH : captureH;
    if (w < 0 || h < 0 || w > kMaxSide || h > kMaxSide)
        return bad(QStringLiteral("picture size %1x%2 is out of range").arg(w).arg(h));
    if (w < limits.sizeMultiple || h < limits.sizeMultiple)
        return bad(QStringLiteral("picture size %1x%2 is too small").arg(w).arg(h));
    video.width = FormatPlanner::fitSize(w, limits.sizeMultiple);
    video.height = FormatPlanner::fitSize(h, limits.sizeMultiple);
    video.pixelFormat = limits.pixelFormat;
    return {};
}

RecorderFailure chooseEncoder(const std::string& encoder, VideoTarget& video)
{
    if (!CompressorCatalog::haveEncoder(encoder))
        return {RecorderError::EncoderUnavailable, "this FFmpeg has no " + encoder + " encoder"};
    video.encoder = encoder;
    return {};
}

RecorderFailure chooseAudio(const std::string& encoder, int rate, int channels, std::int64_t bitRate,
                            AudioTarget& audio)
{
    if (!CompressorCatalog::haveEncoder(encoder))
        return {RecorderError::EncoderUnavailable, "this FFmpeg has no " + encoder + " encoder"};
    audio.encoder = encoder;
    audio.sampleRate = CompressorCatalog::supportedSampleRate(encoder, rate > 0 ? rate : 44100);
    audio.channels = channels == 1 ? 1 : 2;
    audio.bitRate = bitRate;
    if (encoder == "wmav2") {
        // The WMA encoder refuses rates below about 1.5 bit per sample and
        // above 48 kHz.
        audio.sampleRate = std::min(audio.sampleRate, 48000);
        const std::int64_t floor = std::int64_t(audio.sampleRate) * audio.channels * 3 / 2;
        audio.bitRate = std::max(audio.bitRate, std::max<std::int64_t>(floor, 24000));
    }
    return {};
}

// FLV and SWF carry MP3 at 44100, 22050 or 11025 Hz only.
int flashMp3Rate(int wanted)
{
    if (wanted >= 33000)
        return 44100;
    if (wanted >= 16000)
        return 22050;
    return 11025;
}

} // namespace

int FormatPlanner::fitSize(int size, int multiple)
{
    if (multiple <= 1)
        return std::max(size, 1);
    return std::max(multiple, size / multiple * multiple);
}

bool FormatPlanner::parseBitrate(const QString& text, std::int64_t& bitsPerSecond)
{
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value) || value <= 0 || value > 1e9)
        return false;
    bitsPerSecond = std::int64_t(value);
    return bitsPerSecond > 0;
}

int FormatPlanner::formatForFile(const QString& file)
{
    const QString ext = QFileInfo(file).suffix().toLower();
    if (ext == QLatin1String("avi"))
        return 0;
    if (ext == QLatin1String("wmv") || ext == QLatin1String("asf"))
        return 1;
    if (ext == QLatin1String("swf"))
        return 2;
    if (ext == QLatin1String("flv"))
        return 3;
    if (ext == QLatin1String("mp4") || ext == QLatin1String("m4v"))
        return 4;
    if (ext == QLatin1String("mkv"))
        return 5;
    return -1;
}

RecorderFailure FormatPlanner::plan(const RecorderSettings& s, int captureW, int captureH, RecordingPlan& out)
{
    if (s.outputFile.trimmed().isEmpty())
        return bad(QStringLiteral("no output file name"));
    if (!std::isfinite(s.frameRate) || s.frameRate <= 0 || s.frameRate > 120)
        return bad(QStringLiteral("frame rate %1 is not between 0 and 120").arg(s.frameRate));
    if (s.format < 0 || s.format > int(OutputFormatCode::Matroska))
        return bad(QStringLiteral("output format %1 is unknown").arg(s.format));

    out.file = s.outputFile.toStdString();
    out.format = OutputFormatCode(s.format);
    const AVRational fps = av_d2q(s.frameRate, 1001000);
    out.fpsNum = fps.num;
    out.fpsDen = fps.den;
    out.video.gopSize = std::max(1, int(std::lround(s.frameRate)));
    out.audio.enabled = s.audio;

    RecorderFailure failure;
    switch (out.format) {
    case OutputFormatCode::Avi: {
        out.muxer = "avi";
        std::string video = CompressorCatalog::videoEncoder(s.videoCompressor);
        if (video.empty())
            video = "msvideo1";
        if ((failure = chooseEncoder(video, out.video)))
            return failure;
        if ((failure = applySize(s.aviWidth, s.aviHeight, captureW, captureH,
                                 CompressorCatalog::limits(video), out.video)))
            return failure;
        if (video == "libx264")
            out.video.hardwareWanted = s.hardware;
        else if (video != "msvideo1")
            out.video.bitRate = defaultVideoBitrate(out.video.width, out.video.height, s.frameRate);
        applyCompressorSettings(video, s.videoCompressorSettings, out.video);
        std::string audio = CompressorCatalog::audioEncoder(s.audioCompressor);
        if (audio.empty())
            audio = "pcm_s16le";
        failure = chooseAudio(audio, s.aviAudioSampleRate, s.aviAudioChannels,
                              audio == "pcm_s16le" ? 0 : aviBitrate(s.aviAudioBitrate), out.audio);
        break;
    }
    case OutputFormatCode::Wmv: {
        out.muxer = "asf";
        WmvProfile profile;
        if (!s.wmvProfileFile.trimmed().isEmpty()) {
            QString error;
            const std::optional<WmvProfile> read = WmvProfiles::readFile(s.wmvProfileFile, &error);
            if (!read)
                return bad(error);
            profile = *read;
        } else {
            const auto& system = WmvProfiles::system();
            if (s.wmvProfileIndex < 0 || s.wmvProfileIndex >= int(system.size()))
                return bad(QStringLiteral("WMV profile index %1 is not in the list").arg(s.wmvProfileIndex));
            profile = system[std::size_t(s.wmvProfileIndex)];
        }
        if ((failure = chooseEncoder("wmv2", out.video)))
            return failure;
        if ((failure = applySize(profile.width, profile.height, captureW, captureH,
                                 CompressorCatalog::limits("wmv2"), out.video)))
            return failure;
        out.video.bitRate = profile.videoBitrate;
        out.video.gopSize = std::max(1, int(std::lround(s.frameRate * profile.keyFrameSeconds)));
        failure = chooseAudio("wmav2", profile.sampleRate, profile.channels, profile.audioBitrate, out.audio);
        break;
    }
    case OutputFormatCode::Swf:
    case OutputFormatCode::Flv: {
        const bool swf = out.format == OutputFormatCode::Swf;
        out.muxer = swf ? "swf" : "flv";
        out.constantFrameRate = swf;
        const QString& videoText = swf ? s.swfVideoBitrate : s.flvVideoBitrate;
        const QString& audioText = swf ? s.swfAudioBitrate : s.flvAudioBitrate;
        const QString kind = swf ? QStringLiteral("SWF") : QStringLiteral("FLV");
        std::int64_t videoRate = 0;
        std::int64_t audioRate = 0;
        if (!parseBitrate(videoText, videoRate))
            return bad(QStringLiteral("%1 video bitrate \"%2\" is not a number").arg(kind, videoText));
        if (!parseBitrate(audioText, audioRate))
            return bad(QStringLiteral("%1 audio bitrate \"%2\" is not a number").arg(kind, audioText));
        if ((failure = chooseEncoder("flv", out.video)))
            return failure;
        if ((failure = applySize(swf ? s.swfWidth : s.flvWidth, swf ? s.swfHeight : s.flvHeight, captureW,
                                 captureH, CompressorCatalog::limits("flv"), out.video)))
            return failure;
        out.video.bitRate = videoRate;
        // Bitrates below 1000 are read as kbit/s.
        if (audioRate < 1000)
            audioRate *= 1000;
        failure = chooseAudio("libmp3lame", 44100, 2, audioRate, out.audio);
        out.audio.sampleRate = flashMp3Rate(out.audio.sampleRate);
        break;
    }
    case OutputFormatCode::Mp4:
    case OutputFormatCode::Matroska: {
        out.muxer = out.format == OutputFormatCode::Mp4 ? "mp4" : "matroska";
        out.liveSafe = true;
        if ((failure = chooseEncoder("libx264", out.video)))
            return failure;
        if ((failure = applySize(s.outWidth, s.outHeight, captureW, captureH,
                                 CompressorCatalog::limits("libx264"), out.video)))
            return failure;
        out.video.hardwareWanted = s.hardware;
        applyCompressorSettings("libx264", s.h264Settings, out.video);
        failure = chooseAudio("aac", 48000, 2, 128000, out.audio);
        break;
    }
    }
    return failure;
}

} // namespace mirabend
