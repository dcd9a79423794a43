#import "dialogs/DialogSupport.h"

#import "platform/toolkit/Toolkit.h"

#include <cmath>

NSString *InterfaceFilePath(NSBundle *bundle, NSString *name) {
    NSString *path = [bundle pathForResource:name ofType:@"nib"];
    return path != nil ? path : [bundle pathForResource:name ofType:@"xib"];
}

void PrepareLoadedWindow(NSWindow *window) { PrepareToolkitView([window contentView]); }

static NSString *Translation(NSString *title, NSBundle *bundle, NSString *table) {
    return [title length] == 0 ? title
                               : [bundle localizedStringForKey:title value:title table:table];
}

static void LocalizeCells(NSMatrix *matrix, NSBundle *bundle, NSString *table) {
    for (NSCell *cell in [matrix cells])
        [cell setTitle:Translation([cell title], bundle, table)];
}

static void LocalizeMenu(NSPopUpButton *popup, NSBundle *bundle, NSString *table) {
    for (NSMenuItem *item in [popup itemArray])
        [item setTitle:Translation([item title], bundle, table)];
    [popup synchronizeTitleAndSelectedItem];
}

static void LocalizeView(NSView *view, NSBundle *bundle, NSString *table) {
    if ([view isKindOfClass:[NSMatrix class]]) {
        LocalizeCells((NSMatrix *)view, bundle, table);
    } else if ([view isKindOfClass:[NSPopUpButton class]]) {
        LocalizeMenu((NSPopUpButton *)view, bundle, table);
    } else if ([view isKindOfClass:[NSButton class]]) {
        NSButton *button = (NSButton *)view;
        [button setTitle:Translation([button title], bundle, table)];
    } else if ([view isKindOfClass:[NSTextField class]]) {
        NSTextField *field = (NSTextField *)view;
        [field setStringValue:Translation([field stringValue], bundle, table)];
    }
    for (NSView *sub in [view subviews])
        LocalizeView(sub, bundle, table);
}

void LocalizeLoadedWindow(NSWindow *window, NSBundle *bundle, NSString *table) {
    LocalizeView([window contentView], bundle, table);
}

static void ReleaseView(NSView *view) {
    NSArray *names = [NSArray arrayWithObjects:@"enabled", @"value", @"hidden", @"editable", nil];
    for (NSString *name in names) {
        if ([view infoForBinding:name] != nil) [view unbind:name];
    }
    if ([view isKindOfClass:[NSTextField class]]) [(NSTextField *)view setDelegate:nil];
    for (NSView *sub in [view subviews])
        ReleaseView(sub);
}

void ReleaseLoadedWindow(NSWindow *window) {
    [window makeFirstResponder:nil];
    ReleaseView([window contentView]);
    [window setDelegate:nil];
    [window orderOut:nil];
    // Where the window was; the toolkit keeps that in memory for a while.
    [[NSUserDefaults standardUserDefaults] synchronize];
}

static BOOL IsReachable(NSRect frame) {
    // Where a title bar can be grabbed.
    const NSRect bar = NSMakeRect(NSMidX(frame) - 40, NSMaxY(frame) - 20, 80, 20);
    for (NSScreen *screen in [NSScreen screens])
        if (NSContainsRect([screen visibleFrame], bar)) return YES;
    return NO;
}

static void CentreIn(NSRect room, NSWindow *window) {
    const NSRect frame = [window frame];
    [window setFrameOrigin:NSMakePoint(std::floor(NSMidX(room) - NSWidth(frame) / 2),
                                       std::floor(NSMidY(room) - NSHeight(frame) / 2))];
}

void PlaceWindow(NSWindow *window, NSString *autosaveName) {
    const NSRect designed = [window frame];
    NSString *key = [@"NSWindow Frame " stringByAppendingString:autosaveName];
    const BOOL isSaved = [[NSUserDefaults standardUserDefaults] objectForKey:key] != nil;
    [window setFrameAutosaveName:autosaveName];
    // The place alone: another version of the window may have had another size.
    const NSRect saved = [window frame];
    const NSRect frame = NSMakeRect(NSMinX(saved), NSMaxY(saved) - NSHeight(designed),
                                    NSWidth(designed), NSHeight(designed));
    [window setFrame:frame display:NO];
    if (!isSaved || !IsReachable(frame)) CentreIn(RoomAtPointer(), window);
    PrepareToolkitWindow(window);
}

void StopModalAndWake(void) {
    // stopModal only marks the session; the modal loop, asleep in the event queue, notices at the
    // next event. A GNUstep run loop moreover does not leave its poll() for an event that a timer
    // callback queued: a zero-delay perform makes the poll time out.
    [NSApp stopModal];
    NSEvent *wake = [NSEvent otherEventWithType:NSApplicationDefined
                                       location:NSZeroPoint
                                  modifierFlags:0
                                      timestamp:0
                                   windowNumber:0
                                        context:nil
                                        subtype:0
                                          data1:0
                                          data2:0];
    [NSApp postEvent:wake atStart:NO];
    [NSApp performSelector:@selector(class)
                withObject:nil
                afterDelay:0.0
                   inModes:[NSArray arrayWithObject:NSModalPanelRunLoopMode]];
}

NSMenuItem *InsertPopUpItem(NSPopUpButton *popup, NSString *title, NSInteger tag, NSInteger index) {
    NSMenuItem *item = [[[NSMenuItem alloc] initWithTitle:title action:NULL
                                            keyEquivalent:@""] autorelease];
    [item setTag:tag];
    [[popup menu] insertItem:item atIndex:index];
    return item;
}

/// `text` with its middle `cut` characters replaced by an ellipsis.
static NSString *WithoutMiddle(NSString *text, NSUInteger cut) {
    const NSUInteger kept = [text length] - cut, head = kept / 2;
    return [NSString stringWithFormat:@"%@\u2026%@", [text substringToIndex:head],
                                      [text substringFromIndex:head + cut]];
}

void ShowLongText(NSTextField *field, NSString *text) {
    NSDictionary *attributes = [NSDictionary dictionaryWithObject:[field font]
                                                           forKey:NSFontAttributeName];
    const CGFloat room = [field frame].size.width - 6;
    NSString *shown = text;
    for (NSUInteger cut = 1; cut + 2 < [text length]; ++cut) {
        if ([shown sizeWithAttributes:attributes].width <= room) break;
        shown = WithoutMiddle(text, cut);
    }
    SetToolkitText(field, shown);
    [field setToolTip:text];
}

void MakeDefaultButton(NSButton *button, NSButton *former) {
    [former setKeyEquivalent:@""];
    [button setKeyEquivalent:@"\r"];
    [[button window] setDefaultButtonCell:[button cell]];
}

// The methods with a delegate and a selector exist on both platforms and need no blocks.
void BeginAlertSheet(NSAlert *alert, NSWindow *window, id delegate, SEL didEnd) {
    [alert beginSheetModalForWindow:window
                      modalDelegate:delegate
                     didEndSelector:didEnd
                        contextInfo:NULL];
}

void BeginPanelSheet(NSSavePanel *panel, NSWindow *window, NSURL *folder, NSString *name,
                     id delegate, SEL didEnd) {
    PrepareToolkitPanel(panel);
    [panel beginSheetForDirectory:[folder path]
                             file:name
                   modalForWindow:window
                    modalDelegate:delegate
                   didEndSelector:didEnd
                      contextInfo:NULL];
}
