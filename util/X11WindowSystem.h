#pragma once
// WindowSystem on X11 through Xlib, on a connection of its own to $DISPLAY.
// Window-manager frames are controlled with Motif hints (_MOTIF_WM_HINTS), the
// top-most band with _NET_WM_STATE_ABOVE.
//
// Thread contract: UI thread only.

#include "util/WindowSystem.h"

#include <memory>

namespace mirabend {

class X11WindowSystem final : public WindowSystem {
public:
    // Opens the display named by $DISPLAY (or `displayName`).
    explicit X11WindowSystem(const char* displayName = nullptr);
    ~X11WindowSystem() override;
    X11WindowSystem(const X11WindowSystem&) = delete;
    X11WindowSystem& operator=(const X11WindowSystem&) = delete;

    bool isOpen() const;

    NativeHandle findWindowByClass(const QString& className) override;
    bool setParent(NativeHandle child, NativeHandle parent) override;
    bool setWindowText(NativeHandle window, const QString& text) override;
    bool applyStyle(NativeHandle window, std::uint32_t style) override;
    bool showNormal(NativeHandle window) override;
    bool moveResize(NativeHandle window, int x, int y, int width, int height) override;
    bool setTopMost(NativeHandle window, bool topMost) override;

    // Motif hints that a style value maps to: {flags, functions, decorations}.
    struct MotifHints {
        unsigned long flags;
        unsigned long functions;
        unsigned long decorations;
    };
    static MotifHints motifHintsForStyle(std::uint32_t style);

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};

} // namespace mirabend
