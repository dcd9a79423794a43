/// The print dialog's window: which pages, and where the output goes.
#pragma once

#include "dialogs/JobDialogModel.h"

#import <AppKit/AppKit.h>

/// Lives for one call of JobDialog. Run on the main thread.
@interface PostscriptPrinterDriverJobDialogController : NSWindowController {
    NSBundle *_myBundle;
    NSURL *_hotFolder;
    NSString *_fileExtension, *_jobName, *_suggestedJobName;
    BOOL _isOK;
    NSMatrix *_pageModeMatrix;
    NSTextField *_fromPageText, *_toPageText, *_numberOfCopiesText, *_hotFolderText;
    NSTextField *_documentText, *_printerText, *_pageText;
    NSButton *_collateCheckbox, *_saveButton, *_saveAsButton;
}

@property (nonatomic, retain) NSBundle *myBundle;
@property (nonatomic, retain) NSURL *hotFolder;      ///< nil: none; saving then needs Save As
@property (nonatomic, copy) NSString *fileExtension; ///< "ps" or "eps"
@property (nonatomic, copy) NSString *jobName;       ///< file name chosen in the save panel, or nil
@property (nonatomic, copy) NSString *suggestedJobName; ///< offered in the save panel, or nil
@property (nonatomic, assign) BOOL isOK;                ///< confirmed
@property (nonatomic, assign) IBOutlet NSMatrix *pageModeMatrix; ///< tag 1: all pages, 2: range
@property (nonatomic, assign) IBOutlet NSTextField *fromPageText, *toPageText;
@property (nonatomic, assign) IBOutlet NSTextField *numberOfCopiesText; ///< nil without copies
@property (nonatomic, assign) IBOutlet NSTextField *hotFolderText;      ///< shows the folder's path
@property (nonatomic, assign) IBOutlet NSTextField *documentText;       ///< what is printed
@property (nonatomic, assign) IBOutlet NSTextField *printerText, *pageText; ///< nil with copies
@property (nonatomic, assign) IBOutlet NSButton *collateCheckbox;           ///< nil without copies
@property (nonatomic, assign) IBOutlet NSButton *saveButton, *saveAsButton;
@property (nonatomic, assign) int16_t numberOfCopies; ///< 0 without a field
@property (nonatomic, assign) BOOL collated;          ///< NO without a check box
@property (nonatomic, copy) NSString *windowTitle;

/// `nibName` is "JobDialog" (with copies) or "JobDialog_NC". nil when the bundle lacks it.
- (id)initWithBundle:(NSBundle *)bundle nibName:(NSString *)nibName;

/// Says what is printed; the job's name must have been set. `summary` may be null.
- (void)showSummary:(const JobSummary *)summary;

/// Runs the dialog; YES when confirmed.
- (BOOL)runJobDialog;

/// Pages 1 to 999 mean all pages.
- (void)setPageRangeFrom:(int16_t)first to:(int16_t)last;
- (void)getPageRangeFrom:(int16_t *)first to:(int16_t *)last;

/// Each beeps and selects the offending field's text when it fails.
- (BOOL)validatePageRange;
- (BOOL)validateNumberOfCopies;

- (BOOL)hotFolderIsInTrash;

/// Confirms the dialog, or says why the hot folder cannot be used.
- (void)handleSaveCommand;

- (IBAction)doSave:(id)sender;
- (IBAction)doSaveAs:(id)sender;
- (IBAction)doCancel:(id)sender;
- (IBAction)doPageRangeChange:(id)sender;
@end
