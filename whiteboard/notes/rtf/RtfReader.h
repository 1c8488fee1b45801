#pragma once
// Reads the RTF the notes board writes, and the same subset from RTF that
// other word processors write (LibreOffice Writer, Word): font and colour
// tables, sizes, bold, italic, underline, colour, alignment, bullets,
// paragraphs and Unicode text. Everything else (pictures, styles, tables'
// structure, fields' instructions, document information) is skipped.
//
// Damaged input never stops the reader: what cannot be read is left out and
// counted, so the caller can tell the user once.
//
// Thread contract: any thread, one document per call.

#include "util/core/Failure.h"

#include <QByteArray>

class QTextDocument;

namespace mirabend {

enum class RtfProblem {
    None,
    NotRtf,  // no "{\rtf" header: the caller may take the bytes as plain text
    Damaged, // read, but parts were broken and left out
};

struct RtfReadResult {
    Failure<RtfProblem> failure;
    int skippedParts = 0; // damaged pieces left out
};

// True when the bytes start (after blanks or a byte order mark) with "{\rtf".
bool looksLikeRtf(const QByteArray& bytes);

// Replaces the content of `document` with what the RTF holds.
RtfReadResult readRtf(const QByteArray& rtf, QTextDocument& document);

} // namespace mirabend
