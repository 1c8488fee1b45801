#pragma once
// The stage's own size, one step smaller ("dec", `ScreenDec`) or larger
// ("inc", `ScreenInc`) at a time, between the full 800 x 600 and 640 x 480,
// the smallest that still holds a full content pane beside the camera's
// margins. The panes keep their stage-pixel places; what hangs on the
// stage's right or bottom edge (the camera inset, the info bar, the notice)
// moves with it, and the recording, which captures the stage's window,
// records the new size from the next start.
//
// A running recording keeps its size: its file's picture size is fixed, so
// the stage waits and a note by the pointer says so.
//
// Thread contract: UI thread only.

#include "shell/ShellContext.h"

#include <QSize>

namespace mirabend {

class StageSize {
public:
    static constexpr int kStepWidth = 80;
    static constexpr int kStepHeight = 60;
    static constexpr int kSmallestWidth = 640;
    static constexpr int kSmallestHeight = 480;

    explicit StageSize(ShellContext& context)
        : m_ctx(context) {}

    // False when nothing changed (at the end of the range, or recording).
    bool ScreenDec();
    bool ScreenInc();
    QSize size() const;
    static QSize fullSize();

private:
    bool resizeTo(const QSize& size);
    ShellContext& m_ctx;
};

} // namespace mirabend
