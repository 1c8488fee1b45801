#pragma once
// Settings Qt WebEngine reads once, when the first page is made. They must be
// in place before that, so the web pane calls prepareWebEngine() first.
//
// Thread contract: UI thread, before the first QWebEngineView exists.

namespace mirabend {

// - The software scene graph: the page is painted into the widget's backing
//   store like every other pane, so the stage recording (x11grab of the stage
//   window) sees it and the main window is not turned into a GL surface.
// - Running as root, Chromium refuses to start with its sandbox: it is
//   switched off, with the GPU process, only then.
void prepareWebEngine();

} // namespace mirabend
