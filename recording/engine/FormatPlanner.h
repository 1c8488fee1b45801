#pragma once
// Turns the control's properties into a RecordingPlan: the muxer, encoders,
// sizes, rates and bitrates for the chosen format, with each codec's limits
// applied (msvideo1 multiples of 4, even sizes for 4:2:0 codecs, the MP3
// rates FLV and SWF can carry). Settings that cannot work are refused here,
// before anything is opened.
//
// Thread contract: stateless; any thread.

#include "recording/engine/CompressorCatalog.h"
#include "recording/engine/RecorderTypes.h"
#include "recording/engine/RecordingPlan.h"

#include <QString>

namespace mirabend {

// A plain copy of the properties that shape a recording.
struct RecorderSettings {
    QString outputFile;
    int format = 0;
    double frameRate = 24;
    bool hardware = false;
    QString videoCompressor = QStringLiteral("Microsoft Video 1"); // by name
    QString audioCompressor = QStringLiteral("PCM");
    double aviAudioBitrate = 128;
    int aviAudioChannels = 1;
    int aviAudioSampleRate = 11025;
    int aviWidth = 0;
    int aviHeight = 0;
    int wmvProfileIndex = 0;
    QString wmvProfileFile;
    QString flvAudioBitrate = QStringLiteral("96000");
    QString flvVideoBitrate = QStringLiteral("3512000");
    int flvWidth = 0;
    int flvHeight = 0;
    QString swfAudioBitrate = QStringLiteral("96000");
    QString swfVideoBitrate = QStringLiteral("3512000");
    int swfWidth = 0;
    int swfHeight = 0;
    int outWidth = 0;
    int outHeight = 0;
    bool audio = true;
    CompressorSettingValues videoCompressorSettings; // of the AVI video compressor
    CompressorSettingValues h264Settings;            // for MP4 and Matroska
};

class FormatPlanner {
public:
    // `captureWidth` x `captureHeight` is the size of the recorded area; it
    // stands in for every size given as 0. On refusal the plan is left
    // incomplete and the failure says which setting is wrong.
    static RecorderFailure plan(const RecorderSettings& settings, int captureWidth, int captureHeight,
                                RecordingPlan& out);

    // The format a file name suggests: ".avi" 0, ".wmv"/".asf" 1, ".swf" 2,
    // ".flv" 3, ".mp4" 4, ".mkv" 5; -1 when none.
    static int formatForFile(const QString& file);
    // Parses a bitrate text in bit/s ("96000"); false when it is not a
    // positive number.
    static bool parseBitrate(const QString& text, std::int64_t& bitsPerSecond);
    // Rounds a size down to a multiple of `multiple` (at least `multiple`).
    static int fitSize(int size, int multiple);
};

} // namespace mirabend
