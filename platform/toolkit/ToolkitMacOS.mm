#import "platform/toolkit/Toolkit.h"

BOOL EnsureApplication(void) {
    [NSApplication sharedApplication];
    // A bare command is no application yet: its windows would get no keys.
    if ([NSApp activationPolicy] == NSApplicationActivationPolicyProhibited) {
        [NSApp setActivationPolicy:NSApplicationActivationPolicyRegular];
        [NSApp activateIgnoringOtherApps:YES];
    }
    return YES;
}

void PrepareToolkitView(NSView *) {}

void PrepareToolkitPanel(NSSavePanel *) {}

void SoundToolkitBeep(void) { NSBeep(); }

void PrepareToolkitWindow(NSWindow *window) {}

void PrepareToolkitOpenPanel(NSOpenPanel *panel) {}

void SetToolkitText(NSTextField *label, NSString *text) { [label setStringValue:text]; }

NSRect RoomAtPointer(void) {
    const NSPoint pointer = [NSEvent mouseLocation];
    for (NSScreen *screen in [NSScreen screens])
        if (NSPointInRect(pointer, [screen frame])) return [screen visibleFrame];
    return [[NSScreen mainScreen] visibleFrame];
}

NSString *SystemPPDFolder(void) { return @"/Library/Printers/PPDs/Contents/Resources"; }
