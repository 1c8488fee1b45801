#include "whiteboard/notes/NotesKeeper.h"

#include "util/Prompts.h"
#include "whiteboard/notes/NotesBoard.h"
#include "whiteboard/notes/rtf/NotesFile.h"

#include <QAction>
#include <QCoreApplication>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTextDocument>
#include <QTextEdit>
#include <QTimer>

namespace mirabend {
namespace {

const QString kTitle = QStringLiteral("Mirabend 1.0");

QString detail(const std::string& text) {
    return QString::fromStdString(text);
}

} // namespace

NotesKeeper::NotesKeeper(NotesBoard& board, Prompts& prompts, QString path)
    : QObject(&board)
    , m_board(board)
    , m_prompts(prompts)
    , m_path(std::move(path))
    , m_autosave(new QTimer(this))
    , m_export(new QAction(tr("Export notes..."), this))
    , m_import(new QAction(tr("Import notes..."), this)) {
    QTextEdit* text = m_board.textBoard_txt();
    m_export->setObjectName(QStringLiteral("exportNotes"));
    m_export->setShortcut(QKeySequence(tr("Ctrl+Shift+E")));
    m_import->setObjectName(QStringLiteral("importNotes"));
    m_import->setShortcut(QKeySequence(tr("Ctrl+Shift+I")));
    for (QAction* action : {m_export, m_import}) {
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        action->setToolTip(
            QStringLiteral("%1 (%2)").arg(action->text().remove(QStringLiteral("...")),
                                          action->shortcut().toString(QKeySequence::NativeText)));
        text->addAction(action);
    }
    connect(m_export, &QAction::triggered, this, &NotesKeeper::exportNotes);
    connect(m_import, &QAction::triggered, this, &NotesKeeper::importNotes);

    connect(text->document(), &QTextDocument::contentsChanged, this, [this] { m_dirty = true; });
    m_autosave->setInterval(kAutosaveMs);
    connect(m_autosave, &QTimer::timeout, this, &NotesKeeper::save);
    m_autosave->start();
    // The event loop ends on "exit", on closing the window and on SIGTERM.
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &NotesKeeper::save);
}

void NotesKeeper::restore() {
    if (!QFileInfo::exists(m_path))
        return;
    QByteArray bytes;
    if (const auto failure = readNotesFile(m_path, bytes)) {
        m_prompts.show(tr("Mirabend can't read your notes from %1: %2").arg(m_path, detail(failure.detail)),
                       kTitle, PromptIcon::Exclamation);
        return;
    }
    PropertyBag bag;
    if (looksLikeRtf(bytes))
        bag.WriteProperty(QStringLiteral("TextRTF"), QString::fromLatin1(bytes));
    else
        bag.WriteProperty(QStringLiteral("Text"), QString::fromUtf8(bytes));
    const RtfReadResult result = m_board.ReadProperties(bag);
    m_dirty = false;
    if (result.failure)
        tellDamaged(m_path, result.skippedParts);
}

bool NotesKeeper::save() {
    if (!m_dirty)
        return true;
    PropertyBag bag;
    m_board.WriteProperties(bag);
    const Failure<NotesFileError> failure =
        writeNotesFile(m_path, bag.ReadProperty(QStringLiteral("TextRTF")).toLatin1());
    if (failure) {
        // Said once: the timer tries again, and the last good copy stays.
        if (!m_saveFailureShown) {
            m_saveFailureShown = true;
            m_prompts.show(tr("Mirabend can't save your notes to %1: %2").arg(m_path, detail(failure.detail)),
                           kTitle, PromptIcon::Exclamation);
        }
        return false;
    }
    m_saveFailureShown = false;
    m_dirty = false;
    return true;
}

void NotesKeeper::exportNotes() {
    FileRequest request;
    request.title = tr("Export notes");
    request.filter =
        tr("Rich Text Format (*.rtf)|*.rtf|Web page (*.html)|*.html;*.htm|Plain text (*.txt)|*.txt");
    request.initialFileName = QStringLiteral("notes.rtf");
    request.defaultExtension = QStringLiteral("rtf");
    request.folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const FileAnswer answer = m_prompts.saveFile(request);
    if (!answer.accepted())
        return;
    const QByteArray bytes = encodeNotes(*m_board.textBoard_txt()->document(),
                                         notesFormatFor(answer.fileName, answer.filterIndex));
    if (const auto failure = writeNotesFile(answer.fileName, bytes))
        m_prompts.show(tr("Mirabend can't write %1: %2").arg(answer.fileName, detail(failure.detail)), kTitle,
                       PromptIcon::Critical);
}

void NotesKeeper::importNotes() {
    FileRequest request;
    request.title = tr("Import notes");
    request.filter =
        tr("Notes (*.rtf, *.txt)|*.rtf;*.txt|Rich Text Format (*.rtf)|*.rtf|Plain text (*.txt)|*.txt|"
           "All files|*");
    request.folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const FileAnswer answer = m_prompts.openFile(request);
    if (!answer.accepted())
        return;
    QByteArray bytes;
    if (const auto failure = readNotesFile(answer.fileName, bytes)) {
        m_prompts.show(tr("Mirabend can't read %1: %2").arg(answer.fileName, detail(failure.detail)), kTitle,
                       PromptIcon::Critical);
        return;
    }
    const RtfReadResult result = decodeNotes(bytes, *m_board.textBoard_txt()->document());
    m_dirty = true;
    if (result.failure)
        tellDamaged(answer.fileName, result.skippedParts);
}

void NotesKeeper::tellDamaged(const QString& fileName, int skippedParts) {
    const QString lost = skippedParts == 1 ? tr("one damaged part was left out")
                                           : tr("%1 damaged parts were left out").arg(skippedParts);
    m_prompts.show(tr("Mirabend could read only part of the notes in %1: %2.").arg(fileName, lost), kTitle,
                   PromptIcon::Exclamation);
}

} // namespace mirabend
