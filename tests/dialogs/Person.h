/// A person in front of the dialogs: moves the pointer, presses buttons and keys, looks at the
/// screen.
#pragma once

#include "PSHPrint.h"

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

/// What the front window shows, as the observer reports it.
struct Screen {
    struct Control {
        int x = 0, y = 0;
        bool enabled = false;
        std::string value;
    };
    std::string kind; ///< "dialog", "alert", "panel" or empty: no window
    std::string handle, title, texts, menuHandle;
    std::string font; ///< of the texts, by its PostScript name
    int menuX = 0, menuY = 0, menuWidth = 0, menuHeight = 0; ///< of the open menu, on the screen
    int menuRoom = 0;   ///< its height as its items are measured: those beyond are not seen
    bool isKey = false; ///< has the keyboard
    std::map<std::string, Control> controls; ///< by outlet, or by title
    std::map<std::string, Control> items;    ///< of the open pop-up menu, by tag
    std::string focus;                       ///< the control that keys go to
    bool isFocusSelected = false;            ///< with all its text selected
};

/// Runs a host with dialogs and does with them what a person does. An action whose effect does not
/// come is repeated, as a person does it; an effect that never comes ends the test program.
class Person {
public:
    /// `folder` holds the files that are exchanged with the host.
    explicit Person(std::string folder) : mFolder(std::move(folder)) {}
    ~Person();
    Person(const Person &) = delete;
    Person &operator=(const Person &) = delete;

    /// Starts the host with a dialog ("style", "job" or "job-copies") on a record.
    void Open(const std::string &dialog, const PSHPrint &record);
    /// Starts any program, watched by the observer.
    void Start(const std::vector<std::string> &arguments);
    /// Waits until the host has ended; its result.
    std::string Result();
    bool HostHasEnded();
    void Signal(int number) const;
    /// Waits until the host has ended; its exit status.
    int Status();
    /// All that the host has said so far.
    std::string Log() const;
    PSHPrint Record() const;

    Screen Look() const;
    /// Waits for a condition of the screen.
    Screen WaitFor(const std::string &what, const std::function<bool(const Screen &)> &condition);
    Screen WaitForWindow(const std::string &kind);

    /// Clicks a control until the effect is there.
    void Click(const std::string &control, const std::function<bool(const Screen &)> &effect);
    /// Clicks a control that closes or opens a window of another kind ("" for the end of the host).
    void ClickTo(const std::string &control, const std::string &kind);
    void Toggle(const std::string &checkBox);
    /// Presses the mouse button on a control and lets it go after that time, without moving.
    void Hold(const std::string &control, std::chrono::milliseconds time);
    /// Clicks a pop-up, so that its menu is open.
    void OpenMenu(const std::string &popup);
    /// Clicks a pop-up, turns the wheel until the item of that tag is seen, and clicks that.
    void Choose(const std::string &popup, int tag);
    /// Presses the button on a pop-up, moves to the item of that tag and lets go there.
    void Drag(const std::string &popup, int tag);
    /// Turns the wheel by notches; down when positive.
    void Wheel(int notches);
    /// Clicks into a field, takes its text away and types another.
    void Type(const std::string &field, const std::string &text);
    void Press(const std::string &key);
    /// Drags the window by its title bar; multiples of ten.
    void DragWindow(int dx, int dy);
    /// Presses a key until the effect is there.
    void PressTo(const std::string &key, const std::function<bool(const Screen &)> &effect);

    /// Stores a picture of the whole screen.
    void TakePicture(const std::string &name) const;

private:
    void MoveTo(const std::string &handle, const Screen::Control &control) const;
    void MoveToItem(const std::string &tag);
    void WheelTo(const std::string &tag);
    bool ComesTrue(const std::function<bool(const Screen &)> &effect,
                   std::chrono::milliseconds patience) const;
    void Repeat(const std::string &what, const std::function<void()> &action,
                const std::function<bool(const Screen &)> &effect);

    std::string mFolder;
    pid_t mHost = -1;
    int mStatus = -1;
};
