#import "platform/toolkit/Toolkit.h"

#import "platform/toolkit/gnustep/EditingKeys.h"
#import "platform/toolkit/gnustep/FittedText.h"
#import "platform/toolkit/gnustep/InterfaceFiles.h"
#import "platform/toolkit/gnustep/PopUpMenu.h"
#import "platform/toolkit/gnustep/Theme.h"
#import "platform/toolkit/gnustep/ThemeAlerts.h"
#import "platform/toolkit/gnustep/ThemeColours.h"
#import "platform/toolkit/gnustep/ThemeFont.h"
#import "platform/toolkit/gnustep/ThemePanels.h"
#import "platform/toolkit/gnustep/TypedPaths.h"
#import "platform/toolkit/gnustep/WindowSetup.h"

#include <csignal>
#include <cstdlib>
#include <objc/runtime.h>

#import <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>

/// Looks after every window that becomes key.
///
/// It takes part in WM_DELETE_WINDOW: a window that is not closable (every NSAlert) does not by
/// itself, and a click on the close button that the window manager draws then kills the whole
/// process. Taking part, AppKit answers with performClose:, which beeps.
///
/// And it gets the keyboard: a window manager may leave a dialog without it that comes up just as
/// an alert goes.
@interface ZELDialogWindowGuard : NSObject {
    int _focusTries;
}
- (void)windowDidBecomeKey:(NSNotification *)notification;
- (void)checkKeyboardLater:(NSNumber *)number;
- (void)checkKeyboard:(NSNumber *)number;
@end

/// Keeps a starting application from opening the host's command-line arguments as documents.
@interface ZELLaunchDelegate : NSObject
@end

@implementation ZELLaunchDelegate
- (BOOL)application:(NSApplication *)application openFile:(NSString *)name {
    return YES;
}
- (BOOL)applicationShouldOpenUntitledFile:(NSApplication *)application {
    return NO;
}
@end

/// A window as the window server knows it.
struct ServerWindow {
    Display *display;
    Window handle;
};

static ServerWindow ServerWindowOf(NSWindow *window) {
    GSDisplayServer *server = GSServerForWindow(window);
    return {static_cast<Display *>([server serverDevice]),
            (Window)(uintptr_t)[server windowDevice:[window windowNumber]]};
}

static void TakePartInDeleteWindow(const ServerWindow &window) {
    const Atom wanted = XInternAtom(window.display, "WM_DELETE_WINDOW", False);
    Atom *present = nullptr;
    int count = 0;
    if (XGetWMProtocols(window.display, window.handle, &present, &count) == 0) count = 0;
    Atom all[16];
    bool found = false;
    if (count > 15) count = 15;
    for (int i = 0; i < count; ++i) {
        all[i] = present[i];
        found = found || present[i] == wanted;
    }
    if (present != nullptr) XFree(present);
    if (found) return;
    all[count] = wanted;
    XSetWMProtocols(window.display, window.handle, all, count + 1);
}

static bool HasKeyboard(const ServerWindow &window) {
    Window focus = None;
    int revertTo = 0;
    XGetInputFocus(window.display, &focus, &revertTo);
    return focus == window.handle;
}

/// Asks the window manager (Extended Window Manager Hints, _NET_ACTIVE_WINDOW).
static void AskForKeyboard(const ServerWindow &window) {
    constexpr long kByTheUser = 2;
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = window.handle;
    event.xclient.message_type = XInternAtom(window.display, "_NET_ACTIVE_WINDOW", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = kByTheUser;
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(window.display, DefaultRootWindow(window.display), False,
               SubstructureRedirectMask | SubstructureNotifyMask, &event);
    XFlush(window.display);
}

@implementation ZELDialogWindowGuard
- (void)windowDidBecomeKey:(NSNotification *)notification {
    NSWindow *window = [notification object];
    const ServerWindow server = ServerWindowOf(window);
    if (server.display == nullptr || server.handle == 0) return;
    TakePartInDeleteWindow(server);
    [NSObject cancelPreviousPerformRequestsWithTarget:self];
    _focusTries = 20;
    [self checkKeyboardLater:[NSNumber numberWithInteger:[window windowNumber]]];
}

/// By number, so that a window that goes meanwhile is not kept.
- (void)checkKeyboardLater:(NSNumber *)number {
    [self performSelector:@selector(checkKeyboard:)
               withObject:number
               afterDelay:0.1
                  inModes:[NSArray arrayWithObject:NSModalPanelRunLoopMode]];
}

- (void)checkKeyboard:(NSNumber *)number {
    NSWindow *window = [NSApp windowWithWindowNumber:[number integerValue]];
    if (![window isVisible] || [NSApp modalWindow] != window || --_focusTries < 0) return;
    const ServerWindow server = ServerWindowOf(window);
    if (server.display == nullptr || server.handle == 0 || HasKeyboard(server)) return;
    AskForKeyboard(server);
    [self checkKeyboardLater:number];
}
@end

/// Without this, typed keys do not arrive.
static void FinishLaunching() {
    ZELLaunchDelegate *delegate = [ZELLaunchDelegate new];
    [NSApp setDelegate:(id)delegate];
    [NSApp finishLaunching];
    [NSApp setDelegate:nil];
    [delegate release];
}

/// GNUstep sets its mouse up in the middle of the first click, and serves its event queue while it
/// talks to the notification daemon for that: the button's release overtook its press, and the
/// clicked field waited for a release for ever.
static void PrepareMouse() {
    const SEL initialize = NSSelectorFromString(@"initializeMouse");
    GSDisplayServer *server = GSCurrentServer();
    if ([server respondsToSelector:initialize]) [server performSelector:initialize];
}

/// Keeps what the host does about the signals that ask it to end: GNUstep's display server puts
/// handlers of its own there, after which neither ends anything while a window is open.
struct HostSignals {
    static constexpr int kNumbers[] = {SIGINT, SIGTERM};
    struct sigaction actions[2];
    HostSignals() {
        for (int i = 0; i < 2; ++i)
            sigaction(kNumbers[i], nullptr, &actions[i]);
    }
    void PutBack() const {
        for (int i = 0; i < 2; ++i)
            sigaction(kNumbers[i], &actions[i], nullptr);
    }
};

static BOOL StartApplication() {
    const char *display = std::getenv("DISPLAY");
    if (display == nullptr || *display == 0) return NO;
    const HostSignals signals;
    @try {
        [[NSUserDefaults standardUserDefaults]
            registerDefaults:[NSDictionary dictionaryWithObject:@"YES"
                                                         forKey:@"GSSuppressAppIcon"]];
        const BOOL fresh = NSApp == nil; // a host may be a GNUstep application itself
        if (fresh) {
            RegisterThemeColours();
            RegisterScaleFactor();
        }
        [NSApplication sharedApplication];
        if (fresh) {
            UseTheme();
            if (IsThemeInUse()) {
                UseThemeAlerts();
                UseSystemFont();
            }
            UseEditingKeys();
            FinishLaunching();
        } else {
            [NSScreen mainScreen]; // raises when an earlier start found no server
        }
        signals.PutBack();
        ForgetInterfaceFiles();
        PrepareMouse();
        [[NSNotificationCenter defaultCenter] addObserver:[ZELDialogWindowGuard new]
                                                 selector:@selector(windowDidBecomeKey:)
                                                     name:NSWindowDidBecomeKeyNotification
                                                   object:nil];
        return YES;
    } @catch (NSException *e) {
        signals.PutBack();
        return NO; // NSWindowServerCommunicationException
    }
}

BOOL EnsureApplication(void) {
    static BOOL tried, works;
    if (!tried) {
        tried = YES;
        @autoreleasepool {
            works = StartApplication();
        }
    }
    return works;
}

enum { kHeadingTag = 1 };

/// Gives the pressed look up before its action: that may show a sheet, and returns when the sheet
/// has gone. No instance variables: buttons that an interface file has made become ones of this
/// class.
@interface ZELButton : NSButton
@end

@implementation ZELButton
- (BOOL)sendAction:(SEL)action to:(id)target {
    [[self cell] setHighlighted:NO];
    [self display];
    [[self window] flushWindow];
    return [super sendAction:action to:target];
}
@end

static void PrepareMatrix(NSMatrix *matrix) {
    for (NSButtonCell *cell in [matrix cells]) {
        // Button cells come out editable: a click would start text editing in the cell.
        [cell setEditable:NO];
        [cell setSelectable:NO];
        if (IsThemeInUse()) UseDrawnMark(cell, YES);
    }
}

/// Push buttons in the shape that alerts and panels have here. An interface file gives them macOS's
/// frame, which has wide invisible margins.
static void PreparePushButton(NSButton *button) {
    [button setBezelStyle:NSRegularSquareBezelStyle];
    [button setFrame:NSInsetRect([button frame], 6, 4)];
    UseThemeButtons(button);
    if (IsThemeInUse() || ![[button keyEquivalent] isEqual:@"\r"]) return;
    [button setImage:[NSImage imageNamed:@"common_ret"]];
    [button setImagePosition:NSImageRight];
}

static void PrepareButton(NSButton *button) {
    object_setClass(button, [ZELButton class]);
    if ([[button cell] bezelStyle] == NSRoundedBezelStyle && [button isBordered])
        PreparePushButton(button);
    else if (![button isBordered] && IsThemeInUse())
        UseDrawnMark([button cell], NO);
}

static void PreparePopUp(NSPopUpButton *popup) {
    UseMenuList(popup);
    // The cell keeps an unretained selected item and changes its state while it is deallocated,
    // after the menu has gone; without state changes that cannot happen, and no check mark is
    // drawn.
    [[popup cell] setAltersStateOfSelectedItem:NO];
    [[popup cell] setBezelStyle:NSRegularSquareBezelStyle];
    [popup setFrame:NSInsetRect([popup frame], 3, 1)];
    for (NSMenuItem *item in [popup itemArray])
        [item setState:NSOffState];
}

/// Shows by its border whether keys go to it. No instance variables, as above.
@interface ZELField : NSTextField
@end

@implementation ZELField
- (void)selectText:(id)sender {
    [super selectText:sender];
    [self setNeedsDisplay:YES];
}
- (void)textDidEndEditing:(NSNotification *)notification {
    [super textDidEndEditing:notification];
    [self setNeedsDisplay:YES];
}
@end

/// Labels come out editable, and an interface file's bold system font is read as the plain one:
/// headings carry a tag as well.
static void PrepareLabel(NSTextField *label) {
    if ([label isBezeled]) { // a field to type in
        object_setClass(label, [ZELField class]);
        return;
    }
    [label setEditable:NO];
    [label setSelectable:NO];
    // With a scale factor that is no whole number, AppKit does not clear what is drawn anew.
    [label setBackgroundColor:[NSColor windowBackgroundColor]];
    [label setDrawsBackground:YES];
    if ([[label cell] lineBreakMode] == NSLineBreakByClipping)
        [[label cell] setLineBreakMode:NSLineBreakByTruncatingTail];
    if ([[label cell] tag] == kHeadingTag) [label setFont:[NSFont boldSystemFontOfSize:13]];
}

void PrepareToolkitView(NSView *view) {
    if ([view isKindOfClass:[NSMatrix class]]) PrepareMatrix((NSMatrix *)view);
    if ([view isKindOfClass:[NSPopUpButton class]]) PreparePopUp((NSPopUpButton *)view);
    if ([view isKindOfClass:[NSTextField class]]) PrepareLabel((NSTextField *)view);
    if ([view isMemberOfClass:[NSButton class]]) PrepareButton((NSButton *)view);
    for (NSView *sub in [view subviews])
        PrepareToolkitView(sub);
}

void PrepareToolkitPanel(NSSavePanel *panel) {
    UseThemePanel(panel);
    [panel setLevel:NSModalPanelWindowLevel]; // a change of it would change the kind of window, too
    MarkAsDialog(panel);
}

void SoundToolkitBeep(void) {
    NSBeep();
    // The request waits in Xlib's buffer for an event loop to send it.
    Display *display = static_cast<Display *>([GSCurrentServer() serverDevice]);
    if (display != nullptr) XFlush(display);
}

void PrepareToolkitWindow(NSWindow *window) {
    MarkAsDialog(window);
    AvoidOtherWindows(window);
}

void SetToolkitText(NSTextField *label, NSString *text) {
    if ([text canBeConvertedToEncoding:NSASCIIStringEncoding]) {
        [label setStringValue:text];
        return;
    }
    NSDictionary *attributes = [NSDictionary
        dictionaryWithObjectsAndKeys:[label font], NSFontAttributeName, [label textColor],
                                     NSForegroundColorAttributeName, nil];
    [label setAttributedStringValue:WithGlyphs(text, attributes)];
}

NSRect RoomAtPointer(void) { return MonitorRoomAt([NSEvent mouseLocation]); }

void PrepareToolkitOpenPanel(NSOpenPanel *panel) { AcceptTypedPaths(panel); }

NSString *SystemPPDFolder(void) {
    for (NSString *path in [NSArray
             arrayWithObjects:@"/usr/share/ppd", @"/usr/share/cups/model", @"/etc/cups/ppd", nil]) {
        BOOL isFolder = NO;
        if ([[NSFileManager defaultManager] fileExistsAtPath:path isDirectory:&isFolder] &&
            isFolder)
            return path;
    }
    return nil;
}
