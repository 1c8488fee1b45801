#include "shell/wiring/NotesWiring.h"

#include "shell/Mirabend_frm.h"
#include "shell/Stage.h"
#include "util/ExplorerBar.h"
#include "whiteboard/notes/NotesBoard.h"
#include "whiteboard/notes/NotesKeeper.h"
#include "whiteboard/notes/rtf/NotesFile.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace mirabend {
namespace {

QToolButton* fileButton(QAction* action, QWidget* parent) {
    auto* button = new QToolButton(parent);
    // Tool buttons drop the "..." by default; it says a dialog follows.
    action->setIconText(action->text());
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return button;
}

// Restores the kept notes from the event loop after the window's first
// show: Form_Load runs the loop itself before the window is up.
class RestoreWhenShown : public QObject {
public:
    RestoreWhenShown(QWidget& window, NotesKeeper& keeper)
        : QObject(&keeper)
        , m_keeper(keeper) {
        window.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Show) {
            watched->removeEventFilter(this);
            QTimer::singleShot(0, &m_keeper, &NotesKeeper::restore);
            deleteLater();
        }
        return false;
    }

private:
    NotesKeeper& m_keeper;
};

} // namespace

void attachNotes(Mirabend_frm& window, Prompts& prompts) {
    ShellContext& ctx = window.context();
    auto* board = new NotesBoard(ctx.stage->textBoard_txt(), prompts);
    auto* keeper = new NotesKeeper(*board, prompts, userNotesPath());

    auto* panel = new QWidget;
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(board->tools());
    auto* files = new QHBoxLayout;
    files->setContentsMargins(4, 0, 4, 4);
    files->addWidget(fileButton(keeper->exportAction(), panel));
    files->addWidget(fileButton(keeper->importAction(), panel));
    layout->addLayout(files);
    if (ExplorerBarGroup* bar = ctx.ebDemo->group(QStringLiteral("text")))
        bar->setPanel(panel);
    // Once the window shows, so a word about a damaged file has a window
    // to stand on rather than holding up the start.
    new RestoreWhenShown(window, *keeper);
}

} // namespace mirabend
