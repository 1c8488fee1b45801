#include "shell/ModeGeometry.h"

#include "shell/CameraSettingsPanel.h"
#include "shell/MainStatusBar.h"
#include "shell/PaneBox.h"
#include "shell/Stage.h"

#include <QLabel>
#include <QTextEdit>

namespace mirabend {

using LC = LayoutConstants;

const QString& ShellContext::modeSingle()
{
    static const QString text = QStringLiteral("Mode: Single");
    return text;
}

const QString& ShellContext::modeSide()
{
    static const QString text = QStringLiteral("Mode: Side");
    return text;
}

const QString& ShellContext::modeMixed()
{
    static const QString text = QStringLiteral("Mode: Mixed");
    return text;
}

QString ShellContext::mode() const { return status->panelText(6); }

void ShellContext::setMode(const QString& modeText) const { status->setPanelText(6, modeText); }

void SingleGeometry::UniWindow()
{
    Stage& s = *m_ctx.stage;
    QWidget* slides = s.frmSS();
    pane::setWidth(slides, LC::kFullWidth);
    pane::setTop(slides, 0);
    pane::setLeft(slides, 0);
    pane::setHeight(slides, LC::kFullHeight);
    const Rect4 r = pane::rect(slides);
    pane::setRect(s.parentPic(), r);
    pane::setRect(s.textBoard_txt(), r);
    pane::setRect(s.WebBrowser1(), r);
    pane::setRect(s.VideoCap1(), r);
    // The mode text still names the mode being left.
    const QString old = m_ctx.mode();
    if (old == ShellContext::modeMixed() || old == ShellContext::modeSide())
        m_ctx.ports.camera->PreviewCam1();
}

namespace {

void placeCameraTopRight(ShellContext& ctx)
{
    QWidget* cam = ctx.stage->VideoCap1();
    pane::setWidth(cam, LC::kCameraWidth);
    pane::setLeft(cam, pane::Width(ctx.stage) - pane::Width(cam) - LC::kCameraRightMargin);
    pane::setTop(cam, LC::kCameraTop);
    pane::setHeight(cam, LC::kCameraHeight);
}

} // namespace

void MixedGeometry::MixWindow()
{
    Stage& s = *m_ctx.stage;
    placeCameraTopRight(m_ctx);
    const Rect4 full{0, 0, LC::kFullHeight, LC::kFullWidth};
    pane::setRect(s.frmSS(), full);
    pane::setRect(s.parentPic(), full);
    pane::setRect(s.textBoard_txt(), full);
    pane::setRect(s.WebBrowser1(), full);
    pane::setVisible(s.infobar_pic(), false);
    pane::setVisible(s.VideoCap1(), true);
}

void SideGeometry::SideWindow()
{
    Stage& s = *m_ctx.stage;
    placeCameraTopRight(m_ctx);
    QWidget* slides = s.frmSS();
    pane::setWidth(slides, pane::Left(s.VideoCap1()) - LC::kSideGap);
    pane::setTop(slides, LC::kSideTop);
    pane::setLeft(slides, LC::kSideLeft);
    // The divisor is the literal 1.3333, not 4/3; a fraction of a pixel is
    // rounded to the nearest pixel (625 wide gives 469 high).
    pane::setHeight(slides, qRound(pane::Width(slides) / LC::kSideAspectDivisor));
    const Rect4 r = pane::rect(slides);
    pane::setRect(s.parentPic(), r);
    pane::setRect(s.textBoard_txt(), r);
    pane::setRect(s.WebBrowser1(), r);
    pane::setVisible(s.infobar_pic(), true);
    pane::setVisible(s.VideoCap1(), true);
}

void CameraCorner::place(Corner corner)
{
    if (m_ctx.mode() != ShellContext::modeMixed())
        return;
    QWidget* cam = m_ctx.stage->VideoCap1();
    const int right = pane::Width(m_ctx.stage) - pane::Width(cam) - LC::kCameraRightMargin;
    const int bottom = pane::Height(m_ctx.stage) - pane::Height(cam) - 10;
    switch (corner) {
    case Corner::TopRight: pane::setLeft(cam, right); pane::setTop(cam, 20); break;
    case Corner::BottomRight: pane::setLeft(cam, right); pane::setTop(cam, bottom); break;
    case Corner::TopLeft: pane::setLeft(cam, 10); pane::setTop(cam, 20); break;
    case Corner::BottomLeft: pane::setLeft(cam, 10); pane::setTop(cam, bottom); break;
    }
    if (m_ctx.cameraPanel)
        m_ctx.cameraPanel->markCorner(static_cast<int>(corner));
}

} // namespace mirabend
