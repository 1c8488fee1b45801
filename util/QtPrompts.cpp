#include "util/QtPrompts.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QStringList>

namespace mirabend {

QString toQtFilter(const QString& designFilter)
{
    const QStringList parts = designFilter.split(QLatin1Char('|'));
    QStringList entries;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        const QString description = parts[i].trimmed();
        QString patterns = parts[i + 1];
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        patterns = patterns.simplified();
        const QString bracket = QStringLiteral("(") + patterns + QStringLiteral(")");
        if (description.endsWith(bracket, Qt::CaseInsensitive) && description.endsWith(bracket))
            entries << description;
        else
            entries << description + QStringLiteral(" ") + bracket;
    }
    return entries.join(QStringLiteral(";;"));
}

PromptAnswer QtPrompts::message(const MessageRequest& request)
{
    QMessageBox box(m_parent);
    box.setWindowTitle(request.title);
    box.setText(request.text);
    switch (request.icon) {
    case PromptIcon::None: box.setIcon(QMessageBox::NoIcon); break;
    case PromptIcon::Information: box.setIcon(QMessageBox::Information); break;
    case PromptIcon::Exclamation: box.setIcon(QMessageBox::Warning); break;
    case PromptIcon::Critical: box.setIcon(QMessageBox::Critical); break;
    case PromptIcon::Question: box.setIcon(QMessageBox::Question); break;
    }
    switch (request.buttons) {
    case PromptButtons::Ok: box.setStandardButtons(QMessageBox::Ok); break;
    case PromptButtons::OkCancel: box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel); break;
    case PromptButtons::YesNo: box.setStandardButtons(QMessageBox::Yes | QMessageBox::No); break;
    case PromptButtons::YesNoCancel:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    }
    switch (box.exec()) {
    case QMessageBox::Yes: return PromptAnswer::Yes;
    case QMessageBox::No: return PromptAnswer::No;
    case QMessageBox::Ok: return PromptAnswer::Ok;
    default: return PromptAnswer::Cancel;
    }
}

FileAnswer QtPrompts::runFileDialog(const FileRequest& request, bool save)
{
    QFileDialog dialog(m_parent, request.title, request.folder);
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    const QStringList filters = toQtFilter(request.filter).split(QStringLiteral(";;"), Qt::SkipEmptyParts);
    dialog.setNameFilters(filters);
    if (request.filterIndex >= 1 && request.filterIndex <= filters.size())
        dialog.selectNameFilter(filters[request.filterIndex - 1]);
    // A wildcard "file name" is the designed way of pre-selecting a pattern;
    // it is not a name to offer.
    if (!request.initialFileName.isEmpty() && !request.initialFileName.contains(QLatin1Char('*')))
        dialog.selectFile(request.initialFileName);
    FileAnswer answer;
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return answer;
    answer.fileName = dialog.selectedFiles().constFirst();
    answer.fileTitle = QFileInfo(answer.fileName).fileName();
    const int index = filters.indexOf(dialog.selectedNameFilter());
    answer.filterIndex = index >= 0 ? index + 1 : 1;
    return answer;
}

FileAnswer QtPrompts::openFile(const FileRequest& request) { return runFileDialog(request, false); }

FileAnswer QtPrompts::saveFile(const FileRequest& request) { return runFileDialog(request, true); }

std::optional<QColor> QtPrompts::chooseColor(const QColor& initial, const QString& title)
{
    const QColor chosen = QColorDialog::getColor(initial, m_parent, title);
    if (!chosen.isValid())
        return std::nullopt;
    return chosen;
}

} // namespace mirabend
