#include "shell/wiring/RecordingWiring.h"

#include "recording/ui/CaptureOptions_frm.h"
#include "recording/ui/EngineRecorder.h"
#include "recording/ui/RecordingSession.h"
#include "recording/ui/remote/RemoteControl.h"
#include "shell/CommandDispatcher.h"
#include "shell/Mirabend_frm.h"
#include "shell/Stage.h"
#include "shell/wiring/MainWindowRecordingHost.h"
#include "util/Clock.h"

#include <QDBusConnection>
#include <QTimer>
#include <cstdio>

namespace mirabend {

RecordingWiring::RecordingWiring(Mirabend_frm& window, Prompts& prompts)
    : m_clock(std::make_unique<SystemClock>())
    , m_host(std::make_unique<MainWindowRecordingHost>(window))
    , m_recorder(std::make_unique<EngineRecorder>())
{
    // The options window records the stage by its window id.
    window.context().stage->winId();
    m_form = new CaptureOptions_frm(*m_host, *m_recorder, prompts, *m_clock, &window);

    CaptureOptions_frm* form = m_form;
    m_remote = std::make_unique<RemoteControlService>(
        [&window](const QString& key) {
            // Performed from the event loop, not inside the bus call: a
            // command may open a dialog, and the caller must not wait on it.
            QTimer::singleShot(0, &window, [&window, key] { window.commands().perform(key); });
        },
        [form](const QString& file) { return RecordingSession::startToText(form->StartRecPreTo(file), file); });
    const RemoteFailure failure = m_remote->registerOn(QDBusConnection::sessionBus());
    if (failure) {
        // Remote control is a convenience: without a session bus, or with a
        // second Mirabend owning the name, the program works as before.
        std::fprintf(stderr, "mirabend: remote control unavailable: %s\n", failure.detail.c_str());
        m_remote.reset();
    }
}

RecordingWiring::~RecordingWiring()
{
    m_remote.reset();
    delete m_form; // before the recorder and the host it refers to
}

void RecordingWiring::StartRecPre() { m_form->StartRecPre(); }
void RecordingWiring::StartRec() { m_form->StartRec(); }
void RecordingWiring::PauseRec() { m_form->PauseRec(); }
void RecordingWiring::ResumeRec() { m_form->ResumeRec(); }
void RecordingWiring::StopRec() { m_form->StopRec(); }
void RecordingWiring::showOptions() { m_form->showOptions(); }
void RecordingWiring::setDefaultArea(int width, int height) { m_form->setDefaultArea(width, height); }
void RecordingWiring::addChapter(const QString& title) { m_form->session().addChapter(title); }

} // namespace mirabend
