// Over ssh, and in a daemon, macOS has no window server for a process, and ends one that asks
// AppKit for windows there.
#include "WindowServer.h"
#include <ApplicationServices/ApplicationServices.h>

bool IsWindowServerThere() {
    CFDictionaryRef session = CGSessionCopyCurrentDictionary();
    if (!session) return false;
    CFRelease(session);
    return true;
}
