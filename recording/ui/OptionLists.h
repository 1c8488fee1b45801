#pragma once
// The fixed lists of the options window and the tables the format branches
// read: picture sizes with their captions, WMV profile files, font choices,
// and the texts of the save and open dialogs.

#include <QString>
#include <QStringList>
#include <vector>

namespace mirabend::options {

extern const char* const kMessageTitle; // "Mirabend 1.0"

// The save dialog and its filter; the 1-based filter index picks the branch.
extern const char* const kSaveTitle;
QString saveFilter();
extern const char* const kProfileFilter;
extern const char* const kImageFilter;

enum FilterIndex {
    kWmvStandard = 1,
    kWmvWidescreen = 2,
    kWmvVistaVision = 3,
    kWmvImax = 4,
    kAvi = 5,
    kFlv = 6,
    kSwf = 7,
    kMp4 = 8,
    kMkv = 9,
};

// The filter index a file name's extension stands for (".wmv" is the 4:3
// kind); 0 for an extension no branch records.
int filterIndexForFile(const QString& fileName);

// One entry of a picture-size list: what the list shows, the size the
// recorder receives and the caption written into the status bar.
struct SizeEntry {
    QString entry;
    int width;
    int height;
    QString caption;
};
const std::vector<SizeEntry>& aviSizes();
const std::vector<SizeEntry>& flvSizes();
const std::vector<SizeEntry>& swfSizes();

// The warm-up recording always uses the second AVI size.
constexpr int kWarmUpWidth = 560;
constexpr int kWarmUpHeight = 420;
constexpr int kWarmUpSampleRate = 11025;

// The profile files offered under "Advance Profile".
QStringList customProfileNames();
// The profile file for a list index and a WMV filter index (1 to 4), and the
// caption announced for it; empty when the index is outside the list.
QString customProfileFile(int listIndex, int wmvFilterIndex);
QString customProfileCaption(int listIndex, int wmvFilterIndex);

QStringList fontNames();
QStringList fontSizes(); // "8", "10", ..., "60"
QStringList fontStyles();
QStringList mp3SampleRates();
QStringList mp3Channels();

// Preferred initial compressors.
extern const char* const kDefaultVideoCompressor; // "Microsoft Video 1"
extern const char* const kDefaultAudioCompressor; // "PCM"
extern const char* const kMp3Compressor;          // "MPEG Layer-3"

} // namespace mirabend::options
