#pragma once
// The notes as files: the user's own copy kept between runs, and the
// export and import formats. Saving goes through a temporary file that
// replaces the old one only once it is complete, so a crash or a full disk
// never destroys the last good copy.
//
// Thread contract: UI thread (QTextDocument).

#include "util/core/Failure.h"
#include "whiteboard/notes/rtf/RtfReader.h"

#include <QByteArray>
#include <QString>

class QTextDocument;

namespace mirabend {

enum class NotesFileError { None, CannotRead, CannotWrite };
enum class NotesFormat { Rtf, Html, PlainText };

// $XDG_DATA_HOME/mirabend/notes.rtf (or the platform's equivalent).
QString userNotesPath();

// The format for an export: the file name's extension decides, else the
// chosen filter (1 RTF, 2 HTML, 3 plain text).
NotesFormat notesFormatFor(const QString& fileName, int filterIndex);
QByteArray encodeNotes(const QTextDocument& document, NotesFormat format);

// RTF when the bytes say so, plain text (UTF-8, else Latin-1) otherwise.
RtfReadResult decodeNotes(const QByteArray& bytes, QTextDocument& document);

Failure<NotesFileError> readNotesFile(const QString& path, QByteArray& bytes);
Failure<NotesFileError> writeNotesFile(const QString& path, const QByteArray& bytes);

} // namespace mirabend
