#include "recording/resolution/XRandrDisplaySettings.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>
#include <algorithm>
#include <vector>

namespace mirabend {

namespace {

struct ResourcesFree {
    void operator()(XRRScreenResources* r) const { XRRFreeScreenResources(r); }
};
struct OutputFree {
    void operator()(XRROutputInfo* o) const { XRRFreeOutputInfo(o); }
};
struct CrtcFree {
    void operator()(XRRCrtcInfo* c) const { XRRFreeCrtcInfo(c); }
};
using Resources = std::unique_ptr<XRRScreenResources, ResourcesFree>;
using OutputInfo = std::unique_ptr<XRROutputInfo, OutputFree>;
using CrtcInfo = std::unique_ptr<XRRCrtcInfo, CrtcFree>;

// Xlib's default handler ends the process on any protocol error; while we
// change the screen an error is an answer, not a reason to quit.
int g_lastXError = 0;
int rememberXError(Display*, XErrorEvent* event) {
    g_lastXError = event->error_code;
    return 0;
}

class XErrorTrap {
public:
    explicit XErrorTrap(Display* display)
        : m_display(display) {
        XSync(m_display, False);
        g_lastXError = 0;
        m_previous = XSetErrorHandler(rememberXError);
    }
    ~XErrorTrap() {
        XSync(m_display, False);
        XSetErrorHandler(m_previous);
    }
    int error() {
        XSync(m_display, False);
        return g_lastXError;
    }

private:
    Display* m_display;
    int (*m_previous)(Display*, XErrorEvent*) = nullptr;
};

// The output that shows the desktop: the primary one, else the first
// connected output with a CRTC.
struct PrimaryOutput {
    RROutput id = None;
    OutputInfo info;
};

PrimaryOutput primaryOutput(Display* display, Window root, XRRScreenResources* resources) {
    PrimaryOutput found;
    const RROutput primary = XRRGetOutputPrimary(display, root);
    for (int i = 0; i < resources->noutput; ++i) {
        OutputInfo info(XRRGetOutputInfo(display, resources, resources->outputs[i]));
        if (!info || info->connection != RR_Connected)
            continue;
        const bool isPrimary = resources->outputs[i] == primary;
        if (isPrimary || (!found.info && info->crtc != None)) {
            found.id = resources->outputs[i];
            found.info = std::move(info);
            if (isPrimary)
                break;
        }
    }
    return found;
}

// The root window's size asked of the server: Xlib's DisplayWidth() keeps
// the size the connection started with.
DisplayMode rootSize(Display* display) {
    Window root = 0;
    int x = 0, y = 0;
    unsigned width = 0, height = 0, border = 0, depth = 0;
    XGetGeometry(display, DefaultRootWindow(display), &root, &x, &y, &width, &height, &border, &depth);
    return {static_cast<int>(width), static_cast<int>(height)};
}

const XRRModeInfo* modeInfo(XRRScreenResources* resources, RRMode id) {
    for (int i = 0; i < resources->nmode; ++i) {
        if (resources->modes[i].id == id)
            return &resources->modes[i];
    }
    return nullptr;
}

} // namespace

void XRandrDisplaySettings::DisplayCloser::operator()(Display* display) const {
    XCloseDisplay(display);
}

XRandrDisplaySettings::XRandrDisplaySettings(const std::string& displayName)
    : m_display(XOpenDisplay(displayName.empty() ? nullptr : displayName.c_str())) {
    int eventBase = 0, errorBase = 0;
    if (m_display && !XRRQueryExtension(m_display.get(), &eventBase, &errorBase))
        m_display.reset();
    if (!m_display)
        m_detail = "no X display with the RandR extension";
}

XRandrDisplaySettings::~XRandrDisplaySettings() = default;

DisplayMode XRandrDisplaySettings::currentSize() const {
    if (!m_display)
        return {};
    return rootSize(m_display.get());
}

bool XRandrDisplaySettings::EnumDisplaySettings(int modeNumber, DisplayMode& mode) {
    if (!m_display || modeNumber < 0)
        return false;
    Display* display = m_display.get();
    const Window root = DefaultRootWindow(display);
    const Resources resources(XRRGetScreenResourcesCurrent(display, root));
    if (!resources)
        return false;
    const PrimaryOutput output = primaryOutput(display, root, resources.get());
    if (!output.info || modeNumber >= output.info->nmode) {
        m_detail = output.info ? "no such mode" : "no connected output";
        return false;
    }
    const XRRModeInfo* info = modeInfo(resources.get(), output.info->modes[modeNumber]);
    if (!info)
        return false;
    mode = {static_cast<int>(info->width), static_cast<int>(info->height)};
    return true;
}

DisplayChange XRandrDisplaySettings::ChangeDisplaySettings(const DisplayMode& mode, DisplayChangeFlags) {
    // Both flags change the mode: X keeps it for the session and has no
    // stored setting to write, so "Store" repeats the change.
    if (!m_display) {
        m_detail = "no X display with the RandR extension";
        return DisplayChange::Failed;
    }
    Display* display = m_display.get();
    const Window root = DefaultRootWindow(display);
    const Resources resources(XRRGetScreenResourcesCurrent(display, root));
    if (!resources) {
        m_detail = "the screen's resources cannot be read";
        return DisplayChange::Failed;
    }
    const PrimaryOutput output = primaryOutput(display, root, resources.get());
    if (!output.info || output.info->crtc == None) {
        m_detail = "no connected output shows a picture";
        return DisplayChange::Failed;
    }
    // The output's first mode of that size is its preferred one.
    RRMode target = None;
    for (int i = 0; i < output.info->nmode && target == None; ++i) {
        const XRRModeInfo* info = modeInfo(resources.get(), output.info->modes[i]);
        if (info && static_cast<int>(info->width) == mode.width &&
            static_cast<int>(info->height) == mode.height)
            target = info->id;
    }
    int minWidth = 0, minHeight = 0, maxWidth = 0, maxHeight = 0;
    XRRGetScreenSizeRange(display, root, &minWidth, &minHeight, &maxWidth, &maxHeight);
    if (target == None || mode.width > maxWidth || mode.height > maxHeight) {
        m_detail =
            "the output has no " + std::to_string(mode.width) + "x" + std::to_string(mode.height) + " mode";
        return DisplayChange::BadMode;
    }

    const CrtcInfo crtc(XRRGetCrtcInfo(display, resources.get(), output.info->crtc));
    if (!crtc) {
        m_detail = "the output's CRTC cannot be read";
        return DisplayChange::Failed;
    }
    // The screen must hold the new mode and every other output's picture.
    int width = std::max(mode.width, minWidth), height = std::max(mode.height, minHeight);
    for (int i = 0; i < resources->ncrtc; ++i) {
        if (resources->crtcs[i] == output.info->crtc)
            continue;
        const CrtcInfo other(XRRGetCrtcInfo(display, resources.get(), resources->crtcs[i]));
        if (other && other->mode != None) {
            width = std::max(width, other->x + static_cast<int>(other->width));
            height = std::max(height, other->y + static_cast<int>(other->height));
        }
    }
    const int screen = DefaultScreen(display);
    const DisplayMode screenSize = rootSize(display);
    const double mmPerPixel = DisplayWidthMM(display, screen) > 0
                                  ? double(DisplayWidthMM(display, screen)) / DisplayWidth(display, screen)
                                  : 25.4 / 96.0;

    XErrorTrap trap(display);
    XGrabServer(display);
    // A smaller screen cannot hold the old mode: switch the output off first.
    if (static_cast<int>(crtc->width) > width || static_cast<int>(crtc->height) > height)
        XRRSetCrtcConfig(display, resources.get(), output.info->crtc, CurrentTime, 0, 0, None, RR_Rotate_0,
                         nullptr, 0);
    if (width != screenSize.width || height != screenSize.height)
        XRRSetScreenSize(display, root, width, height, static_cast<int>(width * mmPerPixel + 0.5),
                         static_cast<int>(height * mmPerPixel + 0.5));
    RROutput outputId = output.id;
    const Status status = XRRSetCrtcConfig(display, resources.get(), output.info->crtc, CurrentTime, crtc->x,
                                           crtc->y, target, crtc->rotation, &outputId, 1);
    XUngrabServer(display);
    const int error = trap.error();
    if (status != RRSetConfigSuccess || error != 0) {
        m_detail = "the display refused the mode (status " + std::to_string(status) + ", X error " +
                   std::to_string(error) + ")";
        return DisplayChange::Failed;
    }
    m_detail.clear();
    return DisplayChange::Successful;
}

} // namespace mirabend
