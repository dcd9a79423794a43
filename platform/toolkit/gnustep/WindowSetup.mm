#import "platform/toolkit/gnustep/WindowSetup.h"

#import <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>
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

/// The desktop's, 1 when it cannot be asked.
static double DesktopScaleFactor() {
    Display *display = XOpenDisplay(nullptr);
    if (display == nullptr) return 1;
    const double factor = ScaleFactor(display);
    XCloseDisplay(display);
    return factor;
}

void RegisterScaleFactor(void) {
    NSUserDefaults *defaults = [NSUserDefaults standardUserDefaults];
    NSString *own = [defaults stringForKey:@"GSScaleFactor"];
    const double factor = own != nil ? [own doubleValue] : DesktopScaleFactor();
    if (factor == 1) return;
    // AppKit lays text out at the size that it has without the factor: widths in whole pixels of
    // that size would let letters overlap, and cut the last one off. 17 stands for widths as they
    // are.
    [defaults registerDefaults:[NSDictionary
                                   dictionaryWithObjectsAndKeys:[NSString stringWithFormat:@"%.2f",
                                                                                           factor],
                                                                @"GSScaleFactor", @"17",
                                                                @"GSFontHinting", nil]];
}

static Display *CurrentDisplay() {
    return static_cast<Display *>([GSCurrentServer() serverDevice]);
}

/// AppKit measures from the lower left corner of all monitors together.
static NSRect OnScreen(Display *display, int x, int y, int width, int height) {
    return NSMakeRect(x, DisplayHeight(display, DefaultScreen(display)) - y - height, width,
                      height);
}

/// As the window manager sees them, which AppKit does not ask for: a monitor may have two outputs,
/// and an output may be divided.
static std::vector<NSRect> Monitors() {
    std::vector<NSRect> rects;
    Display *display = CurrentDisplay();
    int first = 0, error = 0, major = 0, minor = 0, count = 0;
    if (display == nullptr || !XRRQueryExtension(display, &first, &error) ||
        !XRRQueryVersion(display, &major, &minor) || major * 100 + minor < 105)
        return rects;
    XRRMonitorInfo *monitors = XRRGetMonitors(display, DefaultRootWindow(display), True, &count);
    for (int i = 0; monitors != nullptr && i < count; ++i)
        rects.push_back(
            OnScreen(display, monitors[i].x, monitors[i].y, monitors[i].width, monitors[i].height));
    if (monitors != nullptr) XRRFreeMonitors(monitors);
    return rects;
}

static NSScreen *ScreenAt(NSPoint point) {
    for (NSScreen *screen in [NSScreen screens])
        if (NSPointInRect(point, [screen frame])) return screen;
    return [NSScreen mainScreen];
}

NSRect MonitorRoomAt(NSPoint point) {
    const NSRect visible = [ScreenAt(point) visibleFrame];
    for (const NSRect &monitor : Monitors()) {
        const NSRect room = NSIntersectionRect(monitor, visible);
        if (NSPointInRect(point, monitor) && !NSIsEmptyRect(room)) return room;
    }
    return visible;
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

static unsigned long IconPixel(int x, int y) {
    constexpr unsigned long kNothing = 0, kEdge = 0xff808080, kText = 0xff8c8c8c,
                            kPicture = 0xff5c985c, kSky = 0xffb8d4f4, kPaper = 0xffffffff;
    if (x < 6 || x > 25 || y < 2 || y > 29) return kNothing;
    if (x == 6 || x == 25 || y == 2 || y == 29) return kEdge;
    if (x < 9 || x > 22 || y < 5 || y > 26) return kPaper;
    if (y > 15) return std::abs(x - 15) + 18 < y ? kPicture : kSky;
    const bool isHeading = y < 7 && x<17, isLine = y> 8 && y < 14 && y % 2 != 0;
    return isHeading || isLine ? kText : kPaper;
}

/// A printed page, for title bars and task lists, as the window manager wants it: AppKit's own sign
/// is nobody's who prints.
static std::vector<unsigned long> PageIcon() {
    constexpr int kSide = 32;
    std::vector<unsigned long> icon = {kSide, kSide};
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x)
            icon.push_back(IconPixel(x, y));
    return icon;
}

static void SetProperty(Display *display, Window window, const char *name, Atom type,
                        const std::vector<unsigned long> &values) {
    XChangeProperty(display, window, XInternAtom(display, name, False), type, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char *>(values.data()), (int)values.size());
}

void MarkAsDialog(NSWindow *window) {
    Realize(window);
    Display *display = ServerOf(window);
    const Window handle = HandleOf(window);
    if (display == nullptr || handle == None) return;
    SetProperty(display, handle, "_NET_WM_WINDOW_TYPE", XA_ATOM,
                {XInternAtom(display, "_NET_WM_WINDOW_TYPE_DIALOG", False)});
    SetProperty(display, handle, "_NET_WM_ICON", XA_CARDINAL, PageIcon());
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
    Display *display = CurrentDisplay();
    const CGFloat height = DisplayHeight(display, DefaultScreen(display));
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
