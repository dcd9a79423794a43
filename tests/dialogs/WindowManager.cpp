#include "tests/dialogs/WindowManager.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

pid_t gWindowManager = -1;

bool WindowManagerIsThere(Display *display) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0, rest = 0;
    unsigned char *data = nullptr;
    XGetWindowProperty(display, DefaultRootWindow(display),
                       XInternAtom(display, "_NET_SUPPORTING_WM_CHECK", False), 0, 1, False,
                       XA_WINDOW, &type, &format, &count, &rest, &data);
    if (data != nullptr) XFree(data);
    return count == 1;
}

} // namespace

pid_t Spawn(const std::vector<std::string> &arguments, const std::string &log) {
    std::vector<char *> list;
    list.reserve(arguments.size() + 1);
    for (const std::string &argument : arguments)
        list.push_back(const_cast<char *>(argument.c_str()));
    list.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, 1, log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    posix_spawn_file_actions_adddup2(&files, 1, 2);
    pid_t pid = -1;
    if (posix_spawnp(&pid, list[0], &files, nullptr, list.data(), environ) != 0) pid = -1;
    posix_spawn_file_actions_destroy(&files);
    return pid;
}

bool StartWindowManager() {
    using Clock = std::chrono::steady_clock;
    gWindowManager = Spawn({"openbox"}, "/dev/null");
    Display *display = XOpenDisplay(nullptr);
    if (gWindowManager < 0 || display == nullptr) return false;
    const auto end = Clock::now() + std::chrono::seconds(60);
    bool there = false;
    while (!(there = WindowManagerIsThere(display)) && Clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    XCloseDisplay(display);
    return there;
}

void StopWindowManager() {
    if (gWindowManager > 0) kill(gWindowManager, SIGTERM);
    int status = 0;
    if (gWindowManager > 0) waitpid(gWindowManager, &status, 0);
    gWindowManager = -1;
}

WindowPlace PlaceOfWindow(const std::string &handle) {
    WindowPlace place = {-1, -1};
    Display *display = XOpenDisplay(nullptr);
    if (display == nullptr) return place;
    XSetErrorHandler([](Display *, XErrorEvent *) { return 0; }); // a window that has just gone
    Window child = None;
    XTranslateCoordinates(display, std::strtoul(handle.c_str(), nullptr, 10),
                          DefaultRootWindow(display), 0, 0, &place.x, &place.y, &child);
    XCloseDisplay(display);
    return place;
}

bool PointerIsFree() {
    Display *display = XOpenDisplay(nullptr);
    if (display == nullptr) return false;
    const int result = XGrabPointer(display, DefaultRootWindow(display), False, 0, GrabModeAsync,
                                    GrabModeAsync, None, None, CurrentTime);
    XCloseDisplay(display); // and with it the grab
    return result == GrabSuccess;
}

ForeignWindow::ForeignWindow() : mDisplay(XOpenDisplay(nullptr)) {
    if (mDisplay == nullptr) return;
    const Window window =
        XCreateSimpleWindow(mDisplay, DefaultRootWindow(mDisplay), 0, 0, 200, 100, 0, 0, 0);
    XSelectInput(mDisplay, window, FocusChangeMask);
    XMapRaised(mDisplay, window);
    XEvent event;
    do {
        XNextEvent(mDisplay, &event);
    } while (event.type != FocusIn);
}

ForeignWindow::~ForeignWindow() {
    if (mDisplay != nullptr) XCloseDisplay(mDisplay);
}

WindowShape ShapeOfWindow(const std::string &handle) {
    WindowShape shape = {PlaceOfWindow(handle), 0, 0, 0, 0, {}};
    Display *display = XOpenDisplay(nullptr);
    if (display == nullptr) return shape;
    const Window window = std::strtoul(handle.c_str(), nullptr, 10);
    XWindowAttributes attributes = {};
    XGetWindowAttributes(display, window, &attributes);
    shape.width = attributes.width;
    shape.height = attributes.height;
    shape.screenWidth = DisplayWidth(display, DefaultScreen(display));
    shape.screenHeight = DisplayHeight(display, DefaultScreen(display));
    Atom type = None;
    int format = 0;
    unsigned long count = 0, rest = 0;
    unsigned char *data = nullptr;
    XGetWindowProperty(display, window, XInternAtom(display, "_NET_WM_WINDOW_TYPE", False), 0, 1,
                       False, XA_ATOM, &type, &format, &count, &rest, &data);
    if (data != nullptr && count == 1) {
        char *name = XGetAtomName(display, *reinterpret_cast<const Atom *>(data));
        shape.type = name;
        XFree(name);
    }
    if (data != nullptr) XFree(data);
    XCloseDisplay(display);
    return shape;
}

void SetDesktopResources(const std::string &resources) {
    Display *display = XOpenDisplay(nullptr);
    if (display == nullptr) return;
    XChangeProperty(display, DefaultRootWindow(display), XA_RESOURCE_MANAGER, XA_STRING, 8,
                    PropModeReplace, reinterpret_cast<const unsigned char *>(resources.data()),
                    static_cast<int>(resources.size()));
    XCloseDisplay(display);
}

namespace {

/// One setting, as XSETTINGS has it, lowest byte first.
std::string SettingBytes(const std::string &name, const std::string &text) {
    std::string bytes(8, '\0'); // byte order, padding, how often they have changed
    const auto number = [&](size_t value, int size) {
        for (int i = 0; i < size; ++i)
            bytes += static_cast<char>(value >> 8 * i & 0xff);
    };
    const auto padded = [&](const std::string &value) {
        bytes += value;
        bytes.append((4 - value.size() % 4) % 4, '\0');
    };
    number(1, 4);
    number(1, 2); // a text
    number(name.size(), 2);
    padded(name);
    number(0, 4);
    number(text.size(), 4);
    padded(text);
    return bytes;
}

} // namespace

DesktopFont::DesktopFont(const std::string &description) : mDisplay(XOpenDisplay(nullptr)) {
    if (mDisplay == nullptr) return;
    const Window window =
        XCreateSimpleWindow(mDisplay, DefaultRootWindow(mDisplay), 0, 0, 1, 1, 0, 0, 0);
    const Atom settings = XInternAtom(mDisplay, "_XSETTINGS_SETTINGS", False);
    const std::string bytes = SettingBytes("Gtk/FontName", description);
    XChangeProperty(mDisplay, window, settings, settings, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char *>(bytes.data()),
                    static_cast<int>(bytes.size()));
    XSetSelectionOwner(mDisplay, XInternAtom(mDisplay, "_XSETTINGS_S0", False), window,
                       CurrentTime);
    XSync(mDisplay, False);
}

DesktopFont::~DesktopFont() {
    if (mDisplay != nullptr) XCloseDisplay(mDisplay);
}

namespace {

void SetMonitor(Display *display, const char *name, int x, int width, int height, RROutput output) {
    XRRMonitorInfo *monitor = XRRAllocateMonitor(display, output != None ? 1 : 0);
    monitor->name = XInternAtom(display, name, False);
    monitor->x = x;
    monitor->y = 0;
    monitor->width = width;
    monitor->height = height;
    monitor->mwidth = width / 4;
    monitor->mheight = height / 4;
    if (output != None) monitor->outputs[0] = output;
    XRRSetMonitor(display, DefaultRootWindow(display), monitor);
    XRRFreeMonitors(monitor);
}

} // namespace

void DivideScreen() {
    Display *display = XOpenDisplay(nullptr);
    if (display == nullptr) return;
    const int width = DisplayWidth(display, DefaultScreen(display)) / 2;
    const int height = DisplayHeight(display, DefaultScreen(display));
    XRRScreenResources *resources = XRRGetScreenResources(display, DefaultRootWindow(display));
    const RROutput output =
        resources != nullptr && resources->noutput > 0 ? resources->outputs[0] : None;
    SetMonitor(display, "Left", 0, width, height, output);
    SetMonitor(display, "Right", width, width, height, None);
    if (resources != nullptr) XRRFreeScreenResources(resources);
    XCloseDisplay(display);
}
