#pragma once
// Where the program finds the files it ships (cursors, the welcome
// presentation, profiles, the quick guide) and where it writes its own
// (the warm-up scratch file, the default audio file).
//
// Names are given as designed, with a leading backslash ("\pretemp.avi"); the
// backslash is a path separator and any backslash becomes '/'.

#include <QString>
#include <QStringList>

namespace mirabend {

class ProgramFolder {
public:
    // The folders searched for shipped files, in order: next to the
    // executable, the installed data folder, then MIRABEND_DATA_DIR if set.
    static QStringList dataFolders();

    // The path of a shipped file, or an empty string when none of the data
    // folders holds it.
    static QString dataFile(const QString& designName);

    // The folder written to: the program folder when it is writable, else
    // the user's XDG data folder for Mirabend (created on demand).
    static QString writableFolder();

    // writableFolder() joined with the design name.
    static QString writableFile(const QString& designName);

    // "\Welcome.ppt" -> "Welcome.ppt"; "\sub\x.cur" -> "sub/x.cur".
    static QString normalise(const QString& designName);
};

} // namespace mirabend
