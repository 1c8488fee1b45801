#include "shell/wiring/NotesWiring.h"

#include "shell/Mirabend_frm.h"
#include "shell/Stage.h"
#include "util/ExplorerBar.h"
#include "whiteboard/notes/NotesBoard.h"
#include "whiteboard/notes/NotesKeeper.h"
#include "whiteboard/notes/rtf/NotesFile.h"

#include <QHBoxLayout>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace mirabend {
namespace {

QToolButton* fileButton(QAction* action, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return button;
}

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
    QTimer::singleShot(0, keeper, &NotesKeeper::restore);
}

} // namespace mirabend
