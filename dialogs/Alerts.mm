#include "dialogs/Alerts.h"
#import "dialogs/DialogSupport.h"

#include <cstdio>
#include <dispatch/dispatch.h>

namespace {

/// The texts as one line: messages contain carriage returns where an alert breaks its lines.
NSString *OneLine(NSString *message, NSString *informative) {
    NSString *text = message;
    if ([informative length] != 0)
        text = [NSString stringWithFormat:@"%@ %@", message, informative];
    NSArray *lines =
        [text componentsSeparatedByCharactersInSet:[NSCharacterSet newlineCharacterSet]];
    return [lines componentsJoinedByString:@" "];
}

void RunAlert(NSString *message, NSString *informative) {
    @try {
        NSAlert *alert = [[[NSAlert alloc] init] autorelease];
        [alert setMessageText:message];
        // nil would show "No information".
        [alert setInformativeText:informative != nil ? informative : @""];
        [alert setShowsHelp:NO];
        [alert runModal];
    } @catch (NSException *e) {
        NSLog(@"An alert could not be shown: %@", [e reason]);
    }
}

void AlertOnMainThread(void *message) { MessageAlert(static_cast<CFStringRef>(message), nullptr); }

} // namespace

void MessageAlert(CFStringRef message, CFStringRef informative) {
    @autoreleasepool {
        NSString *text = (NSString *)message, *more = (NSString *)informative;
        if (HaveWindowServer() && EnsureApplication())
            RunAlert(text, more);
        else
            fprintf(stderr, "%s\n", [OneLine(text, more) UTF8String]);
    }
}

void DisplayError(const char *message) {
    CFStringRef text = nullptr;
    if (message != nullptr)
        text = CFStringCreateWithCString(kCFAllocatorDefault, message, kCFStringEncodingUTF8);
    if (text == nullptr) text = static_cast<CFStringRef>(CFRetain(CFSTR("An Error Occurred")));
    // Without a window system nothing has to run on the main thread, which may have no run loop
    // that would ever get to it.
    if ([NSThread isMainThread] || !HaveWindowServer())
        MessageAlert(text, nullptr);
    else
        dispatch_sync_f(dispatch_get_main_queue(),
                        const_cast<void *>(static_cast<const void *>(text)), AlertOnMainThread);
    CFRelease(text);
}
