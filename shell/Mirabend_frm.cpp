#include "shell/Mirabend_frm.h"

#include "shell/CameraSettingsPanel.h"
#include "shell/CommandDispatcher.h"
#include "shell/ImageList.h"
#include "shell/KeyedToolbar.h"
#include "shell/MainStatusBar.h"
#include "shell/PaneRotation.h"
#include "shell/PaneSwitcher.h"
#include "shell/PresentationModes.h"
#include "shell/RecordingCommands.h"
#include "shell/SlideCounter.h"
#include "shell/StageSize.h"
#include "shell/Stage.h"
#include "shell/TaskPaneBuilder.h"
#include "util/ExplorerBar.h"
#include "util/Prompts.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QScreen>
#include <QScrollArea>
#include <QTextEdit>
#include <QTimer>
#include <QWindow>
#include <cmath>

// The pictures are compiled into this static library; a static library's
// resources must be registered by hand.
static void initShellResources() { Q_INIT_RESOURCE(shell); }

namespace mirabend {

namespace {

// Null ports shared by every main window that lacks a subsystem.
NullRecordingPort g_noRecording;
NullSlideShowPort g_noSlides;
NullCameraPort g_noCamera;
NullAudioPort g_noAudio;

} // namespace

Mirabend_frm::Mirabend_frm(ShellServices services, QWidget* parent)
    : QMainWindow(parent)
    , m_services(std::move(services))
{
    initShellResources();
    setObjectName(QStringLiteral("Mirabend_frm"));
    setWindowTitle(QStringLiteral("Mirabend 1.0"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/mirabend.svg")));
    if (!m_services.endProgram)
        m_services.endProgram = [] { QCoreApplication::quit(); };

    m_ctx.ports = {&g_noRecording, &g_noSlides, &g_noCamera, &g_noAudio};
    m_ctx.fields.window = this;
    m_ctx.fields.prompts = m_services.prompts;
    m_ctx.fields.Text1 = hiddenField("Text1", "");
    m_ctx.fields.Text2 = hiddenField("Text2", "");
    m_ctx.fields.Text3 = hiddenField("Text3", "");
    m_ctx.fields.Text4 = hiddenField("Text4", "sleep");
    m_ctx.fields.ppt_txt = hiddenField("ppt_txt", "no");
    m_ctx.fields.slide_txt = hiddenField("slide_txt", "0");
    m_ctx.fields.slideNow_txt = hiddenField("slideNow_txt", "0");

    m_ctx.status = new MainStatusBar(this);
    setStatusBar(m_ctx.status);
    m_ctx.setMode(ShellContext::modeSingle());

    buildToolbars();
    buildCentre();
    m_ctx.fields.frmSS = m_ctx.stage->frmSS();
    m_ctx.unloadMainWindow = [this] { close(); };
    m_ctx.screenDec = [this] { ScreenDec(); };
    m_ctx.screenInc = [this] { ScreenInc(); };
    m_stageSize = std::make_unique<StageSize>(m_ctx);
    m_slideCounter = new SlideCounter(m_ctx, this);
    m_ctx.paneShown = [this](const QString& key) { m_slideCounter->paneShown(key); };

    m_modes = std::make_unique<PresentationModes>(m_ctx);
    m_rotation = std::make_unique<PaneRotation>(m_ctx);
    m_panes = std::make_unique<PaneSwitcher>(m_ctx, *m_modes);
    m_recording = std::make_unique<RecordingCommands>(m_ctx);
    m_commands = std::make_unique<CommandDispatcher>(m_ctx, *m_modes, *m_panes, *m_rotation, *m_recording);

    connect(m_ctx.toolbar1, &KeyedToolbar::ButtonClick, this,
            [this](const QString& key) { m_commands->Toolbar1_ButtonClick(key); });
    connect(m_ctx.modeToolbar, &KeyedToolbar::ButtonClick, this,
            [this](const QString& key) { m_commands->ebDemo_ItemClick(key); });
    connect(m_ctx.ebDemo, &ExplorerBar::itemClicked, this,
            [this](ExplorerBarItem* item) { m_commands->ebDemo_ItemClick(item); });

    // The window may be made small; Form_Resize keeps the height floor.
    layout()->setSizeConstraint(QLayout::SetNoConstraint);
    setMinimumSize(0, 0);
    resize(1110, 800);

    if (m_services.makeSlides)
        m_slidesPort = m_services.makeSlides(*this);
    if (m_services.makeCamera)
        m_cameraPort = m_services.makeCamera(*this);
    if (m_services.makeAudio)
        m_audioPort = m_services.makeAudio(*this);
    if (m_slidesPort)
        m_ctx.ports.slides = m_slidesPort.get();
    if (m_cameraPort)
        m_ctx.ports.camera = m_cameraPort.get();
    if (m_audioPort)
        m_ctx.ports.audio = m_audioPort.get();
}

Mirabend_frm::~Mirabend_frm() = default;

void Mirabend_frm::registerResources() { initShellResources(); }

QLineEdit* Mirabend_frm::hiddenField(const char* name, const char* text)
{
    auto* field = new QLineEdit(QString::fromLatin1(text), this);
    field->setObjectName(QString::fromLatin1(name));
    field->hide();
    return field;
}

void Mirabend_frm::buildToolbars()
{
    auto* bar = new KeyedToolbar(QStringLiteral("Toolbar1"), tr("Main"), this);
    // Positions count separators: record is button 12, pause button 13.
    bar->addButton(QStringLiteral("open"), tr("Open"), 1, tr("Open a presentation"), QKeySequence::Open);
    bar->addButton(QStringLiteral("slides"), tr("Slides"), 2, tr("Show the slides"), QKeySequence(tr("Ctrl+1")));
    bar->addButton(QStringLiteral("cam"), tr("Camera"), 3, tr("Show the camera at full size"),
                   QKeySequence(tr("Ctrl+2")));
    bar->addButton(QStringLiteral("text"), tr("Notes"), 4, tr("Show the notes board"), QKeySequence(tr("Ctrl+3")));
    bar->addButton(QStringLiteral("draw"), tr("Draw"), 5, tr("Show the whiteboard"), QKeySequence(tr("Ctrl+4")));
    bar->addButton(QStringLiteral("web"), tr("Web"), 7, tr("Show the web page"), QKeySequence(tr("Ctrl+5")));
    bar->addSeparatorItem();
    bar->addButton(QStringLiteral("uni"), tr("Single"), 8, tr("Single mode: one pane fills the stage"),
                   QKeySequence(tr("F6")));
    bar->addButton(QStringLiteral("side"), tr("Side"), 9, tr("Side mode: content beside the camera"),
                   QKeySequence(tr("F7")));
    bar->addButton(QStringLiteral("mix"), tr("Mixed"), 10, tr("Mixed mode: camera over the content"),
                   QKeySequence(tr("F8")));
    bar->addSeparatorItem();
    bar->addButton(QStringLiteral("record"), tr("Record"), 11, tr("Start recording"), QKeySequence(tr("F9")));
    bar->addButton(QStringLiteral("pause"), QStringLiteral("Pause"), ImageList::kPause,
                   tr("Pause or resume the recording"), QKeySequence(tr("F10")));
    bar->addButton(QStringLiteral("stop"), tr("Stop"), 12, tr("Stop recording"), QKeySequence(tr("F11")));
    bar->addSeparatorItem();
    bar->addButton(QStringLiteral("options"), tr("Options"), 13, tr("Recording options"),
                   QKeySequence(tr("Ctrl+,")));
    bar->addButton(QStringLiteral("exit"), tr("Exit"), 14, tr("Exit Mirabend"), QKeySequence::Quit);
    addToolBar(Qt::TopToolBarArea, bar);
    m_ctx.toolbar1 = bar;

    // The elapsed recording time, large, at the right end of the toolbar.
    auto* spacer = new QWidget(bar);
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar->addWidget(spacer);
    m_ctx.elapsedLabel = new QLabel(QStringLiteral("00:00:00"), bar);
    m_ctx.elapsedLabel->setObjectName(QStringLiteral("lblElapsed"));
    m_ctx.elapsedLabel->setToolTip(tr("Recorded time"));
    m_ctx.elapsedLabel->setStyleSheet(QStringLiteral("font: bold 20px monospace; color: #1f3b6f; padding: 0 12px;"));
    bar->addWidget(m_ctx.elapsedLabel);

    auto* layoutBar = new KeyedToolbar(QStringLiteral("Toolbar3"), tr("Layout"), this);
    layoutBar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    layoutBar->setIconSize(QSize(20, 20));
    layoutBar->addButton(QStringLiteral("rotate0"), tr("Plain arrangement"), 17);
    layoutBar->addButton(QStringLiteral("rotate1"), tr("Camera and slides swap"), 3);
    layoutBar->addButton(QStringLiteral("rotate2"), tr("Slides beside the drawing"), 5);
    layoutBar->addButton(QStringLiteral("rotate3"), tr("Slides beside the whiteboard"), 2);
    layoutBar->addSeparatorItem();
    layoutBar->addButton(QStringLiteral("dec"), tr("Smaller stage"), 18, tr("Shrink the stage one step"), QKeySequence(tr("Ctrl+-")));
    layoutBar->addButton(QStringLiteral("inc"), tr("Larger stage"), 17, tr("Grow the stage one step, up to its full size"), QKeySequence(tr("Ctrl+=")));
    addToolBar(Qt::TopToolBarArea, layoutBar);
    m_ctx.modeToolbar = layoutBar;
}

void Mirabend_frm::buildCentre()
{
    auto* centre = new QWidget(this);
    auto* row = new QHBoxLayout(centre);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);

    m_ctx.ebDemo = new ExplorerBar(centre);
    m_ctx.ebDemo->setObjectName(QStringLiteral("ebDemo"));
    m_ctx.ebDemo->setFixedWidth(260);
    row->addWidget(m_ctx.ebDemo);

    auto* scroller = new QScrollArea(centre);
    scroller->setObjectName(QStringLiteral("stageScroller"));
    scroller->setAlignment(Qt::AlignCenter);
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setStyleSheet(QStringLiteral("QScrollArea#stageScroller { background: #3a3f47; }"));
    m_ctx.stage = new Stage;
    scroller->setWidget(m_ctx.stage);
    row->addWidget(scroller, 1);
    setCentralWidget(centre);
}

void Mirabend_frm::Form_Initialize()
{
    if (m_initialized)
        return;
    m_initialized = true;
    QCoreApplication::processEvents();
    if (!m_recordingPort && m_services.makeRecording)
        m_recordingPort = m_services.makeRecording(*this);
    if (m_recordingPort)
        m_ctx.ports.recording = m_recordingPort.get();
    // The default recording area follows the main window's size.
    m_ctx.ports.recording->setDefaultArea(width(), height());
}

void Mirabend_frm::InitDevices()
{
    m_audioDevices = m_ctx.ports.audio->inputDevices();
    // Reported when loading is done and the window is up (see Form_Load),
    // so the message has a window to belong to and does not hold up the
    // start. The devices are shown once the task pane exists.
    m_reportNoAudioDevices = m_audioDevices.isEmpty();
}

void Mirabend_frm::showAudioDevices()
{
    const QString list = m_audioDevices.join(QStringLiteral("\n"));
    const QString tip = m_audioDevices.isEmpty() ? tr("No audio input device was found.")
                                                 : tr("Audio inputs:\n%1").arg(list);
    if (ExplorerBarItem* mic = m_ctx.ebDemo->item(QStringLiteral("record"), QStringLiteral("mic")))
        mic->setToolTip(tip);
    QString text = tr("No audio input");
    if (!m_audioDevices.isEmpty()) {
        text = tr("Audio: %1").arg(m_audioDevices.first());
        if (m_audioDevices.size() > 1)
            text += tr(" (+%1)").arg(m_audioDevices.size() - 1);
    }
    m_ctx.status->setPanelText(kAudioPanel, text);
    if (QLabel* panel = m_ctx.status->panel(kAudioPanel))
        panel->setToolTip(tip);
}

void Mirabend_frm::Form_Load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    InitDevices();
    const QScreen* screen = this->screen() ? this->screen() : QGuiApplication::primaryScreen();
    if (screen) {
        m_twipsPerPixelX = 1440.0 / screen->logicalDotsPerInchX();
        m_twipsPerPixelY = 1440.0 / screen->logicalDotsPerInchY();
    }
    const TaskPanePanels panels = TaskPaneBuilder::AddExpBar(*m_ctx.ebDemo, *m_ctx.stage);
    m_ctx.cameraPanel = panels.camera;
    m_ctx.ebDemo->group(QStringLiteral("layout"))
        ->addItem(QStringLiteral(" Larger stage"), QStringLiteral("inc"), ImageList::icon(17));
    m_slideCounter->attachTo(*m_ctx.ebDemo);
    showAudioDevices();
    wireCamera();
    for (const auto& attach : m_services.attachPanes)
        attach(*this);
    QCoreApplication::processEvents();
    m_rotation->RotateResetValues();
    m_ctx.ports.camera->PreviewCam1();
    CameraSettingsPanel::fillList(m_ctx.cameraPanel->cboDevice(), m_ctx.ports.camera->deviceNames());
    CameraSettingsPanel::fillList(m_ctx.cameraPanel->cboVideoFormat(), m_ctx.ports.camera->formatNames());
    m_ctx.cameraPanel->fillStandards();
    if (m_reportNoAudioDevices) {
        m_reportNoAudioDevices = false;
        QTimer::singleShot(0, this, [this] {
            if (m_services.prompts)
                m_services.prompts->show(QStringLiteral("You have no audio input devices!"),
                                         QStringLiteral("Mirabend 1.0"), PromptIcon::Exclamation);
        });
    }
}

void Mirabend_frm::wireCamera()
{
    CameraSettingsPanel* panel = m_ctx.cameraPanel;
    connect(panel, &CameraSettingsPanel::cornerClicked, this, [this](int corner) {
        CameraCorner(m_ctx).place(static_cast<CameraCorner::Corner>(corner));
    });
    connect(panel, &CameraSettingsPanel::applyClicked, this, [this] { m_ctx.ports.camera->PreviewCam1(); });
}

void Mirabend_frm::start()
{
    Form_Initialize();
    Form_Load();
    show();
}

void Mirabend_frm::Form_Resize()
{
    if (isMinimized())
        return;
    const int frameExtra = frameGeometry().height() - height();
    const double outerTwips = frameGeometry().height() * m_twipsPerPixelY;
    if (outerTwips < kHeightFloorTwips) {
        const int outerPixels = static_cast<int>(std::ceil(kHeightFloorTwips / m_twipsPerPixelY));
        resize(width(), outerPixels - frameExtra);
    }
}

void Mirabend_frm::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    Form_Resize();
}

void Mirabend_frm::ScreenDec() { m_stageSize->ScreenDec(); }

void Mirabend_frm::ScreenInc() { m_stageSize->ScreenInc(); }

void Mirabend_frm::Form_QueryUnload()
{
    if (m_ctx.audioDisplayRunning())
        m_ctx.stopAudioDisplay();
    // Closing the main window ends the whole program, every other window
    // (the options window, the audio recorder) included.
    if (m_ending)
        return;
    m_ending = true;
    m_ctx.ports.slides->shutdown();
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window != this && window->isVisible())
            window->close();
    }
    m_services.endProgram();
}

void Mirabend_frm::Form_Unload()
{
    if (m_ctx.audioDisplayRunning())
        m_ctx.stopAudioDisplay();
}

void Mirabend_frm::Form_Terminate() { m_services.endProgram(); }

void Mirabend_frm::closeEvent(QCloseEvent* event)
{
    Form_QueryUnload();
    Form_Unload();
    Form_Terminate();
    event->accept();
}

} // namespace mirabend
