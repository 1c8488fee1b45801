#pragma once
// The slide show in the slide pane: opening a presentation (with the open
// dialog or the welcome presentation), running its show inside `frmSS`,
// keeping the show fitted to the pane, navigating it, and writing what the
// main window records about it (caption, Text1, ppt_txt, the slide fields).
//
// Opening is asynchronous only while the presentation program starts: the
// first open starts it and the presentation appears when it is ready; later
// opens are immediate. finished() reports every open's outcome.
//
// Thread contract: UI thread only.

#include "shell/ports/Ports.h"
#include "shell/ports/ShellFields.h"
#include "shell/slideshow/PresentationProgram.h"
#include "util/Prompts.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <memory>

namespace mirabend {

class WindowSystem;

class SlideShow final : public QObject, public SlideShowPort {
    Q_OBJECT
public:
    // `fields` are the main window's controls; `program` runs the shows;
    // `system` embeds a show window that opened at top level (null: the
    // session's window system).
    SlideShow(const ShellFields& fields, std::unique_ptr<PresentationProgram> program,
              WindowSystem* system = nullptr, QObject* parent = nullptr);
    ~SlideShow() override;

    void openSlides() override;
    void openSlidesStart() override;
    // Opens `path` without the dialog; false when the file does not exist.
    bool openFile(const QString& path) override;
    void OpenSlidesResize() override;
    void PresentSize() override;
    void PPTInfo() override;
    void navigate(const QString& key) override;
    void shutdown() override;
    // How often the show's position is read back while it runs: the
    // presenter may move it with the keyboard inside the pane.
    static constexpr int kPollMs = 400;

    // True while an open waits for the presentation program to start.
    bool isOpening() const override { return m_pending.has_value(); }
    QString slideTitle() override;
    PresentationProgram& program() { return *m_program; }

    // The open dialog, as the program shows it.
    static FileRequest openDialogRequest();
    static const QString& failureText();
    static const QString& captionPrefix();
    static const QString& welcomeName();

Q_SIGNALS:
    // An open ended: the show runs (true) or the failure was reported (false).
    void finished(bool shown);

private:
    struct Pending {
        QString path;
        QString title;
    };

    void beginOpen(const QString& path, const QString& title);
    void onPrepared(const ShowFailure& failure);
    void onLost();
    void showPending();
    void fail(const ShowFailure& failure);
    void embedTopLevelShow();
    void fitShow();
    QSize paneSize() const;
    void setRunning(bool running);
    // The slide fields of a show that ended: no slide of no slides.
    void clearPosition();

    ShellFields m_fields;
    std::unique_ptr<PresentationProgram> m_program;
    WindowSystem* m_system;
    std::optional<Pending> m_pending;
    bool m_showRunning = false;
    QTimer* m_poll;
    bool m_retrying = false; // the open runs again on a fresh program
};

} // namespace mirabend
