#pragma once
// Writes a rich-text document as RTF: font and colour tables, then one
// paragraph after the other with its alignment and bullet, and each run of
// text with its font, size, bold, italic, underline and colour. Text outside
// ASCII goes out as \u escapes, so the file is plain 7-bit ASCII.
//
// Thread contract: any thread, one document per call.

#include <QByteArray>

class QTextDocument;

namespace mirabend {

QByteArray writeRtf(const QTextDocument& document);

} // namespace mirabend
