/// Messages to the user.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

/// Shows a modal alert; `informative` may be null. Main thread only. Without a window system the
/// texts become one line on standard error.
void MessageAlert(CFStringRef message, CFStringRef informative);

/// Shows an error from any thread: at once on the main thread; from another one the caller waits
/// until the main thread has shown the alert and the user has closed it. `message` is UTF-8; if it
/// is not, "An Error Occurred" is shown.
void DisplayError(const char *message);
