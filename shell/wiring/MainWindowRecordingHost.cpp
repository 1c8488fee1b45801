#include "shell/wiring/MainWindowRecordingHost.h"

#include "shell/KeyedToolbar.h"
#include "shell/MainStatusBar.h"
#include "shell/Mirabend_frm.h"
#include "shell/Stage.h"
#include "util/ExplorerBar.h"
#include "util/WindowSystem.h"

#include <QLabel>
#include <QLineEdit>

namespace mirabend {

QString MainWindowRecordingHost::statusPanel(int index) const
{
    return m_window.context().status->panelText(index);
}

void MainWindowRecordingHost::setStatusPanel(int index, const QString& text)
{
    m_window.context().status->setPanelText(index, text);
}

void MainWindowRecordingHost::setElapsedLabel(const QString& text) { m_window.context().elapsedLabel->setText(text); }

QString MainWindowRecordingHost::recordingState() const { return m_window.context().fields.Text2->text(); }

void MainWindowRecordingHost::setRecordingState(const QString& text) { m_window.context().fields.Text2->setText(text); }

QString MainWindowRecordingHost::Text4() const { return m_window.context().fields.Text4->text(); }

void MainWindowRecordingHost::setText4(const QString& text) { m_window.context().fields.Text4->setText(text); }

void MainWindowRecordingHost::setNoticeVisible(bool visible)
{
    QLabel* notice = m_window.context().stage->noticeBox();
    notice->setVisible(visible);
    if (visible)
        notice->raise();
}

void MainWindowRecordingHost::setToolbarButtonEnabled(int position, bool enabled)
{
    m_window.context().toolbar1->setButtonEnabled(position, enabled);
}

void MainWindowRecordingHost::setRecordItemEnabled(const QString& itemKey, bool enabled)
{
    if (ExplorerBarItem* entry = m_window.context().ebDemo->item(QStringLiteral("record"), itemKey))
        entry->setEnabled(enabled);
}

void MainWindowRecordingHost::redrawTaskPane() { m_window.context().ebDemo->redraw(); }

void MainWindowRecordingHost::setTopMost(bool topMost)
{
    windowSystem().setTopMost(static_cast<NativeHandle>(m_window.winId()), topMost);
}

int MainWindowRecordingHost::mainWindowWidth() const { return m_window.width(); }

int MainWindowRecordingHost::mainWindowHeight() const { return m_window.height(); }

std::uint32_t MainWindowRecordingHost::stageWindowHandle() const
{
    return static_cast<std::uint32_t>(m_window.context().stage->winId());
}

int MainWindowRecordingHost::stageWidth() const { return m_window.context().stage->width(); }

int MainWindowRecordingHost::stageHeight() const { return m_window.context().stage->height(); }

} // namespace mirabend
