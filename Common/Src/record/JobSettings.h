/// Settings that travel with a job: page range, copies and hot folder as a dictionary.
#pragma once

#include "support/CFRef.h"
#include <CoreServices/CoreServices.h>

/// A new dictionary with "fromPage", "toPage" and "copies" of the record and, when there is a hot
/// folder and it exists, its bookmark under "outputFolder". Null for a handle too short for a
/// record.
[[nodiscard]] CFRef<CFMutableDictionaryRef> DoCopyJobSettings(Handle record, CFURLRef hotFolder);

/// Takes over what such a dictionary holds. False when it is none, when the handle is too short
/// for a record, or when its hot folder cannot be found (the page range and copies are then taken
/// over all the same, and `hotFolder` stays).
bool DoSetJobSettings(Handle record, CFTypeRef settings, CFRef<CFURLRef> &hotFolder);
