#include "shell/PaneRotation.h"

#include "shell/Stage.h"

#include <QLineEdit>

namespace mirabend {

void PaneRotation::RotateResetValues()
{
    m_slide = pane::rect(m_ctx.stage->frmSS());
    m_camera = pane::rect(m_ctx.stage->VideoCap1());
}

void PaneRotation::restorePlain()
{
    pane::setRect(m_ctx.stage->frmSS(), m_slide);
    pane::setRect(m_ctx.stage->VideoCap1(), m_camera);
}

void PaneRotation::refreshSlideNumber() { m_ctx.fields.slideNow_txt->setText(m_ctx.fields.slide_txt->text()); }

void PaneRotation::takeLargePlace()
{
    restorePlain();
    refreshSlideNumber();
    m_camera = pane::rect(m_ctx.stage->VideoCap1());
    m_slide = kLargePlace;
    refreshSlideNumber();
}

void PaneRotation::RotatePPT()
{
    restorePlain();
    refreshSlideNumber();
    m_ctx.ports.slides->PresentSize();
}

void PaneRotation::RotatePPTCAM()
{
    takeLargePlace();
    pane::setRect(m_ctx.stage->VideoCap1(), m_slide);
    pane::setRect(m_ctx.stage->frmSS(), m_camera);
    m_ctx.ports.slides->PresentSize();
}

void PaneRotation::RotatePPTDRAW()
{
    takeLargePlace();
    pane::setRect(m_ctx.stage->frmSS(), m_slide);
    m_ctx.ports.slides->PresentSize();
}

// The whiteboard arrangement is the drawing arrangement, step for step.
void PaneRotation::RotatePPTWHITEBOARD() { RotatePPTDRAW(); }

} // namespace mirabend
