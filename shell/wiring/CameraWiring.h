#pragma once
// The camera pane behind the main window's CameraPort: the capture control
// on Qt Multimedia and V4L2 is made with the window; once the task pane
// exists, the preview goes into the stage's VideoCap1 pane and the pane's
// logic takes over the Camera Settings bar.
//
// Thread contract: UI thread only.

#include "shell/ports/Ports.h"

#include <memory>

namespace mirabend {

class CameraControl;
class CameraPane;
class Mirabend_frm;
class Prompts;
struct ShellServices;

class CameraWiring final : public CameraPort {
public:
    CameraWiring(Mirabend_frm& window, Prompts& prompts);
    ~CameraWiring() override;

    // Puts the preview into VideoCap1 and wires the Camera Settings bar.
    void attach();

    void PreviewCam1() override;
    QStringList deviceNames() override;
    QStringList formatNames() override;

private:
    Mirabend_frm& m_window;
    Prompts& m_prompts;
    std::unique_ptr<CameraControl> m_control;
    std::unique_ptr<CameraPane> m_pane;
};

// Sets services.makeCamera and the hook that attaches the pane.
void installCamera(ShellServices& services, Prompts& prompts);

} // namespace mirabend
