#pragma once
// The three mode procedures. Each brackets its layout change with a pause
// and a resume of the recording, so a running recording never shows a
// half-arranged stage. The order of the steps matters: the geometry and the
// camera restart read the mode text before it is overwritten.
//
// Thread contract: UI thread only.

#include "shell/ModeGeometry.h"

namespace mirabend {

class PresentationModes {
public:
    explicit PresentationModes(ShellContext& context);

    void SingleMode();
    void SideMode();
    void MixedMode();

    SingleGeometry& single() { return m_single; }
    SideGeometry& side() { return m_side; }
    MixedGeometry& mixed() { return m_mixed; }

private:
    // Shows the slide pane when no content pane is visible.
    void defaultContent();
    // Clears the "Paused ..." / "Recording ..." text the bracket left when no
    // recording runs.
    void clearStatusWhenIdle();

    ShellContext& m_ctx;
    SingleGeometry m_single;
    SideGeometry m_side;
    MixedGeometry m_mixed;
};

} // namespace mirabend
