#import "dialogs/PagePicture.h"

#include <algorithm>
#include <cmath>

static constexpr CGFloat kMargin = 6, kShadow = 3;

static NSColor *Grey(CGFloat white) { return [NSColor colorWithCalibratedWhite:white alpha:1]; }

/// In the unit square, for a page of that shape.
static void AppendRect(NSBezierPath *path, CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    [path appendBezierPathWithRect:NSMakeRect(x, y, width, height)];
}

/// Lines of text with a heading: what is left and right, above and below is easily seen.
static NSBezierPath *TextPath() {
    NSBezierPath *path = [NSBezierPath bezierPath];
    AppendRect(path, 0.1, 0.86, 0.45, 0.045);
    for (int line = 0; line < 4; ++line)
        AppendRect(path, 0.1, 0.76 - line * 0.06, line == 3 ? 0.4 : 0.8, 0.018);
    return path;
}

/// A landscape: the sun on one side, a mountain on the other.
static NSBezierPath *MountainPath() {
    NSBezierPath *path = [NSBezierPath bezierPath];
    [path moveToPoint:NSMakePoint(0.1, 0.12)];
    [path lineToPoint:NSMakePoint(0.36, 0.4)];
    [path lineToPoint:NSMakePoint(0.52, 0.24)];
    [path lineToPoint:NSMakePoint(0.62, 0.32)];
    [path lineToPoint:NSMakePoint(0.9, 0.12)];
    [path closePath];
    return path;
}

@implementation ZELPagePicture

- (void)show:(const PagePictureContent &)content {
    _content = content;
    [self setNeedsDisplay:YES];
}

- (BOOL)hasSheet {
    return std::isfinite(_content.sheetWidth) && std::isfinite(_content.sheetHeight) &&
           _content.sheetWidth > 0 && _content.sheetHeight > 0;
}

/// Points of the view for a point of the sheet.
- (CGFloat)scale {
    const NSRect room = NSInsetRect([self bounds], kMargin, kMargin);
    return std::min(NSWidth(room) / _content.sheetWidth, NSHeight(room) / _content.sheetHeight);
}

- (NSRect)sheetRect {
    if (![self hasSheet]) return NSZeroRect;
    const NSRect bounds = [self bounds];
    // A strip of paper a kilometre long is still seen as a line.
    const CGFloat width = std::max<CGFloat>(2, _content.sheetWidth * [self scale]);
    const CGFloat height = std::max<CGFloat>(2, _content.sheetHeight * [self scale]);
    return NSMakeRect(std::round(NSMidX(bounds) - width / 2),
                      std::round(NSMidY(bounds) - height / 2), std::round(width),
                      std::round(height));
}

- (NSRect)areaRect {
    if (![self hasSheet]) return NSZeroRect;
    const CGFloat scale = [self scale];
    const NSRect sheet = [self sheetRect];
    return NSIntersectionRect(sheet,
                              NSMakeRect(NSMinX(sheet) + _content.left * scale,
                                         NSMinY(sheet) + _content.bottom * scale,
                                         _content.areaWidth * scale, _content.areaHeight * scale));
}

/// The steps of the document itself: mirrored first, then turned, then put in its place.
- (NSAffineTransform *)pageTransform {
    const NSRect area = [self areaRect];
    NSAffineTransform *transform = [NSAffineTransform transform];
    [transform translateXBy:NSMinX(area) yBy:NSMinY(area)];
    [transform scaleXBy:NSWidth(area) yBy:NSHeight(area)];
    if (_content.isTurned) {
        [transform rotateByDegrees:90];
        [transform translateXBy:0 yBy:-1];
    }
    if (_content.isFlippedHorizontally) {
        [transform scaleXBy:-1 yBy:1];
        [transform translateXBy:-1 yBy:0];
    }
    if (_content.isFlippedVertically) {
        [transform scaleXBy:1 yBy:-1];
        [transform translateXBy:0 yBy:-1];
    }
    return transform;
}

- (void)drawPage {
    NSAffineTransform *transform = [self pageTransform];
    [Grey(0.55) set];
    [[transform transformBezierPath:TextPath()] fill];
    [[NSColor colorWithCalibratedRed:0.8 green:0.88 blue:0.98 alpha:1] set];
    NSBezierPath *sky = [NSBezierPath bezierPathWithRect:NSMakeRect(0.1, 0.12, 0.8, 0.38)];
    [[transform transformBezierPath:sky] fill];
    [[NSColor colorWithCalibratedRed:0.36 green:0.58 blue:0.36 alpha:1] set];
    [[transform transformBezierPath:MountainPath()] fill];
    const NSPoint sun = [transform transformPoint:NSMakePoint(0.74, 0.41)];
    const CGFloat radius = std::min(NSWidth([self areaRect]), NSHeight([self areaRect])) * 0.055;
    [[NSColor colorWithCalibratedRed:0.95 green:0.72 blue:0.15 alpha:1] set];
    [[NSBezierPath bezierPathWithOvalInRect:NSMakeRect(sun.x - radius, sun.y - radius, 2 * radius,
                                                       2 * radius)] fill];
}

- (void)drawAreaFrame {
    if (NSEqualRects([self areaRect], [self sheetRect])) return;
    const CGFloat dashes[] = {3, 2};
    NSBezierPath *frame = [NSBezierPath bezierPathWithRect:NSInsetRect([self areaRect], 0.5, 0.5)];
    [frame setLineDash:dashes count:2 phase:0];
    [[NSColor colorWithCalibratedRed:0.3 green:0.5 blue:0.8 alpha:1] set];
    [frame stroke];
}

- (BOOL)isOpaque {
    return YES;
}

- (void)drawRect:(NSRect)dirty {
    [[NSColor windowBackgroundColor] set];
    NSRectFill([self bounds]);
    if (![self hasSheet]) return;
    const NSRect sheet = [self sheetRect];
    [Grey(0.86) set];
    NSRectFill(NSOffsetRect(sheet, kShadow, -kShadow));
    [[NSColor whiteColor] set];
    NSRectFill(sheet);
    [self drawPage];
    [self drawAreaFrame];
    [Grey(0.6) set];
    NSFrameRect(sheet);
}

@end
