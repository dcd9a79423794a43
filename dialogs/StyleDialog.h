/// The page-setup dialog as the driver calls it.
#pragma once

#include "PSHPrint.h"

#include <CoreFoundation/CoreFoundation.h>
#include <optional>

class PageSetup;
class PostscriptPrinterInfo;
struct Separations;

struct PSStyleParams {
    double widthMM, heightMM; ///< the host's page image on paper
    int32_t widthPixels, heightPixels;
    double minResolution, maxResolution; ///< dots per inch
    Separations *separations;
    PostscriptPrinterInfo **printerInfo;    ///< replaced when the user picks another PPD file
    PageSetup *setup;                       ///< edits the record by the driver's rules
    std::optional<bool> sendToPrinter = {}; ///< shown instead of the user's preference
};

/// Runs the dialog on `*record`; true when the user confirmed, and only then is it changed.
bool StyleDialog(CFBundleRef bundle, CFStringRef preferencesDomain, PSStyleParams *params,
                 PSHPrint *record);
