#pragma once
// Keeps the user's notes between runs and moves them in and out of files:
// restores $XDG_DATA_HOME/mirabend/notes.rtf at start, saves it every 30 s
// while the board is edited and once more when the program ends, and runs
// "Export notes..." (RTF, HTML or plain text) and "Import notes..." (RTF or
// plain text) through the program's prompts.
//
// Thread contract: UI thread only.

#include <QObject>
#include <QString>

class QAction;
class QTimer;

namespace mirabend {

class NotesBoard;
class Prompts;

class NotesKeeper : public QObject {
    Q_OBJECT
public:
    static constexpr int kAutosaveMs = 30000;

    NotesKeeper(NotesBoard& board, Prompts& prompts, QString path);

    // Reads the kept notes into the board (nothing when there are none yet).
    void restore();
    // Writes the board to the kept file when it changed since the last save.
    bool save();
    void exportNotes();
    void importNotes();

    QAction* exportAction() const { return m_export; }
    QAction* importAction() const { return m_import; }
    QTimer* autosaveTimer() const { return m_autosave; }
    const QString& path() const { return m_path; }

private:
    void tellDamaged(const QString& fileName, int skippedParts);

    NotesBoard& m_board;
    Prompts& m_prompts;
    QString m_path;
    QTimer* m_autosave;
    QAction* m_export;
    QAction* m_import;
    bool m_dirty = false;
    bool m_saveFailureShown = false;
};

} // namespace mirabend
