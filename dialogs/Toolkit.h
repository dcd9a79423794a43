/// The one place where AppKit on GNUstep and on macOS are treated differently.
///
/// Defines EnsureApplication of DialogSupport.h too.
#pragma once

#import <AppKit/AppKit.h>

/// Repairs the controls below a view that has just been read from an interface file.
void PrepareToolkitView(NSView *view);

/// Repairs a file panel before it is shown.
void PrepareToolkitPanel(NSSavePanel *panel);

/// Sounds the alert sound at once, also in a host that runs no event loop.
void SoundToolkitBeep(void);
