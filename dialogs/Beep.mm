#include "dialogs/Beep.h"

#import "platform/toolkit/Toolkit.h"

#include <platform/Platform.h>

void SoundBeep() {
    @autoreleasepool {
        // The sound comes from the window system, which a host without windows has not reached yet.
        if (PlatformHasWindowServer() && EnsureApplication()) SoundToolkitBeep();
    }
}
