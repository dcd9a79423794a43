#import "platform/toolkit/gnustep/ThemeBrowserRows.h"

#import "platform/toolkit/gnustep/FittedText.h"
#import "platform/toolkit/gnustep/ThemeColours.h"

#include <cmath>

static constexpr CGFloat kIconWidth = 22; // with the gap to the title

static void DrawFolder(NSRect room) {
    const NSRect body = NSMakeRect(NSMinX(room) + 4, std::floor(NSMidY(room)) - 5, 14, 10);
    [[NSColor colorWithCalibratedRed:0.36 green:0.6 blue:0.86 alpha:1] set];
    NSRectFill(NSMakeRect(NSMinX(body), NSMinY(body) - 1.5, 6, 3));
    [[NSBezierPath bezierPathWithRoundedRect:body xRadius:1.5 yRadius:1.5] fill];
}

static void DrawFile(NSRect room) {
    const NSRect sheet = NSMakeRect(NSMinX(room) + 5.5, std::floor(NSMidY(room)) - 6.5, 10, 13);
    [[NSColor whiteColor] set];
    NSRectFill(sheet);
    [ThemeGrey(0.55) set];
    [NSBezierPath strokeRect:sheet];
    for (int line = 0; line < 3; ++line)
        NSRectFill(NSMakeRect(NSMinX(sheet) + 2.5, NSMinY(sheet) + 3.5 + 2.5 * line, 5, 1));
}

static void DrawBranch(NSRect room, NSColor *colour) {
    const CGFloat x = NSMaxX(room) - 12, y = NSMidY(room);
    NSBezierPath *chevron = [NSBezierPath bezierPath];
    [chevron setLineWidth:1.5];
    [chevron moveToPoint:NSMakePoint(x - 2, y - 3.5)];
    [chevron lineToPoint:NSMakePoint(x + 2, y)];
    [chevron lineToPoint:NSMakePoint(x - 2, y + 3.5)];
    [colour set];
    [chevron stroke];
}

void DrawThemeBrowserRow(NSRect frame, NSBrowserCell *cell, BOOL isHighlighted, BOOL hasIcon) {
    NSColor *colour =
        [cell isEnabled] ? [NSColor controlTextColor] : [NSColor disabledControlTextColor];
    if (isHighlighted) {
        [ThemeAccent() set];
        NSRectFill(frame);
        colour = [NSColor selectedMenuItemTextColor];
    }
    if (hasIcon && [cell isLeaf]) DrawFile(frame);
    if (hasIcon && ![cell isLeaf]) DrawFolder(frame);
    if (![cell isLeaf]) DrawBranch(frame, colour);
    const CGFloat left = hasIcon ? kIconWidth : 4, right = [cell isLeaf] ? 2 : 20;
    DrawFittedText([cell stringValue],
                   NSMakeRect(NSMinX(frame) + left, NSMinY(frame), NSWidth(frame) - left - right,
                              NSHeight(frame)),
                   [NSFont systemFontOfSize:[[cell font] pointSize]], colour, NSLeftTextAlignment);
}
