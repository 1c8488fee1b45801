#include "shell/slideshow/OfficeProcess.h"

#include <QCoreApplication>
#include <QDir>
#include <QUrl>
#include <QUuid>
#include <csignal>
#include <sys/prctl.h>
#include <sys/types.h>
#include <unistd.h>

namespace mirabend {

OfficeProcess::OfficeProcess(QString binary, QObject* parent)
    : QObject(parent)
    , m_binary(std::move(binary)) {}

OfficeProcess::~OfficeProcess() {
    stop(0);
}

QStringList OfficeProcess::arguments(const QString& pipe, const QString& profileUrl) {
    return {QStringLiteral("-env:UserInstallation=") + profileUrl,
            QStringLiteral("--accept=pipe,name=%1;urp;StarOffice.ComponentContext").arg(pipe),
            QStringLiteral("--norestore"),
            QStringLiteral("--nologo"),
            QStringLiteral("--nodefault"),
            QStringLiteral("--nolockcheck")};
}

bool OfficeProcess::start() {
    stop(0);
    m_profile = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/mirabend-office-XXXXXX"));
    if (!m_profile->isValid())
        return false;
    m_pipeName = QStringLiteral("mirabend-%1-%2")
                     .arg(QCoreApplication::applicationPid())
                     .arg(QUuid::createUuid().toString(QUuid::Id128));
    return launch();
}

bool OfficeProcess::restart() {
    stop(0);
    if (!m_profile || m_pipeName.isEmpty())
        return start();
    return launch();
}

bool OfficeProcess::launch() {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    // Only the X11 backend can host a frame inside a window of ours; it
    // draws on the display we run on (DISPLAY is inherited).
    env.insert(QStringLiteral("SAL_USE_VCLPLUGIN"), QStringLiteral("gen"));
    env.remove(QStringLiteral("WAYLAND_DISPLAY"));
    env.remove(QStringLiteral("SESSION_MANAGER"));

    m_process = std::make_unique<QProcess>();
    m_process->setProgram(m_binary);
    m_process->setArguments(arguments(m_pipeName, QUrl::fromLocalFile(m_profile->path()).toString()));
    m_process->setProcessEnvironment(env);
    m_process->setStandardOutputFile(QProcess::nullDevice());
    m_process->setStandardErrorFile(QProcess::nullDevice());
    // Its own session, so stopping it reaches whatever it forks; and it ends
    // with us even when we end without shutting it down.
    m_process->setChildProcessModifier([] {
        setsid();
        prctl(PR_SET_PDEATHSIG, SIGTERM);
    });
    connect(m_process.get(), &QProcess::finished, this, [this](int exitCode) { onFinished(exitCode); });
    m_process->start();
    if (!m_process->waitForStarted(5000)) {
        m_process.reset();
        return false;
    }
    return true;
}

void OfficeProcess::onFinished(int exitCode) {
    // Hand the process object over before telling anyone: a listener may
    // start the next office from its slot.
    std::unique_ptr<QProcess> gone = std::move(m_process);
    if (gone)
        gone->disconnect(this);
    Q_EMIT ended(exitCode);
    if (gone)
        gone.release()->deleteLater();
}

void OfficeProcess::stop(int graceMs) {
    if (!m_process)
        return;
    m_process->disconnect(this);
    if (m_process->state() != QProcess::NotRunning) {
        const auto pid = static_cast<pid_t>(m_process->processId());
        if (graceMs <= 0 || !m_process->waitForFinished(graceMs)) {
            if (pid > 0) {
                kill(-pid, SIGTERM);
                kill(pid, SIGTERM);
            }
            if (!m_process->waitForFinished(3000) && pid > 0) {
                kill(-pid, SIGKILL);
                kill(pid, SIGKILL);
                m_process->waitForFinished(3000);
            }
        }
    }
    m_process.reset();
}

bool OfficeProcess::isRunning() const {
    return m_process && m_process->state() != QProcess::NotRunning;
}

qint64 OfficeProcess::pid() const {
    return m_process ? m_process->processId() : 0;
}

QString OfficeProcess::connectUrl() const {
    return QStringLiteral("uno:pipe,name=%1;urp;StarOffice.ComponentContext").arg(m_pipeName);
}

} // namespace mirabend
