#pragma once
// The recording options window. The main window creates it once, at its own
// initialisation, and keeps it for the whole run; it is also the recording
// session's public face (StartRecPre, StartRec, PauseRec, ResumeRec,
// StopRec). Every choice takes effect when it is made, so "OK" and "Cancel"
// both only put the window away. Nothing is stored between runs.
//
// Thread contract: UI thread only.

#include "recording/ui/RecordingSession.h"

#include <QDialog>

class QPushButton;
class QTabWidget;

namespace mirabend {

class Clock;
class DeviceOptions;
class FormatOptions;
class OverlayOptions;
class Prompts;
class RecorderControl;
class RecordingHost;

class CaptureOptions_frm : public QDialog {
    Q_OBJECT
public:
    // Fills every list from the recorder at once (Form_Load), then takes the
    // main window's size from the host as the default recording area.
    CaptureOptions_frm(RecordingHost& host, RecorderControl& recorder, Prompts& prompts, const Clock& clock,
                       QWidget* parent = nullptr);
    ~CaptureOptions_frm() override;

    // Fills every list of the window and sets every first choice.
    void setDevices();

    // The main window's size, written into the two size fields as the
    // default recording area.
    void setDefaultArea(int width, int height);
    // Shows the window (the "options" command).
    void showOptions();

    void StartRecPre();
    void StartRec();
    void PauseRec();
    void ResumeRec();
    void StopRec();
    // Without the save dialog: the container follows the file's extension.
    StartToFailure StartRecPreTo(const QString& file);
    StartToFailure StartRecTo(const QString& file);

    void Command1_Click();
    void Command2_Click();
    void Command3_LostFocus();

    FormatOptions& format() const { return *m_format; }
    DeviceOptions& devices() const { return *m_devices; }
    OverlayOptions& overlay() const { return *m_overlay; }
    RecordingSession& session() const { return *m_session; }

    QPushButton* Command1;
    QPushButton* Command2;

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Form_Load();

    RecordingHost& m_host;
    QTabWidget* m_tabs;
    FormatOptions* m_format;
    DeviceOptions* m_devices;
    OverlayOptions* m_overlay;
    RecordingSession* m_session;
};

} // namespace mirabend
