#import "platform/toolkit/gnustep/TypedPaths.h"

#include <objc/runtime.h>

/// One for all panels; AppKit has only one that is shown.
@interface ZELTypedPaths : NSObject
- (void)textDidChange:(NSNotification *)notification;
- (void)takeTextOf:(NSForm *)form;
- (void)confirm:(id)sender;
@end

/// The first view of that class in the view.
static id FindView(NSView *view, Class kind) {
    for (NSView *sub in [view subviews]) {
        if ([sub isKindOfClass:kind]) return sub;
        if (id found = FindView(sub, kind)) return found;
    }
    return nil;
}

static NSButton *FindOKButton(NSView *view) {
    for (NSView *sub in [view subviews]) {
        const SEL action =
            [sub isKindOfClass:[NSButton class]] ? [(NSButton *)sub action] : (SEL)NULL;
        if (action != NULL &&
            (sel_isEqual(action, @selector(ok:)) || sel_isEqual(action, @selector(confirm:))))
            return (NSButton *)sub;
        if (NSButton *found = FindOKButton(sub)) return found;
    }
    return nil;
}

/// The path that a text is, or nil: with the blanks around it that pasting brings along.
static NSString *PathOfText(NSString *text) {
    NSString *path =
        [text stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceAndNewlineCharacterSet]];
    path = [path stringByExpandingTildeInPath];
    return [path isAbsolutePath] ? [path stringByStandardizingPath] : nil;
}

static BOOL IsShownFile(NSOpenPanel *panel, NSString *path) {
    BOOL isFolder = NO;
    if (![[NSFileManager defaultManager] fileExistsAtPath:path isDirectory:&isFolder] || isFolder)
        return NO;
    id delegate = [panel delegate];
    return ![delegate respondsToSelector:@selector(panel:shouldShowFilename:)] ||
           [delegate panel:panel shouldShowFilename:path];
}

/// The browser selects the file; what it answers depends on the columns that were open before.
static void SelectFile(NSOpenPanel *panel, NSString *path) {
    NSBrowser *browser = FindView([panel contentView], [NSBrowser class]);
    (void)[browser setPath:path];
}

@implementation ZELTypedPaths
// The panel itself must have looked first: it lets go of what is selected.
- (void)textDidChange:(NSNotification *)notification {
    [NSObject cancelPreviousPerformRequestsWithTarget:self];
    [self performSelector:@selector(takeTextOf:)
               withObject:[notification object]
               afterDelay:0
                  inModes:[NSArray arrayWithObject:NSModalPanelRunLoopMode]];
}

- (void)takeTextOf:(NSForm *)form {
    NSOpenPanel *panel = (NSOpenPanel *)[form window];
    if (![panel isKindOfClass:[NSOpenPanel class]] || ![form isKindOfClass:[NSForm class]]) return;
    NSText *editor = [form currentEditor];
    NSString *path = PathOfText([editor string]);
    if (path == nil || !IsShownFile(panel, path)) return;
    SelectFile(panel, path);
    [FindOKButton([panel contentView]) setEnabled:YES];
}

/// The panel takes the text for a name in the folder that it shows.
- (void)confirm:(id)sender {
    NSOpenPanel *panel = (NSOpenPanel *)[(NSView *)sender window];
    NSForm *form = FindView([panel contentView], [NSForm class]);
    [panel makeFirstResponder:form]; // what is being typed is the cell's then
    NSString *path = PathOfText([[form cellAtIndex:0] stringValue]);
    if (path != nil && IsShownFile(panel, path)) {
        SelectFile(panel, path);
        [[form cellAtIndex:0] setStringValue:[path lastPathComponent]];
    }
    [panel ok:sender];
}
@end

void AcceptTypedPaths(NSOpenPanel *panel) {
    static ZELTypedPaths *const observer = [ZELTypedPaths new];
    NSForm *form = FindView([panel contentView], [NSForm class]);
    NSNotificationCenter *center = [NSNotificationCenter defaultCenter];
    [center removeObserver:observer];
    if (form == nil) return;
    NSButton *button = FindOKButton([panel contentView]);
    [button setTarget:observer];
    [button setAction:@selector(confirm:)];
    [center addObserver:observer
               selector:@selector(textDidChange:)
                   name:NSControlTextDidChangeNotification
                 object:form];
}
