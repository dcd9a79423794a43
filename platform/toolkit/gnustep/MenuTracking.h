/// What mouse and keyboard do while a menu's list is open.
#pragma once

#import <AppKit/AppKit.h>

@class ZELMenuList;

/// Handles every event until a row is chosen, which it returns, or the list is left: -1. The list
/// is on the screen, above `window`. `press` is the mouse button that opened it, or nil; let go
/// where it was pressed, it leaves the list open.
NSInteger TrackMenu(ZELMenuList *list, NSWindow *window, NSEvent *press);
