#pragma once
// What a recording's container needs from the options window: the branch
// picked by the save dialog's 1-based filter index sets the format, profile
// or compressors, bitrates and picture size on the recorder and names the
// caption for the status bar.
//
// Thread contract: UI thread only.

#include <QSize>
#include <QString>
#include <optional>

namespace mirabend {

class DeviceOptions;
class FormatOptions;
class Prompts;
class RecorderControl;

struct BranchResult {
    // False when a field held something that is not a number; the user has
    // been told and the recording must not start.
    bool ok = true;
    // The caption for status panel 4, when the branch names one.
    std::optional<QString> caption;
};

class FormatBranches {
public:
    FormatBranches(const FormatOptions& format, const DeviceOptions& devices, RecorderControl& recorder,
                   Prompts& prompts);

    // Configures the recorder for filter index 1 to 9; `stage` is the size
    // of the recorded window, used by MP4 and MKV. An index outside 1 to 9
    // configures nothing.
    BranchResult apply(int filterIndex, QSize stage);

    // The compressors named in the two lists, when the recorder knows them.
    void applyCompressors();

    // A file shipped in the program folder ("\800x600.prx"); when no data
    // folder holds it, the path it would have beside the program, so the
    // recorder can name the missing file.
    static QString programFile(const QString& designName);

private:
    BranchResult wmv(int filterIndex);
    BranchResult avi();
    BranchResult flash(bool swf);
    BranchResult h264(bool mkv, QSize stage);

    const FormatOptions& m_format;
    const DeviceOptions& m_devices;
    RecorderControl& m_recorder;
    Prompts& m_prompts;
};

} // namespace mirabend
