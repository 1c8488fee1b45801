#pragma once
// At start-up: finishes the recordings that a crash or a kill left
// unfinished (those the list of recordings in progress names for a recorder
// that is gone), with a progress dialog when a file takes long, and tells the
// user once what was repaired and what could not be.
//
// Thread contract: UI thread only. The repair runs on the UI thread; the
// progress dialog keeps the window responsive and can cancel it, which leaves
// the file as it was and listed for the next start.

#include "recording/repair/RecordingJournal.h"

#include <QString>
#include <QStringList>

class QWidget;

namespace mirabend {

class Prompts;

class UnfinishedRecordings {
public:
    explicit UnfinishedRecordings(Prompts& prompts, RecordingJournal journal = RecordingJournal());

    // Repairs every unfinished recording; returns how many were repaired.
    int repairAll(QWidget* parent);

    // The one message for what happened ("" when there was nothing to do).
    static QString reportText(const QStringList& repaired, const QStringList& failed);

private:
    Prompts& m_prompts;
    RecordingJournal m_journal;
};

} // namespace mirabend
