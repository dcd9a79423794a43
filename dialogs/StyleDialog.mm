#include "dialogs/StyleDialog.h"

#import "dialogs/DialogRun.h"
#import "dialogs/StyleDialogController.h"

namespace {

typedef PostscriptPrinterStyleDialogController Controller;

void ReadPreferences(Controller *controller, CFStringRef domain) {
    Boolean exists = 0;
    const CFIndex unit = CFPreferencesGetAppIntegerValue(CFSTR("MeasurementUnit"), domain, &exists);
    if (exists && kPixels <= unit && unit <= kInches) [controller setUnitMode:unit];
    const Boolean send =
        CFPreferencesGetAppBooleanValue(CFSTR("SendToDefaultPrintQueue"), domain, &exists);
    if (exists) [controller setSendToPrinter:send != 0];
}

void SavePreferences(Controller *controller, CFStringRef domain) {
    const SInt32 unit = (SInt32)[controller unitMode];
    CFNumberRef number = CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &unit);
    CFPreferencesSetAppValue(CFSTR("MeasurementUnit"), number, domain);
    CFRelease(number);
    CFPreferencesSetAppValue(CFSTR("SendToDefaultPrintQueue"),
                             [controller sendToPrinter] ? kCFBooleanTrue : kCFBooleanFalse, domain);
}

Controller *CreateController(CFBundleRef bundle, CFStringRef domain, PSStyleParams *params,
                             const PSHPrint &record) {
    NSBundle *resources = [NSBundle bundleWithIdentifier:(NSString *)CFBundleGetIdentifier(bundle)];
    Controller *controller = [[Controller alloc] initWithBundle:resources];
    [controller setParams:params];
    [controller setPrintRecord:record];
    [controller setPreferencesDomain:(NSString *)domain];
    ReadPreferences(controller, domain);
    if (params->sendToPrinter) [controller setSendToPrinter:*params->sendToPrinter];
    return controller;
}

/// `*controller` is the caller's to release, whatever happens.
bool RunAndReadBack(Controller **controller, CFBundleRef bundle, CFStringRef domain,
                    PSStyleParams *params, PSHPrint *record) {
    @try {
        *controller = CreateController(bundle, domain, params, *record);
        if (!LoadDialog(*controller, "page-setup")) return false;
        if (![*controller runStyleDialog]) return false;
        *record = [*controller printRecord];
        SavePreferences(*controller, domain);
        return true;
    } @catch (NSException *e) {
        return DialogFailed("page-setup", [e reason]);
    }
}

} // namespace

bool StyleDialog(CFBundleRef bundle, CFStringRef preferencesDomain, PSStyleParams *params,
                 PSHPrint *record) {
    if (!BeginDialog("page-setup")) return false;
    bool confirmed = false;
    @autoreleasepool {
        Controller *controller = nil;
        confirmed = RunAndReadBack(&controller, bundle, preferencesDomain, params, record);
        if (!confirmed) params->setup->RestoreSavedPrinter(preferencesDomain);
        EndDialog(controller);
    }
    return confirmed;
}
