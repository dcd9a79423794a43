#import "dialogs/JobDialogController.h"

#import "dialogs/DialogSupport.h"
#include "dialogs/PageRange.h"
#include "support/Units.h"

#include <platform/Platform.h>

enum { kAllPagesTag = 1, kPageRangeTag = 2 };

static int FieldInteger(NSTextField *field) {
    return LeadingInteger([[field stringValue] UTF8String]);
}

static void FillBlankField(NSTextField *field) {
    if (IsBlank([[field stringValue] UTF8String])) [field setIntValue:1];
}

@implementation PostscriptPrinterDriverJobDialogController

@synthesize myBundle = _myBundle, hotFolder = _hotFolder, fileExtension = _fileExtension;
@synthesize jobName = _jobName, suggestedJobName = _suggestedJobName, isOK = _isOK;
@synthesize pageModeMatrix = _pageModeMatrix, fromPageText = _fromPageText;
@synthesize toPageText = _toPageText, numberOfCopiesText = _numberOfCopiesText;
@synthesize hotFolderText = _hotFolderText, collateCheckbox = _collateCheckbox;
@synthesize documentText = _documentText, printerText = _printerText, pageText = _pageText;
@synthesize saveButton = _saveButton, saveAsButton = _saveAsButton;

- (id)initWithBundle:(NSBundle *)bundle nibName:(NSString *)nibName {
    NSString *path = InterfaceFilePath(bundle, nibName);
    if (path == nil) {
        [self release];
        return nil;
    }
    if ((self = [super initWithWindowNibPath:path owner:self])) [self setMyBundle:bundle];
    return self;
}

- (void)dealloc {
    [_myBundle release];
    [_hotFolder release];
    [_fileExtension release];
    [_jobName release];
    [_suggestedJobName release];
    [super dealloc];
}

- (void)windowDidLoad {
    PrepareLoadedWindow([self window]);
    LocalizeLoadedWindow([self window], _myBundle, @"Localizable");
    [_pageModeMatrix setMode:NSRadioModeMatrix];
    PlaceWindow([self window], @"ZELPostscriptPrinterDriverJobDialogPosition");
    [self showHotFolder];
}

- (NSString *)localized:(NSString *)key {
    return [_myBundle localizedStringForKey:key value:key table:@"Localizable"];
}

- (void)showHotFolder {
    ShowLongText(_hotFolderText, _hotFolder != nil ? [_hotFolder path] : [self localized:@"none"]);
}

- (NSString *)documentWithPages:(int)pages {
    NSString *name = _suggestedJobName != nil ? _suggestedJobName : @"";
    if (pages == 0) return name;
    NSString *format = [self localized:pages == 1 ? @"onePage" : @"manyPages"];
    return [NSString stringWithFormat:format, name, pages];
}

- (NSString *)pageOf:(const JobSummary &)summary {
    static NSString *const units[] = {@"pixels", @"points", @"millimetres", @"inches"};
    const int unit = summary.unit;
    const std::string width = FormatPoints(summary.width, unit, summary.xDpi);
    const std::string height = FormatPoints(summary.height, unit, summary.yDpi);
    NSString *name = [NSString stringWithUTF8String:summary.page.c_str()];
    if ([name length] == 0) name = [self localized:@"Custom"];
    return [NSString stringWithFormat:[self localized:@"pageOfSize"], name,
                                      [NSString stringWithUTF8String:width.c_str()],
                                      [NSString stringWithUTF8String:height.c_str()],
                                      [self localized:units[unit]]];
}

- (void)showSummary:(const JobSummary *)summary {
    if (_documentText == nil) return;
    ShowLongText(_documentText, [self documentWithPages:summary != nullptr ? summary->pages : 0]);
    if (summary == nullptr) return;
    NSString *printer = [NSString stringWithUTF8String:summary->printer.c_str()];
    ShowLongText(_printerText, [printer length] != 0 ? printer : [self localized:@"none"]);
    ShowLongText(_pageText, [self pageOf:*summary]);
}

- (void)setHotFolder:(NSURL *)folder {
    if (folder == _hotFolder) return;
    [_hotFolder release];
    _hotFolder = [folder retain];
    [self showHotFolder];
}

- (int16_t)numberOfCopies {
    return (int16_t)FieldInteger(_numberOfCopiesText);
}
- (void)setNumberOfCopies:(int16_t)copies {
    [_numberOfCopiesText setIntValue:copies];
}

- (BOOL)collated {
    return _collateCheckbox != nil && [_collateCheckbox state] == NSOnState;
}
- (void)setCollated:(BOOL)collated {
    [_collateCheckbox setState:collated ? NSOnState : NSOffState];
}

- (NSString *)windowTitle {
    return [[self window] title];
}
- (void)setWindowTitle:(NSString *)title {
    [[self window] setTitle:title];
}

- (BOOL)runJobDialog {
    _isOK = NO;
    [_saveButton setEnabled:_hotFolder != nil];
    // Return does what can be done: without a hot folder somebody has to say where.
    if (_hotFolder == nil) MakeDefaultButton(_saveAsButton, _saveButton);
    [[self window] makeKeyAndOrderFront:nil];
    [NSApp runModalForWindow:[self window]];
    [[self window] orderOut:nil];
    return _isOK;
}

- (BOOL)allPagesSelected {
    return [[_pageModeMatrix selectedCell] tag] == kAllPagesTag;
}

- (void)clearPageFields {
    [_fromPageText setStringValue:@""];
    [_toPageText setStringValue:@""];
}

- (void)fillBlankPageFields {
    FillBlankField(_fromPageText);
    FillBlankField(_toPageText);
}

- (void)setPageRangeFrom:(int16_t)first to:(int16_t)last {
    const bool all = PageRange{first, last}.IsAllPages();
    [_pageModeMatrix selectCellWithTag:all ? kAllPagesTag : kPageRangeTag];
    if (all) {
        [self clearPageFields];
    } else {
        [_fromPageText setIntValue:first];
        [_toPageText setIntValue:last];
    }
}

- (void)getPageRangeFrom:(int16_t *)first to:(int16_t *)last {
    PageRange range;
    if (![self allPagesSelected]) {
        range.first = (int16_t)FieldInteger(_fromPageText);
        range.last = (int16_t)FieldInteger(_toPageText);
    }
    *first = range.first;
    *last = range.last;
}

- (BOOL)validatePageRange {
    if ([self allPagesSelected]) return YES;
    const PageRangeFault fault =
        CheckPageRange(FieldInteger(_fromPageText), FieldInteger(_toPageText));
    if (fault == PageRangeFault::None) return YES;
    NSBeep();
    [fault == PageRangeFault::FirstPage ? _fromPageText : _toPageText selectText:nil];
    return NO;
}

- (BOOL)validateNumberOfCopies {
    if (_numberOfCopiesText == nil || IsGoodNumberOfCopies(FieldInteger(_numberOfCopiesText)))
        return YES;
    NSBeep();
    [_numberOfCopiesText selectText:nil];
    return NO;
}

- (BOOL)hotFolderIsInTrash {
    return _hotFolder != nil && PlatformIsInTrash([[_hotFolder path] UTF8String]);
}

- (void)showHotFolderAlert:(NSString *)key {
    NSAlert *alert = [[[NSAlert alloc] init] autorelease];
    [alert setMessageText:[self localized:key]];
    [alert setInformativeText:@""];
    [alert setShowsHelp:NO];
    BeginAlertSheet(alert, [self window], nil, NULL);
}

- (void)handleSaveCommand {
    if (_hotFolder == nil) {
        [self showHotFolderAlert:@"Cannot print because the Hot Folder cannot be found"];
    } else if ([self hotFolderIsInTrash]) {
        [self showHotFolderAlert:@"Cannot print because the Hot Folder is in the Trash"];
    } else {
        _isOK = YES;
        StopModalAndWake();
    }
}

- (IBAction)doSave:(id)sender {
    if ([self validatePageRange] && [self validateNumberOfCopies]) [self handleSaveCommand];
}

- (IBAction)doSaveAs:(id)sender {
    if (![self validatePageRange]) return;
    NSSavePanel *panel = [NSSavePanel savePanel];
    [panel setCanCreateDirectories:YES];
    [panel setAllowsOtherFileTypes:NO];
    [panel setAllowedFileTypes:[NSArray arrayWithObject:_fileExtension]];
    NSURL *folder = [self hotFolderIsInTrash] ? nil : _hotFolder;
    BeginPanelSheet(panel, [self window], folder, _suggestedJobName, self,
                    @selector(savePanelDidEnd:returnCode:contextInfo:));
}

- (void)savePanelDidEnd:(NSSavePanel *)panel
             returnCode:(NSInteger)code
            contextInfo:(void *)contextInfo {
    [panel orderOut:nil];
    NSString *path = code == NSModalResponseOK ? [[panel URL] path] : nil;
    if (path == nil) return;
    [self setHotFolder:[NSURL fileURLWithPath:[path stringByDeletingLastPathComponent]
                                  isDirectory:YES]];
    [self setJobName:[path lastPathComponent]];
    [self handleSaveCommand];
}

- (IBAction)doCancel:(id)sender {
    _isOK = NO;
    StopModalAndWake();
}

- (IBAction)doPageRangeChange:(id)sender {
    if ([self allPagesSelected])
        [self clearPageFields];
    else
        [self fillBlankPageFields];
}

- (void)controlTextDidChange:(NSNotification *)notification {
    if ([notification object] == _numberOfCopiesText || ![self allPagesSelected]) return;
    [_pageModeMatrix selectCellWithTag:kPageRangeTag];
    [self fillBlankPageFields];
}

// A window manager offers to close the window in any case.
- (BOOL)windowShouldClose:(id)sender {
    [self doCancel:sender];
    return NO;
}

@end
