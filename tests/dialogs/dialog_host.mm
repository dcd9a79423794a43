// A host of the driver that shows one dialog and lets a test watch it: twenty times a second it
// writes what its front window shows, and where, to a file. The test moves the real pointer and
// presses real keys; nothing here acts on the dialog.
//
// dialog_host style|job|job-copies: the record is read from the file in ZEL_RECORD and written
// back; the window's state goes to ZEL_STATE and the result to ZEL_RESULT.
#include "Common/Src/CFRef.h"
#include "ZELPrint.h"
#import "dialogs/DialogSupport.h"
#include "dialogs/JobDialog.h"
#include "tests/dialogs/TestBundle.h"

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSDisplayServer.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

static const char *Environment(const char *name) {
    const char *value = std::getenv(name);
    if (value == nullptr) {
        fprintf(stderr, "%s is not set\n", name);
        std::exit(2);
    }
    return value;
}

@interface ZELObserver : NSObject {
    FILE *_file;
}
- (void)observe:(NSTimer *)timer;
@end

@implementation ZELObserver

- (unsigned long)handleOf:(NSWindow *)window {
    return (unsigned long)(uintptr_t)[GSServerForWindow(window) windowDevice:[window windowNumber]];
}

// kind, name, centre in the window's content (from the top left), enabled, value.
- (void)write:(const char *)kind
         name:(NSString *)name
         rect:(NSRect)rect
           of:(NSView *)view
      enabled:(BOOL)enabled
        value:(NSString *)value {
    NSView *content = [[view window] contentView];
    const NSRect shown = [view convertRect:rect toView:content];
    fprintf(_file, "%s\t%s\t%d\t%d\t%d\t%s\n", kind, [name UTF8String], (int)NSMidX(shown),
            (int)(NSHeight([content bounds]) - NSMidY(shown)), (int)enabled, [value UTF8String]);
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
    NSText *editor = [control currentEditor];
    if (editor != nil)
        fprintf(_file, "focus\t%s\t%lu\t%lu\t1\t\n", [name UTF8String],
                (unsigned long)[editor selectedRange].location,
                (unsigned long)[editor selectedRange].length);
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
        if ([sub isKindOfClass:[NSMatrix class]])
            [self writeMatrix:(NSMatrix *)sub name:name != nil ? name : @"matrix"];
        else if ([sub isKindOfClass:[NSPopUpButton class]])
            [self writeControl:(NSControl *)sub name:name != nil ? name : @"popup"];
        else if ([sub isKindOfClass:[NSButton class]])
            [self writeControl:(NSControl *)sub name:name != nil ? name : [(NSButton *)sub title]];
        else if ([sub isKindOfClass:[NSTextField class]] && [(NSTextField *)sub isEditable])
            [self writeControl:(NSControl *)sub name:name != nil ? name : @"field"];
        else if ([sub isKindOfClass:[NSTextField class]])
            [self write:"text"
                   name:@""
                   rect:[sub bounds]
                     of:sub
                enabled:YES
                  value:[(NSTextField *)sub stringValue]];
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

- (void)writeOpenMenuOf:(NSView *)view {
    for (NSView *sub in [view subviews]) {
        [self writeOpenMenuOf:sub];
        if (![sub isKindOfClass:[NSPopUpButton class]]) continue;
        NSMenuView *list = [[(NSPopUpButton *)sub menu] menuRepresentation];
        if (![[list window] isVisible]) continue;
        fprintf(_file, "menu\t%lu\t0\t0\t1\t\n", [self handleOf:[list window]]);
        for (NSInteger i = 0; i < [[(NSPopUpButton *)sub menu] numberOfItems]; ++i) {
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
    const std::string path = Environment("ZEL_STATE"), temporary = path + ".new";
    _file = fopen(temporary.c_str(), "w");
    if (_file == nullptr) return;
    if ([front isVisible]) {
        const char *kind = [front windowController] != nil             ? "dialog"
                           : [front isKindOfClass:[NSSavePanel class]] ? "panel"
                                                                       : "alert";
        fprintf(_file, "window\t%s\t%lu\t%d\t%d\t%s\n", kind, [self handleOf:front],
                (int)[front isKeyWindow], 0, [[front title] UTF8String]);
        [self writeView:[front contentView] outlets:[self outletsOf:[front windowController]]];
        [self writeOpenMenuOf:[front contentView]];
    }
    fclose(_file);
    rename(temporary.c_str(), path.c_str());
}
@end

static void Observe() {
    ZELObserver *observer = [ZELObserver new];
    NSTimer *timer = [NSTimer timerWithTimeInterval:0.05
                                             target:observer
                                           selector:@selector(observe:)
                                           userInfo:nil
                                            repeats:YES];
    for (NSString *mode in
         [NSArray arrayWithObjects:NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode, nil])
        [[NSRunLoop currentRunLoop] addTimer:timer forMode:mode];
}

static void ReadRecord(Handle record) {
    FILE *file = fopen(Environment("ZEL_RECORD"), "rb");
    if (file == nullptr || fread(*record, 1, sizeof(PSHPrint), file) != sizeof(PSHPrint))
        std::exit(2);
    fclose(file);
}

static void WriteRecord(Handle record) {
    FILE *file = fopen(Environment("ZEL_RECORD"), "wb");
    fwrite(*record, 1, sizeof(PSHPrint), file);
    fclose(file);
}

static std::string RunWithCopies() {
    CFURLRef folder = FolderURL(Environment("ZEL_HOT_FOLDER"));
    CFStringRef name = nullptr;
    int16_t copies = 2, first = 1, last = 999;
    bool collate = true;
    const bool confirmed =
        JobDialog(TestBundle(), TestBundleIdentifier(), CFSTR("Copies"), &folder, CFSTR("My job"),
                  CFSTR("ps"), &name, &copies, &collate, &first, &last);
    char text[200];
    snprintf(text, sizeof text, "confirmed %d copies %d collate %d first %d last %d", confirmed,
             copies, collate, first, last);
    return text;
}

static std::string RunWithDriver(const std::string &what) {
    DriverContext *context = nullptr;
    if (ZELPrOpen(TestBundle(), &context) != 0) return "not opened";
    Handle record = NewHandleClear(sizeof(PSHPrint));
    ReadRecord(record);
    const ZELPageRecord page = {2480, 3508, 210, 297};
    ZELPrSuggestPage(context, nullptr, &page, 32);
    (void)ZELPrSetJobName(context, nullptr, CFSTR("My job"));
    const Boolean confirmed =
        what == "style" ? ZELPrStyle(context, record) : ZELPrJob(context, record);
    const int32_t opened = confirmed ? 0 : ZELPrOpenDoc(context);
    WriteRecord(record);
    const int32_t closed = ZELPrClose(context);
    char text[200];
    snprintf(text, sizeof text, "confirmed %d opened %d closed %d", confirmed, opened, closed);
    return text;
}

int main(int argc, char **argv) {
    @autoreleasepool {
        const std::string what = argc > 1 ? argv[1] : "";
        if (!EnsureApplication()) return 3;
        Observe();
        const std::string result = what == "job-copies" ? RunWithCopies() : RunWithDriver(what);
        FILE *file = fopen(Environment("ZEL_RESULT"), "w");
        fprintf(file, "%s", result.c_str());
        fclose(file);
        fflush(nullptr);
        _exit(0);
    }
}
