#include "shell/about/ComponentVersions.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTimer>
#include <alsa/asoundlib.h>

extern "C" {
#include <libavformat/avformat.h>
#include <libavformat/version.h>
}

namespace mirabend {

namespace {

QString withRuntime(const QString& built, const QString& running) {
    return running.isEmpty() || running == built ? built
                                                 : built + QStringLiteral(" (running %1)").arg(running);
}

// The answer of the first run: the installed office does not change while
// the program runs.
QString& knownOfficeVersion() {
    static QString version;
    return version;
}

QString officeProgram() {
    for (const char* name : {"soffice", "libreoffice"}) {
        const QString path = QStandardPaths::findExecutable(QLatin1String(name));
        if (!path.isEmpty())
            return path;
    }
    const QString debianPath = QStringLiteral("/usr/lib/libreoffice/program/soffice");
    return QFileInfo(debianPath).isExecutable() ? debianPath : QString();
}

} // namespace

QString ComponentVersions::qt() {
    return withRuntime(QStringLiteral(QT_VERSION_STR), QString::fromLatin1(qVersion()));
}

QString ComponentVersions::ffmpeg() {
    const QString built = QStringLiteral("libavformat %1.%2.%3")
                              .arg(LIBAVFORMAT_VERSION_MAJOR)
                              .arg(LIBAVFORMAT_VERSION_MINOR)
                              .arg(LIBAVFORMAT_VERSION_MICRO);
    const unsigned running = avformat_version();
    return withRuntime(built, QStringLiteral("libavformat %1.%2.%3")
                                  .arg(AV_VERSION_MAJOR(running))
                                  .arg(AV_VERSION_MINOR(running))
                                  .arg(AV_VERSION_MICRO(running)));
}

QString ComponentVersions::alsa() {
    return withRuntime(QStringLiteral(SND_LIB_VERSION_STR), QString::fromLatin1(snd_asoundlib_version()));
}

LibreOfficeVersion::LibreOfficeVersion(QObject* parent)
    : QObject(parent) {
    connect(&m_process, &QProcess::finished, this, [this] {
        const QString version = parse(QString::fromLocal8Bit(m_process.readAllStandardOutput()));
        knownOfficeVersion() = version;
        Q_EMIT found(version.isEmpty() ? tr("not installed") : version);
    });
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            Q_EMIT found(tr("not installed"));
    });
}

void LibreOfficeVersion::start() {
    if (m_started)
        return;
    m_started = true;
    const QString program = officeProgram();
    if (!knownOfficeVersion().isEmpty() || program.isEmpty()) {
        const QString known = knownOfficeVersion().isEmpty() ? tr("not installed") : knownOfficeVersion();
        QTimer::singleShot(0, this, [this, known] { Q_EMIT found(known); });
        return;
    }
    m_process.start(program, {QStringLiteral("--version")}, QIODevice::ReadOnly);
    // An office that hangs is given up on; the box stays usable meanwhile.
    QTimer::singleShot(20000, this, [this] {
        if (m_process.state() != QProcess::NotRunning)
            m_process.kill();
    });
}

QString LibreOfficeVersion::parse(const QString& output) {
    static const QRegularExpression pattern(
        QStringLiteral("^\\s*(?:LibreOffice|OpenOffice\\S*)\\s+(\\d+(?:\\.\\d+)+)"),
        QRegularExpression::MultilineOption);
    const QRegularExpressionMatch match = pattern.match(output);
    return match.hasMatch() ? match.captured(1) : QString();
}

} // namespace mirabend
