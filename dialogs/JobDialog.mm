#include "dialogs/JobDialog.h"

#import "dialogs/DialogSupport.h"
#import "dialogs/JobDialogController.h"

namespace {

typedef PostscriptPrinterDriverJobDialogController Controller;

/// The caller's variables, which are changed only when the user confirms.
struct JobDialogResults {
    CFURLRef *hotFolder;
    CFStringRef *jobName;
    int16_t *copies;
    bool *collate;
    int16_t *firstPage, *lastPage;
};

void ReadBack(Controller *controller, const JobDialogResults &results) {
    [controller getPageRangeFrom:results.firstPage to:results.lastPage];
    if (results.copies != nullptr) {
        *results.copies = [controller numberOfCopies];
        if (results.collate != nullptr) *results.collate = [controller collated];
    }
    if ([controller jobName] != nil) *results.jobName = (CFStringRef)[[controller jobName] retain];
    NSURL *folder = [[controller hotFolder] retain];
    if (*results.hotFolder != nullptr) CFRelease(*results.hotFolder);
    *results.hotFolder = (CFURLRef)folder;
}

bool RunAndReadBack(Controller *controller, const JobDialogResults &results) {
    @try {
        if (![controller runJobDialog]) return false;
        ReadBack(controller, results);
        return true;
    } @catch (NSException *e) {
        NSLog(@"The print dialog failed: %@", [e reason]);
        return false;
    }
}

Controller *CreateController(CFStringRef bundleIdentifier, bool withCopies) {
    NSBundle *bundle = [NSBundle bundleWithIdentifier:(NSString *)bundleIdentifier];
    NSString *nib = withCopies ? @"JobDialog" : @"JobDialog_NC";
    Controller *controller = [[Controller alloc] initWithBundle:bundle nibName:nib];
    if ([controller window] == nil) {
        NSLog(@"The print dialog's window is missing from the driver's resources.");
        [controller release];
        return nil;
    }
    return controller;
}

} // namespace

bool JobDialog(CFBundleRef bundle, CFStringRef bundleIdentifier, CFStringRef title,
               CFURLRef *hotFolder, CFStringRef suggestedJobName, CFStringRef fileExtension,
               CFStringRef *jobName, int16_t *copies, bool *collate, int16_t *firstPage,
               int16_t *lastPage) {
    if (!EnsureDialogApplication("print")) return false;
    bool confirmed = false;
    @autoreleasepool {
        Controller *controller = CreateController(bundleIdentifier, copies != nullptr);
        if (controller == nil) return false;
        [controller setWindowTitle:(NSString *)title];
        [controller setPageRangeFrom:*firstPage to:*lastPage];
        [controller setHotFolder:(NSURL *)*hotFolder];
        [controller setSuggestedJobName:(NSString *)suggestedJobName];
        [controller setFileExtension:(NSString *)fileExtension];
        if (copies != nullptr) [controller setNumberOfCopies:*copies];
        if (collate != nullptr) [controller setCollated:*collate];
        confirmed =
            RunAndReadBack(controller, {hotFolder, jobName, copies, collate, firstPage, lastPage});
        ReleaseLoadedWindow([controller window]);
        [controller release];
    }
    return confirmed;
}
