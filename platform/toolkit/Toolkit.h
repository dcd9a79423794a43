/// The one place where AppKit on GNUstep and on macOS are treated differently.
#pragma once

#import <AppKit/AppKit.h>

/// Starts NSApplication on first use, inside a host that may not use it; NO without a window
/// system. Main thread only.
BOOL EnsureApplication(void);

/// Repairs the controls below a view that has just been read from an interface file.
void PrepareToolkitView(NSView *view);

/// Repairs a file panel before it is shown.
void PrepareToolkitPanel(NSSavePanel *panel);

/// Shows a text of any script in a label.
void SetToolkitText(NSTextField *label, NSString *text);

/// Prepares a window that has been placed, before it is shown.
void PrepareToolkitWindow(NSWindow *window);

/// What programs may use of the monitor with the pointer.
NSRect RoomAtPointer(void);

/// Prepares a panel in which a PPD file is chosen, before it is shown.
void PrepareToolkitOpenPanel(NSOpenPanel *panel);

/// The folder that holds the system's PPD files, or nil.
NSString *SystemPPDFolder(void);

/// Sounds the alert sound at once, also in a host that runs no event loop.
void SoundToolkitBeep(void);
