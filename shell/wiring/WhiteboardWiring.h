#pragma once
// Puts the whiteboard into the main window: the canvas into the stage's
// `parentPic`, its tools into the task pane's "draw" bar, and (when the
// filters are built in) the filter operation behind the filter tool.
//
// Thread contract: UI thread only.

namespace mirabend {

class Mirabend_frm;
class Prompts;
class Whiteboard;

class WhiteboardWiring {
public:
    // Called once the task pane exists; the main window owns the whiteboard.
    static Whiteboard* attach(Mirabend_frm& window, Prompts& prompts);
};

} // namespace mirabend
