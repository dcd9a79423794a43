/// Drives a modal dialog from inside its process: steps that wait for their condition.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

/// The steps run one by one while modal windows are up, each as soon as its condition holds. A step
/// that waits too long fails the test and ends the process: the dialog would never return.
class DialogScript {
  public:
    using Condition = std::function<bool()>;
    using Action = std::function<void()>;

    DialogScript();
    ~DialogScript();
    DialogScript(const DialogScript &) = delete;
    DialogScript &operator=(const DialogScript &) = delete;

    void Then(std::string what, Action action) {
        When(std::move(what), nullptr, std::move(action));
    }
    void When(std::string what, Condition condition, Action action);
    /// All steps must have run when the dialog has returned.
    bool IsFinished() const { return mNext == mSteps.size(); }

    void Tick(); ///< for the timer only

  private:
    struct Step {
        std::string what;
        Condition condition;
        Action action;
    };
    void Arm();

    std::vector<Step> mSteps;
    size_t mNext = 0;
    int mWaits = 0;
    bool mIsArmed = false;
    id mTimer;
};

/// The modal dialog below alerts and sheets: the window whose controller is a window controller.
NSWindow *DialogWindow();
/// The alert, sheet or panel above the dialog, or nil.
NSWindow *WindowAboveDialog();
/// A property of the dialog's controller.
id DialogValue(NSString *key);

/// The button of that title in a window; nil when there is none.
NSButton *FindButton(NSWindow *window, NSString *title);
/// All texts that a window shows, in one string.
std::string WindowTexts(NSWindow *window);

void PressButton(NSWindow *window, NSString *title);
/// Presses a button or check box as a click does.
void PressControl(NSControl *control);
/// The same from a timer of its own, for a press that opens a sheet and returns only with its end.
void PressLater(NSControl *control);
/// Chooses the item of that tag as a click does.
void ChooseTag(NSPopUpButton *popup, NSInteger tag);
void SelectRadio(NSMatrix *matrix, NSInteger tag);
/// Replaces a field's text by typing.
void TypeInto(NSTextField *field, const char *text);
void PressKey(const char *characters);
/// Is the field being edited with its whole text selected?
bool IsTextSelected(NSTextField *field);

std::string Text(id field);

/// Counts NSBeep calls from the first call of this function on.
int BeepCount();

/// Is the dialog open and nothing above it?
bool DialogIsOpen();
/// Is there an alert, sheet or panel above the dialog?
bool SomethingIsAbove();

/// Stores a picture of a window below the folder in ZEL_PICTURES; without it does nothing.
void TakePicture(NSWindow *window, const char *name);
