#include "support/ScriptedPrompts.h"

#include <QFileInfo>

namespace mirabend::test {

PromptAnswer ScriptedPrompts::message(const MessageRequest& request)
{
    messages << request;
    if (m_messageAnswers.empty())
        return request.buttons == PromptButtons::Ok ? PromptAnswer::Ok : PromptAnswer::Cancel;
    const PromptAnswer answer = m_messageAnswers.front();
    m_messageAnswers.pop_front();
    return answer;
}

void ScriptedPrompts::answerFile(const QString& path, int filterIndex)
{
    FileAnswer answer;
    answer.fileName = path;
    answer.fileTitle = path.isEmpty() ? QString() : QFileInfo(path).fileName();
    answer.filterIndex = filterIndex;
    m_fileAnswers.push_back(answer);
}

FileAnswer ScriptedPrompts::nextFile()
{
    if (m_fileAnswers.empty())
        return {};
    FileAnswer answer = m_fileAnswers.front();
    m_fileAnswers.pop_front();
    return answer;
}

FileAnswer ScriptedPrompts::openFile(const FileRequest& request)
{
    openRequests << request;
    return nextFile();
}

FileAnswer ScriptedPrompts::saveFile(const FileRequest& request)
{
    saveRequests << request;
    return nextFile();
}

std::optional<QColor> ScriptedPrompts::chooseColor(const QColor&, const QString& title)
{
    colorTitles << title;
    if (m_colorAnswers.empty())
        return std::nullopt;
    auto answer = m_colorAnswers.front();
    m_colorAnswers.pop_front();
    return answer;
}

} // namespace mirabend::test
