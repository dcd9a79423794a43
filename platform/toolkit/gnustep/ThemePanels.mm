#import "platform/toolkit/gnustep/ThemePanels.h"

#import "platform/toolkit/gnustep/FittedText.h"
#import "platform/toolkit/gnustep/Theme.h"

#include <algorithm>
#include <cmath>

static NSColor *Grey(CGFloat white) { return [NSColor colorWithCalibratedWhite:white alpha:1]; }

#pragma mark Scrollers

@interface ZELScrollerCell : NSButtonCell {
    ThemeScrollerPart _part;
    BOOL _isHorizontal;
}
@end

@implementation ZELScrollerCell

- (id)initWithPart:(ThemeScrollerPart)part isHorizontal:(BOOL)isHorizontal {
    if ((self = [super initTextCell:@""])) {
        _part = part;
        _isHorizontal = isHorizontal;
        // As AppKit sets up its own.
        [self setButtonType:part == kThemeKnob ? NSMomentaryChangeButton : NSMomentaryLightButton];
    }
    return self;
}

- (void)drawKnobIn:(NSRect)frame {
    const NSRect knob = _isHorizontal ? NSInsetRect(frame, 2, 4) : NSInsetRect(frame, 4, 2);
    const CGFloat radius = std::min(NSWidth(knob), NSHeight(knob)) / 2;
    [Grey(0.7) set];
    [[NSBezierPath bezierPathWithRoundedRect:knob xRadius:radius yRadius:radius] fill];
}

/// `flipped`: y goes down.
- (void)drawArrowIn:(NSRect)frame isFlipped:(BOOL)flipped {
    const CGFloat x = NSMidX(frame), y = NSMidY(frame);
    const CGFloat forward = _part == kThemeMore ? 1 : -1, down = flipped ? forward : -forward;
    NSBezierPath *arrow = [NSBezierPath bezierPath];
    [arrow setLineWidth:1.5];
    if (_isHorizontal) {
        [arrow moveToPoint:NSMakePoint(x - 2 * forward, y - 3.5)];
        [arrow lineToPoint:NSMakePoint(x + 2 * forward, y)];
        [arrow lineToPoint:NSMakePoint(x - 2 * forward, y + 3.5)];
    } else {
        [arrow moveToPoint:NSMakePoint(x - 3.5, y - 2 * down)];
        [arrow lineToPoint:NSMakePoint(x, y + 2 * down)];
        [arrow lineToPoint:NSMakePoint(x + 3.5, y - 2 * down)];
    }
    [Grey(0.45) set];
    [arrow stroke];
}

- (void)drawWithFrame:(NSRect)frame inView:(NSView *)view {
    [Grey([self isHighlighted] && _part != kThemeKnob ? 0.86 : 0.94) set];
    NSRectFill(frame);
    if (_part == kThemeKnob) [self drawKnobIn:frame];
    if (_part == kThemeLess || _part == kThemeMore)
        [self drawArrowIn:frame isFlipped:[view isFlipped]];
}

@end

NSButtonCell *ThemeScrollerCell(ThemeScrollerPart part, BOOL isHorizontal) {
    return [[[ZELScrollerCell alloc] initWithPart:part isHorizontal:isHorizontal] autorelease];
}

#pragma mark Rows

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
    [Grey(0.55) set];
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

#pragma mark Panels

static void HideOldParts(NSView *view) {
    for (NSView *sub in [view subviews]) {
        const NSInteger tag = [sub tag];
        const BOOL isButton = [sub isKindOfClass:[NSButton class]];
        if ([sub isKindOfClass:[NSImageView class]] || [sub isKindOfClass:[NSBox class]] ||
            tag == NSFileHandlingPanelTitleField ||
            (isButton &&
             (tag == NSFileHandlingPanelDiskButton || tag == NSFileHandlingPanelDiskEjectButton)))
            [sub setHidden:YES];
        if (isButton && tag == NSFileHandlingPanelHomeButton) {
            [(NSButton *)sub setImagePosition:NSNoImage];
            [(NSButton *)sub setTitle:@"\u2302"]; // a house
        }
        HideOldParts(sub);
    }
}

static NSBrowser *BrowserIn(NSView *view) {
    for (NSView *sub in [view subviews]) {
        NSBrowser *browser =
            [sub isKindOfClass:[NSBrowser class]] ? (NSBrowser *)sub : BrowserIn(sub);
        if (browser != nil) return browser;
    }
    return nil;
}

/// Wide enough for their titles in any language.
static void WidenButtons(NSView *view) {
    constexpr CGFloat kWidth = 104, kGap = 10;
    const CGFloat right = NSMaxX([view bounds]) - 8;
    for (NSView *sub in [view subviews]) {
        if ([sub isKindOfClass:[NSButton class]]) {
            const NSInteger tag = [sub tag];
            NSRect frame = [sub frame];
            if (tag == NSFileHandlingPanelOKButton)
                frame = NSMakeRect(right - kWidth, NSMinY(frame), kWidth, NSHeight(frame));
            if (tag == NSFileHandlingPanelCancelButton)
                frame =
                    NSMakeRect(right - 2 * kWidth - kGap, NSMinY(frame), kWidth, NSHeight(frame));
            if (tag == NSFileHandlingPanelHomeButton) frame.origin.x = 8;
            [sub setFrame:frame];
        }
        WidenButtons(sub);
    }
}

/// AppKit's panels are made with a font of their own.
static void UseSystemFonts(NSView *view) {
    for (NSView *sub in [view subviews]) {
        if ([sub isKindOfClass:[NSControl class]]) {
            NSFont *font = [NSFont systemFontOfSize:[[(NSControl *)sub font] pointSize]];
            [(NSControl *)sub setFont:font];
            if ([sub isKindOfClass:[NSForm class]]) [(NSForm *)sub setTitleFont:font];
        }
        UseSystemFonts(sub);
    }
}

void UseThemePanel(NSSavePanel *panel) {
    if (!IsThemeInUse()) return;
    UseSystemFonts([panel contentView]);
    const NSSize least = NSMakeSize(600, 420), now = [[panel contentView] bounds].size;
    if (now.width < least.width || now.height < least.height)
        [panel setContentSize:NSMakeSize(std::max(now.width, least.width),
                                         std::max(now.height, least.height))];
    HideOldParts([panel contentView]);
    NSBrowser *browser = BrowserIn([panel contentView]);
    const NSRect room = [[browser superview] bounds];
    [browser setFrame:NSMakeRect(NSMinX(room) + 8, NSMinY(room) + 4, NSWidth(room) - 16,
                                 NSHeight(room) - 12)];
    WidenButtons([panel contentView]);
    UseThemeButtons([panel contentView]);
}
