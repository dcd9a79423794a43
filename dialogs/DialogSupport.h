/// What the dialogs share: interface files, windows, sheets, long texts.
#pragma once

#import <AppKit/AppKit.h>

/// Path of NAME.nib (compiled) or NAME.xib in the bundle's resources, or nil.
NSString *InterfaceFilePath(NSBundle *bundle, NSString *name);

/// To be called when a window has been loaded from an interface file: repairs controls that GNUstep
/// reads differently.
void PrepareLoadedWindow(NSWindow *window);

/// Replaces every title in the window by its translation in the bundle's table; the English title
/// is the key. A control grows no wider than the interface file made it.
void LocalizeLoadedWindow(NSWindow *window, NSBundle *bundle, NSString *table);

/// Puts a window that is not on the screen yet where the user has dragged it last, by that name, or
/// in the middle of the pointer's screen.
void PlaceWindow(NSWindow *window, NSString *autosaveName);

/// To be called before the controller of a loaded window is released: drops the bindings, which
/// retain the controller, and detaches delegates.
void ReleaseLoadedWindow(NSWindow *window);

/// Ends the running modal session, also when called outside event handling.
void StopModalAndWake(void);

/// Inserts an item without removing an existing one of the same title (NSPopUpButton would).
NSMenuItem *InsertPopUpItem(NSPopUpButton *popup, NSString *title, NSInteger tag, NSInteger index);

/// Shows a text that may be too long for its field: its middle gives way, and a tool tip has it
/// all.
void ShowLongText(NSTextField *field, NSString *text);

/// Makes Return press `button` instead of `former`.
void MakeDefaultButton(NSButton *button, NSButton *former);

/// Shows an alert as a sheet. `didEnd` (may be NULL) has the form
/// alertDidEnd:(NSAlert *)alert returnCode:(NSInteger)code contextInfo:(void *)contextInfo. It may
/// run before this function returns.
void BeginAlertSheet(NSAlert *alert, NSWindow *window, id delegate, SEL didEnd);

/// Shows a panel as a sheet. `folder` and `name` may be nil. `didEnd` as above, with the panel as
/// its first argument.
void BeginPanelSheet(NSSavePanel *panel, NSWindow *window, NSURL *folder, NSString *name,
                     id delegate, SEL didEnd);
