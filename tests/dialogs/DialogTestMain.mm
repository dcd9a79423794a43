#include "tests/dialogs/EndOfProcess.h"

#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#if __has_feature(address_sanitizer)
#include <objc/runtime.h>
#include <sanitizer/lsan_interface.h>

static IMP gLoadWindow;

static void LoadWindowUnwatched(id self, SEL selector) {
    __lsan_disable();
    ((void (*)(id, SEL))gLoadWindow)(self, selector);
    __lsan_enable();
}

/// GNUstep's reader of interface files leaks what it has read. What that refers to (a window's
/// controller) is not missed either.
static void LeaveOutInterfaceFiles() {
    const Method load = class_getInstanceMethod([NSWindowController class], @selector(loadWindow));
    gLoadWindow = method_setImplementation(load, (IMP)LoadWindowUnwatched);
}

static bool HaveLeaks() { return __lsan_do_recoverable_leak_check() != 0; }
#else
static void LeaveOutInterfaceFiles() {}
static bool HaveLeaks() { return false; }
#endif

int main(int argc, char **argv) {
    int result = 0;
    @autoreleasepool {
        testing::InitGoogleTest(&argc, argv);
        LeaveOutInterfaceFiles();
        result = RUN_ALL_TESTS();
    }
    if (HaveLeaks()) result = 1;
    EndProcess(result);
}
