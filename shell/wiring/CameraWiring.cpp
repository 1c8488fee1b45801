#include "shell/wiring/CameraWiring.h"

#include "shell/CameraSettingsPanel.h"
#include "shell/Mirabend_frm.h"
#include "shell/Stage.h"
#include "shell/camera/CameraPane.h"
#include "shell/camera/QtCameraControl.h"
#include "shell/camera/V4l2Input.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QScrollBar>

namespace mirabend {

namespace {

// Device and format names are longer than the task pane is wide: the open
// list shows them whole, and the closed box's tooltip says the chosen one.
void showWholeNames(QComboBox* list) {
    QObject::connect(list, &QComboBox::currentTextChanged, list, [list](const QString& text) {
        list->setToolTip(text);
        list->view()->setMinimumWidth(list->view()->sizeHintForColumn(0) + 2 * list->view()->frameWidth() +
                                      list->view()->verticalScrollBar()->sizeHint().width());
    });
    list->setToolTip(list->currentText());
}

} // namespace

CameraWiring::CameraWiring(Mirabend_frm& window, Prompts& prompts)
    : m_window(window)
    , m_prompts(prompts)
    , m_control(std::make_unique<QtCameraControl>(&V4l2Input::open)) {}

CameraWiring::~CameraWiring() = default;

void CameraWiring::attach() {
    ShellContext& ctx = m_window.context();
    CameraSettingsPanel* panel = ctx.cameraPanel;
    QWidget* pane = ctx.stage->VideoCap1();
    if (!panel || !pane || m_pane)
        return;

    // The preview paints the pane itself, "No camera" included; around a
    // rounded or round inset the stage shows through.
    for (QLabel* hint : pane->findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly))
        hint->hide();
    pane->setStyleSheet(QStringLiteral("QWidget#VideoCap1 { background: transparent; }"));
    auto* preview = new CameraPreview(pane);
    pane->layout()->addWidget(preview);

    // Labels above the lists, so the lists get the bar's whole width.
    if (auto* form = panel->findChild<QFormLayout*>())
        form->setRowWrapPolicy(QFormLayout::WrapAllRows);
    showWholeNames(panel->cboDevice());
    showWholeNames(panel->cboVideoFormat());

    auto* shape = new QComboBox(panel);
    shape->setObjectName(QStringLiteral("cboInsetShape"));
    shape->setToolTip(QObject::tr("Shape of the camera picture on the stage"));
    panel->addRow(QObject::tr("Shape"), shape);
    panel->Command12()->setToolTip(QObject::tr("Record five seconds from the camera to a test file"));
    panel->Command1()->setToolTip(QObject::tr("Restart the camera with these settings"));

    CameraSettingsControls controls;
    controls.cboDevice = panel->cboDevice();
    controls.cboVideoFormat = panel->cboVideoFormat();
    controls.cbovideostand = panel->cbovideostand();
    controls.chkaspectratio = panel->chkaspectratio();
    controls.ChkTVMute = panel->ChkTVMute();
    controls.Command12 = panel->Command12();
    controls.cboInsetShape = shape;
    m_pane = std::make_unique<CameraPane>(*m_control, *preview, controls, &m_prompts);
}

void CameraWiring::PreviewCam1() {
    if (m_pane)
        m_pane->PreviewCam1();
}

QStringList CameraWiring::deviceNames() {
    return m_control->deviceNames();
}

QStringList CameraWiring::formatNames() {
    return m_control->formatNames(m_control->device());
}

void installCamera(ShellServices& services, Prompts& prompts) {
    services.makeCamera = [&prompts](Mirabend_frm& window) -> std::unique_ptr<CameraPort> {
        return std::make_unique<CameraWiring>(window, prompts);
    };
    services.attachPanes.push_back([](Mirabend_frm& window) {
        if (auto* camera = dynamic_cast<CameraWiring*>(window.context().ports.camera))
            camera->attach();
    });
}

} // namespace mirabend
