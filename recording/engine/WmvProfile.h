#pragma once
// Windows Media profiles: the system profiles the recorder offers by name and
// profile files (.prx, Windows Media profile XML) read from disk. Only what
// the WMV recording uses is kept: picture size, frame rate, key frame
// spacing, bitrates, sample rate and channels.
//
// Thread contract: stateless; any thread.

#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <vector>

namespace mirabend {

struct WmvProfile {
    QString name;
    int width = 0; // 0: the captured size
    int height = 0;
    double frameRate = 0; // 0: the control's FrameRate
    std::int64_t videoBitrate = 1000000;
    int keyFrameSeconds = 8;
    std::int64_t audioBitrate = 64000;
    int sampleRate = 44100;
    int channels = 2;
};

class WmvProfiles {
public:
    static const std::vector<WmvProfile>& system();
    static QStringList systemNames();
    // Reads a .prx file; on failure returns nothing and says why in `error`.
    static std::optional<WmvProfile> readFile(const QString& path, QString* error);
    // The XML text of a profile, as readFile() understands it.
    static QByteArray toXml(const WmvProfile& profile);
};

} // namespace mirabend
