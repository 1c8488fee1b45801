#include "shell/CommandDispatcher.h"

#include "shell/MainStatusBar.h"
#include "shell/PaneRotation.h"
#include "shell/PaneSwitcher.h"
#include "shell/PresentationModes.h"
#include "shell/RecordingCommands.h"
#include "shell/Stage.h"
#include "shell/WaitCursor.h"
#include "util/ExplorerBar.h"
#include "util/ProgramFolder.h"
#include "util/Prompts.h"

#include <QDesktopServices>
#include <QUrl>

namespace mirabend {

namespace {
const char* const kProductPage = "https://mirabend.org/";
}

CommandDispatcher::CommandDispatcher(ShellContext& context, PresentationModes& modes, PaneSwitcher& panes,
                                     PaneRotation& rotation, RecordingCommands& recording)
    : openUrl([](const QUrl& url) { return QDesktopServices::openUrl(url); })
    , m_ctx(context)
    , m_panes(&panes)
    , m_rotation(&rotation)
{
    auto pane = [&panes](const char* key) { return [&panes, key] { panes.showPane(QLatin1String(key)); }; };
    m_toolbar = {
        {QStringLiteral("open"), [this] { open(); }},
        {QStringLiteral("cam"), [&panes] { panes.showCameraFullSize(); }},
        {QStringLiteral("slides"), pane("slides")},
        {QStringLiteral("text"), pane("text")},
        {QStringLiteral("draw"), pane("draw")},
        {QStringLiteral("web"), pane("web")},
        {QStringLiteral("record"), [&recording] { recording.record(); }},
        {QStringLiteral("pause"), [&recording] { recording.pause(); }},
        {QStringLiteral("stop"), [&recording] { recording.stop(); }},
        {QStringLiteral("uni"), [&modes] { modes.SingleMode(); }},
        {QStringLiteral("mix"), [&modes] { modes.MixedMode(); }},
        {QStringLiteral("side"), [&modes] { modes.SideMode(); }},
        {QStringLiteral("options"), [this] { m_ctx.ports.recording->showOptions(); }},
        {QStringLiteral("exit"), [this] { exit(); }},
    };
    auto navigate = [this](const char* key) {
        return [this, key] { m_ctx.ports.slides->navigate(QLatin1String(key)); };
    };
    m_items = {
        {QStringLiteral("start1"), [] {}},
        {QStringLiteral("mic"), [this] { m_ctx.ports.audio->showRecorder(); }},
        {QStringLiteral("first"), navigate("first")},
        {QStringLiteral("next"), navigate("next")},
        {QStringLiteral("previous"), navigate("previous")},
        {QStringLiteral("last"), navigate("last")},
        {QStringLiteral("exit"), navigate("exit")},
        {QStringLiteral("options"), [this] { m_ctx.ports.recording->showOptions(); }},
        {QStringLiteral("rotate0"), [this] { rotate(QStringLiteral("rotate0")); }},
        {QStringLiteral("rotate1"), [this] { rotate(QStringLiteral("rotate1")); }},
        {QStringLiteral("rotate2"), [this] { rotate(QStringLiteral("rotate2")); }},
        {QStringLiteral("rotate3"), [this] { rotate(QStringLiteral("rotate3")); }},
        {QStringLiteral("startrec"), [&recording] { recording.startRecItem(); }},
        {QStringLiteral("pause"), [&recording] { recording.pauseItem(); }},
        {QStringLiteral("stop"), [&recording] { recording.stopItem(); }},
        {QStringLiteral("dec"), [this] { m_ctx.screenDec(); }},
        {QStringLiteral("resolution"), [this] { showResolution(); }},
        {QStringLiteral("inc"), [this] { m_ctx.screenInc(); }},
        {QStringLiteral("help"), [this] { help(); }},
        {QStringLiteral("about"), [this] { showAbout(); }},
        {QStringLiteral("online"), [this] { openUrl(QUrl(QString::fromLatin1(kProductPage))); }},
    };
}

void CommandDispatcher::Toolbar1_ButtonClick(const QString& key)
{
    const auto it = m_toolbar.constFind(key);
    if (it != m_toolbar.constEnd())
        (*it)();
}

void CommandDispatcher::ebDemo_ItemClick(const QString& key)
{
    const auto it = m_items.constFind(key);
    if (it != m_items.constEnd())
        (*it)();
}

void CommandDispatcher::ebDemo_ItemClick(ExplorerBarItem* item)
{
    if (item)
        ebDemo_ItemClick(item->key());
}

bool CommandDispatcher::perform(const QString& key)
{
    if (isToolbarKey(key)) {
        Toolbar1_ButtonClick(key);
        return true;
    }
    if (isItemKey(key)) {
        ebDemo_ItemClick(key);
        return true;
    }
    return false;
}

void CommandDispatcher::rotate(const QString& key)
{
    const bool recording = m_ctx.status->panelText(1) == QLatin1String("Recording ...");
    if (key == QLatin1String("rotate0")) {
        // Resume without a pause before it: the plain arrangement's bracket
        // is lopsided and stays so.
        m_rotation->RotatePPT();
        if (recording)
            m_ctx.ports.recording->ResumeRec();
        return;
    }
    if (recording)
        m_ctx.ports.recording->PauseRec();
    if (key == QLatin1String("rotate1"))
        m_rotation->RotatePPTCAM();
    else if (key == QLatin1String("rotate2"))
        m_rotation->RotatePPTDRAW();
    else
        m_rotation->RotatePPTWHITEBOARD();
    if (recording)
        m_ctx.ports.recording->ResumeRec();
}

void CommandDispatcher::open()
{
    // Busy cursor over the slide pane until the show is up or has failed:
    // the first open waits for the presentation program to start.
    if (!m_waitCursor)
        m_waitCursor = new WaitCursor(m_ctx.stage->frmSS());
    m_waitCursor->hold([] { return true; });
    m_ctx.stage->frmSS()->show();
    m_ctx.ports.slides->openSlides();
    SlideShowPort* slides = m_ctx.ports.slides;
    m_waitCursor->hold([slides] { return slides->isOpening(); });
    m_panes->showPane(QStringLiteral("slides"));
}

void CommandDispatcher::exit()
{
    if (m_ctx.audioDisplayRunning())
        m_ctx.stopAudioDisplay();
    const PromptAnswer answer = m_ctx.fields.prompts->message(
        {QStringLiteral("Do you want to exit?"), QStringLiteral("Mirabend 1.0"), PromptButtons::YesNoCancel,
         PromptIcon::Exclamation});
    if (answer == PromptAnswer::Yes)
        m_ctx.unloadMainWindow();
}

void CommandDispatcher::help()
{
    const QString guide = ProgramFolder::dataFile(QStringLiteral("\\Mirabend_QGuide.pdf"));
    if (guide.isEmpty()) {
        m_ctx.fields.prompts->show(QStringLiteral("The quick guide Mirabend_QGuide.pdf is not installed."),
                                   QStringLiteral("Mirabend 1.0"), PromptIcon::Exclamation);
        return;
    }
    openUrl(QUrl::fromLocalFile(guide));
}

} // namespace mirabend
