#include "support/Alerts.h"

#include "dialogs/AlertWindow.h"

#import <Foundation/Foundation.h>
#include <cstdio>
#include <dispatch/dispatch.h>
#include <platform/Platform.h>

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

void AlertOnMainThread(void *message) { MessageAlert(static_cast<CFStringRef>(message), nullptr); }

} // namespace

void MessageAlert(CFStringRef message, CFStringRef informative) {
    @autoreleasepool {
        if (PlatformHasWindowServer() && RunAlertWindow(message, informative)) return;
        NSString *line = OneLine((NSString *)message, (NSString *)informative);
        fprintf(stderr, "%s\n", [line UTF8String]);
    }
}

void DisplayError(const char *message) {
    CFStringRef text = nullptr;
    if (message != nullptr)
        text = CFStringCreateWithCString(kCFAllocatorDefault, message, kCFStringEncodingUTF8);
    if (text == nullptr) text = static_cast<CFStringRef>(CFRetain(CFSTR("An Error Occurred")));
    // Without a window system nothing has to run on the main thread, which may have no run loop
    // that would ever get to it.
    if ([NSThread isMainThread] || !PlatformHasWindowServer())
        MessageAlert(text, nullptr);
    else
        dispatch_sync_f(dispatch_get_main_queue(),
                        const_cast<void *>(static_cast<const void *>(text)), AlertOnMainThread);
    CFRelease(text);
}
