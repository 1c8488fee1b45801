#include "shell/StageSize.h"

#include "shell/ModeGeometry.h"
#include "shell/PaneBox.h"
#include "shell/Stage.h"

#include <QCursor>
#include <QLabel>
#include <QLineEdit>
#include <QObject>
#include <QToolTip>

namespace mirabend {

namespace {
constexpr int kNoteMs = 4000;

// A short note where the user just clicked or pressed the key: the status
// bar's panels leave no room for a passing message, and a note on the
// stage itself would be recorded.
void showNote(const QString& text) {
    QToolTip::showText(QCursor::pos(), text, nullptr, {}, kNoteMs);
}
} // namespace

QSize StageSize::fullSize() {
    return {Stage::kWidth, Stage::kHeight};
}

QSize StageSize::size() const {
    return m_ctx.stage->size();
}

bool StageSize::ScreenDec() {
    const QSize now = size();
    return resizeTo({std::max(kSmallestWidth, now.width() - kStepWidth),
                     std::max(kSmallestHeight, now.height() - kStepHeight)});
}

bool StageSize::ScreenInc() {
    const QSize now = size();
    return resizeTo({std::min(Stage::kWidth, now.width() + kStepWidth),
                     std::min(Stage::kHeight, now.height() + kStepHeight)});
}

bool StageSize::resizeTo(const QSize& target) {
    Stage& s = *m_ctx.stage;
    const QSize old = s.size();
    if (target == old)
        return false;
    if (m_ctx.fields.Text4 && m_ctx.fields.Text4->text() == QLatin1String("run")) {
        showNote(QObject::tr("The stage keeps its size while recording."));
        return false;
    }
    s.setFixedSize(target);
    const int dx = target.width() - old.width();
    const int dy = target.height() - old.height();

    // The camera inset keeps the corner it sits in.
    QWidget* camera = s.VideoCap1();
    if (pane::Width(camera) == LayoutConstants::kCameraWidth) {
        if (pane::Left(camera) + pane::Width(camera) / 2 > old.width() / 2)
            pane::setLeft(camera, pane::Left(camera) + dx);
        if (pane::Top(camera) + pane::Height(camera) / 2 > old.height() / 2)
            pane::setTop(camera, pane::Top(camera) + dy);
    }
    QWidget* info = s.infobar_pic();
    info->setGeometry(info->x(), info->y() + dy, info->width() + dx, info->height());
    QLabel* notice = s.noticeBox();
    notice->move(notice->x() + dx / 2, notice->y() + dy / 2);

    // Side mode sizes its content pane from the camera's place.
    if (m_ctx.mode() == ShellContext::modeSide()) {
        const bool infoShown = !info->isHidden();
        SideGeometry(m_ctx).SideWindow();
        info->setVisible(infoShown);
        m_ctx.ports.slides->OpenSlidesResize();
    }
    showNote(QObject::tr("Stage %1 x %2").arg(target.width()).arg(target.height()));
    return true;
}

} // namespace mirabend
