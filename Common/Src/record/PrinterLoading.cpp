#include "Common/Src/record/PrinterLoading.h"

#include "Common/Src/record/Preferences.h"
#include "ZELTypes.h"
#include "ppd/ParserError.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "support/Alerts.h"
#include "support/Bookmark.h"

namespace {

CFRef<CFURLRef> ChosenPPD(CFStringRef bundleIdentifier) {
    CFRef<CFDataRef> bookmark = CopyPPDFileLocation(bundleIdentifier);
    if (!bookmark) {
        DisplayError("No PPD file has been selected - using defaults");
        throw int16_t{kZELFileNotFound};
    }
    CFRef<CFURLRef> url = ResolvedBookmark(bookmark.Get());
    if (!url) {
        DisplayError("Can't find the PPD file - using defaults");
        throw int16_t{kZELFileNotFound};
    }
    return url;
}

} // namespace

std::unique_ptr<PostscriptPrinterInfo> LoadPrinterInfo(CFStringRef bundleIdentifier) {
    try {
        // Another process may have chosen a PPD since this one looked.
        CFPreferencesAppSynchronize(bundleIdentifier);
        return LoadPrinterInfo(ChosenPPD(bundleIdentifier).Get());
    } catch (int16_t) {
        return std::make_unique<PostscriptPrinterInfo>();
    }
}

std::unique_ptr<PostscriptPrinterInfo> LoadPrinterInfo(CFURLRef ppd) {
    try {
        return std::make_unique<PostscriptPrinterInfo>(ppd);
    } catch (const PPD::ParserError &error) {
        DisplayError(
            (" PPD File error:" + error.ErrorMessage() + "\rUsing default settings instead")
                .c_str());
    } catch (...) {
        // Anything but a fault of the file is nothing that the user could mend.
    }
    return std::make_unique<PostscriptPrinterInfo>();
}
