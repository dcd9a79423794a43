#include "dialogs/AlertWindow.h"

#import "platform/toolkit/Toolkit.h"

/// Carriage returns, which break lines in the driver's messages, as AppKit breaks lines.
static NSString *WithLineBreaks(NSString *text) {
    return [text stringByReplacingOccurrencesOfString:@"\r" withString:@"\n"];
}

bool RunAlertWindow(CFStringRef message, CFStringRef informative) {
    if (!EnsureApplication()) return false;
    @autoreleasepool {
        @try {
            NSAlert *alert = [[[NSAlert alloc] init] autorelease];
            [alert setMessageText:WithLineBreaks((NSString *)message)];
            // nil would show "No information".
            [alert setInformativeText:informative != nullptr ? (NSString *)informative : @""];
            [alert setShowsHelp:NO];
            [alert runModal];
            return true;
        } @catch (NSException *e) {
            return false; // the caller says it elsewhere
        }
    }
}
