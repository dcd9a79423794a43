/// What the dialogs share: starting AppKit inside a host that may not use it, the interface files,
/// and the places where AppKit on GNUstep needs a hand (nothing to do on macOS).
#pragma once

#import <AppKit/AppKit.h>

/// Is there a window system? Any thread; asked once.
BOOL HaveWindowServer(void);

/// Starts NSApplication on first use; NO without a window system. Main thread only.
BOOL EnsureApplication(void);

/// Path of NAME.nib (compiled) or NAME.xib in the bundle's resources, or nil.
NSString *InterfaceFilePath(NSBundle *bundle, NSString *name);

/// To be called when a window has been loaded from an interface file: repairs controls that GNUstep
/// reads differently.
void PrepareLoadedWindow(NSWindow *window);

/// To be called before the controller of a loaded window is released: drops the bindings, which
/// retain the controller, and detaches delegates.
void ReleaseLoadedWindow(NSWindow *window);

/// Ends the running modal session, also when called outside event handling.
void StopModalAndWake(void);

/// Inserts an item without removing an existing one of the same title (NSPopUpButton would).
NSMenuItem *InsertPopUpItem(NSPopUpButton *popup, NSString *title, NSInteger tag, NSInteger index);
