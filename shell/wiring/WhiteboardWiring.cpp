#include "shell/wiring/WhiteboardWiring.h"

#include "shell/Mirabend_frm.h"
#include "shell/PaneSwitcher.h"
#include "shell/Stage.h"
#include "util/ExplorerBar.h"
#include "whiteboard/filters/ImageFilters.h"
#include "whiteboard/ui/Whiteboard.h"

namespace mirabend {

namespace {

void attachFilters(Whiteboard& board) {
    std::vector<FilterChoice> choices;
    for (const ImageFilter& filter : imageFilters())
        choices.push_back({filter.number, filter.name, filter.toolTip});
    board.setFilters([](QImage& target, int number, QRgb fore, QRgb fill,
                        QRect area) { applyFilter(target, number, fore, fill, area); },
                     std::move(choices));
    board.editor().setFilterBrushSize([](int penWidth) { return filterBrushSize(penWidth); });
}

} // namespace

Whiteboard* WhiteboardWiring::attach(Mirabend_frm& window, Prompts& prompts) {
    ShellContext& ctx = window.context();
    auto* board = new Whiteboard(prompts, &window);
    board->attachCanvas(ctx.stage->parentPic());
    if (ExplorerBarGroup* bar = ctx.ebDemo->group(QStringLiteral("draw")))
        bar->setPanel(board->createDrawPanel());
    attachFilters(*board);
    // The tool palette brings the whiteboard up when another pane shows.
    board->revealPane = [&window] {
        if (window.context().stage->parentPic()->isHidden())
            window.panes().showPane(QStringLiteral("draw"));
    };
    return board;
}

} // namespace mirabend
