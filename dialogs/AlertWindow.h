/// The alert itself, where there are windows.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

/// Shows a modal alert until the user closes it; `informative` may be null. False when no window
/// can be shown. Main thread only.
bool RunAlertWindow(CFStringRef message, CFStringRef informative);
