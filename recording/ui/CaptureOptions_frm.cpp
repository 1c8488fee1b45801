#include "recording/ui/CaptureOptions_frm.h"

#include "recording/ui/DeviceOptions.h"
#include "recording/ui/FormatOptions.h"
#include "recording/ui/OverlayOptions.h"
#include "recording/ui/RecordingHost.h"
#include "recording/ui/RecordingSession.h"
#include "util/WindowSystem.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace mirabend {

CaptureOptions_frm::CaptureOptions_frm(RecordingHost& host, RecorderControl& recorder, Prompts& prompts,
                                       const Clock& clock, QWidget* parent)
    : QDialog(parent)
    , m_host(host) {
    setObjectName(QStringLiteral("CaptureOptions_frm"));
    setWindowTitle(QStringLiteral("Recording Options"));
    setModal(false);

    m_tabs = new QTabWidget(this);
    m_format = new FormatOptions(recorder, prompts, m_tabs);
    m_devices = new DeviceOptions(recorder, prompts, m_tabs);
    m_overlay = new OverlayOptions(recorder, prompts, m_tabs);
    m_tabs->addTab(m_format, QStringLiteral("Format"));
    m_tabs->addTab(m_devices, QStringLiteral("Capture"));
    m_tabs->addTab(m_overlay, QStringLiteral("Overlay"));
    m_devices->setMp3Fields(
        {m_format->txtavimp3bitrate, m_format->cboavimp3samplerate, m_format->cboavimp3channel});
    m_session = new RecordingSession(host, recorder, prompts, clock, *m_format, *m_devices, this);

    auto* buttons = new QDialogButtonBox(this);
    Command1 = buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    Command1->setObjectName(QStringLiteral("Command1"));
    Command2 = buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    Command2->setObjectName(QStringLiteral("Command2"));
    connect(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    connect(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    // Escape puts the window away like Cancel, without undoing anything.
    connect(this, &QDialog::rejected, this, [this] { hide(); });
    m_devices->Command3->installEventFilter(this);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    layout->addWidget(buttons);

    Form_Load();
    // The main window's size is the default recording area.
    setDefaultArea(host.mainWindowWidth(), host.mainWindowHeight());
}

CaptureOptions_frm::~CaptureOptions_frm() = default;

void CaptureOptions_frm::Form_Load() {
    setDevices();
}

void CaptureOptions_frm::setDevices() {
    m_devices->txtwinhandle->setText(QString::number(m_host.stageWindowHandle()));
    m_overlay->setImageTransparentColour(QColor(0, 0, 0));
    m_overlay->fillTextLists();
    m_format->fillLists();
    m_overlay->fillDateAndFontLists();
    m_devices->fillCompressors();
    m_devices->fillAudioDevices();
    m_devices->chkUseVideoComp->setChecked(true);
    m_devices->chkUseVideoComp_Click();
    m_devices->chkuseAudioComp->setChecked(true);
    m_devices->chkuseAudioComp_Click();
    // Filling the style list switched colour fields on; the overlay fields
    // follow the master switch until the user turns it on.
    m_overlay->chkuseoverlay_Click();
    m_overlay->handColours();
}

void CaptureOptions_frm::setDefaultArea(int width, int height) {
    m_format->txtwidth->setText(QString::number(width));
    m_format->txtheight->setText(QString::number(height));
}

void CaptureOptions_frm::showOptions() {
    show();
    raise();
    activateWindow();
}

void CaptureOptions_frm::StartRecPre() {
    m_session->StartRecPre();
}
void CaptureOptions_frm::StartRec() {
    m_session->StartRec();
}
void CaptureOptions_frm::PauseRec() {
    m_session->PauseRec();
}
void CaptureOptions_frm::ResumeRec() {
    m_session->ResumeRec();
}
void CaptureOptions_frm::StopRec() {
    m_session->StopRec();
}
StartToFailure CaptureOptions_frm::StartRecPreTo(const QString& file) {
    return m_session->StartRecPreTo(file);
}
StartToFailure CaptureOptions_frm::StartRecTo(const QString& file) {
    return m_session->StartRecTo(file);
}

// OK and Cancel do the same: every choice already took effect.
void CaptureOptions_frm::Command1_Click() {
    hide();
}
void CaptureOptions_frm::Command2_Click() {
    hide();
}

void CaptureOptions_frm::Command3_LostFocus() {
    // The helper's window has just come up; keep the options above it.
    if (isVisible())
        windowSystem().setTopMost(static_cast<NativeHandle>(winId()), true);
}

void CaptureOptions_frm::closeEvent(QCloseEvent* event) {
    // The window is kept for the whole run; closing only puts it away.
    event->ignore();
    hide();
}

bool CaptureOptions_frm::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_devices->Command3 && event->type() == QEvent::FocusOut)
        Command3_LostFocus();
    return QDialog::eventFilter(watched, event);
}

} // namespace mirabend
