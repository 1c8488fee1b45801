#pragma once
// The versions of the components this build runs on, for the about box: Qt
// and FFmpeg's libavformat and alsa-lib as compiled in (with the library
// found at run time where it differs), and LibreOffice, which is only known
// by asking the installed office, once and in the background.
//
// Thread contract: UI thread only.

#include <QObject>
#include <QProcess>
#include <QString>

namespace mirabend {

struct ComponentVersions {
    static QString qt();
    static QString ffmpeg();
    static QString alsa();
};

// Runs "soffice --version" once; `found` carries the office's version line
// or "not installed".
class LibreOfficeVersion : public QObject {
    Q_OBJECT
public:
    explicit LibreOfficeVersion(QObject* parent = nullptr);
    void start();
    // The first line of the office's answer without its build details:
    // "LibreOffice 7.4.7.2 40(Build:2)" -> "7.4.7.2"; empty when it is no answer.
    static QString parse(const QString& output);

Q_SIGNALS:
    void found(const QString& version);

private:
    QProcess m_process;
    bool m_started = false;
};

} // namespace mirabend
