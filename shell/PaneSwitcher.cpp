#include "shell/PaneSwitcher.h"

#include "shell/PaneBox.h"
#include "shell/PresentationModes.h"
#include "shell/Stage.h"
#include "util/ExplorerBar.h"

#include <QTextEdit>

namespace mirabend {

const QStringList& PaneSwitcher::paneBarKeys()
{
    static const QStringList keys = {QStringLiteral("draw"),   QStringLiteral("powerpoint"),
                                     QStringLiteral("text"),   QStringLiteral("camera"),
                                     QStringLiteral("titles"), QStringLiteral("web")};
    return keys;
}

void PaneSwitcher::updateTaskPane(const QString& barKey)
{
    if (m_ctx.ebDemo)
        m_ctx.ebDemo->showOnly(barKey, paneBarKeys());
}

void PaneSwitcher::showPane(const QString& key)
{
    Stage& s = *m_ctx.stage;
    QWidget* chosen = nullptr;
    QString bar;
    if (key == QLatin1String("slides")) {
        chosen = s.frmSS();
        bar = QStringLiteral("powerpoint");
    } else if (key == QLatin1String("text")) {
        chosen = s.textBoard_txt();
        bar = QStringLiteral("text");
    } else if (key == QLatin1String("draw")) {
        chosen = s.parentPic();
        bar = QStringLiteral("draw");
    } else if (key == QLatin1String("web")) {
        chosen = s.WebBrowser1();
        bar = QStringLiteral("web");
    } else {
        return;
    }
    const QString mode = m_ctx.mode();
    for (QWidget* content : std::initializer_list<QWidget*>{s.frmSS(), s.textBoard_txt(), s.parentPic(), s.WebBrowser1()})
        pane::setVisible(content, content == chosen);
    // The camera inset belongs to Mixed and Side mode; the info bar is
    // Side mode's and left as it is there.
    const bool side = mode == ShellContext::modeSide();
    const bool mixed = mode == ShellContext::modeMixed();
    if (side || mixed) {
        pane::setVisible(s.VideoCap1(), true);
    } else if (mode == ShellContext::modeSingle()) {
        pane::setVisible(s.VideoCap1(), false);
    }
    if (!side && (mixed || mode == ShellContext::modeSingle()))
        pane::setVisible(s.infobar_pic(), false);
    updateTaskPane(bar);
    m_ctx.paneShown(key);
}

void PaneSwitcher::showCameraFullSize()
{
    Stage& s = *m_ctx.stage;
    pane::setVisible(s.infobar_pic(), true);
    pane::setVisible(s.frmSS(), false);
    pane::setVisible(s.parentPic(), false);
    pane::setVisible(s.WebBrowser1(), false);
    pane::setRect(s.VideoCap1(), {0, 0, 435, 580});
    pane::setVisible(s.VideoCap1(), true);
    m_modes.SingleMode();
    pane::setVisible(s.infobar_pic(), true);
    updateTaskPane(QStringLiteral("camera"));
    m_ctx.paneShown(QStringLiteral("cam"));
}

} // namespace mirabend
