/// What both dialogs do around their window: begin, tell why they cannot be shown, end. Main thread
/// only.
#pragma once

#import <AppKit/AppKit.h>

/// Starts AppKit for the dialog of that name. NO when it cannot be shown; one line on standard
/// error says why.
BOOL BeginDialog(const char *dialogName);

/// Loads the controller's window; NO, said as above, when there is no controller or no window.
BOOL LoadDialog(NSWindowController *controller, const char *dialogName);

/// To be called for an exception: says that the dialog failed, and why. Always NO.
BOOL DialogFailed(const char *dialogName, NSString *reason);

/// Releases the controller, which may be nil, and what has been loaded of its window.
void EndDialog(NSWindowController *controller);
