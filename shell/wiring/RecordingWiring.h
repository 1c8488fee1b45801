#pragma once
// The recording options window and its session behind the main window's
// RecordingPort, with the remote control on the session bus. Owns the
// recorder, the host adapter and the window, and ends them in that order's
// reverse.
//
// Thread contract: UI thread only.

#include "shell/ports/Ports.h"

#include <memory>

namespace mirabend {

class CaptureOptions_frm;
class Mirabend_frm;
class MainWindowRecordingHost;
class Prompts;
class RecorderControl;
class RemoteControlService;
class SystemClock;

class RecordingWiring final : public RecordingPort {
public:
    RecordingWiring(Mirabend_frm& window, Prompts& prompts);
    ~RecordingWiring() override;

    void StartRecPre() override;
    void StartRec() override;
    void PauseRec() override;
    void ResumeRec() override;
    void StopRec() override;
    void showOptions() override;
    void setDefaultArea(int width, int height) override;
    void addChapter(const QString& title) override;

    CaptureOptions_frm& form() { return *m_form; }

private:
    std::unique_ptr<SystemClock> m_clock;
    std::unique_ptr<MainWindowRecordingHost> m_host;
    std::unique_ptr<RecorderControl> m_recorder;
    CaptureOptions_frm* m_form = nullptr;
    std::unique_ptr<RemoteControlService> m_remote;
};

} // namespace mirabend
