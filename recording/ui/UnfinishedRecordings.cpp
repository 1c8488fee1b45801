#include "recording/ui/UnfinishedRecordings.h"

#include "recording/repair/VideoRepair.h"
#include "recording/ui/OptionLists.h"
#include "util/Prompts.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProgressDialog>

namespace mirabend {

namespace {

constexpr int kSteps = 1000;
// Short files are done before the dialog would show.
constexpr int kShowProgressAfterMs = 1000;

} // namespace

UnfinishedRecordings::UnfinishedRecordings(Prompts& prompts, RecordingJournal journal)
    : m_prompts(prompts)
    , m_journal(std::move(journal)) {}

QString UnfinishedRecordings::reportText(const QStringList& repaired, const QStringList& failed) {
    QString text;
    if (!repaired.isEmpty())
        text +=
            QStringLiteral("Mirabend was closed while recording. These recordings were finished and can be "
                           "played:\n\n") +
            repaired.join(QLatin1Char('\n'));
    if (!failed.isEmpty()) {
        if (!text.isEmpty())
            text += QStringLiteral("\n\n");
        text += QStringLiteral("These unfinished recordings could not be repaired and were left as they "
                               "are:\n\n") +
                failed.join(QLatin1Char('\n'));
    }
    return text;
}

int UnfinishedRecordings::repairAll(QWidget* parent) {
    const std::vector<std::string> files = m_journal.unfinished();
    if (files.empty())
        return 0;
    QStringList repaired;
    QStringList failed;
    {
        // Gone before the message shows: a hidden progress dialog can still
        // show itself over it once its delay runs out.
        QProgressDialog progress(parent);
        progress.setObjectName(QStringLiteral("repairProgress"));
        progress.setWindowTitle(QString::fromLatin1(options::kMessageTitle));
        progress.setCancelButtonText(QStringLiteral("Later"));
        progress.setRange(0, kSteps * int(files.size()));
        progress.setMinimumDuration(kShowProgressAfterMs);
        progress.setAutoReset(false);
        progress.setValue(0);

        for (std::size_t i = 0; i < files.size() && !progress.wasCanceled(); ++i) {
            const QString name = QString::fromStdString(files[i]);
            progress.setLabelText(
                QStringLiteral("Repairing the unfinished recording %1 ...").arg(QFileInfo(name).fileName()));
            const int base = kSteps * int(i);
            VideoRepairReport report;
            const VideoRepairFailure failure = repairVideo(files[i], report, [&](double share) {
                progress.setValue(base + int(share * kSteps));
                QCoreApplication::processEvents();
                return !progress.wasCanceled();
            });
            if (failure.code == VideoRepairError::Cancelled)
                break; // left as it was and listed: the next start tries again
            // Told once: a file that cannot be repaired is not offered again.
            m_journal.remove(files[i]);
            if (failure)
                failed << QStringLiteral("%1 (%2)").arg(name, QString::fromStdString(failure.detail));
            else
                repaired << QStringLiteral("%1 (%2 s)").arg(name).arg(report.seconds, 0, 'f', 1);
        }
    }
    const QString text = reportText(repaired, failed);
    if (!text.isEmpty())
        m_prompts.show(text, QString::fromLatin1(options::kMessageTitle),
                       failed.isEmpty() ? PromptIcon::Information : PromptIcon::Exclamation);
    return int(repaired.size());
}

} // namespace mirabend
