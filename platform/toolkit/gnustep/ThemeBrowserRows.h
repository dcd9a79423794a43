/// How the rows of a file panel's browser look in the theme.
#pragma once

#import <AppKit/AppKit.h>

/// A row of a browser: a folder or a file, and a chevron after what can be entered.
void DrawThemeBrowserRow(NSRect frame, NSBrowserCell *cell, BOOL isHighlighted, BOOL hasIcon);
