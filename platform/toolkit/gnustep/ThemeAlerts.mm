#import "platform/toolkit/gnustep/ThemeAlerts.h"

#import "platform/toolkit/gnustep/Theme.h"
#import "platform/toolkit/gnustep/WindowSetup.h"

#import <AppKit/AppKit.h>
#include <algorithm>
#include <cmath>
#include <objc/runtime.h>

// In points.
static constexpr CGFloat kMargin = 20, kSign = 36, kGap = 16, kTextGap = 6;
static constexpr CGFloat kTextWidth = 340;
static constexpr CGFloat kButtonHeight = 26, kButtonGap = 10, kLeastButton = 88;
static constexpr CGFloat kTextSize = 13;

/// The sign beside the text: drawn, so that it is crisp at any scale.
@interface ZELAlertSign : NSView {
    BOOL _isCritical;
}
@property (nonatomic, assign) BOOL isCritical;
@end

@implementation ZELAlertSign

@synthesize isCritical = _isCritical;

- (NSBezierPath *)shapeIn:(NSRect)room {
    if (_isCritical) return [NSBezierPath bezierPathWithOvalInRect:room];
    NSBezierPath *triangle = [NSBezierPath bezierPath];
    [triangle setLineJoinStyle:NSRoundLineJoinStyle];
    [triangle moveToPoint:NSMakePoint(NSMinX(room), NSMinY(room) + 2)];
    [triangle lineToPoint:NSMakePoint(NSMaxX(room), NSMinY(room) + 2)];
    [triangle lineToPoint:NSMakePoint(NSMidX(room), NSMaxY(room) - 1)];
    [triangle closePath];
    return triangle;
}

- (void)drawRect:(NSRect)dirty {
    const NSRect room = NSInsetRect([self bounds], 2, 2);
    NSColor *colour = _isCritical
                          ? [NSColor colorWithCalibratedRed:0.8 green:0.2 blue:0.17 alpha:1]
                          : [NSColor colorWithCalibratedRed:0.93 green:0.64 blue:0.1 alpha:1];
    NSBezierPath *shape = [self shapeIn:room];
    [shape setLineWidth:3];
    [colour set];
    [shape fill];
    [shape stroke];
    [[NSColor whiteColor] set];
    const CGFloat x = NSMidX(room), low = NSMinY(room) + (_isCritical ? 7 : 6);
    [[NSBezierPath bezierPathWithOvalInRect:NSMakeRect(x - 2, low, 4, 4)] fill];
    NSBezierPath *bar =
        [NSBezierPath bezierPathWithRoundedRect:NSMakeRect(x - 1.75, low + 6, 3.5, 11)
                                        xRadius:1.75
                                        yRadius:1.75];
    [bar fill];
}

@end

/// What an alert's window consists of. AppKit keeps these to itself, so they are looked up.
struct AlertParts {
    NSTextField *message, *informative;
    NSButton *buttons[3]; // the default one first
    NSButton *icon;
};

static id Part(id panel, const char *name) {
    Ivar variable = class_getInstanceVariable([panel class], name);
    return variable != nullptr ? object_getIvar(panel, variable) : nil;
}

static AlertParts PartsOf(id panel) {
    return {Part(panel, "titleField"),
            Part(panel, "messageField"),
            {Part(panel, "defButton"), Part(panel, "altButton"), Part(panel, "othButton")},
            Part(panel, "icoButton")};
}

static CGFloat HeightOf(NSString *text, NSFont *font) {
    if ([text length] == 0) return 0;
    NSDictionary *attributes = [NSDictionary dictionaryWithObject:font forKey:NSFontAttributeName];
    NSAttributedString *string =
        [[[NSAttributedString alloc] initWithString:text attributes:attributes] autorelease];
    return std::ceil([string boundingRectWithSize:NSMakeSize(kTextWidth - 6, 1e6)
                                          options:NSStringDrawingUsesLineFragmentOrigin]
                         .size.height) +
           4;
}

/// Lays a text out with its upper edge at `top`; returns its lower edge.
static CGFloat PlaceText(NSTextField *field, NSFont *font, CGFloat top) {
    const CGFloat height = HeightOf([field stringValue], font);
    [field setFont:font];
    [field setAlignment:NSLeftTextAlignment];
    [[field cell] setWraps:YES];
    [[field cell] setLineBreakMode:NSLineBreakByWordWrapping];
    [field setAutoresizingMask:NSViewNotSizable];
    [field setFrame:NSMakeRect(kMargin + kSign + kGap, top - height, kTextWidth, height)];
    return top - height;
}

static CGFloat ButtonWidth(const AlertParts &parts) {
    CGFloat width = kLeastButton;
    for (NSButton *button : parts.buttons) {
        if ([button superview] == nil) continue;
        NSDictionary *attributes = [NSDictionary dictionaryWithObject:[button font]
                                                               forKey:NSFontAttributeName];
        width = std::max(width, [[button title] sizeWithAttributes:attributes].width + 32);
    }
    return std::ceil(width);
}

/// From the right: the default button, then the others.
static void PlaceButtons(const AlertParts &parts, CGFloat right) {
    const CGFloat width = ButtonWidth(parts);
    for (NSButton *button : parts.buttons) {
        if ([button superview] == nil) continue;
        [button setBezelStyle:NSRegularSquareBezelStyle];
        [button setFrame:NSMakeRect(right - width, kMargin, width, kButtonHeight)];
        right -= width + kButtonGap;
    }
}

/// The sign instead of the application's icon and the line below that.
static void PlaceSign(NSWindow *panel, const AlertParts &parts, CGFloat top) {
    for (NSView *view in [NSArray arrayWithArray:[[panel contentView] subviews]])
        if ([view isKindOfClass:[NSBox class]] || [view isKindOfClass:[ZELAlertSign class]])
            [view removeFromSuperview];
    [parts.icon removeFromSuperview];
    ZELAlertSign *sign = [[[ZELAlertSign alloc]
        initWithFrame:NSMakeRect(kMargin, top - kSign, kSign, kSign)] autorelease];
    [sign setIsCritical:[[panel title] isEqual:@"Critical"]];
    [[panel contentView] addSubview:sign];
}

/// Takes the place of GSAlertPanel's own layout.
static void LayOutAlert(id panel, SEL) {
    const AlertParts parts = PartsOf(panel);
    NSFont *bold = [NSFont boldSystemFontOfSize:kTextSize];
    NSFont *plain = [NSFont systemFontOfSize:kTextSize];
    const CGFloat informative = HeightOf([parts.informative stringValue], plain);
    const CGFloat texts = HeightOf([parts.message stringValue], bold) +
                          (informative > 0 ? kTextGap + informative : 0);
    const CGFloat height = kMargin + std::max(texts, kSign) + kMargin + kButtonHeight + kMargin;
    const CGFloat width = kMargin + kSign + kGap + kTextWidth + kMargin;
    const NSSize size = NSMakeSize(width, height);
    [panel setMinSize:NSZeroSize];
    [panel setMaxSize:NSMakeSize(1e5, 1e5)];
    [panel setContentSize:size];
    const CGFloat top = height - kMargin;
    const CGFloat below = PlaceText(parts.message, bold, top - std::max(0.0, (kSign - texts) / 2));
    PlaceText(parts.informative, plain, below - kTextGap);
    [parts.informative setHidden:informative <= 0];
    PlaceButtons(parts, width - kMargin);
    PlaceSign(panel, parts, top);
    UseThemeButtons([panel contentView]);
    [panel setTitle:[[NSProcessInfo processInfo] processName]]; // whatever the language
    [[panel contentView] setNeedsDisplay:YES];
    MarkAsDialog(panel);
}

void UseThemeAlerts(void) {
    Class panel = objc_lookUpClass("GSAlertPanel");
    const SEL layOut = @selector(sizePanelToFit);
    Method own = panel != nil ? class_getInstanceMethod(panel, layOut) : nullptr;
    if (own != nullptr) method_setImplementation(own, (IMP)LayOutAlert);
}
