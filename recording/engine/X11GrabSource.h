#pragma once
// The whole-picture screen source: libavdevice's x11grab grabs the full
// area every frame time, changed or not. The fallback when the display
// lacks DAMAGE, MIT-SHM or XFixes.
//
// Thread contract: as ScreenSource.

#include "recording/engine/DeviceInput.h"
#include "recording/engine/ScreenSource.h"

namespace mirabend {

class X11GrabSource : public ScreenSource {
public:
    // Opens x11grab on the target; on failure returns it.
    RecorderFailure open(const std::string& display, const CaptureTarget& target, int fpsNum, int fpsDen);
    int width() const override { return m_width; }
    int height() const override { return m_height; }
    const char* name() const override { return "x11grab"; }
    bool grabsWholePictures() const override { return true; }
    int read(ScreenGrab& grab, Want want) override;
    void unread(const ScreenGrab&) override {}
    void interrupt() override { m_input.interrupt(); }

private:
    DeviceInput m_input;
    int m_width = 0;
    int m_height = 0;
};

} // namespace mirabend
