#import "platform/toolkit/gnustep/ThemeScrollers.h"

#import "platform/toolkit/gnustep/ThemeColours.h"

#include <algorithm>

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
    [ThemeGrey(0.7) set];
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
    [ThemeGrey(0.45) set];
    [arrow stroke];
}

- (void)drawWithFrame:(NSRect)frame inView:(NSView *)view {
    [ThemeGrey([self isHighlighted] && _part != kThemeKnob ? 0.86 : 0.94) set];
    NSRectFill(frame);
    if (_part == kThemeKnob) [self drawKnobIn:frame];
    if (_part == kThemeLess || _part == kThemeMore)
        [self drawArrowIn:frame isFlipped:[view isFlipped]];
}

@end

NSButtonCell *ThemeScrollerCell(ThemeScrollerPart part, BOOL isHorizontal) {
    return [[[ZELScrollerCell alloc] initWithPart:part isHorizontal:isHorizontal] autorelease];
}
