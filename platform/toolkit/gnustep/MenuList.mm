#import "platform/toolkit/gnustep/MenuList.h"

#import "platform/toolkit/gnustep/FittedText.h"
#import "platform/toolkit/gnustep/WindowSetup.h"

#include <algorithm>
#include <cmath>
#include <vector>

// In points.
static constexpr CGFloat kBorder = 1, kPadding = 4; // above the first row and below the last
static constexpr CGFloat kTickWidth = 22, kRightMargin = 16, kScrollerWidth = 10;
static constexpr CGFloat kFewestRows = 8; // shown even where the pop-up is close to the edge

/// The widest title decides, but measuring ten thousand takes longer than a person waits.
static constexpr size_t kMeasuredTitles = 50;

@implementation ZELMenuList

@synthesize tickedRow = _tickedRow;

// What the superclass keeps for each item, and would lay out again with each that comes.
- (void)itemAdded:(NSNotification *)notification {
}
- (void)itemRemoved:(NSNotification *)notification {
}
- (void)itemChanged:(NSNotification *)notification {
    [self setNeedsDisplay:YES];
}
- (void)sizeToFit {
    [self setNeedsSizing:NO];
}

- (BOOL)isFlipped {
    return YES;
}
- (BOOL)isOpaque {
    return YES;
}

- (NSInteger)rows {
    return [[self menu] numberOfItems];
}

- (CGFloat)rowHeight {
    const NSRect letters = [[self font] boundingRectForFont];
    return std::max<CGFloat>(22, std::ceil(letters.size.height) + 4);
}

- (CGFloat)listHeight {
    return [self rows] * [self rowHeight] + 2 * (kPadding + kBorder);
}

- (CGFloat)furthestScroll {
    return std::max<CGFloat>(0, [self listHeight] - NSHeight([self bounds]));
}

- (NSInteger)rowsOnPage {
    const CGFloat height = NSHeight([self bounds]) - 2 * [self rowHeight];
    return std::max<NSInteger>(1, (NSInteger)(height / [self rowHeight]));
}

#pragma mark Place

- (CGFloat)widthOfTitles {
    std::vector<NSString *> titles;
    for (NSMenuItem *item in [[self menu] itemArray])
        titles.push_back([item title]);
    const size_t measured = std::min(titles.size(), kMeasuredTitles);
    std::partial_sort(titles.begin(), titles.begin() + (ptrdiff_t)measured, titles.end(),
                      [](NSString *a, NSString *b) { return [a length] > [b length]; });
    NSDictionary *attributes = [NSDictionary dictionaryWithObject:[self font]
                                                           forKey:NSFontAttributeName];
    CGFloat width = 0;
    for (size_t i = 0; i < measured; ++i)
        width = std::max(width, [titles[i] sizeWithAttributes:attributes].width);
    return std::ceil(width);
}

/// Called by AppKit to show the menu: `cell` is the pop-up on the screen, and the selected row
/// comes to lie over it where the screen has room for that.
- (void)setWindowFrameForAttachingToRect:(NSRect)cell
                                onScreen:(NSScreen *)screen
                           preferredEdge:(NSRectEdge)edge
                       popUpSelectedItem:(NSInteger)selected {
    const NSRect room = MonitorRoomAt(NSMakePoint(NSMidX(cell), NSMidY(cell)));
    const CGFloat scale = [[self window] userSpaceScaleFactor];
    const CGFloat row = [self rowHeight] * scale, height = [self listHeight] * scale;
    const CGFloat edgeSize = (kPadding + kBorder) * scale;
    const CGFloat above = std::max<NSInteger>(selected, 0) * row + edgeSize;
    const CGFloat wantedTop = NSMidY(cell) + row / 2 + above;
    CGFloat top = std::min(wantedTop, NSMaxY(room));
    CGFloat bottom = std::max(wantedTop - height, NSMinY(room));
    const CGFloat least = std::min({height, NSHeight(room), kFewestRows * row});
    if (height <= NSHeight(room)) {
        top = std::max(top, NSMinY(room) + height);
        bottom = top - height;
    } else if (top - bottom < least) {
        if (bottom > NSMinY(room)) bottom = std::max(NSMinY(room), top - least);
        top = std::min(NSMaxY(room), bottom + least);
    }
    const CGFloat width = std::min(
        std::max(NSWidth(cell), ([self widthOfTitles] + kTickWidth + kRightMargin) * scale),
        NSWidth(room));
    const CGFloat left = std::min(NSMinX(cell), NSMaxX(room) - width);
    [[self window] setFrame:NSMakeRect(std::max(left, NSMinX(room)), bottom, width, top - bottom)
                    display:NO];
    [self setFrame:[[[self window] contentView] bounds]];
    _scrolled = std::clamp<CGFloat>((wantedTop - top) / scale, 0, [self furthestScroll]);
    [self highlightRow:selected];
}

#pragma mark Rows

- (NSRect)rectOfItemAtIndex:(NSInteger)index {
    return NSMakeRect(kBorder, kBorder + kPadding + index * [self rowHeight] - _scrolled,
                      NSWidth([self bounds]) - 2 * kBorder, [self rowHeight]);
}

/// What tells that there is more above, or below.
- (NSRect)upperStrip {
    if (_scrolled <= 0) return NSZeroRect;
    return NSMakeRect(0, 0, NSWidth([self bounds]), [self rowHeight]);
}
- (NSRect)lowerStrip {
    if (_scrolled >= [self furthestScroll]) return NSZeroRect;
    return NSMakeRect(0, NSHeight([self bounds]) - [self rowHeight], NSWidth([self bounds]),
                      [self rowHeight]);
}

- (NSRect)scroller {
    if ([self furthestScroll] <= 0) return NSZeroRect;
    const CGFloat strip = [self rowHeight];
    return NSMakeRect(NSWidth([self bounds]) - kScrollerWidth, strip, kScrollerWidth,
                      NSHeight([self bounds]) - 2 * strip);
}

- (NSRect)scrollerKnob {
    const NSRect track = NSInsetRect([self scroller], 2, 0);
    const CGFloat length =
        std::max<CGFloat>(20, NSHeight(track) * NSHeight([self bounds]) / [self listHeight]);
    const CGFloat way = NSHeight(track) - length;
    return NSMakeRect(NSMinX(track), NSMinY(track) + way * _scrolled / [self furthestScroll],
                      NSWidth(track), length);
}

- (NSPoint)pointFromScreen:(NSPoint)point {
    return [self convertPoint:[[self window] convertScreenToBase:point] fromView:nil];
}

- (BOOL)isInside:(NSPoint)screenPoint {
    return NSMouseInRect(screenPoint, [[self window] frame], NO);
}

- (NSInteger)indexOfItemAtPoint:(NSPoint)point {
    if (!NSMouseInRect(point, NSInsetRect([self bounds], kBorder, 0), YES)) return -1;
    const CGFloat row = (point.y + _scrolled - kBorder - kPadding) / [self rowHeight];
    return row >= 0 && row < [self rows] ? (NSInteger)row : -1;
}

- (MenuListPart)partAtScreenPoint:(NSPoint)screenPoint row:(NSInteger *)row {
    const NSPoint point = [self pointFromScreen:screenPoint];
    if (NSMouseInRect(point, [self upperStrip], YES)) return kMenuScrollUp;
    if (NSMouseInRect(point, [self lowerStrip], YES)) return kMenuScrollDown;
    if (NSMouseInRect(point, [self scroller], YES)) return kMenuScroller;
    *row = [self indexOfItemAtPoint:point];
    return *row >= 0 ? kMenuRow : kMenuNothing;
}

#pragma mark Scrolling

- (void)scrollToOffset:(CGFloat)offset {
    _scrolled = std::clamp<CGFloat>(offset, 0, [self furthestScroll]);
    [self setNeedsDisplay:YES];
}

- (void)scrollRows:(CGFloat)rows {
    [self scrollToOffset:_scrolled + rows * [self rowHeight]];
}

- (void)scrollToScreenPoint:(NSPoint)point {
    const NSRect track = [self scroller];
    const CGFloat knob = NSHeight([self scrollerKnob]);
    const CGFloat way = std::max<CGFloat>(1, NSHeight(track) - knob);
    const CGFloat top = [self pointFromScreen:point].y - NSMinY(track) - knob / 2;
    [self scrollToOffset:top / way * [self furthestScroll]];
}

- (void)highlightRow:(NSInteger)row {
    [self setHighlightedItemIndex:row];
    [self setNeedsDisplay:YES];
    if (row < 0 || [self furthestScroll] <= 0) return;
    // Clear of the strips, which the first and the last row do not have beside them.
    const CGFloat strip = [self rowHeight], top = kBorder + kPadding + row * [self rowHeight];
    const CGFloat below = top + [self rowHeight] + strip - NSHeight([self bounds]);
    [self scrollToOffset:std::min(std::max(_scrolled, below), top - strip)];
}

#pragma mark Drawing

- (void)drawChevronIn:(NSRect)strip pointing:(CGFloat)direction {
    if (NSIsEmptyRect(strip)) return;
    [[NSColor controlBackgroundColor] set];
    NSRectFill(NSInsetRect(strip, kBorder, kBorder));
    NSBezierPath *chevron = [NSBezierPath bezierPath];
    [chevron setLineWidth:1.5];
    [chevron moveToPoint:NSMakePoint(NSMidX(strip) - 4, NSMidY(strip) - 2 * direction)];
    [chevron lineToPoint:NSMakePoint(NSMidX(strip), NSMidY(strip) + 2 * direction)];
    [chevron lineToPoint:NSMakePoint(NSMidX(strip) + 4, NSMidY(strip) - 2 * direction)];
    [[NSColor controlTextColor] set];
    [chevron stroke];
}

- (void)drawTickIn:(NSRect)row colour:(NSColor *)colour {
    NSBezierPath *tick = [NSBezierPath bezierPath];
    const CGFloat x = NSMinX(row) + 7, y = NSMidY(row);
    [tick setLineWidth:1.5];
    [tick moveToPoint:NSMakePoint(x, y)];
    [tick lineToPoint:NSMakePoint(x + 3, y + 3.5)];
    [tick lineToPoint:NSMakePoint(x + 9, y - 4)];
    [colour set];
    [tick stroke];
}

- (void)drawRow:(NSInteger)index {
    NSMenuItem *item = [[self menu] itemAtIndex:index];
    const NSRect row = [self rectOfItemAtIndex:index];
    const BOOL isHighlighted = index == [self highlightedItemIndex] && [item isEnabled];
    NSColor *colour = [NSColor controlTextColor];
    if (isHighlighted) {
        [[NSColor selectedMenuItemColor] set];
        NSRectFill(row);
        colour = [NSColor selectedMenuItemTextColor];
    } else if (![item isEnabled]) {
        colour = [NSColor disabledControlTextColor];
    }
    if (index == _tickedRow) [self drawTickIn:row colour:colour];
    DrawFittedText([item title],
                   NSMakeRect(NSMinX(row) + kTickWidth, NSMinY(row),
                              NSWidth(row) - kTickWidth - kScrollerWidth, NSHeight(row)),
                   [self font], colour, NSLeftTextAlignment);
}

- (void)drawScroller {
    if (NSIsEmptyRect([self scroller])) return;
    const NSRect knob = [self scrollerKnob];
    [[NSColor controlShadowColor] set];
    [[NSBezierPath bezierPathWithRoundedRect:knob
                                     xRadius:NSWidth(knob) / 2
                                     yRadius:NSWidth(knob) / 2] fill];
}

- (void)drawRect:(NSRect)dirty {
    const NSRect bounds = [self bounds];
    [[NSColor textBackgroundColor] set];
    NSRectFill(bounds);
    const NSInteger first = std::max<NSInteger>(0, (NSInteger)(_scrolled / [self rowHeight]) - 1);
    const NSInteger end = std::min([self rows], first + [self rowsOnPage] + 5);
    for (NSInteger i = first; i < end; ++i)
        [self drawRow:i];
    [self drawScroller];
    [self drawChevronIn:[self upperStrip] pointing:-1];
    [self drawChevronIn:[self lowerStrip] pointing:1];
    [[NSColor controlShadowColor] set];
    NSFrameRect(bounds);
}

@end
