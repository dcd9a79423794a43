#import "platform/toolkit/gnustep/Theme.h"

#import "platform/toolkit/gnustep/FittedText.h"
#import "platform/toolkit/gnustep/ThemeBrowserRows.h"
#import "platform/toolkit/gnustep/ThemeColours.h"
#import "platform/toolkit/gnustep/ThemeScrollers.h"

#import <GNUstepGUI/GSTheme.h>
#include <algorithm>
#include <cmath>
#include <objc/runtime.h>

static constexpr CGFloat kRadius = 5;      // of a button's corners, in points
static constexpr CGFloat kFieldRadius = 4; // of a field's
static constexpr CGFloat kMark = 14;       // a check box or a radio button
static constexpr CGFloat kMarkLeft = 3;    // room for the ring around it
static constexpr CGFloat kMarkGap = 5;     // to the title

#pragma mark Lines

/// The width of a thin line in points: whole pixels, one where a point is one.
static CGFloat PixelIn(NSView *view) {
    const CGFloat scale = [[view window] userSpaceScaleFactor];
    return scale > 1 ? std::floor(scale) / scale : 1;
}

static NSBezierPath *RoundedRect(NSRect rect, CGFloat radius) {
    return [NSBezierPath bezierPathWithRoundedRect:rect xRadius:radius yRadius:radius];
}

/// Filled, with a border of one pixel.
static void DrawPlate(NSRect frame, CGFloat radius, NSColor *fill, NSColor *border, NSView *view) {
    const CGFloat line = PixelIn(view);
    NSBezierPath *plate = RoundedRect(NSInsetRect(frame, line / 2, line / 2), radius);
    [fill set];
    [plate fill];
    [plate setLineWidth:line];
    [border set];
    [plate stroke];
}

static void DrawRing(NSRect frame, CGFloat radius) {
    NSBezierPath *ring = RoundedRect(NSInsetRect(frame, 1, 1), radius);
    [ring setLineWidth:2];
    [ThemeAccent() set];
    [ring stroke];
}

static void DrawFrame(NSRect frame) {
    [[NSColor controlShadowColor] set];
    NSFrameRect(frame);
}

#pragma mark Marks

/// Check boxes and radio buttons, without instance variables: cells that an interface file has made
/// become cells of these classes.
@interface ZELCheckCell : NSButtonCell
@end
@interface ZELRadioCell : ZELCheckCell
@end

/// The mark's place in the room of the cell's picture.
static NSRect MarkIn(NSRect room) {
    return NSMakeRect(NSMinX(room) + kMarkLeft, std::floor(NSMidY(room) - kMark / 2), kMark, kMark);
}

static NSColor *MarkFill(NSButtonCell *cell) {
    if (![cell isEnabled]) return [cell state] == NSOnState ? ThemeGrey(0.75) : ThemeGrey(0.94);
    if ([cell state] == NSOnState) return ThemeAccent();
    return [cell isHighlighted] ? ThemeGrey(0.85) : [NSColor textBackgroundColor];
}

static NSColor *MarkBorder(NSButtonCell *cell) {
    if (![cell isEnabled]) return ThemeGrey(0.8);
    return [cell state] == NSOnState ? ThemeAccent() : ThemeGrey(0.55);
}

static void DrawTick(NSRect mark, BOOL isFlipped) {
    const CGFloat down = isFlipped ? 1 : -1, x = NSMinX(mark), y = NSMidY(mark);
    NSBezierPath *tick = [NSBezierPath bezierPath];
    [tick setLineWidth:2];
    [tick setLineCapStyle:NSRoundLineCapStyle];
    [tick setLineJoinStyle:NSRoundLineJoinStyle];
    [tick moveToPoint:NSMakePoint(x + 3.5, y)];
    [tick lineToPoint:NSMakePoint(x + 6, y + 2.8 * down)];
    [tick lineToPoint:NSMakePoint(x + 10.5, y - 3 * down)];
    [[NSColor whiteColor] set];
    [tick stroke];
}

@implementation ZELCheckCell

// As for labels: AppKit does not clear what is drawn anew.
- (BOOL)isOpaque {
    return YES;
}

- (void)drawWithFrame:(NSRect)frame inView:(NSView *)view {
    [[NSColor windowBackgroundColor] set];
    NSRectFill(frame);
    [super drawWithFrame:frame inView:view];
}

- (CGFloat)markRadius {
    return 3;
}

- (void)drawSignIn:(NSRect)mark inView:(NSView *)view {
    DrawTick(mark, [view isFlipped]);
}

- (void)drawImage:(NSImage *)image withFrame:(NSRect)frame inView:(NSView *)view {
    const NSRect mark = MarkIn(frame);
    DrawPlate(mark, [self markRadius], MarkFill(self), MarkBorder(self), view);
    if ([self state] == NSOnState) [self drawSignIn:mark inView:view];
    const BOOL hasKeys = [self showsFirstResponder] && [[view window] firstResponder] == view;
    if (hasKeys) DrawRing(NSInsetRect(mark, -3, -3), [self markRadius] + 2);
}

@end

@implementation ZELRadioCell

- (CGFloat)markRadius {
    return kMark / 2;
}

- (void)drawSignIn:(NSRect)mark inView:(NSView *)view {
    [[NSColor whiteColor] set];
    [[NSBezierPath bezierPathWithOvalInRect:NSInsetRect(mark, 4, 4)] fill];
}

@end

void UseDrawnMark(NSButtonCell *cell, BOOL isRound) {
    if (![cell isMemberOfClass:[NSButtonCell class]]) return;
    object_setClass(cell, [ZELCheckCell class]);
    if (isRound) object_setClass(cell, [ZELRadioCell class]);
    // Nothing but a place for the mark.
    const NSSize size = NSMakeSize(kMarkLeft + kMark + kMarkGap, kMark + 6);
    NSImage *place = [[[NSImage alloc] initWithSize:size] autorelease];
    [cell setImage:place];
    [cell setAlternateImage:place];
}

#pragma mark Buttons

static BOOL IsDefault(NSCell *cell) {
    return [cell isKindOfClass:[NSButtonCell class]] && [cell isEnabled] &&
           [[(NSButtonCell *)cell keyEquivalent] isEqual:@"\r"];
}

static NSColor *ButtonFill(NSCell *cell, GSThemeControlState state) {
    const BOOL isPressed =
        state == GSThemeHighlightedState || state == GSThemeHighlightedFirstResponderState ||
        state == GSThemeSelectedState || state == GSThemeSelectedFirstResponderState;
    if (IsDefault(cell)) return isPressed ? [ThemeAccent() shadowWithLevel:0.25] : ThemeAccent();
    if (![cell isEnabled]) return ThemeGrey(0.95);
    return isPressed ? ThemeGrey(0.85) : [NSColor whiteColor];
}

static NSColor *ButtonBorder(NSCell *cell) {
    if (IsDefault(cell)) return [ThemeAccent() shadowWithLevel:0.15];
    return [cell isEnabled] ? ThemeGrey(0.72) : ThemeGrey(0.84);
}

/// Push buttons. No instance variables, as above.
@interface ZELPushCell : NSButtonCell
@end

@implementation ZELPushCell

/// White on the default button, and with an ellipsis where it is too long.
- (NSRect)drawTitle:(NSAttributedString *)title withFrame:(NSRect)frame inView:(NSView *)view {
    NSColor *colour =
        [self isEnabled] ? [NSColor controlTextColor] : [NSColor disabledControlTextColor];
    if (IsDefault(self)) colour = [NSColor whiteColor];
    DrawFittedText([title string], frame, [self font], colour, [self alignment]);
    return frame;
}

@end

void UseThemeButtons(NSView *view) {
    if (!IsThemeInUse()) return;
    if ([view isKindOfClass:[NSButton class]] && [(NSButton *)view isBordered] &&
        [[(NSButton *)view cell] isMemberOfClass:[NSButtonCell class]]) {
        object_setClass([(NSButton *)view cell], [ZELPushCell class]);
        NSImage *image = [(NSButton *)view image];
        if (image == [NSImage imageNamed:@"common_ret"]) [(NSButton *)view setImage:nil];
    }
    for (NSView *sub in [view subviews])
        UseThemeButtons(sub);
}

static BOOL HasEditor(NSView *view) {
    return [view isKindOfClass:[NSTextField class]] && [(NSTextField *)view currentEditor] != nil;
}

@interface ZELTheme : GSTheme
@end

@implementation ZELTheme

/// The default one's: AppKit goes back to that whenever a default changes and no theme is chosen.
- (NSString *)name {
    return @"GNUstep";
}

// The default button is seen by its colour and needs no arrow sign.
- (void)setKeyEquivalent:(NSString *)key forButtonCell:(NSButtonCell *)cell {
}

- (void)didSetDefaultButtonCell:(NSButtonCell *)cell {
}

- (void)drawButton:(NSRect)frame
                in:(NSCell *)cell
              view:(NSView *)view
             style:(int)style
             state:(GSThemeControlState)state {
    DrawPlate(frame, kRadius, ButtonFill(cell, state), ButtonBorder(cell), view);
}

- (GSThemeMargins)buttonMarginsForCell:(NSCell *)cell
                                 style:(int)style
                                 state:(GSThemeControlState)state {
    GSThemeMargins margins;
    margins.left = margins.right = margins.top = margins.bottom = 4;
    return margins;
}

/// Close around the control, whatever part of it AppKit takes for its inside.
- (void)drawFocusFrame:(NSRect)frame view:(NSView *)view {
    if ([view isKindOfClass:[NSMatrix class]]) return; // its cells have rings of their own
    if ([view isKindOfClass:[NSButton class]] && ![(NSButton *)view isBordered]) return;
    DrawRing([view bounds], kRadius);
}

- (void)drawBorderType:(NSBorderType)type frame:(NSRect)frame view:(NSView *)view {
    if (type != NSBezelBorder) {
        [super drawBorderType:type frame:frame view:view];
        return;
    }
    const BOOL isField = [view isKindOfClass:[NSTextField class]];
    const BOOL isOff = isField && ![(NSTextField *)view isEnabled];
    DrawPlate(frame, kFieldRadius, isOff ? ThemeGrey(0.96) : [NSColor textBackgroundColor],
              isOff ? ThemeGrey(0.84) : ThemeGrey(0.72), view);
    if (HasEditor(view)) DrawRing(frame, kFieldRadius);
}

/// Text keeps clear of the round corners.
- (NSSize)sizeForBorderType:(NSBorderType)type {
    return type == NSBezelBorder ? NSMakeSize(5, 2) : [super sizeForBorderType:type];
}

#pragma mark File panels

- (NSButtonCell *)cellForScrollerArrow:(NSScrollerArrow)part horizontal:(BOOL)horizontal {
    return [self scrollerCell:part == NSScrollerDecrementArrow ? kThemeLess : kThemeMore
                   horizontal:horizontal];
}
- (NSCell *)cellForScrollerKnob:(BOOL)horizontal {
    return [self scrollerCell:kThemeKnob horizontal:horizontal];
}
- (NSCell *)cellForScrollerKnobSlot:(BOOL)horizontal {
    return [self scrollerCell:kThemeSlot horizontal:horizontal];
}

/// The theme owns the cells: a scroller does not retain them.
- (NSButtonCell *)scrollerCell:(ThemeScrollerPart)part horizontal:(BOOL)horizontal {
    NSButtonCell *cell = ThemeScrollerCell(part, horizontal);
    [self setName:@"ZELScroller" forElement:cell temporary:YES];
    return cell;
}

- (NSColor *)browserHeaderTextColor {
    return [NSColor controlTextColor];
}

- (void)drawBrowserHeaderCell:(NSTableHeaderCell *)cell
                    withFrame:(NSRect)frame
                       inView:(NSView *)view {
    [ThemeGrey(0.92) set];
    NSRectFill(frame);
    DrawFrame(frame);
}

- (void)drawBrowserInteriorWithFrame:(NSRect)frame
                            withCell:(NSBrowserCell *)cell
                              inView:(NSView *)view
                           withImage:(NSImage *)image
                      alternateImage:(NSImage *)alternateImage
                       isHighlighted:(BOOL)isHighlighted
                               state:(int)state
                              isLeaf:(BOOL)isLeaf {
    DrawThemeBrowserRow(frame, cell, isHighlighted || state != 0, image != nil);
}

#pragma mark Bezels

// Everywhere else a frame of one pixel takes the place of light and shadow.

- (NSRect)drawWhiteBezel:(NSRect)border withClip:(NSRect)clip {
    DrawFrame(border);
    return NSInsetRect(border, 1, 1);
}
- (NSRect)drawGrayBezel:(NSRect)border withClip:(NSRect)clip {
    return [self drawWhiteBezel:border withClip:clip];
}
- (NSRect)drawDarkBezel:(NSRect)border withClip:(NSRect)clip {
    return [self drawWhiteBezel:border withClip:clip];
}
- (NSRect)drawLightBezel:(NSRect)border withClip:(NSRect)clip {
    return [self drawWhiteBezel:border withClip:clip];
}
- (NSRect)drawFramePhoto:(NSRect)border withClip:(NSRect)clip {
    return [self drawWhiteBezel:border withClip:clip];
}
- (NSRect)drawGroove:(NSRect)border withClip:(NSRect)clip {
    return [self drawWhiteBezel:border withClip:clip];
}
- (NSRect)drawButton:(NSRect)border withClip:(NSRect)clip {
    return [self drawWhiteBezel:border withClip:clip];
}
- (NSRect)drawDarkButton:(NSRect)border withClip:(NSRect)clip {
    return [self drawWhiteBezel:border withClip:clip];
}

@end

void UseTheme(void) {
    if ([[NSUserDefaults standardUserDefaults] stringForKey:@"GSTheme"] != nil) return;
    [GSTheme setTheme:[[[ZELTheme alloc] initWithBundle:nil] autorelease]];
}

BOOL IsThemeInUse(void) { return [[GSTheme theme] isKindOfClass:[ZELTheme class]]; }
