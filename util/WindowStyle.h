#pragma once
// WindowStyle gives a window a frame made of independent switches: border
// with caption, system menu, minimise and maximise boxes, sizing frame and
// pop-up kind. Every change of a switch (and of the handle) is applied to the
// window at once.
//
// The switches hold the classic Boolean convention: True is -1 (all bits
// set). Only True counts as set; 1 or any other value leaves the bit out.
//
// The style value keeps the classic numbers; the X11 backend maps the frame
// switches onto Motif window-manager hints.
//
// Thread contract: UI thread only.

#include <cstdint>

namespace mirabend {

class WindowSystem;

class WindowStyle {
public:
    static constexpr std::int16_t kTrue = -1;
    static constexpr std::int16_t kFalse = 0;

    static constexpr std::uint32_t ClipBits = 0x06000000u;    // clip children and siblings
    static constexpr std::uint32_t CaptionBits = 0x06C00000u; // clip bits plus caption and border
    static constexpr std::uint32_t SysMenuBit = 0x00080000u;
    static constexpr std::uint32_t MinimizeBit = 0x00020000u;
    static constexpr std::uint32_t MaximizeBit = 0x00010000u;
    static constexpr std::uint32_t SizeBoxBit = 0x00040000u;
    static constexpr std::uint32_t PopupBit = 0x80000000u;

    // `system` receives the style writes; null uses the session's window system.
    explicit WindowStyle(WindowSystem* system = nullptr);

    std::uint32_t HWnd() const { return m_hwnd; }
    void HWnd(std::uint32_t handle);
    std::int16_t Border() const { return m_border; }
    void Border(std::int16_t value);
    std::int16_t Sysmenu() const { return m_sysmenu; }
    void Sysmenu(std::int16_t value);
    std::int16_t Minimize() const { return m_minimize; }
    void Minimize(std::int16_t value);
    std::int16_t Maximize() const { return m_maximize; }
    void Maximize(std::int16_t value);
    std::int16_t Sizebox() const { return m_sizebox; }
    void Sizebox(std::int16_t value);
    std::int16_t popup() const { return m_popup; }
    void popup(std::int16_t value);

    // Computes the style from the switches and, when a window is set, writes
    // it whole and shows the window normally.
    void Update_Style();

    // The style value last computed.
    std::uint32_t style() const { return m_style; }

    // The pure computation, for callers that only need the number.
    static std::uint32_t computeStyle(std::int16_t border, std::int16_t sysmenu, std::int16_t minimize,
                                      std::int16_t maximize, std::int16_t sizebox, std::int16_t popup);

private:
    WindowSystem* m_system;
    std::int16_t m_border = kFalse;
    std::int16_t m_sysmenu = kFalse;
    std::int16_t m_minimize = kFalse;
    std::int16_t m_maximize = kFalse;
    std::int16_t m_sizebox = kFalse;
    std::int16_t m_popup = kFalse;
    std::uint32_t m_hwnd = 0;
    std::uint32_t m_style = 0;
};

} // namespace mirabend
