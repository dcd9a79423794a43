/// Pop-up buttons whose menu is a scrolling list, opened by a click and left open.
///
/// GNUstep's own menu makes a cell for each entry, which takes half a minute for 10,000, lies
/// partly off the screen when it is long, chooses what happens to be under the pointer when a
/// button is let go, and leaves the keyboard to the window behind it.
#pragma once

#import <AppKit/AppKit.h>

/// Gives the pop-up such a menu; its items and what is selected stay. Nothing to undo.
void UseMenuList(NSPopUpButton *popup);
