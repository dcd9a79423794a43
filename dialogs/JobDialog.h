/// The print dialog as the driver calls it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <cstdint>
#include <string>

/// What the dialog says about the document besides its name.
struct JobSummary {
    std::string printer;  ///< UTF-8; empty: none was chosen
    std::string page;     ///< UTF-8; empty: a custom one
    double width, height; ///< points
    double xDpi, yDpi;    ///< for sizes in pixels
    int unit;             ///< a DialogUnit
    int pages;            ///< 0: not known
};

/// Runs the dialog; true when the user confirmed. `hotFolder` (a retained URL or null) is replaced
/// and `jobName` set (retained) only then. `copies` and `collate` may be null: the dialog then has
/// neither. Pages 1 to 999 mean all pages. Without a `summary` it says only the document's name.
bool JobDialog(CFBundleRef bundle, CFStringRef bundleIdentifier, CFStringRef title,
               CFURLRef *hotFolder, CFStringRef suggestedJobName, CFStringRef fileExtension,
               CFStringRef *jobName, int16_t *copies, bool *collate, int16_t *firstPage,
               int16_t *lastPage, const JobSummary *summary = nullptr);
