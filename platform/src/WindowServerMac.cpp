// Over ssh, and in a daemon, macOS has no window server for a process, and ends one that asks
// AppKit for windows there.
#include <ApplicationServices/ApplicationServices.h>
#include <platform/Platform.h>

bool PlatformHasWindowServer() {
    static const bool has = [] {
        CFDictionaryRef session = CGSessionCopyCurrentDictionary();
        if (!session) return false;
        CFRelease(session);
        return true;
    }();
    return has;
}
