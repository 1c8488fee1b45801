#include "shell/PresentationModes.h"

#include "shell/KeyedToolbar.h"
#include "shell/MainStatusBar.h"
#include "shell/PaneBox.h"
#include "shell/Stage.h"

#include <QLineEdit>
#include <QTextEdit>

namespace mirabend {

PresentationModes::PresentationModes(ShellContext& context)
    : m_ctx(context)
    , m_single(context)
    , m_side(context)
    , m_mixed(context)
{
}

void PresentationModes::defaultContent()
{
    if (!m_ctx.stage->anyContentPaneVisible())
        pane::setVisible(m_ctx.stage->frmSS(), true);
}

void PresentationModes::clearStatusWhenIdle()
{
    if (m_ctx.fields.Text4->text() != QLatin1String("run"))
        m_ctx.status->setPanelText(1, QString());
}

void PresentationModes::MixedMode()
{
    m_ctx.ports.recording->PauseRec();
    defaultContent();
    m_mixed.MixWindow();
    if (m_ctx.mode() == ShellContext::modeSingle())
        m_ctx.ports.camera->PreviewCam1();
    if (m_ctx.mode() == ShellContext::modeSide())
        m_ctx.ports.slides->OpenSlidesResize();
    m_ctx.setMode(ShellContext::modeMixed());
    m_ctx.ports.recording->ResumeRec();
    clearStatusWhenIdle();
}

void PresentationModes::SideMode()
{
    m_ctx.ports.recording->PauseRec();
    defaultContent();
    m_side.SideWindow();
    if (m_ctx.mode() == ShellContext::modeSingle())
        m_ctx.ports.camera->PreviewCam1();
    // Always: the slide pane has shrunk.
    m_ctx.ports.slides->OpenSlidesResize();
    m_ctx.setMode(ShellContext::modeSide());
    m_ctx.ports.recording->ResumeRec();
    clearStatusWhenIdle();
}

void PresentationModes::SingleMode()
{
    if (m_ctx.modeToolbar)
        m_ctx.modeToolbar->setButtonVisible(6, true);
    m_ctx.ports.recording->PauseRec();
    Stage& s = *m_ctx.stage;
    pane::setVisible(s.frmSS(), true);
    // Still the small inset of Side or Mixed mode: hide it. A camera that
    // was enlarged to full size stays.
    if (pane::Width(s.VideoCap1()) == LayoutConstants::kCameraWidth)
        pane::setVisible(s.VideoCap1(), false);
    pane::setVisible(s.infobar_pic(), false);
    m_single.UniWindow();
    if (m_ctx.mode() == ShellContext::modeSide())
        m_ctx.ports.slides->OpenSlidesResize();
    m_ctx.ports.recording->ResumeRec();
    clearStatusWhenIdle();
    // Written after the resume, unlike the other two modes.
    m_ctx.setMode(ShellContext::modeSingle());
}

} // namespace mirabend
