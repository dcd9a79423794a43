#import "tests/dialogs/DialogScript.h"

#include "tests/Quoted.h"

#import "dialogs/DialogSupport.h"

#import <GNUstepGUI/GSDisplayServer.h>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <objc/runtime.h>

// In the modal mode only: performClick: spins the default mode, and a step that ran there would be
// re-entered.
@interface ZELScriptTimer : NSObject {
    DialogScript *_script;
}
- (id)initWithScript:(DialogScript *)script;
- (void)arm;
- (void)tick;
@end

@implementation ZELScriptTimer
- (id)initWithScript:(DialogScript *)script {
    if ((self = [super init])) _script = script;
    return self;
}
- (void)arm {
    [self performSelector:@selector(tick)
               withObject:nil
               afterDelay:0.02
                  inModes:[NSArray arrayWithObject:NSModalPanelRunLoopMode]];
}
- (void)tick {
    _script->Tick();
}
@end

DialogScript::DialogScript() : mTimer([[ZELScriptTimer alloc] initWithScript:this]) {}

DialogScript::~DialogScript() {
    [NSObject cancelPreviousPerformRequestsWithTarget:mTimer];
    [mTimer release];
}

void DialogScript::When(std::string what, Condition condition, Action action) {
    mSteps.push_back({std::move(what), std::move(condition), std::move(action)});
    if (!mIsArmed) Arm();
}

void DialogScript::Arm() {
    mIsArmed = true;
    [mTimer arm];
}

void DialogScript::Tick() {
    constexpr int kMaxWaits = 20000;
    mIsArmed = false;
    if (IsFinished()) return;
    const Step &step = mSteps[mNext];
    if (step.condition && !step.condition()) {
        if (++mWaits > kMaxWaits) {
            fprintf(stderr, "Waited in vain: %s\n", step.what.c_str());
            _exit(1);
        }
    } else {
        mWaits = 0;
        ++mNext;
        if (step.action) step.action();
    }
    Arm();
}

NSWindow *DialogWindow() {
    for (NSWindow *window in [NSApp windows])
        if ([window isVisible] &&
            [[window windowController] isKindOfClass:[NSWindowController class]])
            return window;
    return nil;
}

NSWindow *WindowAboveDialog() {
    NSWindow *modal = [NSApp modalWindow];
    return modal == DialogWindow() ? nil : modal;
}

bool DialogIsOpen() { return DialogWindow() != nil && WindowAboveDialog() == nil; }

bool SomethingIsAbove() { return WindowAboveDialog() != nil; }

id DialogValue(NSString *key) { return [[DialogWindow() windowController] valueForKey:key]; }

static NSButton *FindButtonIn(NSView *view, NSString *title) {
    for (NSView *sub in [view subviews]) {
        if ([sub isKindOfClass:[NSButton class]] && ![sub isKindOfClass:[NSPopUpButton class]] &&
            [[(NSButton *)sub title] isEqual:title])
            return (NSButton *)sub;
        NSButton *found = FindButtonIn(sub, title);
        if (found != nil) return found;
    }
    return nil;
}

NSButton *FindButton(NSWindow *window, NSString *title) {
    return FindButtonIn([window contentView], title);
}

static void CollectTexts(NSView *view, std::string &texts) {
    for (NSView *sub in [view subviews]) {
        if ([sub isKindOfClass:[NSTextField class]]) texts += Text(sub) + "\n";
        CollectTexts(sub, texts);
    }
}

std::string WindowTexts(NSWindow *window) {
    std::string texts;
    CollectTexts([window contentView], texts);
    return texts;
}

void PressControl(NSControl *control) {
    ASSERT_TRUE(control != nil);
    [control performClick:nil];
    // A click made by a timer ends no event: let the modal loops look again.
    [NSApp postEvent:[NSEvent otherEventWithType:NSApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                         subtype:0
                                           data1:0
                                           data2:0]
             atStart:NO];
}

void PressLater(NSControl *control) {
    [control performSelector:@selector(performClick:)
                  withObject:nil
                  afterDelay:0
                     inModes:[NSArray arrayWithObject:NSModalPanelRunLoopMode]];
}

void PressButton(NSWindow *window, NSString *title) {
    NSButton *button = FindButton(window, title);
    ASSERT_TRUE(button != nil) << [title UTF8String] << " is not in a window with\n"
                               << WindowTexts(window);
    PressControl(button);
}

void ChooseTag(NSPopUpButton *popup, NSInteger tag) {
    ASSERT_TRUE([popup selectItemWithTag:tag]) << tag;
    [popup sendAction:[popup action] to:[popup target]];
}

void SelectRadio(NSMatrix *matrix, NSInteger tag) {
    ASSERT_TRUE([matrix selectCellWithTag:tag]) << tag;
    [matrix sendAction];
}

void TypeInto(NSTextField *field, const char *text) {
    [field selectText:nil];
    NSTextView *editor = (NSTextView *)[field currentEditor];
    ASSERT_TRUE(editor != nil);
    [editor insertText:[NSString stringWithUTF8String:text]];
    if (*text == 0) [editor delete:nil];
}

void PressKey(const char *characters) {
    NSString *key = [NSString stringWithUTF8String:characters];
    [NSApp postEvent:[NSEvent keyEventWithType:NSKeyDown
                                            location:NSZeroPoint
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:[[NSApp modalWindow] windowNumber]
                                             context:nil
                                          characters:key
                         charactersIgnoringModifiers:key
                                           isARepeat:NO
                                             keyCode:0]
             atStart:NO];
}

bool IsTextSelected(NSTextField *field) {
    NSText *editor = [field currentEditor];
    return editor != nil && [editor selectedRange].location == 0 &&
           [editor selectedRange].length == [[field stringValue] length];
}

std::string Text(id field) {
    const char *text = [[field stringValue] UTF8String];
    return text != nullptr ? text : "";
}

static int gBeeps;
static void CountBeep(id, SEL) { ++gBeeps; }

int BeepCount() {
    static const bool replaced = [] {
        class_replaceMethod([GSCurrentServer() class], @selector(beep), (IMP)CountBeep, "v@:");
        return true;
    }();
    return replaced ? gBeeps : 0;
}

void TakePicture(NSWindow *window, const char *name) {
    const char *folder = std::getenv("ZEL_PICTURES");
    if (folder == nullptr || window == nil) return;
    [window display];
    [window flushWindow];
    const unsigned long handle =
        (unsigned long)(uintptr_t)[GSServerForWindow(window) windowDevice:[window windowNumber]];
    const std::string command = "mkdir -p " + Quoted(folder) + " && import -window " +
                                std::to_string(handle) + " " +
                                Quoted(std::string(folder) + "/" + name + ".png");
    if (std::system(command.c_str()) != 0) fprintf(stderr, "No picture of %s\n", name);
}
