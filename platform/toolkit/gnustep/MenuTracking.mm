#import "platform/toolkit/gnustep/MenuTracking.h"

#import "platform/toolkit/gnustep/MenuList.h"

#import <GNUstepGUI/GSDisplayServer.h>
#include <algorithm>
#include <cmath>

// In pixels of the screen: a hand that presses a button is not quite still.
static constexpr CGFloat kStill = 4;
static constexpr CGFloat kWheelRows = 3;
static constexpr NSTimeInterval kTypingPause = 1; // seconds; then another word begins
static constexpr NSTimeInterval kTick = 0.04;

@interface ZELMenuTracker : NSObject {
    ZELMenuList *_list;
    NSPoint _origin;   // where the button was pressed that opened the list
    BOOL _isOpening;   // and it is still down
    BOOL _isPressed;   // a button was pressed on the list
    BOOL _isScrolling; // and it holds the scroller
    BOOL _hasMoved;    // the pointer, since the list is open: until then it points at nothing
    BOOL _isDone;
    int _ticks; // for how long the pointer has been where the list scrolls
    NSInteger _chosen;
    NSMutableString *_typed;
    NSTimeInterval _lastKey;
}
- (NSInteger)track:(ZELMenuList *)list above:(NSWindow *)window pressedBy:(NSEvent *)press;
@end

@implementation ZELMenuTracker

- (void)dealloc {
    [_typed release];
    [super dealloc];
}

- (void)leave {
    _isDone = YES;
}

- (void)choose:(NSInteger)row {
    if (row < 0 || ![[[_list menu] itemAtIndex:row] isEnabled]) return;
    _chosen = row;
    _isDone = YES;
}

- (NSPoint)screenPointOf:(NSEvent *)event {
    NSWindow *window = [event window];
    return window == nil ? [NSEvent mouseLocation]
                         : [window convertBaseToScreen:[event locationInWindow]];
}

#pragma mark Pointer

- (void)pointAt:(NSPoint)point {
    NSInteger row = -1;
    if ([_list partAtScreenPoint:point row:&row] != kMenuRow) row = -1;
    // Without scrolling: the row is under the pointer.
    if (row != [_list highlightedItemIndex]) {
        [_list setHighlightedItemIndex:row];
        [_list setNeedsDisplay:YES];
    }
}

- (void)pointerMovedTo:(NSPoint)point {
    if (std::hypot(point.x - _origin.x, point.y - _origin.y) > kStill) _hasMoved = YES;
    if (_isScrolling)
        [_list scrollToScreenPoint:point];
    else if (_hasMoved)
        [self pointAt:point];
}

- (void)pressedAt:(NSPoint)point {
    if (![_list isInside:point]) {
        [self leave];
        return;
    }
    NSInteger row = -1;
    _hasMoved = _isPressed = YES;
    _isScrolling = [_list partAtScreenPoint:point row:&row] == kMenuScroller;
    [self pointerMovedTo:point];
}

- (void)releasedAt:(NSPoint)point {
    const BOOL wasClick = _isOpening && !_hasMoved, wasScrolling = _isScrolling;
    const BOOL counts = _isOpening || _isPressed;
    _isOpening = _isPressed = _isScrolling = NO;
    if (wasClick || wasScrolling || !counts) return;
    NSInteger row = -1;
    const MenuListPart part = [_list partAtScreenPoint:point row:&row];
    if (part == kMenuRow)
        [self choose:row];
    else if (![_list isInside:point])
        [self leave];
}

/// Scrolls while the pointer is at an end of the list, or beyond it with the button down; faster
/// and faster.
- (void)tick {
    // AppKit hides it when the user goes to another program.
    if (![[_list window] isVisible]) [self leave];
    NSInteger row = -1;
    const NSPoint point = [NSEvent mouseLocation];
    const MenuListPart part = [_list partAtScreenPoint:point row:&row];
    const NSRect frame = [[_list window] frame];
    const BOOL isDragging = (_isOpening || _isPressed) && !_isScrolling;
    const BOOL up = part == kMenuScrollUp || (isDragging && point.y >= NSMaxY(frame));
    const BOOL down = part == kMenuScrollDown || (isDragging && point.y <= NSMinY(frame));
    if (!_hasMoved || _isScrolling || up == down) {
        _ticks = 0;
        return;
    }
    const CGFloat rows = std::min<CGFloat>(0.5 + _ticks++ / 20.0, 20);
    [_list scrollRows:up ? -rows : rows];
}

- (void)wheel:(NSEvent *)event {
    [_list scrollRows:-[event deltaY] * kWheelRows];
    const NSPoint point = [self screenPointOf:event];
    if ([_list isInside:point]) [self pointAt:point];
}

#pragma mark Keys

/// The next row that can be chosen, in steps of `step`; the last one reached stays.
- (void)moveFrom:(NSInteger)row by:(NSInteger)step {
    NSMenu *menu = [_list menu];
    const NSInteger last = [menu numberOfItems] - 1;
    NSInteger next = std::clamp<NSInteger>(row + step, 0, last);
    const NSInteger direction = step < 0 ? -1 : 1;
    while (next >= 0 && next <= last && ![[menu itemAtIndex:next] isEnabled])
        next += direction;
    if (next >= 0 && next <= last) [_list highlightRow:next];
}

- (void)moveBy:(NSInteger)step {
    const NSInteger row =
        [_list highlightedItemIndex] >= 0 ? [_list highlightedItemIndex] : [_list tickedRow];
    if (row < 0)
        [self moveFrom:step < 0 ? [[_list menu] numberOfItems] : -1 by:step < 0 ? -1 : 1];
    else
        [self moveFrom:row by:step];
}

- (BOOL)row:(NSInteger)row startsWith:(NSString *)text {
    NSMenuItem *item = [[_list menu] itemAtIndex:row];
    return [item isEnabled] &&
           [[item title] rangeOfString:text options:NSAnchoredSearch | NSCaseInsensitiveSearch]
                   .location == 0;
}

/// Highlights the first row from `first` on, and around, that starts with the text.
- (BOOL)findText:(NSString *)text from:(NSInteger)first {
    const NSInteger rows = [[_list menu] numberOfItems];
    for (NSInteger i = 0; i < rows; ++i) {
        const NSInteger row = (first + i) % rows;
        if (![self row:row startsWith:text]) continue;
        [_list highlightRow:row];
        return YES;
    }
    return NO;
}

- (BOOL)isTypingAt:(NSTimeInterval)time {
    return [_typed length] != 0 && time - _lastKey <= kTypingPause;
}

/// In the middle of a word a space is a part of the title that it goes on with, if there is one.
- (void)space:(NSEvent *)event {
    const NSInteger row = std::max<NSInteger>([_list highlightedItemIndex], 0);
    NSString *longer = [_typed stringByAppendingString:@" "];
    if ([self isTypingAt:[event timestamp]] && [self findText:longer from:row])
        [self type:@" " at:[event timestamp]];
    else
        [self choose:[_list highlightedItemIndex]];
}

/// Letters typed in a row are the beginning of a title; the same one again goes to the next title.
- (void)type:(NSString *)letters at:(NSTimeInterval)time {
    if (_typed == nil) _typed = [[NSMutableString alloc] init];
    if (![self isTypingAt:time]) [_typed setString:@""];
    _lastKey = time;
    const NSInteger row = std::max<NSInteger>([_list highlightedItemIndex], 0);
    const BOOL isFirst = [_typed length] == 0;
    [_typed appendString:letters];
    if ([self findText:_typed from:isFirst ? row + 1 : row]) return;
    [_typed setString:letters];
    [self findText:letters from:row + 1];
}

- (void)key:(NSEvent *)event {
    NSString *characters = [event characters];
    if ([characters length] == 0) return;
    const unichar key = [characters characterAtIndex:0];
    const NSInteger page = [_list rowsOnPage], rows = [[_list menu] numberOfItems];
    switch (key) {
        case '\033':
            [self leave];
            break;
        case '\r':
        case '\n':
        case NSEnterCharacter:
            [self choose:[_list highlightedItemIndex]];
            break;
        case ' ':
            [self space:event];
            break;
        case NSUpArrowFunctionKey:
            [self moveBy:-1];
            break;
        case NSDownArrowFunctionKey:
            [self moveBy:1];
            break;
        case NSPageUpFunctionKey:
            [self moveBy:-page];
            break;
        case NSPageDownFunctionKey:
            [self moveBy:page];
            break;
        case NSHomeFunctionKey:
            [self moveFrom:-1 by:1];
            break;
        case NSEndFunctionKey:
            [self moveFrom:rows by:-1];
            break;
        default:
            if (key > ' ' && key < 0xF700 && !([event modifierFlags] & NSControlKeyMask))
                [self type:characters at:[event timestamp]];
    }
}

#pragma mark Events

/// What concerns the window below is left to its own loop, without the list.
- (void)leaveWith:(NSEvent *)event {
    [NSApp postEvent:event atStart:YES];
    [self leave];
}

- (void)windowEvent:(NSEvent *)event {
    const short kind = [event subtype];
    if (kind == GSAppKitWindowClose || kind == GSAppKitWindowMiniaturize) {
        [self leaveWith:event];
        return;
    }
    [[event window] sendEvent:event];
}

- (void)handle:(NSEvent *)event {
    switch ([event type]) {
        case NSLeftMouseDown:
        case NSRightMouseDown:
        case NSOtherMouseDown:
            [self pressedAt:[self screenPointOf:event]];
            break;
        case NSLeftMouseUp:
        case NSRightMouseUp:
        case NSOtherMouseUp:
            [self releasedAt:[self screenPointOf:event]];
            break;
        case NSMouseMoved:
        case NSLeftMouseDragged:
        case NSRightMouseDragged:
        case NSOtherMouseDragged:
            [self pointerMovedTo:[self screenPointOf:event]];
            break;
        case NSScrollWheel:
            [self wheel:event];
            break;
        case NSKeyDown:
            [self key:event];
            break;
        case NSPeriodic:
            [self tick];
            break;
        case NSAppKitDefined:
            [self windowEvent:event];
            break;
        case NSApplicationDefined:
            [self leaveWith:event];
            break; // the dialog is to end
        default:
            break;
    }
}

- (NSInteger)track:(ZELMenuList *)list above:(NSWindow *)window pressedBy:(NSEvent *)press {
    GSDisplayServer *server = GSServerForWindow(window);
    _list = list;
    _chosen = -1;
    _isOpening = press != nil;
    _origin = press != nil ? [self screenPointOf:press] : [NSEvent mouseLocation];
    // The window's and not the list's, which may not be there yet: clicks beside the list count.
    [server capturemouse:(int)[window windowNumber]];
    [NSEvent startPeriodicEventsAfterDelay:kTick withPeriod:kTick];
    while (!_isDone) {
        @autoreleasepool {
            [[_list window] displayIfNeeded];
            [self handle:[NSApp nextEventMatchingMask:NSAnyEventMask
                                            untilDate:[NSDate distantFuture]
                                               inMode:NSEventTrackingRunLoopMode
                                              dequeue:YES]];
        }
    }
    [NSEvent stopPeriodicEvents];
    [server releasemouse];
    return _chosen;
}

@end

NSInteger TrackMenu(ZELMenuList *list, NSWindow *window, NSEvent *press) {
    ZELMenuTracker *tracker = [[[ZELMenuTracker alloc] init] autorelease];
    return [tracker track:list above:window pressedBy:press];
}
