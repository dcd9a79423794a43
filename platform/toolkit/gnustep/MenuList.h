/// The list that a pop-up menu shows: one row for each item of the menu.
#pragma once

#import <AppKit/AppKit.h>

/// What is at a point of the list.
enum MenuListPart { kMenuNothing, kMenuRow, kMenuScrollUp, kMenuScrollDown, kMenuScroller };

/// The representation of a menu that a pop-up button owns. It draws the rows that are to be seen
/// and keeps nothing for each item, so that its cost does not grow with the menu.
@interface ZELMenuList : NSMenuView {
    CGFloat _scrolled; // points of the list above the window's upper edge
    NSInteger _tickedRow;
}

/// The menu's present choice, or -1.
@property (nonatomic, assign) NSInteger tickedRow;

/// The height of a row, in points.
- (CGFloat)rowHeight;

/// What is at a point of the screen. For kMenuRow `*row` is its index.
- (MenuListPart)partAtScreenPoint:(NSPoint)point row:(NSInteger *)row;

/// Is the point of the screen in the list's window?
- (BOOL)isInside:(NSPoint)screenPoint;

/// Moves the list by that many rows; positive numbers show what is further down.
- (void)scrollRows:(CGFloat)rows;

/// Moves the list to where its scroller is dragged.
- (void)scrollToScreenPoint:(NSPoint)point;

/// Highlights the row and scrolls until it is seen; -1 highlights none.
- (void)highlightRow:(NSInteger)row;

/// Rows that are seen at once, at least 1.
- (NSInteger)rowsOnPage;
@end
