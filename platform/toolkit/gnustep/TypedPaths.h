/// Full paths in an open panel's field.
#pragma once

#import <AppKit/AppKit.h>

/// Lets the user type or paste the full path of a file in the panel: once there is such a file, and
/// the panel's delegate shows it, it is selected and OK can be pressed. GNUstep's own panel opens
/// the folders on the way, but never takes the file.
void AcceptTypedPaths(NSOpenPanel *panel);
