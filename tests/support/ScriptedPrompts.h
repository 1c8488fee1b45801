#pragma once
// Prompts for tests: every request is recorded, answers come from queues the
// test fills beforehand. An empty queue answers Cancel / an empty file name.

#include "util/Prompts.h"

#include <QList>
#include <deque>
#include <optional>

namespace mirabend::test {

class ScriptedPrompts final : public Prompts {
public:
    PromptAnswer message(const MessageRequest& request) override;
    FileAnswer openFile(const FileRequest& request) override;
    FileAnswer saveFile(const FileRequest& request) override;
    std::optional<QColor> chooseColor(const QColor& initial, const QString& title) override;

    void answerMessage(PromptAnswer answer) { m_messageAnswers.push_back(answer); }
    // Queues a file answer; the title is derived from the path.
    void answerFile(const QString& path, int filterIndex = 1);
    void answerColor(std::optional<QColor> color) { m_colorAnswers.push_back(color); }

    QList<MessageRequest> messages;
    QList<FileRequest> openRequests;
    QList<FileRequest> saveRequests;
    QList<QString> colorTitles;

private:
    FileAnswer nextFile();
    std::deque<PromptAnswer> m_messageAnswers;
    std::deque<FileAnswer> m_fileAnswers;
    std::deque<std::optional<QColor>> m_colorAnswers;
};

} // namespace mirabend::test
