#include "dialogs/AlertWindow.h"

#import "dialogs/DialogSupport.h"

bool RunAlertWindow(CFStringRef message, CFStringRef informative) {
    if (!EnsureApplication()) return false;
    @autoreleasepool {
        @try {
            NSAlert *alert = [[[NSAlert alloc] init] autorelease];
            [alert setMessageText:(NSString *)message];
            // nil would show "No information".
            [alert setInformativeText:informative != nullptr ? (NSString *)informative : @""];
            [alert setShowsHelp:NO];
            [alert runModal];
        } @catch (NSException *e) {
            NSLog(@"An alert could not be shown: %@", [e reason]);
        }
    }
    return true;
}
