#include "dialogs/JobDialog.h"

#import "dialogs/DialogRun.h"
#import "dialogs/JobDialogController.h"

namespace {

typedef PostscriptPrinterDriverJobDialogController Controller;

void ReadBack(Controller *controller, JobChoices &choices) {
    [controller getPageRangeFrom:&choices.firstPage to:&choices.lastPage];
    if (choices.copies) {
        choices.copies = [controller numberOfCopies];
        if (choices.collate) choices.collate = [controller collated];
    }
    if ([controller jobName] != nil)
        choices.fileName = CFRef<CFStringRef>::Retain((CFStringRef)[controller jobName]);
    choices.hotFolder = CFRef<CFURLRef>::Retain((CFURLRef)[controller hotFolder]);
}

Controller *CreateController(CFStringRef bundleIdentifier, bool withCopies) {
    NSBundle *bundle = [NSBundle bundleWithIdentifier:(NSString *)bundleIdentifier];
    NSString *nib = withCopies ? @"JobDialog" : @"JobDialog_NC";
    return [[Controller alloc] initWithBundle:bundle nibName:nib];
}

void SetUp(Controller *controller, const JobDescription &job, const JobChoices &choices) {
    [controller setWindowTitle:(NSString *)job.title];
    [controller setPageRangeFrom:choices.firstPage to:choices.lastPage];
    [controller setHotFolder:(NSURL *)choices.hotFolder.Get()];
    [controller setSuggestedJobName:(NSString *)job.suggestedName];
    [controller setFileExtension:(NSString *)job.fileExtension];
    [controller showSummary:job.summary];
    if (!choices.copies) return;
    [controller setNumberOfCopies:*choices.copies];
    if (choices.collate) [controller setCollated:*choices.collate];
}

/// `*controller` is the caller's to release, whatever happens.
bool RunAndReadBack(Controller **controller, CFStringRef bundleIdentifier,
                    const JobDescription &job, JobChoices &choices) {
    @try {
        *controller = CreateController(bundleIdentifier, choices.copies.has_value());
        if (!LoadDialog(*controller, "print")) return false;
        SetUp(*controller, job, choices);
        if (![*controller runJobDialog]) return false;
        ReadBack(*controller, choices);
        return true;
    } @catch (NSException *e) {
        return DialogFailed("print", [e reason]);
    }
}

} // namespace

bool JobDialog(CFStringRef bundleIdentifier, const JobDescription &job, JobChoices &choices) {
    if (!BeginDialog("print")) return false;
    bool confirmed = false;
    @autoreleasepool {
        Controller *controller = nil;
        confirmed = RunAndReadBack(&controller, bundleIdentifier, job, choices);
        EndDialog(controller);
    }
    return confirmed;
}
