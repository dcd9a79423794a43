#include "dialogs/StyleDialog.h"

#import "dialogs/DialogSupport.h"
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

bool RunController(Controller *controller) {
    @try {
        return [controller runStyleDialog];
    } @catch (NSException *e) {
        NSLog(@"The page-setup dialog failed: %@", [e reason]);
        return false;
    }
}

} // namespace

bool StyleDialog(CFBundleRef bundle, CFStringRef preferencesDomain, PSStyleParams *params,
                 PSHPrint *record) {
    if (!EnsureDialogApplication("page-setup")) return false;
    bool confirmed = false;
    @autoreleasepool {
        NSBundle *resources =
            [NSBundle bundleWithIdentifier:(NSString *)CFBundleGetIdentifier(bundle)];
        Controller *controller = [[Controller alloc] initWithBundle:resources];
        if (controller == nil) {
            NSLog(@"The page-setup dialog's window is missing from the driver's resources.");
            return false;
        }
        [controller setParams:params];
        [controller setPrintRecord:*record];
        [controller setPreferencesDomain:(NSString *)preferencesDomain];
        ReadPreferences(controller, preferencesDomain);
        confirmed = RunController(controller);
        if (confirmed) {
            *record = [controller printRecord];
            SavePreferences(controller, preferencesDomain);
        } else {
            params->setup->RestoreSavedPrinter(preferencesDomain);
        }
        ReleaseLoadedWindow([controller window]);
        [controller release];
    }
    return confirmed;
}
