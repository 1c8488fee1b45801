#pragma once
// Pane geometry of the three presentation modes and the camera corner
// labels, in stage pixels. Each mode's placement is its own class; the mode
// procedures (PresentationModes) call them.
//
// Thread contract: UI thread only.

#include "shell/ShellContext.h"

namespace mirabend {

struct LayoutConstants {
    static constexpr int kFullWidth = 580;
    static constexpr int kFullHeight = 435;
    static constexpr int kCameraWidth = 145;
    static constexpr int kCameraHeight = 109;
    static constexpr int kCameraTop = 20;
    static constexpr int kCameraRightMargin = 10;
    static constexpr int kSideLeft = 10;
    static constexpr int kSideTop = 20;
    static constexpr int kSideGap = 20;
    static constexpr double kSideAspectDivisor = 1.3333;
};

// "Mode: Single": one content pane fills the stage.
class SingleGeometry {
public:
    explicit SingleGeometry(ShellContext& context) : m_ctx(context) {}
    void UniWindow();

private:
    ShellContext& m_ctx;
};

// "Mode: Side": the content pane beside the small camera picture.
class SideGeometry {
public:
    explicit SideGeometry(ShellContext& context) : m_ctx(context) {}
    void SideWindow();

private:
    ShellContext& m_ctx;
};

// "Mode: Mixed": a full content pane with the camera over its top right corner.
class MixedGeometry {
public:
    explicit MixedGeometry(ShellContext& context) : m_ctx(context) {}
    void MixWindow();

private:
    ShellContext& m_ctx;
};

// The four corner labels of the camera settings panel (Mixed mode only).
class CameraCorner {
public:
    enum class Corner { TopRight, BottomRight, TopLeft, BottomLeft };
    explicit CameraCorner(ShellContext& context) : m_ctx(context) {}

    void Label12_Click() { place(Corner::TopRight); }
    void Label13_Click() { place(Corner::BottomRight); }
    void Label15_Click() { place(Corner::TopLeft); }
    void Label16_Click() { place(Corner::BottomLeft); }
    void place(Corner corner);

private:
    ShellContext& m_ctx;
};

} // namespace mirabend
