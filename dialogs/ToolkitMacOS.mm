#import "dialogs/Toolkit.h"

#import "dialogs/DialogSupport.h"

BOOL EnsureApplication(void) {
    [NSApplication sharedApplication];
    return YES;
}

void PrepareToolkitView(NSView *) {}

void PrepareToolkitPanel(NSSavePanel *) {}

void SoundToolkitBeep(void) { NSBeep(); }
