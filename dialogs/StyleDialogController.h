/// The page-setup dialog's window.
#pragma once

#include "dialogs/PageSetupModel.h"

#import "dialogs/PagePicture.h"

#import <AppKit/AppKit.h>

/// Lives for one call of StyleDialog. Run on the main thread. The
/// printer of the setup and the saved PPD file change as soon as the user picks another PPD file.
@interface PostscriptPrinterStyleDialogController : NSWindowController {
    PageSetupModel *_setup;
    NSBundle *_myBundle;
    NSInteger _unitMode;
    BOOL _sendToPrinter, _isOK, mCheckTypingOnExit, mCheckResolutionOnExit;
    NSPopUpButton *_pagesMenu, *_resolutionMenu, *_cmykMenu, *_colourMenu, *_unitsMenu;
    NSPopUpButton *_formatMenu;
    NSTextField *_pageWidth, *_pageHeight, *_resolution, *_ppdTitleText, *_versionText;
    NSButton *_rotateBox, *_flipHorizontalBox, *_flipVerticalBox, *_sendToPrinterBox;
    NSButton *_choosePPDButton, *_documentSizeButton, *_okButton, *_cancelButton;
    ZELPagePicture *_pagePicture;
}

@property (nonatomic, assign) PageSetupModel *setup; ///< must outlive the controller
@property (nonatomic, retain) NSBundle *myBundle;    ///< the driver's
@property (nonatomic, assign) NSInteger unitMode;    ///< a DialogUnit
@property (nonatomic, assign) BOOL sendToPrinter;    ///< to the default print queue
@property (nonatomic, assign) BOOL isOK;             ///< confirmed
@property (nonatomic, assign) NSInteger colourspace; ///< announces a change of "isCMYK"
@property (nonatomic, readonly) BOOL isCMYK;
@property (nonatomic, assign) BOOL rotate90, flipHorizontal, flipVertical;
@property (nonatomic, assign) IBOutlet NSPopUpButton *pagesMenu; ///< tags: page index, -1: custom
@property (nonatomic, assign) IBOutlet NSPopUpButton *resolutionMenu; ///< tags: resolution index
@property (nonatomic, assign) IBOutlet NSPopUpButton *cmykMenu;       ///< tags: separation index
@property (nonatomic, assign) IBOutlet NSPopUpButton *colourMenu;     ///< tags: colour space
@property (nonatomic, assign) IBOutlet NSPopUpButton *unitsMenu;      ///< tags: DialogUnit
@property (nonatomic, assign) IBOutlet NSPopUpButton *formatMenu;     ///< tags: 1 PostScript, 2 EPS
@property (nonatomic, assign) IBOutlet NSTextField *pageWidth, *pageHeight, *resolution;
@property (nonatomic, assign) IBOutlet NSTextField *ppdTitleText, *versionText;
@property (nonatomic, assign) IBOutlet NSButton *rotateBox, *flipHorizontalBox, *flipVerticalBox;
@property (nonatomic, assign) IBOutlet NSButton *sendToPrinterBox;
@property (nonatomic, assign) IBOutlet NSButton *choosePPDButton, *documentSizeButton;
@property (nonatomic, assign) IBOutlet NSButton *okButton, *cancelButton;
@property (nonatomic, assign) IBOutlet ZELPagePicture *pagePicture;

/// nil when the bundle lacks the window.
- (id)initWithBundle:(NSBundle *)bundle;

/// Runs the dialog; YES when confirmed.
- (BOOL)runStyleDialog;

- (BOOL)canUseCustomPageSizes;
- (void)getCustomDimensionMinWidth:(double *)minWidth
                         minHeight:(double *)minHeight
                          maxWidth:(double *)maxWidth
                         maxHeight:(double *)maxHeight;

- (IBAction)doSetUnits:(id)sender;
- (IBAction)doSetPage:(id)sender;
- (IBAction)doSetPrintQuality:(id)sender;
- (IBAction)doSetColourspace:(id)sender;
- (IBAction)doSetCMYKName:(id)sender;
- (IBAction)doSetFileFormat:(id)sender;
- (IBAction)doOpenPPD:(id)sender;
- (IBAction)doSetSizeFromDocument:(id)sender;
- (IBAction)doOK:(id)sender;
- (IBAction)doCancel:(id)sender;

/// The open panel's filter: folders that are no packages, and files that the PPD reader accepts.
- (BOOL)panel:(id)sender shouldEnableURL:(NSURL *)url;
@end
