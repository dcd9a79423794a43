#import "dialogs/StyleDialogController.h"

#include "PSHPrint.h"
#import "dialogs/DialogSupport.h"
#import "dialogs/FieldHelpers.h"
#import "platform/toolkit/Toolkit.h"
#include "support/Alerts.h"

enum { kPostscriptTag = 1, kEPSTag = 2 };

static NSString *const kTable = @"PSStyleDialog";

static NSString *StringOf(const std::string &utf8) {
    return [NSString stringWithUTF8String:utf8.c_str()];
}

static void ReportPPDError(const std::string &error) {
    if (!error.empty()) DisplayError(error.c_str());
}

static std::string FieldText(NSTextField *field) { return [[field stringValue] UTF8String]; }

@implementation PostscriptPrinterStyleDialogController

@synthesize setup = _setup, myBundle = _myBundle;
@synthesize unitMode = _unitMode, sendToPrinter = _sendToPrinter, isOK = _isOK;
@synthesize pagesMenu = _pagesMenu, resolutionMenu = _resolutionMenu, cmykMenu = _cmykMenu;
@synthesize colourMenu = _colourMenu, unitsMenu = _unitsMenu, formatMenu = _formatMenu;
@synthesize pageWidth = _pageWidth, pageHeight = _pageHeight, resolution = _resolution;
@synthesize ppdTitleText = _ppdTitleText, versionText = _versionText;
@synthesize rotateBox = _rotateBox, flipHorizontalBox = _flipHorizontalBox;
@synthesize flipVerticalBox = _flipVerticalBox, sendToPrinterBox = _sendToPrinterBox;
@synthesize choosePPDButton = _choosePPDButton, documentSizeButton = _documentSizeButton;
@synthesize okButton = _okButton, cancelButton = _cancelButton;
@synthesize pagePicture = _pagePicture;

- (id)initWithBundle:(NSBundle *)bundle {
    NSString *path = InterfaceFilePath(bundle, @"PostscriptStyleDialog");
    if (path == nil) {
        [self release];
        return nil;
    }
    if ((self = [super initWithWindowNibPath:path owner:self])) {
        [ZELPagePicture class]; // only the interface file names it: the linker would leave it out
        [self setMyBundle:bundle];
        _unitMode = kMillimetres;
    }
    return self;
}

- (void)dealloc {
    [_myBundle release];
    [super dealloc];
}

#pragma mark Values

- (NSInteger)colourspace {
    return _setup->ColourSpace();
}
- (void)setColourspace:(NSInteger)colourSpace {
    [self willChangeValueForKey:@"isCMYK"];
    _setup->SetColourSpace((int)colourSpace);
    [self didChangeValueForKey:@"isCMYK"];
}
- (BOOL)isCMYK {
    return _setup->ColourSpace() == kZELColourSpaceCMYK;
}

- (BOOL)rotate90 {
    return _setup->IsRotated();
}
- (void)setRotate90:(BOOL)flag {
    const BOOL isTyping = [self isTypingSize];
    _setup->SetRotated(flag);
    // The page lies the other way on the paper now: its size and limits turn with it.
    [self syncPageKeepingTyping:isTyping];
}

- (BOOL)flipHorizontal {
    return _setup->IsFlippedHorizontally();
}
- (void)setFlipHorizontal:(BOOL)flag {
    _setup->SetFlippedHorizontally(flag);
    [self showPagePicture];
}
- (BOOL)flipVertical {
    return _setup->IsFlippedVertically();
}
- (void)setFlipVertical:(BOOL)flag {
    _setup->SetFlippedVertically(flag);
    [self showPagePicture];
}

- (BOOL)canUseCustomPageSizes {
    return _setup->CanUseCustomPageSizes();
}

- (void)getCustomDimensionMinWidth:(double *)minWidth
                         minHeight:(double *)minHeight
                          maxWidth:(double *)maxWidth
                         maxHeight:(double *)maxHeight {
    const CustomDimensions limits = _setup->CustomLimits();
    *minWidth = limits.width.low;
    *maxWidth = limits.width.high;
    *minHeight = limits.height.low;
    *maxHeight = limits.height.high;
}

- (NSString *)localized:(NSString *)key {
    return [_myBundle localizedStringForKey:key value:key table:kTable];
}

#pragma mark Opening

- (BOOL)runStyleDialog {
    _isOK = NO;
    [self showWindow:nil];
    [self checkSeparation];
    [NSApp runModalForWindow:[self window]];
    [[self window] orderOut:nil];
    return _isOK;
}

- (void)windowDidLoad {
    PrepareLoadedWindow([self window]);
    LocalizeLoadedWindow([self window], _myBundle, kTable);
    NSDictionary *info = [_myBundle infoDictionary];
    NSString *version = [info objectForKey:@"CFBundleShortVersionString"];
    [[self window] setTitle:[info objectForKey:@"CFBundleName"]];
    PlaceWindow([self window], @"ZELPostscriptPrinterDriverStyleDialogPosition");
    [_versionText setStringValue:version != nil ? version : @""];
    [_unitsMenu selectItemWithTag:_unitMode];
    [self buildCMYKMenu];
    [self selectCMYKByName:(NSString *)_setup->SeparationName().Get()];
    [self showResolution];
    [self handlePPDChange];
    [_formatMenu selectItemWithTag:_setup->IsEPS() ? kEPSTag : kPostscriptTag];
    [_documentSizeButton setEnabled:_setup->HasDocumentSize()];
    [self chooseFirstField];
}

- (void)chooseFirstField {
    NSTextField *first = [_pageWidth isEnabled] ? _pageWidth : _resolution;
    [[self window] setInitialFirstResponder:first];
    [[self window] makeFirstResponder:first];
}

- (void)checkSeparation {
    const CFRef<CFStringRef> name = _setup->SeparationName();
    if (_setup->IsGoodSeparation(name.Get())) return;
    if (![self isCMYK]) {
        _setup->SetSeparationName(CFSTR(""));
        return;
    }
    // Once the modal loop runs; before, there is nothing to cancel. In its mode only: with more
    // than one, GNUstep performs it again in the other when a sheet's button spins that.
    [self performSelector:@selector(showMissingSeparation:)
               withObject:(NSString *)name.Get()
               afterDelay:0
                  inModes:[NSArray arrayWithObject:NSModalPanelRunLoopMode]];
}

- (void)showMissingSeparation:(NSString *)name {
    NSAlert *alert = [[[NSAlert alloc] init] autorelease];
    [alert setAlertStyle:NSCriticalAlertStyle];
    [alert setMessageText:[self localized:@"cantPrint"]];
    [alert setInformativeText:[NSString stringWithFormat:[self localized:@"missingCMYK"], name]];
    [alert addButtonWithTitle:[self localized:@"cancel"]];
    [alert addButtonWithTitle:[self localized:@"useStandard"]];
    BeginAlertSheet(alert, [self window], self,
                    @selector(missingSeparationDidEnd:returnCode:contextInfo:));
}

- (void)missingSeparationDidEnd:(NSAlert *)alert
                     returnCode:(NSInteger)code
                    contextInfo:(void *)contextInfo {
    if (code == NSAlertSecondButtonReturn)
        _setup->SetSeparationName(CFSTR(""));
    else
        [self doCancel:nil];
}

#pragma mark CMYK separations

- (void)buildCMYKMenu {
    for (int i = 1; i < _setup->SeparationCount(); ++i)
        InsertPopUpItem(_cmykMenu, (NSString *)_setup->SeparationNameAt(i), i,
                        [_cmykMenu numberOfItems]);
}

- (void)selectCMYKByName:(NSString *)name {
    [_cmykMenu selectItemWithTag:_setup->SeparationIndex((CFStringRef)name)];
}

- (IBAction)doSetCMYKName:(id)sender {
    const NSInteger tag = [[_cmykMenu selectedItem] tag];
    if (tag < 0 || tag >= _setup->SeparationCount()) return;
    _setup->SetSeparationName(_setup->SeparationNameAt((int)tag));
}

- (IBAction)doSetColourspace:(id)sender {
    [self setColourspace:[[_colourMenu selectedItem] tag]];
}

#pragma mark Printer description

- (void)handlePPDChange {
    NSString *name = StringOf(_setup->PrinterName());
    ShowLongText(_ppdTitleText, [name length] != 0 ? name : [self localized:@"none"]);
    [self syncWithPPD];
}

- (void)syncWithPPD {
    [self buildPageMenu];
    [self buildResolutionMenu];
    const BOOL hasColour = _setup->PrinterHasColour();
    if (!hasColour) [self setColourspace:kZELColourSpaceGray];
    [_colourMenu setEnabled:hasColour];
    [_colourMenu selectItemWithTag:[self colourspace]];
    [self syncPageKeepingTyping:NO];
}

/// Fields and pop-up follow what sizes are possible and what the record's page has become. A size
/// that is being typed stays as it stands and is checked when the user confirms, unless it can no
/// longer be typed.
- (void)syncPageKeepingTyping:(BOOL)keepsTyping {
    const BOOL custom = [self canUseCustomPageSizes];
    [_pageWidth setEnabled:custom];
    [_pageHeight setEnabled:custom];
    const NSInteger item = [_pagesMenu indexOfItemWithTag:PageSetupModel::kCustomPageTag];
    if (item >= 0) [[_pagesMenu itemAtIndex:item] setEnabled:custom];
    [self selectPageTag:_setup->SyncPage()];
    if (keepsTyping && custom)
        [self handleWidthOrHeightTyping];
    else
        [self showChosenSize];
}

- (void)selectPageTag:(int)tag {
    if (tag == PageSetupModel::kNoPageTag)
        [_pagesMenu selectItem:nil];
    else
        [_pagesMenu selectItemWithTag:tag];
    [_pagesMenu synchronizeTitleAndSelectedItem];
}

- (void)buildPageMenu {
    while ([_pagesMenu numberOfItems] > 0 && [[_pagesMenu itemAtIndex:0] tag] >= 0)
        [_pagesMenu removeItemAtIndex:0];
    std::string error;
    const std::vector<std::string> titles = _setup->PageTitles(&error);
    NSInteger index = 0;
    for (const std::string &title : titles) {
        InsertPopUpItem(_pagesMenu, StringOf(title), index, index);
        ++index;
    }
    [_pagesMenu synchronizeTitleAndSelectedItem];
    ReportPPDError(error);
}

- (void)addResolution:(const std::string &)title tag:(NSInteger)tag {
    @try {
        InsertPopUpItem(_resolutionMenu, StringOf(title), tag, tag);
    } @catch (NSException *e) {
        InsertPopUpItem(_resolutionMenu, @"PPD Error", tag, tag);
    }
}

- (void)buildResolutionMenu {
    [_resolutionMenu removeAllItems];
    std::string error;
    const std::vector<std::string> titles = _setup->ResolutionTitles(&error);
    NSInteger index = 0;
    for (const std::string &title : titles)
        [self addResolution:title tag:index++];
    [_resolutionMenu selectItemWithTag:_setup->SyncResolution()];
    [_resolutionMenu synchronizeTitleAndSelectedItem];
    ReportPPDError(error);
}

- (BOOL)panel:(id)sender shouldEnableURL:(NSURL *)url {
    NSString *path = [url path];
    BOOL isFolder = NO;
    if (![[NSFileManager defaultManager] fileExistsAtPath:path isDirectory:&isFolder]) return NO;
    if (isFolder) return ![[NSWorkspace sharedWorkspace] isFilePackageAtPath:path];
    return _setup->IsPPDFile([path fileSystemRepresentation]);
}

// GNUstep asks this instead; what is refused is hidden. It asks again of what it shows whenever
// columns scroll, and would read a column anew in the middle of opening those behind it, which
// raises: what is gone by then stays.
- (BOOL)panel:(id)sender shouldShowFilename:(NSString *)path {
    return ![[NSFileManager defaultManager] fileExistsAtPath:path] ||
           [self panel:sender shouldEnableURL:[NSURL fileURLWithPath:path]];
}

/// Beside the present file, which is the one chosen last.
- (NSURL *)folderOfPPDs {
    NSString *path = StringOf(_setup->PrinterPath());
    NSString *folder =
        [path length] != 0 ? [path stringByDeletingLastPathComponent] : SystemPPDFolder();
    return folder != nil ? [NSURL fileURLWithPath:folder isDirectory:YES] : nil;
}

- (IBAction)doOpenPPD:(id)sender {
    NSOpenPanel *panel = [NSOpenPanel openPanel];
    [panel setAllowsMultipleSelection:NO];
    [panel setCanChooseFiles:YES];
    [panel setCanChooseDirectories:NO];
    [panel setDelegate:(id)self];
    PrepareToolkitOpenPanel(panel);
    BeginPanelSheet(panel, [self window], [self folderOfPPDs], nil, self,
                    @selector(openPanelDidEnd:returnCode:contextInfo:));
}

- (void)openPanelDidEnd:(NSOpenPanel *)panel
             returnCode:(NSInteger)code
            contextInfo:(void *)contextInfo {
    [panel orderOut:nil];
    [panel setDelegate:nil]; // the panel is shared and does not retain its delegate
    NSArray *urls = [panel URLs];
    if (code != NSModalResponseOK || [urls count] == 0) return;
    _setup->LoadPrinter((CFURLRef)[urls objectAtIndex:0]);
    [self handlePPDChange];
}

#pragma mark Page size

- (void)showPagePicture {
    const PagePlace place = _setup->PlaceOnSheet();
    PagePictureContent content;
    content.left = place.left;
    content.bottom = place.bottom;
    content.areaWidth = place.width;
    content.areaHeight = place.height;
    content.sheetWidth = place.sheetWidth;
    content.sheetHeight = place.sheetHeight;
    content.isTurned = _setup->IsRotated();
    content.isFlippedHorizontally = _setup->IsFlippedHorizontally();
    content.isFlippedVertically = _setup->IsFlippedVertically();
    [_pagePicture show:content];
}

- (void)showSize {
    const int unit = (int)_unitMode;
    const std::string width = FormatPoints(_setup->PaperWidth(), unit, _setup->XDpi());
    const std::string height = FormatPoints(_setup->PaperHeight(), unit, _setup->YDpi());
    [_pageWidth setStringValue:StringOf(width)];
    [_pageHeight setStringValue:StringOf(height)];
    [self showPagePicture];
}

/// Shows a size that was chosen: what was typed before is gone and need not be checked any more.
- (void)showChosenSize {
    [self showSize];
    mCheckTypingOnExit = NO;
}

- (void)showResolution {
    StuffDouble(_resolution, 0, _setup->XDpi());
    mCheckResolutionOnExit = NO;
}

- (IBAction)doSetUnits:(id)sender {
    _unitMode = [[_unitsMenu selectedItem] tag];
    [self showSize];
}

- (IBAction)doSetPage:(id)sender {
    const NSInteger tag = [[_pagesMenu selectedItem] tag];
    if (tag == PageSetupModel::kCustomPageTag && _setup->IsCustomPaper())
        return; // nothing else chosen
    if (tag == PageSetupModel::kCustomPageTag)
        _setup->ChooseCustomPage();
    else
        _setup->ChoosePage((int)tag);
    [self showChosenSize];
}

- (IBAction)doSetPrintQuality:(id)sender {
    _setup->ChooseResolution((int)[[_resolutionMenu selectedItem] tag]);
}

- (IBAction)doSetFileFormat:(id)sender {
    const BOOL isTyping = [self isTypingSize];
    _setup->SetEPS([[_formatMenu selectedItem] tag] != kPostscriptTag);
    [self syncPageKeepingTyping:isTyping]; // custom sizes come and go with EPS
}

- (void)setSizeFromDocument {
    _setup->SetSizeFromDocument();
    [self syncWithPPD];
    [self showResolution];
}

- (void)askForDocumentSize:(NSString *)message informative:(NSString *)informative {
    NSAlert *alert = [[[NSAlert alloc] init] autorelease];
    [alert setMessageText:[self localized:message]];
    [alert setInformativeText:[self localized:informative]];
    [alert addButtonWithTitle:[self localized:@"OK"]];
    [alert addButtonWithTitle:[self localized:@"cancel"]];
    BeginAlertSheet(alert, [self window], self,
                    @selector(documentSizeDidEnd:returnCode:contextInfo:));
}

- (void)documentSizeDidEnd:(NSAlert *)alert
                returnCode:(NSInteger)code
               contextInfo:(void *)contextInfo {
    if (code == NSAlertFirstButtonReturn) [self setSizeFromDocument];
}

- (IBAction)doSetSizeFromDocument:(id)sender {
    if (![self canUseCustomPageSizes])
        [self askForDocumentSize:@"noCustomPageSize" informative:@"useStandardSize"];
    else if (!_setup->IsEPS() && !_setup->DocumentFitsOnCustomPaper())
        [self askForDocumentSize:@"tooLarge" informative:@"makeAsLargeAsPossible"];
    else
        [self setSizeFromDocument];
}

#pragma mark Typing

- (void)controlTextDidChange:(NSNotification *)notification {
    id field = [notification object];
    if (field == _pageWidth || field == _pageHeight) [self handleWidthOrHeightTyping];
    if (field == _resolution) [self handleResolutionTyping];
}

- (void)handleWidthOrHeightTyping {
    mCheckTypingOnExit = YES;
    int tag = 0;
    if (_setup->TypeSize(FieldText(_pageWidth), FieldText(_pageHeight), (int)_unitMode, &tag))
        [self selectPageTag:tag];
    [self showPagePicture];
}

/// Is there a typed size that is no page of the printer's, or not yet a size?
- (BOOL)isTypingSize {
    int tag = PageSetupModel::kCustomPageTag;
    if (mCheckTypingOnExit)
        _setup->TypeSize(FieldText(_pageWidth), FieldText(_pageHeight), (int)_unitMode, &tag);
    return mCheckTypingOnExit && tag == PageSetupModel::kCustomPageTag;
}

- (void)handleResolutionTyping {
    mCheckResolutionOnExit = YES;
    if (!_setup->TypeResolution(FieldText(_resolution))) return;
    if (_unitMode == kPixels) [self showSize]; // the same paper has another number of pixels now
}

#pragma mark Ending

- (BOOL)checkTypedSize {
    const CustomDimensions limits = _setup->CustomLimits();
    const int unit = (int)_unitMode;
    double width = 0, height = 0;
    if (!CheckDimensionField(
            _pageWidth, "Width", unit, &width, _setup->XDpi(), limits.width.high, limits.width.low,
            [self hint:@"Width:" limits:limits.width unit:unit dpi:_setup->XDpi()]))
        return NO;
    if (!CheckDimensionField(_pageHeight, "Height", unit, &height, _setup->YDpi(),
                             limits.height.high, limits.height.low,
                             [self hint:@"Height:"
                                 limits:limits.height
                                   unit:unit
                                    dpi:_setup->YDpi()]))
        return NO;
    _setup->SetPaperSize(width, height);
    [self showSize];
    [self handleWidthOrHeightTyping];
    // Of a page that reads the same, the name alone is taken: the numbers stay the typed ones.
    if (!_setup->IsCustomPaper()) _setup->SetPaperSize(width, height);
    return YES;
}

/// What may be typed, in the user's language and with its unit.
- (NSString *)hint:(NSString *)label limits:(NumberRange)limits unit:(int)unit dpi:(double)dpi {
    NSString *const units[] = {@"pixels", @"points", @"millimetres", @"inches"};
    return [self hint:label
                  low:FormatPoints(limits.low, unit, dpi)
                 high:FormatPoints(limits.high, unit, dpi)
                 unit:units[unit]];
}

- (NSString *)hint:(NSString *)label
               low:(const std::string &)low
              high:(const std::string &)high
              unit:(NSString *)unit {
    return [NSString stringWithFormat:[self localized:@"limits"], [self localized:label],
                                      StringOf(low), StringOf(high), [self localized:unit]];
}

- (BOOL)checkTypedResolution {
    // Dots per inch are checked as what they equal here: the pixels of an inch.
    constexpr double kPointsPerInch = 72;
    double dpi = 0;
    const auto [low, high] = _setup->ResolutionLimits();
    NSString *hint = [self hint:@"Resolution:"
                            low:FormatDouble(0, low)
                           high:FormatDouble(0, high)
                           unit:@"dpi"];
    return CheckDimensionField(_resolution, "Resolution", kPixels, &dpi, kPointsPerInch, high, low,
                               hint);
}

- (IBAction)doOK:(id)sender {
    _isOK = (!mCheckTypingOnExit || [self checkTypedSize]) &&
            (!mCheckResolutionOnExit || [self checkTypedResolution]);
    if (_isOK) StopModalAndWake();
}

- (IBAction)doCancel:(id)sender {
    _isOK = NO;
    StopModalAndWake();
}

// A window manager offers to close the window in any case.
- (BOOL)windowShouldClose:(id)sender {
    [self doCancel:sender];
    return NO;
}

@end
