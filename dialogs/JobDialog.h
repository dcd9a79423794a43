/// The print dialog as the driver calls it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <cstdint>

/// Runs the dialog; true when the user confirmed. `hotFolder` (a retained URL or null) is replaced
/// and `jobName` set (retained) only then. `copies` and `collate` may be null: the dialog then has
/// neither. Pages 1 to 999 mean all pages.
bool JobDialog(CFBundleRef bundle, CFStringRef bundleIdentifier, CFStringRef title,
               CFURLRef *hotFolder, CFStringRef suggestedJobName, CFStringRef fileExtension,
               CFStringRef *jobName, int16_t *copies, bool *collate, int16_t *firstPage,
               int16_t *lastPage);
