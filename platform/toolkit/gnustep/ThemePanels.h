/// How file panels look in the theme.
#pragma once

#import <AppKit/AppKit.h>

/// Makes room in a panel: without icon, heading and the buttons for floppy disks. Does nothing
/// where another theme is in use. May be called again for the same panel.
void UseThemePanel(NSSavePanel *panel);

// What the theme draws in them.

/// A row of a browser: a folder or a file, and a chevron after what can be entered.
void DrawThemeBrowserRow(NSRect frame, NSBrowserCell *cell, BOOL isHighlighted, BOOL hasIcon);

enum ThemeScrollerPart { kThemeKnob, kThemeSlot, kThemeLess, kThemeMore };

/// A part of a scroller; autoreleased.
NSButtonCell *ThemeScrollerCell(ThemeScrollerPart part, BOOL isHorizontal);
