/// Windows as the window manager sees them: their kind, their scale, other windows in the way.
#pragma once

#import <AppKit/AppKit.h>

/// Scales everything with the resolution that the desktop tells (the resource Xft.dpi), as far as
/// the screen has room. Before the application starts; the user's own GSScaleFactor comes first.
void RegisterScaleFactor(void);

/// What programs may use of the monitor at a point of the screen.
NSRect MonitorRoomAt(NSPoint point);

/// Tells the window manager that the window, which is not on the screen yet, is a dialog.
void MarkAsDialog(NSWindow *window);

/// Moves the window until it lies on no other one's very place.
void AvoidOtherWindows(NSWindow *window);
