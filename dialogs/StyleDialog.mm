#include "dialogs/StyleDialog.h"

#import "dialogs/DialogRun.h"
#import "dialogs/StyleDialogController.h"

namespace {

typedef PostscriptPrinterStyleDialogController Controller;

Controller *CreateController(CFBundleRef bundle, PageSetupModel &setup) {
    NSBundle *resources = [NSBundle bundleWithIdentifier:(NSString *)CFBundleGetIdentifier(bundle)];
    Controller *controller = [[Controller alloc] initWithBundle:resources];
    [controller setSetup:&setup];
    [controller setUnitMode:setup.SavedUnit()];
    [controller setSendToPrinter:setup.SendsToPrintQueue()];
    return controller;
}

/// `*controller` is the caller's to release, whatever happens.
bool RunController(Controller **controller, CFBundleRef bundle, PageSetupModel &setup) {
    @try {
        *controller = CreateController(bundle, setup);
        if (!LoadDialog(*controller, "page-setup")) return false;
        if (![*controller runStyleDialog]) return false;
        setup.SavePreferences((int)[*controller unitMode], [*controller sendToPrinter]);
        return true;
    } @catch (NSException *e) {
        return DialogFailed("page-setup", [e reason]);
    }
}

} // namespace

bool StyleDialog(CFBundleRef bundle, PageSetupModel &setup) {
    if (!BeginDialog("page-setup")) return false;
    bool confirmed = false;
    @autoreleasepool {
        Controller *controller = nil;
        confirmed = RunController(&controller, bundle, setup);
        if (!confirmed) setup.RestoreSavedPrinter();
        EndDialog(controller);
    }
    return confirmed;
}
