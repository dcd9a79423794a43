#import "platform/toolkit/gnustep/PopUpMenu.h"

#import "platform/toolkit/gnustep/FittedText.h"
#import "platform/toolkit/gnustep/MenuList.h"
#import "platform/toolkit/gnustep/MenuTracking.h"

#include <initializer_list>
#include <objc/runtime.h>

// Both without instance variables: what an interface file has made becomes one of them.

@interface ZELPopUpCell : NSPopUpButtonCell
@end

@implementation ZELPopUpCell

/// By what is selected, not by what is highlighted: a list that is closed without a choice, or
/// whose items come and go, leaves the selection alone.
- (void)synchronizeTitleAndSelectedItem {
    [self setMenuItem:(NSMenuItem *)[self selectedItem]];
    if ([[self controlView] isKindOfClass:[NSControl class]])
        [(NSControl *)[self controlView] updateCell:self];
}

/// Up and down, as lines that are crisp at any scale.
- (void)drawChevronsIn:(NSRect)room {
    const CGFloat x = NSMidX(room), y = NSMidY(room);
    for (const CGFloat direction : {-1.0, 1.0}) {
        NSBezierPath *chevron = [NSBezierPath bezierPath];
        [chevron setLineWidth:1.5];
        [chevron moveToPoint:NSMakePoint(x - 3.5, y + 2.5 * direction)];
        [chevron lineToPoint:NSMakePoint(x, y + 6 * direction)];
        [chevron lineToPoint:NSMakePoint(x + 3.5, y + 2.5 * direction)];
        [chevron stroke];
    }
}

/// A title that is too long ends in an ellipsis before the chevrons.
- (void)drawInteriorWithFrame:(NSRect)frame inView:(NSView *)view {
    constexpr CGFloat kMargin = 8, kChevrons = 20;
    NSColor *colour =
        [self isEnabled] ? [NSColor controlTextColor] : [NSColor disabledControlTextColor];
    DrawFittedText([[self selectedItem] title],
                   NSMakeRect(NSMinX(frame) + kMargin, NSMinY(frame),
                              NSWidth(frame) - kMargin - kChevrons, NSHeight(frame)),
                   [self font], colour, NSLeftTextAlignment);
    [colour set];
    [self drawChevronsIn:NSMakeRect(NSMaxX(frame) - kChevrons, NSMinY(frame), kChevrons - 2,
                                    NSHeight(frame))];
}

- (void)choose:(NSInteger)row {
    [self selectItemAtIndex:row];
    [self synchronizeTitleAndSelectedItem];
    [[self controlView] displayIfNeeded];
    [[self menu] performActionForItemAtIndex:row];
}

/// Shows the list until an item is chosen or the list is left.
- (void)runMenuWithFrame:(NSRect)frame inView:(NSView *)view pressedBy:(NSEvent *)press {
    if (![self isEnabled]) return;
    if ([[self menu] numberOfItems] == 0) {
        NSBeep();
        return;
    }
    ZELMenuList *list = [[self menu] menuRepresentation];
    [list setTickedRow:[self indexOfSelectedItem]];
    [self attachPopUpWithFrame:frame inView:view];
    const NSInteger row = TrackMenu(list, [view window], press);
    [self dismissPopUp];
    [view setNeedsDisplay:YES];
    if (row >= 0) [self choose:row];
}

- (BOOL)trackMouse:(NSEvent *)press
            inRect:(NSRect)frame
            ofView:(NSView *)view
      untilMouseUp:(BOOL)untilMouseUp {
    [self runMenuWithFrame:frame inView:view pressedBy:press];
    return YES;
}

- (void)performClickWithFrame:(NSRect)frame inView:(NSView *)view {
    [self runMenuWithFrame:frame inView:view pressedBy:nil];
}

@end

@interface ZELPopUpButton : NSPopUpButton
@end

@implementation ZELPopUpButton

- (void)keyDown:(NSEvent *)event {
    NSString *characters = [event characters];
    const unichar key = [characters length] != 0 ? [characters characterAtIndex:0] : 0;
    if (key == ' ' || key == NSUpArrowFunctionKey || key == NSDownArrowFunctionKey)
        [[self cell] performClickWithFrame:[self bounds] inView:self];
    else if (key == '\033' || key == '\r' || key == NSEnterCharacter)
        [[self nextResponder] keyDown:event]; // the window's buttons
    else
        [super keyDown:event];
}

@end

void UseMenuList(NSPopUpButton *popup) {
    if ([popup isMemberOfClass:[NSPopUpButton class]])
        object_setClass(popup, [ZELPopUpButton class]);
    if ([[popup cell] isMemberOfClass:[NSPopUpButtonCell class]])
        object_setClass([popup cell], [ZELPopUpCell class]);
    ZELMenuList *list = [[[ZELMenuList alloc] initWithFrame:NSZeroRect] autorelease];
    [list setFont:[popup font]];
    [[popup menu] setMenuRepresentation:list];
    [[popup cell] setMenuView:list];
}
