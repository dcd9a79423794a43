// GNUstep's own classes read their settings (language, theme) under the lock of the preferences.
// Where it cannot be made, on a full disk for instance, they try for 66 seconds each time, and they
// wait 20 for one whose maker was killed. Here that wait is as short as that of ours.
#include "CFBridge.h"
#include "PreferencesLock.h"
#include <memory>
#include <mutex>
#import <objc/runtime.h>

namespace {

std::mutex gMutex;
/// None while nobody reads or writes.
std::unique_ptr<PreferencesLock> gLock;

BOOL LockDefaults(id, SEL, BOOL *wasLocked) {
    const std::lock_guard<std::mutex> guard(gMutex);
    *wasLocked = gLock ? YES : NO;
    if (!gLock)
        gLock = std::make_unique<PreferencesLock>(
            [GSDefaultsRootForUser(NSUserName()) fileSystemRepresentation]);
    // Also without a lock: reading is better than waiting, and files are replaced in one step.
    return YES;
}

void UnlockDefaults(id, SEL) {
    const std::lock_guard<std::mutex> guard(gMutex);
    gLock.reset();
}

/// A later version of the library may do without these methods.
void ReplaceMethod(const char *name, IMP implementation) {
    // Not by a message to the class: its preparation needs arguments in UTF-8, or ends the process.
    Class defaults = objc_getClass("NSUserDefaults");
    Method method = class_getInstanceMethod(defaults, sel_registerName(name));
    if (method) (void)method_setImplementation(method, implementation);
}

} // namespace

@interface PlatformDefaultsLock : NSObject
@end

@implementation PlatformDefaultsLock
+ (void)load {
    ReplaceMethod("_lockDefaultsFile:", (IMP)LockDefaults);
    ReplaceMethod("_unlockDefaultsFile", (IMP)UnlockDefaults);
}
@end
