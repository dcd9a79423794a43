// Lets a test watch the dialogs of any program: a bundle that AppKit loads into it at its start
// (the default GSAppKitUserBundles). Twenty times a second it writes what the front window shows,
// and where, to the file in ZEL_STATE; without that it does nothing. Nothing here acts on a dialog.
#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>
#include <cstdio>
#include <cstdlib>
#include <string>

@interface ZELDialogObserver : NSObject {
    FILE *_file;
    std::string _path;
}
- (void)observe:(NSTimer *)timer;
@end

@implementation ZELDialogObserver

- (id)init {
    const char *path = std::getenv("ZEL_STATE");
    if (!(self = [super init]) || path == nullptr) return self;
    _path = path;
    NSTimer *timer = [NSTimer timerWithTimeInterval:0.05
                                             target:self
                                           selector:@selector(observe:)
                                           userInfo:nil
                                            repeats:YES];
    for (NSString *mode in
         [NSArray arrayWithObjects:NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode, nil])
        [[NSRunLoop currentRunLoop] addTimer:timer forMode:mode];
    return self;
}

- (unsigned long)handleOf:(NSWindow *)window {
    return (unsigned long)(uintptr_t)[GSServerForWindow(window) windowDevice:[window windowNumber]];
}

// A window is key before the window server has given it the keyboard.
- (BOOL)hasKeyboard:(NSWindow *)window {
    Window focus = None;
    int revertTo = 0;
    XGetInputFocus(static_cast<Display *>([GSServerForWindow(window) serverDevice]), &focus,
                   &revertTo);
    return [window isKeyWindow] && focus == [self handleOf:window];
}

// kind, name, centre in the window's content (in pixels from the top left), enabled, value.
- (void)write:(const char *)kind
         name:(NSString *)name
         rect:(NSRect)rect
           of:(NSView *)view
      enabled:(BOOL)enabled
        value:(NSString *)value {
    NSView *content = [[view window] contentView];
    const NSRect shown = [view convertRect:rect toView:content];
    const CGFloat scale = [[view window] userSpaceScaleFactor];
    fprintf(_file, "%s\t%s\t%d\t%d\t%d\t%s\n", kind, [name UTF8String],
            (int)(NSMidX(shown) * scale),
            (int)((NSHeight([content bounds]) - NSMidY(shown)) * scale), (int)enabled,
            [value UTF8String]);
}

- (void)writeEditorOf:(NSControl *)control name:(NSString *)name {
    NSText *editor = [control currentEditor];
    if (editor != nil)
        fprintf(_file, "focus\t%s\t%lu\t%lu\t1\t\n", [name UTF8String],
                (unsigned long)[editor selectedRange].location,
                (unsigned long)[editor selectedRange].length);
}

- (void)writeControl:(NSControl *)control name:(NSString *)name {
    NSString *value = @"";
    if ([control isKindOfClass:[NSPopUpButton class]])
        value =
            [NSString stringWithFormat:@"%ld", (long)[[(NSPopUpButton *)control selectedItem] tag]];
    else if ([control isKindOfClass:[NSButton class]])
        value = [NSString stringWithFormat:@"%ld", (long)[(NSButton *)control state]];
    else if ([control isKindOfClass:[NSTextField class]])
        value = [control stringValue];
    [self write:"control"
           name:name
           rect:[control bounds]
             of:control
        enabled:[control isEnabled]
          value:value];
    [self writeEditorOf:control name:name];
}

/// The one field of a file panel.
- (void)writeForm:(NSForm *)form {
    [self write:"control"
           name:@"name"
           rect:[form bounds]
             of:form
        enabled:YES
          value:[[form cellAtIndex:0] stringValue]];
    [self writeEditorOf:form name:@"name"];
}

- (void)writeMatrix:(NSMatrix *)matrix name:(NSString *)name {
    for (NSInteger row = 0; row < [matrix numberOfRows]; ++row) {
        NSCell *cell = [matrix cellAtRow:row column:0];
        NSString *cellName = [NSString stringWithFormat:@"%@:%ld", name, (long)[cell tag]];
        if ([cell isKindOfClass:[NSBrowserCell class]])
            cellName = [NSString stringWithFormat:@"row:%@", [cell stringValue]];
        [self write:"control"
               name:cellName
               rect:[matrix cellFrameAtRow:row column:0]
                 of:matrix
            enabled:[cell isEnabled]
              value:[NSString stringWithFormat:@"%ld", (long)[cell state]]];
    }
}

- (void)writeView:(NSView *)view outlets:(NSDictionary *)outlets {
    for (NSView *sub in [view subviews]) {
        NSString *name = [outlets objectForKey:[NSValue valueWithNonretainedObject:sub]];
        if ([sub isKindOfClass:[NSForm class]])
            [self writeForm:(NSForm *)sub];
        else if ([sub isKindOfClass:[NSMatrix class]])
            [self writeMatrix:(NSMatrix *)sub name:name != nil ? name : @"matrix"];
        else if ([sub isKindOfClass:[NSPopUpButton class]])
            [self writeControl:(NSControl *)sub name:name != nil ? name : @"popup"];
        else if ([sub isKindOfClass:[NSButton class]])
            [self writeControl:(NSControl *)sub name:name != nil ? name : [(NSButton *)sub title]];
        else if ([sub isKindOfClass:[NSTextField class]] && [(NSTextField *)sub isEditable])
            [self writeControl:(NSControl *)sub name:name != nil ? name : @"field"];
        else if ([sub isKindOfClass:[NSTextField class]])
            [self write:"text"
                   name:[[(NSTextField *)sub font] fontName]
                   rect:[sub bounds]
                     of:sub
                enabled:YES
                  value:[(NSTextField *)sub stringValue]];
        if (name == nil && [sub isKindOfClass:[NSButton class]]) name = [(NSButton *)sub title];
        if (name != nil && [[sub window] firstResponder] == sub)
            fprintf(_file, "responder\t%s\t0\t0\t1\t\n", [name UTF8String]);
        [self writeView:sub outlets:outlets];
    }
}

- (NSDictionary *)outletsOf:(id)controller {
    NSMutableDictionary *outlets = [NSMutableDictionary dictionary];
    NSArray *names = [NSArray
        arrayWithObjects:@"pagesMenu", @"resolutionMenu", @"cmykMenu", @"colourMenu", @"unitsMenu",
                         @"formatMenu", @"pageWidth", @"pageHeight", @"resolution", @"rotateBox",
                         @"flipHorizontalBox", @"flipVerticalBox", @"sendToPrinterBox",
                         @"choosePPDButton", @"documentSizeButton", @"okButton", @"cancelButton",
                         @"pageModeMatrix", @"fromPageText", @"toPageText", @"numberOfCopiesText",
                         @"collateCheckbox", @"saveButton", @"saveAsButton", nil];
    for (NSString *name in names) {
        if (![controller respondsToSelector:NSSelectorFromString(name)]) continue;
        id outlet = [controller valueForKey:name];
        if (outlet != nil)
            [outlets setObject:name forKey:[NSValue valueWithNonretainedObject:outlet]];
    }
    return outlets;
}

// handle, place on the screen from the top left, height of its content, size.
- (void)writeMenuWindow:(NSWindow *)window {
    const NSRect frame = [window frame], screen = [[window screen] frame];
    fprintf(_file, "menu\t%lu\t%d\t%d\t%d\t%d %d\n", [self handleOf:window], (int)NSMinX(frame),
            (int)(NSMaxY(screen) - NSMaxY(frame)), (int)NSHeight(frame), (int)NSWidth(frame),
            (int)NSHeight(frame));
}

- (void)writeOpenMenuOf:(NSView *)view {
    for (NSView *sub in [view subviews]) {
        [self writeOpenMenuOf:sub];
        if (![sub isKindOfClass:[NSPopUpButton class]]) continue;
        NSMenuView *list = [[(NSPopUpButton *)sub menu] menuRepresentation];
        if (![[list window] isVisible]) continue;
        [self writeMenuWindow:[list window]];
        const NSInteger count = [[(NSPopUpButton *)sub menu] numberOfItems];
        for (NSInteger i = 0; i < count; ++i) {
            // All of them would be more than can be read twenty times a second.
            if (count > 1000 && !NSIntersectsRect([list rectOfItemAtIndex:i], [list bounds]))
                continue;
            NSMenuItem *item = [[(NSPopUpButton *)sub menu] itemAtIndex:i];
            [self write:"item"
                   name:[NSString stringWithFormat:@"%ld", (long)[item tag]]
                   rect:[list rectOfItemAtIndex:i]
                     of:list
                enabled:[item isEnabled]
                  value:[list highlightedItemIndex] == i ? @"1" : @"0"];
        }
    }
}

- (void)observe:(NSTimer *)timer {
    NSWindow *front = [NSApp modalWindow];
    const std::string temporary = _path + ".new";
    _file = fopen(temporary.c_str(), "w");
    if (_file == nullptr) return;
    if ([front isVisible]) {
        const char *kind = [front windowController] != nil             ? "dialog"
                           : [front isKindOfClass:[NSSavePanel class]] ? "panel"
                                                                       : "alert";
        fprintf(_file, "window\t%s\t%lu\t%d\t%d\t%s\n", kind, [self handleOf:front],
                (int)[self hasKeyboard:front], 0, [[front title] UTF8String]);
        [self writeView:[front contentView] outlets:[self outletsOf:[front windowController]]];
        [self writeOpenMenuOf:[front contentView]];
    }
    fclose(_file);
    rename(temporary.c_str(), _path.c_str());
}
@end
