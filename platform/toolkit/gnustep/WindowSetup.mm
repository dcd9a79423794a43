#import "platform/toolkit/gnustep/WindowSetup.h"

#import <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

/// Pixels of the tallest window with its title bar, unscaled, and what a desktop keeps for itself.
static constexpr double kTallest = 640;
static constexpr double kUsualDpi = 96;

static double DesktopDpi(Display *display) {
    const char *dpi = XGetDefault(display, "Xft", "dpi");
    return dpi != nullptr ? std::atof(dpi) : kUsualDpi;
}

/// In quarters, so that lines stay crisp; never smaller than what fits a screen of 800 x 600.
static double ScaleFactor(Display *display) {
    const double room = DisplayHeight(display, DefaultScreen(display)) / kTallest;
    const double wanted = std::min(DesktopDpi(display) / kUsualDpi, room);
    return std::max(1.0, std::floor(wanted * 4) / 4);
}

void RegisterScaleFactor(void) {
    Display *display = XOpenDisplay(nullptr);
    if (display == nullptr) return;
    const double factor = ScaleFactor(display);
    XCloseDisplay(display);
    if (factor == 1) return;
    [[NSUserDefaults standardUserDefaults]
        registerDefaults:[NSDictionary
                             dictionaryWithObject:[NSString stringWithFormat:@"%.2f", factor]
                                           forKey:@"GSScaleFactor"]];
}

static Display *ServerOf(NSWindow *window) {
    return static_cast<Display *>([GSServerForWindow(window) serverDevice]);
}

static Window HandleOf(NSWindow *window) {
    if ([window windowNumber] <= 0) return None;
    return (Window)(uintptr_t)[GSServerForWindow(window) windowDevice:[window windowNumber]];
}

/// A window from an interface file reaches the window server only when it is shown: too late to say
/// what it is.
static void Realize(NSWindow *window) {
    const SEL realize = NSSelectorFromString(@"_initBackendWindow");
    if ([window windowNumber] <= 0 && [window respondsToSelector:realize])
        [window performSelector:realize];
}

void MarkAsDialog(NSWindow *window) {
    Realize(window);
    Display *display = ServerOf(window);
    const Window handle = HandleOf(window);
    if (display == nullptr || handle == None) return;
    const Atom type = XInternAtom(display, "_NET_WM_WINDOW_TYPE_DIALOG", False);
    XChangeProperty(display, handle, XInternAtom(display, "_NET_WM_WINDOW_TYPE", False), XA_ATOM,
                    32, PropModeReplace, reinterpret_cast<const unsigned char *>(&type), 1);
}

/// The windows of all programs that the window manager looks after.
static std::vector<Window> ManagedWindows(Display *display) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0, rest = 0;
    unsigned char *data = nullptr;
    std::vector<Window> windows;
    XGetWindowProperty(display, DefaultRootWindow(display),
                       XInternAtom(display, "_NET_CLIENT_LIST", False), 0, 1024, False, XA_WINDOW,
                       &type, &format, &count, &rest, &data);
    if (data != nullptr && format == 32) {
        const auto *list = reinterpret_cast<const Window *>(data);
        windows.assign(list, list + count);
    }
    if (data != nullptr) XFree(data);
    return windows;
}

static int IgnoreError(Display *, XErrorEvent *) { return 0; }

/// Where a window's inside begins on the screen; far away for one that has just gone.
static NSPoint PlaceOf(Display *display, Window window) {
    int x = -10000, y = -10000;
    Window child = None;
    XTranslateCoordinates(display, window, DefaultRootWindow(display), 0, 0, &x, &y, &child);
    return NSMakePoint(x, y);
}

/// A connection of its own: the error of a window that has gone meanwhile is nobody else's.
static std::vector<NSPoint> OtherPlaces(Window self) {
    std::vector<NSPoint> places;
    Display *display = XOpenDisplay(nullptr);
    if (display == nullptr) return places;
    const auto handler = XSetErrorHandler(IgnoreError);
    for (const Window window : ManagedWindows(display))
        if (window != self) places.push_back(PlaceOf(display, window));
    XSync(display, False);
    XSetErrorHandler(handler);
    XCloseDisplay(display);
    return places;
}

void AvoidOtherWindows(NSWindow *window) {
    constexpr CGFloat kStep = 28;
    constexpr int kMostSteps = 12;
    const std::vector<NSPoint> others = OtherPlaces(HandleOf(window));
    const CGFloat height = NSHeight([[NSScreen mainScreen] frame]);
    for (int step = 0; step < kMostSteps; ++step) {
        const NSRect content = [window contentRectForFrameRect:[window frame]];
        const NSPoint corner = NSMakePoint(NSMinX(content), height - NSMaxY(content));
        const bool isTaken = std::any_of(others.begin(), others.end(), [&](NSPoint other) {
            return std::abs(other.x - corner.x) < kStep / 2 &&
                   std::abs(other.y - corner.y) < kStep / 2;
        });
        if (!isTaken) return;
        const NSRect frame = [window frame];
        [window setFrameOrigin:NSMakePoint(NSMinX(frame) + kStep, NSMinY(frame) - kStep)];
    }
}
