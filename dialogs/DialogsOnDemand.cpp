// The dialogs as the driver calls them. AppKit takes longer to load than a page takes to print, and
// most jobs show no window: the module with the real functions of these names is opened by the
// first call.
#include "dialogs/DialogsModule.h"

#include "support/CFRef.h"

#include <cstdio>

namespace {

CFRef<CFBundleRef> OpenModule() {
    CFBundleRef driver = CFBundleGetBundleWithIdentifier(CFSTR(ZEL_BUNDLE_IDENTIFIER));
    if (!driver) return {};
    const CFRef<CFURLRef> folder(CFBundleCopyBuiltInPlugInsURL(driver));
    if (!folder) return {};
    const CFRef<CFURLRef> module(CFURLCreateCopyAppendingPathComponent(
        kCFAllocatorDefault, folder.Get(), CFSTR(ZEL_DIALOGS_MODULE), true));
    return CFRef<CFBundleRef>(CFBundleCreate(kCFAllocatorDefault, module.Get()));
}

/// Null, said once, when the module is missing or cannot be loaded.
const DialogFunctions *LoadModule() {
    CFBundleRef module = OpenModule().Detach(); // for good, as everything with Objective-C classes
    auto functions = reinterpret_cast<decltype(&ZELDialogFunctions)>(
        module ? CFBundleGetFunctionPointerForName(module, CFSTR("ZELDialogFunctions")) : nullptr);
    if (functions) return functions();
    (void)std::fputs(
        "The driver's " ZEL_DIALOGS_MODULE " cannot be loaded: no dialog can be shown.\n", stderr);
    return nullptr;
}

const DialogFunctions *Module() {
    static const DialogFunctions *const module = LoadModule();
    return module;
}

} // namespace

bool StyleDialog(CFBundleRef bundle, PageSetupModel &setup) {
    return Module() && Module()->styleDialog(bundle, setup);
}

bool JobDialog(CFStringRef bundleIdentifier, const JobDescription &job, JobChoices &choices) {
    return Module() && Module()->jobDialog(bundleIdentifier, job, choices);
}

bool RunAlertWindow(CFStringRef message, CFStringRef informative) {
    return Module() && Module()->runAlertWindow(message, informative);
}

void SoundBeep() {
    if (Module()) Module()->soundBeep();
}

bool LastDialogFailed() {
    return !Module() || Module()->lastDialogFailed();
}

void CancelDialog() {
    if (Module()) Module()->cancelDialog();
}
