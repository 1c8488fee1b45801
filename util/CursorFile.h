#pragma once
// Cursors from Windows cursor files (.cur): the picture and the hot spot the
// file gives, not the middle of the picture that QCursor would guess.
//
// Thread contract: UI thread only (QCursor needs the GUI application).

#include <QCursor>
#include <QImage>
#include <QPoint>
#include <QString>
#include <optional>

class QByteArray;

namespace mirabend {

struct CursorPicture {
    QImage image;
    QPoint hotSpot;
};

// The first picture of a .cur file and its hot spot; empty when the data is
// no cursor file (an .ico, a damaged file).
std::optional<CursorPicture> readCursorFile(const QByteArray& data);

// The cursor in `path`, or `fallback` when the file is missing or damaged.
QCursor loadCursorFile(const QString& path, const QCursor& fallback);

} // namespace mirabend
