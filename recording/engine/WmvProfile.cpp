#include "recording/engine/WmvProfile.h"

#include <QFile>
#include <QXmlStreamReader>

namespace mirabend {

namespace {

// GUIDs of the Windows Media stream types, as profile files spell them.
const char kAudioType[] = "{73647561-0000-0010-8000-00AA00389B71}";
const char kVideoType[] = "{73646976-0000-0010-8000-00AA00389B71}";

std::vector<WmvProfile> makeSystemProfiles()
{
    // Sizes 0 follow the captured area, so these suit any screen.
    std::vector<WmvProfile> list;
    list.push_back({QStringLiteral("Screen Video/Audio High (CBR)"), 0, 0, 0, 2000000, 8, 64000, 44100, 2});
    list.push_back({QStringLiteral("Screen Video/Audio Medium (CBR)"), 0, 0, 0, 1000000, 8, 48000, 44100, 2});
    list.push_back({QStringLiteral("Screen Video/Audio Low (CBR)"), 0, 0, 0, 400000, 10, 32000, 22050, 1});
    list.push_back({QStringLiteral("Windows Media Video 8 for Local Area Network (768 Kbps)"), 640, 480, 0,
                    700000, 8, 64000, 44100, 2});
    list.push_back({QStringLiteral("Windows Media Video 8 for Local Area Network (384 Kbps)"), 320, 240, 0,
                    340000, 8, 48000, 44100, 2});
    list.push_back({QStringLiteral("Windows Media Video 8 for Broadband (NTSC, 1400 Kbps)"), 640, 480, 0,
                    1300000, 8, 64000, 44100, 2});
    list.push_back({QStringLiteral("Windows Media Video 8 for Dial-up Modems (56 Kbps)"), 160, 120, 15, 40000,
                    10, 32000, 22050, 1});
    return list;
}

qint64 number(const QXmlStreamAttributes& attributes, const char* name, qint64 fallback)
{
    bool ok = false;
    const qint64 value = attributes.value(QLatin1String(name)).toLongLong(&ok);
    return ok ? value : fallback;
}

} // namespace

const std::vector<WmvProfile>& WmvProfiles::system()
{
    static const std::vector<WmvProfile> profiles = makeSystemProfiles();
    return profiles;
}

QStringList WmvProfiles::systemNames()
{
    QStringList names;
    for (const WmvProfile& p : system())
        names << p.name;
    return names;
}

std::optional<WmvProfile> WmvProfiles::readFile(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = QStringLiteral("cannot open the profile file %1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    WmvProfile profile;
    bool sawProfile = false;
    bool sawVideo = false;
    enum { None, Audio, Video } stream = None;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QString tag = xml.name().toString().toLower();
        const QXmlStreamAttributes a = xml.attributes();
        if (tag == QLatin1String("profile")) {
            sawProfile = true;
            profile.name = a.value(QLatin1String("name")).toString();
        } else if (tag == QLatin1String("streamconfig")) {
            const QString type = a.value(QLatin1String("majortype")).toString().toUpper();
            stream = type == QLatin1String(kAudioType)   ? Audio
                     : type == QLatin1String(kVideoType) ? Video
                                                         : None;
            const qint64 bitrate = number(a, "bitrate", 0);
            if (stream == Audio && bitrate > 0)
                profile.audioBitrate = bitrate;
            if (stream == Video && bitrate > 0)
                profile.videoBitrate = bitrate;
            sawVideo = sawVideo || stream == Video;
        } else if (tag == QLatin1String("waveformatex") && stream == Audio) {
            profile.sampleRate = int(number(a, "nSamplesPerSec", profile.sampleRate));
            profile.channels = int(number(a, "nChannels", profile.channels));
        } else if (tag == QLatin1String("videomediaprops") && stream == Video) {
            // Key frame spacing is in 100 ns units.
            const qint64 spacing = number(a, "maxkeyframespacing", 0);
            if (spacing > 0)
                profile.keyFrameSeconds = int(qMax<qint64>(1, spacing / 10000000));
        } else if (tag == QLatin1String("videoinfoheader") && stream == Video) {
            const qint64 perFrame = number(a, "avgtimeperframe", 0);
            if (perFrame > 0)
                profile.frameRate = 10000000.0 / double(perFrame);
        } else if (tag == QLatin1String("bitmapinfoheader") && stream == Video) {
            profile.width = int(number(a, "biwidth", 0));
            profile.height = int(qAbs(number(a, "biheight", 0)));
        }
    }
    QString problem;
    if (xml.hasError())
        problem = QStringLiteral("line %1: %2").arg(xml.lineNumber()).arg(xml.errorString());
    else if (!sawProfile)
        problem = QStringLiteral("no <profile> element");
    else if (!sawVideo)
        problem = QStringLiteral("no video stream");
    else if (profile.width < 0 || profile.height < 0 || profile.width > 8192 || profile.height > 8192)
        problem = QStringLiteral("picture size %1x%2 out of range").arg(profile.width).arg(profile.height);
    else if (profile.channels < 1 || profile.channels > 2)
        problem = QStringLiteral("%1 audio channels").arg(profile.channels);
    if (!problem.isEmpty()) {
        if (error)
            *error = QStringLiteral("the profile file %1 is not usable: %2").arg(path, problem);
        return std::nullopt;
    }
    return profile;
}

QByteArray WmvProfiles::toXml(const WmvProfile& p)
{
    const qint64 perFrame = p.frameRate > 0 ? qint64(10000000.0 / p.frameRate + 0.5) : 416667;
    const int blockAlign = int(p.audioBitrate / 8 * 2048 / qMax(1, p.sampleRate));
    QString xml;
    xml += QStringLiteral("<profile version=\"589824\" storageformat=\"1\" name=\"%1\" description=\"\">\n")
               .arg(p.name.toHtmlEscaped());
    xml +=
        QStringLiteral("  <streamconfig majortype=\"%1\" streamnumber=\"1\" streamname=\"Audio Stream\" "
                       "inputname=\"Audio409\" bitrate=\"%2\" bufferwindow=\"3000\" reliabletransport=\"0\" "
                       "decodercomplexity=\"\" rfc1766langid=\"en-us\">\n")
            .arg(QLatin1String(kAudioType))
            .arg(p.audioBitrate);
    xml += QStringLiteral("    <wmmediatype subtype=\"{00000161-0000-0010-8000-00AA00389B71}\" "
                          "bfixedsizesamples=\"1\" btemporalcompression=\"0\" lsamplesize=\"%1\">\n")
               .arg(blockAlign);
    xml += QStringLiteral("      <waveformatex wFormatTag=\"353\" nChannels=\"%1\" nSamplesPerSec=\"%2\" "
                          "nAvgBytesPerSec=\"%3\" nBlockAlign=\"%4\" wBitsPerSample=\"16\"/>\n")
               .arg(p.channels)
               .arg(p.sampleRate)
               .arg(p.audioBitrate / 8)
               .arg(blockAlign);
    xml += QStringLiteral("    </wmmediatype>\n  </streamconfig>\n");
    xml +=
        QStringLiteral("  <streamconfig majortype=\"%1\" streamnumber=\"2\" streamname=\"Video Stream\" "
                       "inputname=\"Video409\" bitrate=\"%2\" bufferwindow=\"5000\" reliabletransport=\"0\" "
                       "decodercomplexity=\"AU\" rfc1766langid=\"en-us\">\n")
            .arg(QLatin1String(kVideoType))
            .arg(p.videoBitrate);
    xml += QStringLiteral("    <videomediaprops maxkeyframespacing=\"%1\" quality=\"75\"/>\n")
               .arg(qint64(p.keyFrameSeconds) * 10000000);
    xml += QStringLiteral("    <wmmediatype subtype=\"{33564D57-0000-0010-8000-00AA00389B71}\" "
                          "bfixedsizesamples=\"0\" btemporalcompression=\"1\" lsamplesize=\"0\">\n");
    xml += QStringLiteral(
               "      <videoinfoheader dwbitrate=\"%1\" dwbiterrorrate=\"0\" avgtimeperframe=\"%2\">\n")
               .arg(p.videoBitrate)
               .arg(perFrame);
    xml += QStringLiteral("        <rcsource left=\"0\" top=\"0\" right=\"%1\" bottom=\"%2\"/>\n"
                          "        <rctarget left=\"0\" top=\"0\" right=\"%1\" bottom=\"%2\"/>\n")
               .arg(p.width)
               .arg(p.height);
    xml += QStringLiteral(
               "        <bitmapinfoheader biwidth=\"%1\" biheight=\"%2\" biplanes=\"1\" bibitcount=\"24\" "
               "bicompression=\"WMV3\" bisizeimage=\"0\" bixpelspermeter=\"0\" biypelspermeter=\"0\" "
               "biclrused=\"0\" biclrimportant=\"0\"/>\n")
               .arg(p.width)
               .arg(p.height);
    xml += QStringLiteral("      </videoinfoheader>\n    </wmmediatype>\n  </streamconfig>\n</profile>\n");
    return xml.toUtf8();
}

} // namespace mirabend
