#include "whiteboard/notes/rtf/NotesFile.h"

#include "whiteboard/notes/rtf/RtfWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QStringDecoder>
#include <QTextDocument>

namespace mirabend {

QString userNotesPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/mirabend/notes.rtf");
}

NotesFormat notesFormatFor(const QString& fileName, int filterIndex) {
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    if (suffix == QLatin1String("rtf"))
        return NotesFormat::Rtf;
    if (suffix == QLatin1String("html") || suffix == QLatin1String("htm"))
        return NotesFormat::Html;
    if (suffix == QLatin1String("txt"))
        return NotesFormat::PlainText;
    return filterIndex == 2   ? NotesFormat::Html
           : filterIndex == 3 ? NotesFormat::PlainText
                              : NotesFormat::Rtf;
}

QByteArray encodeNotes(const QTextDocument& document, NotesFormat format) {
    switch (format) {
    case NotesFormat::Html:
        return document.toHtml().toUtf8();
    case NotesFormat::PlainText:
        return document.toPlainText().toUtf8();
    case NotesFormat::Rtf:
        break;
    }
    return writeRtf(document);
}

RtfReadResult decodeNotes(const QByteArray& bytes, QTextDocument& document) {
    if (looksLikeRtf(bytes))
        return readRtf(bytes, document);
    QStringDecoder utf8(QStringDecoder::Utf8);
    QString text = utf8.decode(bytes);
    if (utf8.hasError())
        text = QString::fromLatin1(bytes);
    document.setPlainText(text);
    document.setModified(false);
    return {};
}

Failure<NotesFileError> readNotesFile(const QString& path, QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {NotesFileError::CannotRead, file.errorString().toStdString()};
    bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return {NotesFileError::CannotRead, file.errorString().toStdString()};
    return {};
}

Failure<NotesFileError> writeNotesFile(const QString& path, const QByteArray& bytes) {
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        return {NotesFileError::CannotWrite, "cannot create the folder " + folder.toStdString()};
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {NotesFileError::CannotWrite, file.errorString().toStdString()};
    if (file.write(bytes) != bytes.size()) {
        const std::string why = file.errorString().toStdString();
        file.cancelWriting();
        return {NotesFileError::CannotWrite, why};
    }
    if (!file.commit())
        return {NotesFileError::CannotWrite, file.errorString().toStdString()};
    return {};
}

} // namespace mirabend
