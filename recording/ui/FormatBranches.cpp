#include "recording/ui/FormatBranches.h"

#include "recording/ui/DeviceOptions.h"
#include "recording/ui/FormatOptions.h"
#include "recording/ui/NumberField.h"
#include "recording/ui/OptionLists.h"
#include "recording/ui/RecorderControl.h"
#include "util/ProgramFolder.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QRadioButton>

namespace mirabend {

FormatBranches::FormatBranches(const FormatOptions& format, const DeviceOptions& devices,
                               RecorderControl& recorder, Prompts& prompts)
    : m_format(format)
    , m_devices(devices)
    , m_recorder(recorder)
    , m_prompts(prompts) {}

QString FormatBranches::programFile(const QString& designName) {
    const QString found = ProgramFolder::dataFile(designName);
    if (!found.isEmpty())
        return found;
    const QStringList folders = ProgramFolder::dataFolders();
    const QString folder = folders.isEmpty() ? QDir::currentPath() : folders.constFirst();
    return QDir(folder).filePath(ProgramFolder::normalise(designName));
}

BranchResult FormatBranches::apply(int filterIndex, QSize stage) {
    switch (filterIndex) {
    case options::kWmvStandard:
    case options::kWmvWidescreen:
    case options::kWmvVistaVision:
    case options::kWmvImax:
        return wmv(filterIndex);
    case options::kAvi:
        return avi();
    case options::kFlv:
        return flash(false);
    case options::kSwf:
        return flash(true);
    case options::kMp4:
        return h264(false, stage);
    case options::kMkv:
        return h264(true, stage);
    default:
        return {};
    }
}

void FormatBranches::applyCompressors() {
    // A name the recorder does not know leaves its current compressor.
    const int video = m_recorder.findVideoCompressor(m_devices.selectedVideoCompressor());
    if (video != -1)
        m_recorder.VideoCompressorIndex(video);
    const int audio = m_recorder.findAudioCompressor(m_devices.selectedAudioCompressor());
    if (audio != -1)
        m_recorder.AudioCompressorIndex(audio);
}

BranchResult FormatBranches::wmv(int filterIndex) {
    m_recorder.OutputFormat(RecorderFormat::Wmv);
    m_recorder.WmvSwitch(true);
    BranchResult result;
    if (m_format.optdefaultprofile->isChecked()) {
        // The profile in force is the one cboWMV shows: a chosen profile
        // file, or else the system profile by name, never a file left over
        // from an earlier recording.
        if (m_format.chkProfileFile->isChecked() && !m_format.cboWMV->currentText().isEmpty()) {
            m_recorder.WmvProfileFile(m_format.cboWMV->currentText());
            return result;
        }
        m_recorder.WmvProfileFile(QString());
        const int listIndex = m_format.cboWMV->currentIndex();
        if (listIndex >= 0) {
            const int profile = m_recorder.findWmvSystemProfile(m_format.cboWMV->itemText(listIndex));
            if (profile != -1)
                m_recorder.WmvProfileIndex(profile);
        }
        return result;
    }
    const int listIndex = m_format.cbocustomprofile->currentIndex();
    const QString file = options::customProfileFile(listIndex, filterIndex);
    if (file.isEmpty())
        return result;
    m_recorder.WmvProfileFile(programFile(file));
    result.caption = options::customProfileCaption(listIndex, filterIndex);
    return result;
}

BranchResult FormatBranches::avi() {
    const auto bitrate =
        readNumber(m_format.txtavimp3bitrate, QStringLiteral("AVI audio bitrate"), m_prompts);
    if (!bitrate)
        return {false, std::nullopt};
    m_recorder.OutputFormat(RecorderFormat::Avi);
    applyCompressors();
    m_recorder.AviSwitches(true);
    m_recorder.AviAudioBitrate(*bitrate);
    // The sample-rate and channel lists are shown only: AVI sound is always
    // recorded at 11025 Hz in one channel.
    m_recorder.AviAudioChannels(1);
    m_recorder.AviAudioSampleRate(options::kWarmUpSampleRate);
    BranchResult result;
    const int index = m_format.aviSize_comb->currentIndex();
    const auto& table = options::aviSizes();
    if (index >= 0 && index < static_cast<int>(table.size())) {
        m_recorder.AviSize(table[index].width, table[index].height);
        result.caption = table[index].caption;
    }
    return result;
}

BranchResult FormatBranches::flash(bool swf) {
    const QLineEdit* audioField = swf ? m_format.txtswfaudiobitrate : m_format.txtflvaudiobitrate;
    const QLineEdit* videoField = swf ? m_format.txtswfvideobitrate : m_format.txtflvvideobitrate;
    const QString kind = swf ? QStringLiteral("SWF") : QStringLiteral("FLV");
    const auto audio = readNumber(audioField, kind + QStringLiteral(" audio bitrate"), m_prompts);
    if (!audio)
        return {false, std::nullopt};
    const auto video = readNumber(videoField, kind + QStringLiteral(" video bitrate"), m_prompts);
    if (!video)
        return {false, std::nullopt};

    m_recorder.OutputFormat(swf ? RecorderFormat::Swf : RecorderFormat::Flv);
    if (swf)
        m_recorder.SwfBitrates(*audio, *video);
    else
        m_recorder.FlvBitrates(*audio, *video);
    BranchResult result;
    const QComboBox* sizes = swf ? m_format.swfSize_comb : m_format.flvSize_comb;
    const auto& table = swf ? options::swfSizes() : options::flvSizes();
    const int index = sizes->currentIndex();
    if (index >= 0 && index < static_cast<int>(table.size())) {
        if (swf)
            m_recorder.SwfSize(table[index].width, table[index].height);
        else
            m_recorder.FlvSize(table[index].width, table[index].height);
        result.caption = table[index].caption;
    }
    return result;
}

BranchResult FormatBranches::h264(bool mkv, QSize stage) {
    // H.264 wants even sizes; the odd line or column is left out.
    const int width = std::max(2, stage.width() & ~1);
    const int height = std::max(2, stage.height() & ~1);
    m_recorder.OutputFormat(mkv ? RecorderFormat::Mkv : RecorderFormat::Mp4);
    m_recorder.VideoSize(width, height);
    BranchResult result;
    result.caption = QStringLiteral("%1 video %2x%3")
                         .arg(mkv ? QStringLiteral("MKV") : QStringLiteral("MP4"))
                         .arg(width)
                         .arg(height);
    return result;
}

} // namespace mirabend
