#import "dialogs/DialogSupport.h"

#include <ApplicationServices/ApplicationServices.h>
#include <cstdio>
#include <cstdlib>

#ifdef GNUSTEP
#import <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>

/// Makes every window that becomes key take part in WM_DELETE_WINDOW. A window that is not closable
/// (every NSAlert) does not by itself, and a click on the close button that the window manager
/// draws then kills the whole process. Taking part, AppKit answers with performClose:, which beeps.
@interface ZELDialogWindowGuard : NSObject
- (void)windowDidBecomeKey:(NSNotification *)notification;
@end

@implementation ZELDialogWindowGuard
- (void)windowDidBecomeKey:(NSNotification *)notification {
    NSWindow *window = [notification object];
    GSDisplayServer *server = GSServerForWindow(window);
    Display *display = static_cast<Display *>([server serverDevice]);
    const Window handle = (Window)(uintptr_t)[server windowDevice:[window windowNumber]];
    if (display == nullptr || handle == 0) return;
    const Atom wanted = XInternAtom(display, "WM_DELETE_WINDOW", False);
    Atom *present = nullptr;
    int count = 0;
    if (XGetWMProtocols(display, handle, &present, &count) == 0) count = 0;
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
    XSetWMProtocols(display, handle, all, count + 1);
}
@end

/// GNUstep's own palette is a dark grey; in a host that brings no AppKit of its own the dialogs
/// come in a lighter one. What the user has set comes first.
static void RegisterPalette() {
    struct Colour {
        NSString *name, *value;
    };
    const Colour colours[] = {{@"windowBackgroundColor", @"0.93 0.93 0.93"},
                              {@"controlBackgroundColor", @"0.93 0.93 0.93"},
                              {@"controlColor", @"0.96 0.96 0.96"},
                              {@"controlShadowColor", @"0.7 0.7 0.7"},
                              {@"controlDarkShadowColor", @"0.5 0.5 0.5"},
                              {@"selectedMenuItemColor", @"0.25 0.5 0.9"},
                              {@"selectedMenuItemTextColor", @"1 1 1"},
                              {@"selectedTextBackgroundColor", @"0.7 0.82 0.98"},
                              {@"selectedControlColor", @"0.7 0.82 0.98"}};
    NSMutableDictionary *defaults = [NSMutableDictionary dictionary];
    for (const Colour &colour : colours)
        [defaults setObject:colour.value forKey:colour.name];
    [[NSUserDefaults standardUserDefaults] registerDefaults:defaults];
}

static BOOL StartApplication() {
    const char *display = std::getenv("DISPLAY");
    if (display == nullptr || *display == 0) return NO;
    @try {
        [[NSUserDefaults standardUserDefaults]
            registerDefaults:[NSDictionary dictionaryWithObject:@"YES"
                                                         forKey:@"GSSuppressAppIcon"]];
        const BOOL fresh = NSApp == nil; // a host may be a GNUstep application itself
        if (fresh) RegisterPalette();
        [NSApplication sharedApplication];
        if (fresh)
            [NSApp finishLaunching]; // without it typed keys do not arrive
        else
            [NSScreen mainScreen]; // raises when an earlier start found no server
        [[NSNotificationCenter defaultCenter] addObserver:[ZELDialogWindowGuard new]
                                                 selector:@selector(windowDidBecomeKey:)
                                                     name:NSWindowDidBecomeKeyNotification
                                                   object:nil];
        return YES;
    } @catch (NSException *e) {
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

BOOL HaveWindowServer(void) {
    static const BOOL have = [] {
        CGEventSourceRef source = CGEventSourceCreate(kCGEventSourceStateCombinedSessionState);
        if (source != nullptr) CFRelease(source);
        return BOOL(source != nullptr);
    }();
    return have;
}

static void PrepareMatrix(NSMatrix *matrix) {
    // Button cells come out editable: a click would start text editing in the cell.
    for (NSCell *cell in [matrix cells]) {
        [cell setEditable:NO];
        [cell setSelectable:NO];
    }
}

static void PreparePopUp(NSPopUpButton *popup) {
    // The cell keeps an unretained selected item and changes its state while it is deallocated,
    // after the menu has gone; without state changes that cannot happen, and no check mark is
    // drawn.
    [[popup cell] setAltersStateOfSelectedItem:NO];
    for (NSMenuItem *item in [popup itemArray])
        [item setState:NSOffState];
}

static void PrepareView(NSView *view) {
    if ([view isKindOfClass:[NSMatrix class]]) PrepareMatrix((NSMatrix *)view);
    if ([view isKindOfClass:[NSPopUpButton class]]) PreparePopUp((NSPopUpButton *)view);
    for (NSView *sub in [view subviews])
        PrepareView(sub);
}

static void FitMenu(NSMenu *menu) {
    [[menu menuRepresentation] sizeToFit]; // else a title is drawn without its indent
}

#else

BOOL HaveWindowServer(void) { return YES; }

BOOL EnsureApplication(void) {
    [NSApplication sharedApplication];
    return YES;
}

static void PrepareView(NSView *) {}
static void FitMenu(NSMenu *) {}

#endif

BOOL EnsureDialogApplication(const char *dialogName) {
    if (HaveWindowServer() && EnsureApplication()) return YES;
    fprintf(stderr, "The %s dialog cannot be shown: there is no window system.\n", dialogName);
    return NO;
}

NSString *InterfaceFilePath(NSBundle *bundle, NSString *name) {
    NSString *path = [bundle pathForResource:name ofType:@"nib"];
    return path != nil ? path : [bundle pathForResource:name ofType:@"xib"];
}

void PrepareLoadedWindow(NSWindow *window) { PrepareView([window contentView]); }

static NSString *Translation(NSString *title, NSBundle *bundle, NSString *table) {
    return [title length] == 0 ? title
                               : [bundle localizedStringForKey:title value:title table:table];
}

static void LocalizeCells(NSMatrix *matrix, NSBundle *bundle, NSString *table) {
    for (NSCell *cell in [matrix cells])
        [cell setTitle:Translation([cell title], bundle, table)];
}

static void LocalizeMenu(NSPopUpButton *popup, NSBundle *bundle, NSString *table) {
    for (NSMenuItem *item in [popup itemArray])
        [item setTitle:Translation([item title], bundle, table)];
    [popup synchronizeTitleAndSelectedItem];
}

static void LocalizeView(NSView *view, NSBundle *bundle, NSString *table) {
    if ([view isKindOfClass:[NSMatrix class]]) {
        LocalizeCells((NSMatrix *)view, bundle, table);
    } else if ([view isKindOfClass:[NSPopUpButton class]]) {
        LocalizeMenu((NSPopUpButton *)view, bundle, table);
    } else if ([view isKindOfClass:[NSButton class]]) {
        NSButton *button = (NSButton *)view;
        [button setTitle:Translation([button title], bundle, table)];
    } else if ([view isKindOfClass:[NSTextField class]]) {
        NSTextField *field = (NSTextField *)view;
        [field setStringValue:Translation([field stringValue], bundle, table)];
    }
    for (NSView *sub in [view subviews])
        LocalizeView(sub, bundle, table);
}

void LocalizeLoadedWindow(NSWindow *window, NSBundle *bundle, NSString *table) {
    LocalizeView([window contentView], bundle, table);
}

static void ReleaseView(NSView *view) {
    NSArray *names = [NSArray arrayWithObjects:@"enabled", @"value", @"hidden", @"editable", nil];
    for (NSString *name in names) {
        if ([view infoForBinding:name] != nil) [view unbind:name];
    }
    if ([view isKindOfClass:[NSTextField class]]) [(NSTextField *)view setDelegate:nil];
    for (NSView *sub in [view subviews])
        ReleaseView(sub);
}

void ReleaseLoadedWindow(NSWindow *window) {
    [window makeFirstResponder:nil];
    ReleaseView([window contentView]);
    [window setDelegate:nil];
    [window orderOut:nil];
}

void StopModalAndWake(void) {
    // stopModal only marks the session; the modal loop, asleep in the event queue, notices at the
    // next event. A GNUstep run loop moreover does not leave its poll() for an event that a timer
    // callback queued: a zero-delay perform makes the poll time out.
    [NSApp stopModal];
    NSEvent *wake = [NSEvent otherEventWithType:NSApplicationDefined
                                       location:NSZeroPoint
                                  modifierFlags:0
                                      timestamp:0
                                   windowNumber:0
                                        context:nil
                                        subtype:0
                                          data1:0
                                          data2:0];
    [NSApp postEvent:wake atStart:NO];
    [NSApp performSelector:@selector(class)
                withObject:nil
                afterDelay:0.0
                   inModes:[NSArray arrayWithObject:NSModalPanelRunLoopMode]];
}

NSMenuItem *InsertPopUpItem(NSPopUpButton *popup, NSString *title, NSInteger tag, NSInteger index) {
    NSMenuItem *item = [[[NSMenuItem alloc] initWithTitle:title action:NULL
                                            keyEquivalent:@""] autorelease];
    [item setTag:tag];
    [[popup menu] insertItem:item atIndex:index];
    FitMenu([popup menu]);
    return item;
}

// The methods with a delegate and a selector exist on both platforms and need no blocks.
void BeginAlertSheet(NSAlert *alert, NSWindow *window, id delegate, SEL didEnd) {
    [alert beginSheetModalForWindow:window
                      modalDelegate:delegate
                     didEndSelector:didEnd
                        contextInfo:NULL];
}

void BeginPanelSheet(NSSavePanel *panel, NSWindow *window, NSURL *folder, NSString *name,
                     id delegate, SEL didEnd) {
    [panel beginSheetForDirectory:[folder path]
                             file:name
                   modalForWindow:window
                    modalDelegate:delegate
                   didEndSelector:didEnd
                      contextInfo:NULL];
}
