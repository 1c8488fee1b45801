#pragma once
// The canvas cursors: the tools' cursor files from the program folder, with
// the hot spot each file records. A missing or broken file falls back to a
// cross, so drawing never depends on a shipped file.
//
// Thread contract: UI thread only.

#include <QCursor>
#include <QHash>
#include <QPoint>
#include <QString>

namespace mirabend {

class CursorLibrary {
public:
    // The cursor of a design file name ("\pick.cur"); an empty name is the
    // default arrow.
    QCursor cursor(const QString& designName);

    // Reads the hot spot out of a cursor file's directory entry.
    static bool readHotSpot(const QString& path, QPoint* hotSpot);

private:
    QHash<QString, QCursor> m_cache;
};

} // namespace mirabend
