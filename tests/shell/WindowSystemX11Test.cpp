// The X11 backend against a real X server (a private Xvfb).
// gtest and Qt come first: Xlib's macros (None, Bool, Status) clash with them.
// clang-format off
#include <gtest/gtest.h>
#include <QApplication>
#include <QTest>
#include <QWidget>
#include <algorithm>
#include <vector>

#include "util/WindowStyle.h"
#include "util/X11WindowSystem.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
// clang-format on

namespace mirabend::test {
namespace {

class X11Test : public ::testing::Test {
protected:
    void SetUp() override {
        display = XOpenDisplay(nullptr);
        ASSERT_NE(display, nullptr);
        ASSERT_TRUE(system.isOpen());
    }
    void TearDown() override {
        for (Window w : created)
            XDestroyWindow(display, w);
        XCloseDisplay(display);
    }

    Window makeWindow(const char* wmClass) {
        const Window w = XCreateSimpleWindow(display, DefaultRootWindow(display), 10, 10, 200, 150, 0, 0, 0);
        XClassHint hint{const_cast<char*>(wmClass), const_cast<char*>(wmClass)};
        XSetClassHint(display, w, &hint);
        XMapWindow(display, w);
        XSync(display, False);
        created.push_back(w);
        return w;
    }

    std::vector<long> property(Window w, const char* name, Atom type) {
        Atom actual = 0;
        int format = 0;
        unsigned long count = 0, after = 0;
        unsigned char* data = nullptr;
        std::vector<long> values;
        if (XGetWindowProperty(display, w, XInternAtom(display, name, False), 0, 64, False, type, &actual,
                               &format, &count, &after, &data) == Success &&
            data) {
            const long* longs = reinterpret_cast<const long*>(data);
            values.assign(longs, longs + count);
            XFree(data);
        }
        return values;
    }

    Display* display = nullptr;
    X11WindowSystem system;
    std::vector<Window> created;
};

TEST_F(X11Test, StyleSwitchesBecomeMotifHintsAndTheWindowShowsAgain) {
    const Window w = makeWindow("screenClass");
    WindowStyle style(&system);
    style.HWnd(static_cast<std::uint32_t>(w));
    const Atom motif = XInternAtom(display, "_MOTIF_WM_HINTS", False);
    std::vector<long> hints = property(w, "_MOTIF_WM_HINTS", motif);
    ASSERT_EQ(hints.size(), 5u);
    EXPECT_EQ(hints[2], 0) << "no switch set: no decorations at all";
    EXPECT_EQ(hints[1] & (1L << 1), 0) << "no sizing frame";

    style.Border(WindowStyle::kTrue);
    style.Sizebox(WindowStyle::kTrue);
    hints = property(w, "_MOTIF_WM_HINTS", motif);
    ASSERT_EQ(hints.size(), 5u);
    EXPECT_NE(hints[2] & (1L << 3), 0) << "title";
    EXPECT_NE(hints[2] & (1L << 1), 0) << "border";
    EXPECT_NE(hints[1] & (1L << 1), 0) << "resize function";

    XWindowAttributes attributes{};
    XGetWindowAttributes(display, w, &attributes);
    EXPECT_EQ(attributes.map_state, IsViewable) << "the show call maps the window again";
}

TEST_F(X11Test, FindsReparentsRenamesTopMostAndReportsVanishedWindows) {
    EXPECT_EQ(system.findWindowByClass(QStringLiteral("screenClass")), 0u);
    const Window show = makeWindow("screenClass");
    EXPECT_EQ(system.findWindowByClass(QStringLiteral("screenClass")), show);

    QWidget pane;
    pane.setAttribute(Qt::WA_NativeWindow);
    pane.resize(320, 240);
    pane.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&pane));
    const auto paneId = static_cast<NativeHandle>(pane.winId());
    ASSERT_TRUE(system.setParent(static_cast<NativeHandle>(show), paneId));
    Window root = 0, parent = 0;
    Window* children = nullptr;
    unsigned int count = 0;
    XQueryTree(display, show, &root, &parent, &children, &count);
    if (children)
        XFree(children);
    EXPECT_EQ(parent, paneId);

    ASSERT_TRUE(system.setWindowText(static_cast<NativeHandle>(show), QStringLiteral("Slide show")));
    char* name = nullptr;
    XFetchName(display, show, &name);
    ASSERT_NE(name, nullptr);
    EXPECT_STREQ(name, "Slide show");
    XFree(name);

    const Window top = makeWindow("mirabend");
    XWindowAttributes before{};
    XGetWindowAttributes(display, top, &before);
    const Atom above = XInternAtom(display, "_NET_WM_STATE_ABOVE", False);
    ASSERT_TRUE(system.setTopMost(static_cast<NativeHandle>(top), true));
    std::vector<long> state = property(top, "_NET_WM_STATE", XA_ATOM);
    EXPECT_NE(std::find(state.begin(), state.end(), static_cast<long>(above)), state.end());
    ASSERT_TRUE(system.setTopMost(static_cast<NativeHandle>(top), false));
    state = property(top, "_NET_WM_STATE", XA_ATOM);
    EXPECT_EQ(std::find(state.begin(), state.end(), static_cast<long>(above)), state.end());
    XWindowAttributes after{};
    XGetWindowAttributes(display, top, &after);
    EXPECT_EQ(before.x, after.x);
    EXPECT_EQ(before.width, after.width);
    EXPECT_EQ(before.height, after.height);

    // A vanished window is reported, not fatal.
    XDestroyWindow(display, top);
    created.pop_back();
    XSync(display, False);
    EXPECT_FALSE(system.showNormal(static_cast<NativeHandle>(top)));
    EXPECT_FALSE(system.applyStyle(static_cast<NativeHandle>(top), WindowStyle::ClipBits));
    EXPECT_FALSE(system.setParent(0, 0));
}

} // namespace
} // namespace mirabend::test
