#pragma once
// The saved slide and camera rectangles ({Top, Left, Height, Width}) and the
// four arrangements built from them. "rotate1" swaps slides and camera;
// "rotate2" and "rotate3" move the slides to the large place and are the same
// procedure on purpose. Both overwrite the saved slide rectangle, so a later
// plain arrangement uses the large place until the values are reset.
//
// Thread contract: UI thread only.

#include "shell/PaneBox.h"
#include "shell/ShellContext.h"

namespace mirabend {

class PaneRotation {
public:
    static constexpr Rect4 kLargePlace{144, 200, 443, 583};

    explicit PaneRotation(ShellContext& context) : m_ctx(context) {}

    void RotateResetValues();
    void RotatePPT();
    void RotatePPTCAM();
    void RotatePPTDRAW();
    void RotatePPTWHITEBOARD();

    const Rect4& slideRect() const { return m_slide; }
    const Rect4& cameraRect() const { return m_camera; }

private:
    void restorePlain();
    void refreshSlideNumber();
    // Steps shared by the three rotations up to the large place.
    void takeLargePlace();

    ShellContext& m_ctx;
    Rect4 m_slide;
    Rect4 m_camera;
};

} // namespace mirabend
