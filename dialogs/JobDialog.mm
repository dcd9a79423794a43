#include "dialogs/JobDialog.h"

#import "dialogs/DialogRun.h"
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

/// What the dialog shows when it comes up.
struct JobDialogValues {
    CFStringRef title, suggestedJobName, fileExtension;
    const JobSummary *summary;
};

Controller *CreateController(CFStringRef bundleIdentifier, bool withCopies) {
    NSBundle *bundle = [NSBundle bundleWithIdentifier:(NSString *)bundleIdentifier];
    NSString *nib = withCopies ? @"JobDialog" : @"JobDialog_NC";
    return [[Controller alloc] initWithBundle:bundle nibName:nib];
}

void SetUp(Controller *controller, const JobDialogValues &values, const JobDialogResults &results) {
    [controller setWindowTitle:(NSString *)values.title];
    [controller setPageRangeFrom:*results.firstPage to:*results.lastPage];
    [controller setHotFolder:(NSURL *)*results.hotFolder];
    [controller setSuggestedJobName:(NSString *)values.suggestedJobName];
    [controller setFileExtension:(NSString *)values.fileExtension];
    [controller showSummary:values.summary];
    if (results.copies == nullptr) return;
    [controller setNumberOfCopies:*results.copies];
    if (results.collate != nullptr) [controller setCollated:*results.collate];
}

/// `*controller` is the caller's to release, whatever happens.
bool RunAndReadBack(Controller **controller, CFStringRef bundleIdentifier,
                    const JobDialogValues &values, const JobDialogResults &results) {
    @try {
        *controller = CreateController(bundleIdentifier, results.copies != nullptr);
        if (!LoadDialog(*controller, "print")) return false;
        SetUp(*controller, values, results);
        if (![*controller runJobDialog]) return false;
        ReadBack(*controller, results);
        return true;
    } @catch (NSException *e) {
        return DialogFailed("print", [e reason]);
    }
}

} // namespace

bool JobDialog(CFBundleRef bundle, CFStringRef bundleIdentifier, CFStringRef title,
               CFURLRef *hotFolder, CFStringRef suggestedJobName, CFStringRef fileExtension,
               CFStringRef *jobName, int16_t *copies, bool *collate, int16_t *firstPage,
               int16_t *lastPage, const JobSummary *summary) {
    if (!BeginDialog("print")) return false;
    bool confirmed = false;
    @autoreleasepool {
        Controller *controller = nil;
        confirmed = RunAndReadBack(&controller, bundleIdentifier,
                                   {title, suggestedJobName, fileExtension, summary},
                                   {hotFolder, jobName, copies, collate, firstPage, lastPage});
        EndDialog(controller);
    }
    return confirmed;
}
