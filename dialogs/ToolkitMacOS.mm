#import "dialogs/Toolkit.h"

#import "dialogs/DialogSupport.h"

BOOL EnsureApplication(void) {
    [NSApplication sharedApplication];
    return YES;
}

void PrepareToolkitView(NSView *) {}

void FitToolkitMenu(NSMenu *) {}

void SoundToolkitBeep(void) { NSBeep(); }
