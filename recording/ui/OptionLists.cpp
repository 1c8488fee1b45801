#include "recording/ui/OptionLists.h"

#include <QFileInfo>

namespace mirabend::options {

const char* const kMessageTitle = "Mirabend 1.0";
const char* const kSaveTitle = "Select Video Format and Save As";
const char* const kProfileFilter = "Window Media Encoder Profiles(*.prx)|*.prx";
const char* const kImageFilter = "Bitmap File (*.bmp)|*.bmp|JPEG File (*.jpg)|*.jpg|Gif File (*.gif)|*.gif";
const char* const kDefaultVideoCompressor = "Microsoft Video 1";
const char* const kDefaultAudioCompressor = "PCM";
const char* const kMp3Compressor = "MPEG Layer-3";

QString saveFilter() {
    // The blanks behind three of the "*.wmv" patterns belong to the filter.
    return QStringLiteral("Windows Media Video 4:3 Standard (*.WMV)|*.wmv|"
                          "Windows Media Video 16:9 Widescreen (*.WMV)|*.wmv |"
                          "Windows Media Video 3:2 VistaVision (*.WMV)|*.wmv |"
                          "Windows Media Video 1.43:1 IMAX (*.WMV)|*.wmv|"
                          "Audio Video Interleave (*.AVI)|*.avi|"
                          "Flash Video (*.FLV)|*.flv|"
                          "Small Web Format (ShockWave) (*.SWF)|*.swf|"
                          "MPEG-4 Video (H.264) (*.MP4)|*.mp4|"
                          "Matroska Video (*.MKV)|*.mkv");
}

int filterIndexForFile(const QString& fileName) {
    const QString ext = QFileInfo(fileName).suffix().toLower();
    if (ext == QLatin1String("wmv"))
        return kWmvStandard;
    if (ext == QLatin1String("avi"))
        return kAvi;
    if (ext == QLatin1String("flv"))
        return kFlv;
    if (ext == QLatin1String("swf"))
        return kSwf;
    if (ext == QLatin1String("mp4"))
        return kMp4;
    if (ext == QLatin1String("mkv"))
        return kMkv;
    return 0;
}

namespace {

std::vector<SizeEntry> sizeTable(const QString& kind, const QString& lastEntry, bool withFifth) {
    std::vector<SizeEntry> table = {
        {QStringLiteral("320x240 Low Quality"), 320, 240, kind + QStringLiteral(" video 320x240")},
        // Recorded smaller than it says; the caption keeps the list's wording.
        {QStringLiteral("640x480 Hight Qaulity"), 560, 420, kind + QStringLiteral(" video 640x480")},
        {QStringLiteral("800x600 High Quality"), 800, 600, kind + QStringLiteral(" video 800x600")},
        {lastEntry, 1024, 768, kind + QStringLiteral(" video 1024x768")},
    };
    if (withFifth)
        table.push_back({QStringLiteral("1280x960 HD"), 1280, 960, kind + QStringLiteral(" video 1280x960")});
    return table;
}

} // namespace

const std::vector<SizeEntry>& aviSizes() {
    static const std::vector<SizeEntry> table =
        sizeTable(QStringLiteral("AVI"), QStringLiteral("1024x768 HD"), true);
    return table;
}

const std::vector<SizeEntry>& flvSizes() {
    static const std::vector<SizeEntry> table =
        sizeTable(QStringLiteral("FLV"), QStringLiteral("1024x768 HD"), false);
    return table;
}

const std::vector<SizeEntry>& swfSizes() {
    static const std::vector<SizeEntry> table =
        sizeTable(QStringLiteral("SWF"), QStringLiteral("1024x768 High Quality"), false);
    return table;
}

QStringList customProfileNames() {
    return {QStringLiteral("Window Media Video/Audio 9 for 320x240"),
            QStringLiteral("Window Media Video/Audio 9 for 640x480"),
            QStringLiteral("Window Media Video/Audio 9 for 800x600"),
            QStringLiteral("Window Media Video/Audio 9 for 1024x768"),
            QStringLiteral("Window Media Video/Audio 9 for 1280x1024")};
}

QString customProfileFile(int listIndex, int wmvFilterIndex) {
    switch (listIndex) {
    case 0:
        return QStringLiteral("\\320x240.prx");
    case 1:
        switch (wmvFilterIndex) {
        case kWmvWidescreen:
            return QStringLiteral("\\640x480W.prx");
        case kWmvVistaVision:
            return QStringLiteral("\\640x480V.prx");
        case kWmvImax:
            return QStringLiteral("\\640x480I.prx");
        default:
            return QStringLiteral("\\640x480S.prx");
        }
    case 2:
        return QStringLiteral("\\800x600.prx");
    case 3:
        return QStringLiteral("\\1024x768.prx");
    case 4:
        return QStringLiteral("\\1280x1024.prx");
    default:
        return {};
    }
}

QString customProfileCaption(int listIndex, int wmvFilterIndex) {
    switch (listIndex) {
    case 0:
        return QStringLiteral("WMV video 320x240");
    case 1:
        // The 4:3 file has always been announced as "Widescreen" and the
        // other three as "Standard"; users know the captions that way.
        return wmvFilterIndex == kWmvStandard ? QStringLiteral("WMV video 640x480 Widescreen")
                                              : QStringLiteral("WMV video 640x480 Standard");
    case 2:
        return QStringLiteral("WMV video 800x600");
    case 3:
        return QStringLiteral("WMV video 1024x768");
    case 4:
        return QStringLiteral("WMV video 1280x1024");
    default:
        return {};
    }
}

QStringList fontNames() {
    return {QStringLiteral("Arial"), QStringLiteral("Arial Black"), QStringLiteral("Comic Sans MS"),
            QStringLiteral("Times New Roman")};
}

QStringList fontSizes() {
    QStringList sizes;
    for (int size = 8; size <= 60; size += 2)
        sizes << QString::number(size);
    return sizes;
}

QStringList fontStyles() {
    return {QStringLiteral("Regular"), QStringLiteral("Bold"), QStringLiteral("Italic"),
            QStringLiteral("BoldItalic"), QStringLiteral("Underline")};
}

QStringList mp3SampleRates() {
    return {QStringLiteral("11025"), QStringLiteral("22050"), QStringLiteral("44100")};
}

QStringList mp3Channels() {
    return {QStringLiteral("Mono"), QStringLiteral("Stereo")};
}

} // namespace mirabend::options
