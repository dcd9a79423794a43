/// The theme's colours.
#pragma once

#import <AppKit/AppKit.h>

/// Registers the colours that AppKit asks for by name. Before the application starts; what the user
/// has set comes first.
void RegisterThemeColours(void);

/// The desktop's accent colour, of which the default button is filled.
NSColor *ThemeAccent(void);

/// From 0, black, to 1, white.
NSColor *ThemeGrey(CGFloat white);
