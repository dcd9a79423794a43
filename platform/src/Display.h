// The X server.
#pragma once
#include <X11/Xlib.h>
#include <memory>

/// What is used of libX11. It is loaded when a display is asked for: a server without one need
/// not have it, and every program that uses this library would start the slower for it.
struct X11Functions {
    decltype(&XOpenDisplay) openDisplay;
    decltype(&XCloseDisplay) closeDisplay;
    decltype(&XKeysymToKeycode) keysymToKeycode;
    decltype(&XQueryKeymap) queryKeymap;
    bool areComplete;
};
const X11Functions &X11();

struct DisplayCloser {
    void operator()(Display *display) const { X11().closeDisplay(display); }
};
using DisplayOwner = std::unique_ptr<Display, DisplayCloser>;

/// A connection of our own, half a millisecond: the host may use its one on another thread, or
/// have none. Null without a display, and where windows are not to be used.
DisplayOwner OpenDisplay();
