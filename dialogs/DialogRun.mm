#import "dialogs/DialogRun.h"

#include "dialogs/DialogEnd.h"
#import "dialogs/DialogSupport.h"
#import "platform/toolkit/Toolkit.h"

#include <cstdio>
#include <dispatch/dispatch.h>
#include <platform/Platform.h>

static bool gLastDialogFailed, gIsOpen;

BOOL DialogFailed(const char *dialogName, NSString *reason) {
    gLastDialogFailed = true;
    const char *text = [reason UTF8String];
    fprintf(stderr, "The %s dialog cannot be shown: %s.\n", dialogName,
            text != nullptr ? text : "it failed");
    return NO;
}

bool LastDialogFailed() { return gLastDialogFailed; }

BOOL BeginDialog(const char *dialogName) {
    gLastDialogFailed = false;
    if (!PlatformHasWindowServer()) return DialogFailed(dialogName, @"there is no window system");
    if (!EnsureApplication()) return DialogFailed(dialogName, @"the window system cannot be used");
    gIsOpen = true;
    return YES;
}

BOOL LoadDialog(NSWindowController *controller, const char *dialogName) {
    if (controller == nil)
        return DialogFailed(dialogName, @"its window is missing from the driver's resources");
    NSString *reason = @"AppKit read none";
    @try {
        if ([controller window] != nil) return YES;
    } @catch (NSException *e) {
        reason = [e reason];
    }
    return DialogFailed(dialogName,
                        [NSString stringWithFormat:@"its window in the driver's resources is "
                                                   @"damaged, or the system has no fonts (%@)",
                                                   reason]);
}

void EndDialog(NSWindowController *controller) {
    gIsOpen = false;
    @try {
        // Asking for a window that is not there would load it again.
        if ([controller isWindowLoaded]) ReleaseLoadedWindow([controller window]);
        // Where the window was dragged to: the host may end before AppKit saves it.
        [[NSUserDefaults standardUserDefaults] synchronize];
    } @catch (NSException *e) {
        // It has been told what failed first.
    }
    [controller release];
}

/// An open menu has a loop of its own, which Escape ends.
static void PressEscape() {
    NSEvent *press = [NSEvent keyEventWithType:NSKeyDown
                                      location:NSZeroPoint
                                 modifierFlags:0
                                     timestamp:0
                                  windowNumber:[[NSApp modalWindow] windowNumber]
                                       context:nil
                                    characters:@"\033"
                   charactersIgnoringModifiers:@"\033"
                                     isARepeat:NO
                                       keyCode:0];
    [NSApp postEvent:press atStart:NO];
}

/// Ends the innermost modal session only; those around it see the next call.
static void CancelInnermost(void * /*context*/) {
    NSWindow *window = gIsOpen ? [NSApp modalWindow] : nil;
    if ([[[NSRunLoop currentRunLoop] currentMode] isEqual:NSEventTrackingRunLoopMode])
        PressEscape();
    if ([window isKindOfClass:[NSSavePanel class]])
        [(NSSavePanel *)window cancel:nil];
    else
        [[window windowController] tryToPerform:@selector(doCancel:) with:nil];
    if (window != nil) StopModalAndWake();
}

void CancelDialog() { dispatch_async_f(dispatch_get_main_queue(), nullptr, CancelInnermost); }
