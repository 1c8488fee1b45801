#pragma once
// The few window-system operations Mirabend needs on windows it does not own
// (a slide show window of another program) and on its own top-level windows.
// Window handles are X11 window ids; 0 means "no window".
//
// Thread contract: UI thread only.

#include <QString>
#include <cstdint>

namespace mirabend {

using NativeHandle = std::uint32_t;

class WindowSystem {
public:
    virtual ~WindowSystem() = default;

    // First top-level window whose class (WM_CLASS, instance or class part)
    // equals `className`, any title; 0 when there is none.
    virtual NativeHandle findWindowByClass(const QString& className) = 0;
    // Makes `child` a child of `parent` at (0, 0).
    virtual bool setParent(NativeHandle child, NativeHandle parent) = 0;
    virtual bool setWindowText(NativeHandle window, const QString& text) = 0;
    // Writes a whole style value (see WindowStyle for the bits).
    virtual bool applyStyle(NativeHandle window, std::uint32_t style) = 0;
    // Shows the window in its normal state.
    virtual bool showNormal(NativeHandle window) = 0;
    virtual bool moveResize(NativeHandle window, int x, int y, int width, int height) = 0;
    // Puts a top-level window into the top-most band or takes it out, without
    // moving or resizing it.
    virtual bool setTopMost(NativeHandle window, bool topMost) = 0;
};

// The window system of the running session: X11 when Qt runs on xcb, else a
// system that does nothing and answers false (offscreen tests, Wayland).
WindowSystem& windowSystem();

} // namespace mirabend
