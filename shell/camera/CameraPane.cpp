#include "shell/camera/CameraPane.h"

#include "shell/camera/CameraControl.h"
#include "util/ProgramFolder.h"
#include "util/Prompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QPushButton>

namespace mirabend {

namespace {

const QString& title() {
    static const QString text = QStringLiteral("Mirabend 1.0");
    return text;
}

QString selectedText(const QComboBox* list) {
    return list && list->currentIndex() >= 0 ? list->currentText() : QString();
}

// Fills a list with names and selects the first entry when there is one.
void fill(QComboBox* list, const QStringList& names) {
    if (!list)
        return;
    list->clear();
    list->addItems(names);
    list->setCurrentIndex(names.isEmpty() ? -1 : 0);
}

} // namespace

CameraPane::CameraPane(CameraControl& control, CameraPreview& preview, const CameraSettingsControls& controls,
                       Prompts* prompts, QObject* parent)
    : QObject(parent)
    , m_control(control)
    , m_preview(&preview)
    , m_controls(controls)
    , m_prompts(prompts) {
    m_preview->setNoCamera(m_control.device().isEmpty());
    connect(&m_control, &CameraControl::frameReady, this, [this](const QVideoFrame& frame) {
        if (m_preview)
            m_preview->setFrame(frame);
    });
    connect(&m_control, &CameraControl::previewStopped, this, [this] {
        if (m_preview)
            m_preview->setNoCamera(m_control.device().isEmpty());
        if (m_preview)
            m_preview->clear();
    });
    connect(&m_control, &CameraControl::devicesChanged, this, &CameraPane::onDevicesChanged);
    connect(&m_control, &CameraControl::captureFinished, this, &CameraPane::onCaptureFinished);
    connect(m_preview, &CameraPreview::shownChanged, this, &CameraPane::updateRunning);

    if (m_controls.cboDevice)
        connect(m_controls.cboDevice, QOverload<int>::of(&QComboBox::activated), this,
                &CameraPane::cboDevice_Click);
    if (m_controls.chkaspectratio)
        connect(m_controls.chkaspectratio, &QCheckBox::clicked, this, &CameraPane::chkaspectratio_Click);
    if (m_controls.ChkTVMute)
        connect(m_controls.ChkTVMute, &QCheckBox::clicked, this, &CameraPane::ChkTVMute_Click);
    if (m_controls.Command12)
        connect(m_controls.Command12, &QPushButton::clicked, this, &CameraPane::Command12_Click);
    if (m_controls.cboInsetShape) {
        fill(m_controls.cboInsetShape, insetShapeNames());
        connect(m_controls.cboInsetShape, QOverload<int>::of(&QComboBox::activated), this,
                &CameraPane::cboInsetShape_Click);
    }
    if (m_preview && m_controls.chkaspectratio)
        m_preview->setKeepAspect(m_controls.chkaspectratio->isChecked());
}

QStringList CameraPane::insetShapeNames() {
    return {tr("Rectangle"), tr("Rounded"), tr("Circle")};
}

QString CameraPane::captureTestFile() {
    return ProgramFolder::writableFile(QStringLiteral("\\captest.webm"));
}

QStringList CameraPane::deviceNames() {
    return m_control.deviceNames();
}

QStringList CameraPane::formatNames() {
    return m_control.formatNames(m_control.device());
}

void CameraPane::ControlCap() {
    // Each is handed over only when it differs from what is in use, so
    // applying unchanged settings never restarts the camera.
    const QString device = selectedText(m_controls.cboDevice);
    if (!device.isEmpty() && device != m_control.device())
        m_control.selectDevice(device);
    const QString format = selectedText(m_controls.cboVideoFormat);
    if (!format.isEmpty() && format != m_control.format())
        m_control.selectFormat(format);
}

void CameraPane::PreviewCam1() {
    ControlCap();
    if (m_controls.cbovideostand && m_controls.cbovideostand->currentIndex() >= 0)
        m_control.setVideoStandard(m_controls.cbovideostand->currentIndex());
    m_previewWanted = true;
    updateRunning();
}

void CameraPane::updateRunning() {
    if (!m_preview)
        return;
    m_preview->setNoCamera(m_control.device().isEmpty());
    // The camera runs while the pane is on screen; a hidden pane frees the
    // device (and its light).
    if (m_previewWanted && m_preview->isVisible())
        m_control.startPreview();
    else
        m_control.stopPreview();
}

void CameraPane::cboDevice_Click() {
    fill(m_controls.cboVideoFormat, m_control.formatNames(selectedText(m_controls.cboDevice)));
}

void CameraPane::chkaspectratio_Click() {
    if (m_preview && m_controls.chkaspectratio)
        m_preview->setKeepAspect(m_controls.chkaspectratio->isChecked());
}

void CameraPane::ChkTVMute_Click() {
    if (m_controls.ChkTVMute)
        m_control.setTvMute(m_controls.ChkTVMute->isChecked());
}

void CameraPane::cboInsetShape_Click() {
    const int index = m_controls.cboInsetShape ? m_controls.cboInsetShape->currentIndex() : 0;
    if (m_preview)
        m_preview->setShape(static_cast<InsetShape>(std::clamp(index, 0, 2)));
}

void CameraPane::Command12_Click() {
    if (m_control.capturing())
        return;
    if (m_controls.Command12)
        m_controls.Command12->setEnabled(false);
    m_control.startCapture(captureTestFile(), kCaptureTestMs);
}

void CameraPane::onCaptureFinished(const CaptureFailure& result, const QString& file) {
    if (m_controls.Command12)
        m_controls.Command12->setEnabled(true);
    if (!m_prompts)
        return;
    if (result.code == CaptureError::FileNotFound) {
        m_prompts->show(QStringLiteral("Capture file not found"), title(), PromptIcon::None);
    } else if (result) {
        m_prompts->show(
            QStringLiteral("Capture Failure,Video, Audio Compressor not correct or capture file opening"),
            title(), PromptIcon::None);
    } else {
        m_prompts->show(tr("The capture test was saved to %1").arg(QDir::toNativeSeparators(file)), title(),
                        PromptIcon::Information);
    }
}

void CameraPane::onDevicesChanged() {
    // Keep the list current, and the user's choice where it still exists.
    if (QComboBox* list = m_controls.cboDevice) {
        const QString chosen = selectedText(list);
        const QStringList names = m_control.deviceNames();
        list->clear();
        list->addItems(names);
        int index = names.indexOf(chosen);
        if (index < 0)
            index = names.indexOf(m_control.device());
        if (index < 0 && !names.isEmpty())
            index = 0;
        list->setCurrentIndex(index);
        if (selectedText(list) != chosen)
            cboDevice_Click();
    }
    if (m_preview)
        m_preview->setNoCamera(m_control.device().isEmpty());
}

} // namespace mirabend
