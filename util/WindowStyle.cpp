#include "util/WindowStyle.h"

#include "util/WindowSystem.h"

namespace mirabend {

WindowStyle::WindowStyle(WindowSystem* system) : m_system(system) {}

std::uint32_t WindowStyle::computeStyle(std::int16_t border, std::int16_t sysmenu, std::int16_t minimize,
                                        std::int16_t maximize, std::int16_t sizebox, std::int16_t popupFlag)
{
    std::uint32_t style = border == kTrue ? CaptionBits : ClipBits;
    if (sysmenu == kTrue)
        style += SysMenuBit;
    if (minimize == kTrue)
        style += MinimizeBit;
    if (maximize == kTrue)
        style += MaximizeBit;
    if (sizebox == kTrue)
        style += SizeBoxBit;
    if (popupFlag == kTrue)
        style += PopupBit;
    return style;
}

void WindowStyle::Update_Style()
{
    m_style = computeStyle(m_border, m_sysmenu, m_minimize, m_maximize, m_sizebox, m_popup);
    if (m_hwnd == 0)
        return;
    WindowSystem& system = m_system ? *m_system : windowSystem();
    system.applyStyle(m_hwnd, m_style);
    system.showNormal(m_hwnd);
}

void WindowStyle::HWnd(std::uint32_t handle)
{
    m_hwnd = handle;
    Update_Style();
}

void WindowStyle::Border(std::int16_t value)
{
    m_border = value;
    Update_Style();
}

void WindowStyle::Sysmenu(std::int16_t value)
{
    m_sysmenu = value;
    Update_Style();
}

void WindowStyle::Minimize(std::int16_t value)
{
    m_minimize = value;
    Update_Style();
}

void WindowStyle::Maximize(std::int16_t value)
{
    m_maximize = value;
    Update_Style();
}

void WindowStyle::Sizebox(std::int16_t value)
{
    m_sizebox = value;
    Update_Style();
}

void WindowStyle::popup(std::int16_t value)
{
    m_popup = value;
    Update_Style();
}

} // namespace mirabend
