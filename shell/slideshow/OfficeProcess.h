#pragma once
// The office process Mirabend runs for its slide shows: soffice.bin started
// on a private profile folder, listening on a pipe of its own, drawing with
// the X11 backend on our display. The process runs in its own session, so
// stop() ends it and whatever it forked, by its process id.
//
// Thread contract: UI thread only; ended() is emitted on the UI thread.

#include <QObject>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <memory>

namespace mirabend {

class OfficeProcess final : public QObject {
    Q_OBJECT
public:
    // `binary` is the office's soffice.bin.
    explicit OfficeProcess(QString binary, QObject* parent = nullptr);
    ~OfficeProcess() override;
    OfficeProcess(const OfficeProcess&) = delete;
    OfficeProcess& operator=(const OfficeProcess&) = delete;

    // Starts a fresh office (stopping a previous one) on a new profile and
    // pipe. Returns at once; false when the process could not be created.
    bool start();
    // Starts the office again on the same profile and pipe (an office that
    // has just created its profile may ask to be restarted).
    bool restart();
    // Waits up to `graceMs` for the office to leave by itself (after a
    // terminate request), then ends it by signal.
    void stop(int graceMs = 3000);

    bool isRunning() const;
    qint64 pid() const;
    const QString& pipeName() const { return m_pipeName; }
    // The UNO address of the office's component context.
    QString connectUrl() const;

    // The arguments an office gets to serve automation on `pipe` with the
    // profile at `profileUrl` (shared with the build and the benchmark).
    static QStringList arguments(const QString& pipe, const QString& profileUrl);

Q_SIGNALS:
    // The office ended without stop() asking it to.
    void ended(int exitCode);

private:
    bool launch();
    void onFinished(int exitCode);

    QString m_binary;
    QString m_pipeName;
    std::unique_ptr<QTemporaryDir> m_profile;
    std::unique_ptr<QProcess> m_process;
};

} // namespace mirabend
