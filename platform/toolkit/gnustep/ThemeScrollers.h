/// How scrollers look in the theme.
#pragma once

#import <AppKit/AppKit.h>

enum ThemeScrollerPart { kThemeKnob, kThemeSlot, kThemeLess, kThemeMore };

/// A part of a scroller; autoreleased.
NSButtonCell *ThemeScrollerCell(ThemeScrollerPart part, BOOL isHorizontal);
