#include "util/X11WindowSystem.h"

#include "util/WindowStyle.h"

#include <QByteArray>
#include <QGuiApplication>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace mirabend {

namespace {

// Xlib ends the process on a protocol error unless a handler is set. Windows
// we touch belong to other programs and may vanish at any moment, so errors
// are only counted.
int g_lastXError = 0;
int ignoreXError(Display*, XErrorEvent* event)
{
    g_lastXError = event->error_code;
    return 0;
}

struct DisplayCloser {
    void operator()(Display* display) const
    {
        if (display)
            XCloseDisplay(display);
    }
};

constexpr unsigned long kHintsFunctions = 1UL << 0;
constexpr unsigned long kHintsDecorations = 1UL << 1;
constexpr unsigned long kFuncResize = 1UL << 1;
constexpr unsigned long kFuncMove = 1UL << 2;
constexpr unsigned long kFuncMinimize = 1UL << 3;
constexpr unsigned long kFuncMaximize = 1UL << 4;
constexpr unsigned long kFuncClose = 1UL << 5;
constexpr unsigned long kDecorBorder = 1UL << 1;
constexpr unsigned long kDecorResize = 1UL << 2;
constexpr unsigned long kDecorTitle = 1UL << 3;
constexpr unsigned long kDecorMenu = 1UL << 4;
constexpr unsigned long kDecorMinimize = 1UL << 5;
constexpr unsigned long kDecorMaximize = 1UL << 6;

} // namespace

struct X11WindowSystem::Impl {
    std::unique_ptr<Display, DisplayCloser> display;

    Atom atom(const char* name) const { return XInternAtom(display.get(), name, False); }

    bool classMatches(Window window, const QByteArray& wanted) const
    {
        XClassHint hint{};
        if (!XGetClassHint(display.get(), window, &hint))
            return false;
        const bool match = (hint.res_name && wanted == hint.res_name) ||
                           (hint.res_class && wanted == hint.res_class);
        if (hint.res_name)
            XFree(hint.res_name);
        if (hint.res_class)
            XFree(hint.res_class);
        return match;
    }

    // Depth-first over the top of the tree: under a reparenting window
    // manager a client window sits two or three levels below the root.
    Window find(Window parent, const QByteArray& wanted, int depth) const
    {
        Window root = 0, parentOut = 0;
        Window* children = nullptr;
        unsigned int count = 0;
        if (!XQueryTree(display.get(), parent, &root, &parentOut, &children, &count))
            return 0;
        Window found = 0;
        for (unsigned int i = 0; i < count && !found; ++i) {
            if (classMatches(children[i], wanted))
                found = children[i];
        }
        for (unsigned int i = 0; i < count && !found && depth > 0; ++i)
            found = find(children[i], wanted, depth - 1);
        if (children)
            XFree(children);
        return found;
    }

    bool sync(int errorsBefore) const
    {
        XSync(display.get(), False);
        return g_lastXError == errorsBefore;
    }
};

X11WindowSystem::X11WindowSystem(const char* displayName) : d(std::make_unique<Impl>())
{
    XSetErrorHandler(ignoreXError);
    d->display.reset(XOpenDisplay(displayName));
}

X11WindowSystem::~X11WindowSystem() = default;

bool X11WindowSystem::isOpen() const { return d->display != nullptr; }

NativeHandle X11WindowSystem::findWindowByClass(const QString& className)
{
    if (!d->display)
        return 0;
    const QByteArray wanted = className.toLocal8Bit();
    return static_cast<NativeHandle>(d->find(DefaultRootWindow(d->display.get()), wanted, 3));
}

bool X11WindowSystem::setParent(NativeHandle child, NativeHandle parent)
{
    if (!d->display || !child)
        return false;
    g_lastXError = 0;
    Window target = parent ? parent : DefaultRootWindow(d->display.get());
    XReparentWindow(d->display.get(), child, target, 0, 0);
    return d->sync(0);
}

bool X11WindowSystem::setWindowText(NativeHandle window, const QString& text)
{
    if (!d->display || !window)
        return false;
    g_lastXError = 0;
    const QByteArray utf8 = text.toUtf8();
    XChangeProperty(d->display.get(), window, d->atom("_NET_WM_NAME"), d->atom("UTF8_STRING"), 8,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(utf8.constData()), utf8.size());
    XStoreName(d->display.get(), window, utf8.constData());
    return d->sync(0);
}

X11WindowSystem::MotifHints X11WindowSystem::motifHintsForStyle(std::uint32_t style)
{
    MotifHints hints{kHintsFunctions | kHintsDecorations, kFuncMove | kFuncClose, 0};
    if ((style & WindowStyle::CaptionBits) == WindowStyle::CaptionBits)
        hints.decorations |= kDecorBorder | kDecorTitle;
    if (style & WindowStyle::SysMenuBit)
        hints.decorations |= kDecorMenu;
    if (style & WindowStyle::MinimizeBit) {
        hints.decorations |= kDecorMinimize;
        hints.functions |= kFuncMinimize;
    }
    if (style & WindowStyle::MaximizeBit) {
        hints.decorations |= kDecorMaximize;
        hints.functions |= kFuncMaximize;
    }
    if (style & WindowStyle::SizeBoxBit) {
        hints.decorations |= kDecorResize | kDecorBorder;
        hints.functions |= kFuncResize;
    }
    return hints;
}

bool X11WindowSystem::applyStyle(NativeHandle window, std::uint32_t style)
{
    if (!d->display || !window)
        return false;
    g_lastXError = 0;
    const MotifHints hints = motifHintsForStyle(style);
    long data[5] = {static_cast<long>(hints.flags), static_cast<long>(hints.functions),
                    static_cast<long>(hints.decorations), 0, 0};
    const Atom motif = d->atom("_MOTIF_WM_HINTS");
    XChangeProperty(d->display.get(), window, motif, motif, 32, PropModeReplace,
                    reinterpret_cast<unsigned char*>(data), 5);
    // A pop-up is a window the window manager leaves alone.
    XSetWindowAttributes attributes{};
    attributes.override_redirect = (style & WindowStyle::PopupBit) ? True : False;
    XChangeWindowAttributes(d->display.get(), window, CWOverrideRedirect, &attributes);
    // The style is written whole: a window loses its visibility until the
    // show call that follows.
    XUnmapWindow(d->display.get(), window);
    return d->sync(0);
}

bool X11WindowSystem::showNormal(NativeHandle window)
{
    if (!d->display || !window)
        return false;
    g_lastXError = 0;
    XMapWindow(d->display.get(), window);
    return d->sync(0);
}

bool X11WindowSystem::moveResize(NativeHandle window, int x, int y, int width, int height)
{
    if (!d->display || !window || width <= 0 || height <= 0)
        return false;
    g_lastXError = 0;
    XMoveResizeWindow(d->display.get(), window, x, y, static_cast<unsigned>(width),
                      static_cast<unsigned>(height));
    return d->sync(0);
}

bool X11WindowSystem::setTopMost(NativeHandle window, bool topMost)
{
    if (!d->display || !window)
        return false;
    g_lastXError = 0;
    Display* display = d->display.get();
    const Atom state = d->atom("_NET_WM_STATE");
    const Atom above = d->atom("_NET_WM_STATE_ABOVE");
    // Ask the window manager (the EWMH way) ...
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = state;
    event.xclient.format = 32;
    event.xclient.data.l[0] = topMost ? 1 : 0; // _NET_WM_STATE_ADD / _REMOVE
    event.xclient.data.l[1] = static_cast<long>(above);
    event.xclient.data.l[3] = 1; // source: application
    XSendEvent(display, DefaultRootWindow(display), False, SubstructureRedirectMask | SubstructureNotifyMask,
               &event);
    // ... and keep the property in step ourselves, so the state is right with
    // no window manager too. Neither path moves or resizes the window.
    if (topMost) {
        XChangeProperty(display, window, state, XA_ATOM, 32, PropModeAppend,
                        reinterpret_cast<const unsigned char*>(&above), 1);
        XRaiseWindow(display, window);
    } else {
        Atom type = 0;
        int format = 0;
        unsigned long count = 0, after = 0;
        unsigned char* data = nullptr;
        if (XGetWindowProperty(display, window, state, 0, 64, False, XA_ATOM, &type, &format, &count, &after,
                               &data) == Success &&
            data) {
            auto* atoms = reinterpret_cast<Atom*>(data);
            Atom kept[64];
            int n = 0;
            for (unsigned long i = 0; i < count && n < 64; ++i) {
                if (atoms[i] != above)
                    kept[n++] = atoms[i];
            }
            XChangeProperty(display, window, state, XA_ATOM, 32, PropModeReplace,
                            reinterpret_cast<unsigned char*>(kept), n);
            XFree(data);
        }
    }
    return d->sync(0);
}

namespace {

// Used where no X display exists (offscreen tests, Wayland): nothing to do.
class NoWindowSystem final : public WindowSystem {
public:
    NativeHandle findWindowByClass(const QString&) override { return 0; }
    bool setParent(NativeHandle, NativeHandle) override { return false; }
    bool setWindowText(NativeHandle, const QString&) override { return false; }
    bool applyStyle(NativeHandle, std::uint32_t) override { return false; }
    bool showNormal(NativeHandle) override { return false; }
    bool moveResize(NativeHandle, int, int, int, int) override { return false; }
    bool setTopMost(NativeHandle, bool) override { return false; }
};

} // namespace

WindowSystem& windowSystem()
{
    static X11WindowSystem* x11 = [] {
        const bool onX11 = QGuiApplication::platformName() == QLatin1String("xcb");
        auto* system = onX11 ? new X11WindowSystem() : nullptr;
        if (system && !system->isOpen()) {
            delete system;
            system = nullptr;
        }
        return system;
    }();
    static NoWindowSystem none;
    if (x11)
        return *x11;
    return none;
}

} // namespace mirabend
