/// How the dialogs look in a host that brings no AppKit of its own: as people know windows from
/// today's desktops. A host that is a GNUstep application keeps its own theme.
#pragma once

#import <AppKit/AppKit.h>

/// To be called when the application has started.
void UseTheme(void);

/// Is it in use?
BOOL IsThemeInUse(void);

/// Gives a check box, or a radio button's cell, a mark that is drawn and no picture.
void UseDrawnMark(NSButtonCell *cell, BOOL isRound);

/// Gives the push buttons in a view the theme's titles. For windows that AppKit makes by itself.
void UseThemeButtons(NSView *view);
