/// Programs that the tests of real events run.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

/// Starts a program; its output is appended to the file `log`. -1 when it cannot be started.
pid_t Spawn(const std::vector<std::string> &arguments, const std::string &log);

/// Starts a window manager for the test program's display and waits until it works.
bool StartWindowManager();
void StopWindowManager();

/// Top left corner of a window's content on the screen, in pixels.
struct WindowPlace {
    int x, y;
};
/// `handle` is the window server's number in digits; without such a window, -1, -1.
WindowPlace PlaceOfWindow(const std::string &handle);

/// False while a window manager moves a window with the pointer; it takes the keys then as well.
bool PointerIsFree();

/// A window of another program, in front and with the keyboard while the object lives.
class ForeignWindow {
public:
    ForeignWindow();
    ~ForeignWindow();
    ForeignWindow(const ForeignWindow &) = delete;
    ForeignWindow &operator=(const ForeignWindow &) = delete;

private:
    struct _XDisplay *mDisplay; ///< a connection of its own
};

/// What the window manager knows of a window, in pixels; its type is the atom's name.
struct WindowShape {
    WindowPlace place;
    int width, height, screenWidth, screenHeight;
    std::string type;
};
WindowShape ShapeOfWindow(const std::string &handle);

/// The X resources that a desktop sets for all programs ("NAME:\tVALUE\n").
void SetDesktopResources(const std::string &resources);

/// A desktop that tells programs its font while the object lives.
class DesktopFont {
public:
    explicit DesktopFont(const std::string &description);
    ~DesktopFont();
    DesktopFont(const DesktopFont &) = delete;
    DesktopFont &operator=(const DesktopFont &) = delete;

private:
    struct _XDisplay *mDisplay; ///< a connection of its own
};

/// Two monitors beside one another, halves of the screen.
void DivideScreen();
