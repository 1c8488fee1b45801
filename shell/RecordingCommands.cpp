#include "shell/RecordingCommands.h"

#include "shell/ImageList.h"
#include "shell/KeyedToolbar.h"
#include "util/ExplorerBar.h"
#include "util/Prompts.h"

#include <QLineEdit>

namespace mirabend {

bool RecordingCommands::isRecording() const { return m_ctx.fields.Text4->text() == QLatin1String("run"); }

void RecordingCommands::record()
{
    if (m_ctx.fields.ppt_txt->text() == QLatin1String("no")) {
        m_ctx.fields.prompts->show(QStringLiteral("Please open your PowerPoint presentation before recording."),
                                   QStringLiteral("Mirabend 1.0"), PromptIcon::Critical);
        return;
    }
    m_ctx.ports.recording->StartRecPre();
}

void RecordingCommands::pause()
{
    if (!isRecording())
        return;
    KeyedToolbar& bar = *m_ctx.toolbar1;
    if (bar.caption(kPauseButton) == QLatin1String("Pause")) {
        bar.setImage(kPauseButton, ImageList::kResume);
        bar.setCaption(kPauseButton, QStringLiteral("Resume"));
        m_ctx.ports.recording->PauseRec();
    } else {
        bar.setImage(kPauseButton, ImageList::kPause);
        bar.setCaption(kPauseButton, QStringLiteral("Pause"));
        m_ctx.ports.recording->ResumeRec();
    }
}

void RecordingCommands::stop()
{
    if (!isRecording())
        return;
    m_ctx.ports.recording->StopRec();
    KeyedToolbar& bar = *m_ctx.toolbar1;
    bar.setImage(kPauseButton, ImageList::kPause);
    bar.setCaption(kPauseButton, QStringLiteral("Pause"));
    bar.setButtonEnabled(kRecordButton, true);
    m_ctx.fields.Text4->setText(QStringLiteral("sleep"));
}

void RecordingCommands::startRecItem()
{
    m_ctx.ports.recording->StartRec();
    m_ctx.fields.Text2->setText(QStringLiteral("R"));
}

void RecordingCommands::pauseItem()
{
    ExplorerBarItem* item = m_ctx.ebDemo ? m_ctx.ebDemo->item(QStringLiteral("record"), QStringLiteral("pause"))
                                         : nullptr;
    if (!item)
        return;
    // The item doubles as the resume command: its caption says which one
    // the next click performs.
    if (item->caption() == QLatin1String(" Pause")) {
        m_ctx.ports.recording->PauseRec();
        item->setCaption(QStringLiteral(" Resume"));
    } else {
        m_ctx.ports.recording->ResumeRec();
        item->setCaption(QStringLiteral(" Pause"));
    }
    m_ctx.ebDemo->redraw();
}

void RecordingCommands::stopItem()
{
    m_ctx.ports.recording->StopRec();
    if (ExplorerBarItem* item =
            m_ctx.ebDemo ? m_ctx.ebDemo->item(QStringLiteral("record"), QStringLiteral("pause")) : nullptr)
        item->setCaption(QStringLiteral(" Pause"));
}

} // namespace mirabend
