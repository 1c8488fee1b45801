#pragma once
// The camera pane's logic: the Camera Settings bar's handlers, ControlCap
// and PreviewCam1, the capture test and the pane's reaction to devices coming
// and going. It works on the bar's controls and a CameraControl; the shell
// reaches it through CameraPort.
//
// The preview runs only while the pane is on screen: PreviewCam1 asks for it,
// and the camera starts once the pane shows (and stops while it is hidden).
//
// Thread contract: UI thread only.

#include "shell/camera/CameraControl.h"
#include "shell/camera/CameraPreview.h"
#include "shell/ports/Ports.h"

#include <QObject>
#include <QPointer>

class QCheckBox;
class QComboBox;
class QPushButton;

namespace mirabend {

class Prompts;

// The Camera Settings bar's controls the pane works on.
struct CameraSettingsControls {
    QComboBox* cboDevice = nullptr;
    QComboBox* cboVideoFormat = nullptr;
    QComboBox* cbovideostand = nullptr;
    QCheckBox* chkaspectratio = nullptr;
    QCheckBox* ChkTVMute = nullptr;
    QPushButton* Command12 = nullptr;
    QComboBox* cboInsetShape = nullptr; // may be absent
};

class CameraPane final : public QObject, public CameraPort {
    Q_OBJECT
public:
    static constexpr int kCaptureTestMs = 5000;

    // `preview` is the widget in the stage's VideoCap1 pane; the pane does
    // not own it, nor the control or the controls.
    CameraPane(CameraControl& control, CameraPreview& preview, const CameraSettingsControls& controls,
               Prompts* prompts, QObject* parent = nullptr);

    // CameraPort
    void PreviewCam1() override;
    QStringList deviceNames() override;
    QStringList formatNames() override;

    void ControlCap();

    // The bar's handlers, named after control and event.
    void cboDevice_Click();
    void chkaspectratio_Click();
    void ChkTVMute_Click();
    void Command1_Click() { PreviewCam1(); }
    void Command12_Click();
    void cboInsetShape_Click();

    // Where the capture test writes.
    static QString captureTestFile();
    static QStringList insetShapeNames();

private:
    void updateRunning();
    void onDevicesChanged();
    void onCaptureFinished(const CaptureFailure& result, const QString& file);

    CameraControl& m_control;
    QPointer<CameraPreview> m_preview;
    CameraSettingsControls m_controls;
    Prompts* m_prompts;
    bool m_previewWanted = false;
};

} // namespace mirabend
