/// Settings that travel with a job: page range, copies and hot folder as a dictionary.
#pragma once

#include "support/CFRef.h"
#include <CoreServices/CoreServices.h>

struct DriverContext;

/// A new dictionary with "fromPage", "toPage" and "copies" of the record and, when the context has
/// a hot folder that exists, its bookmark under "outputFolder". Null for a handle too short for a
/// record.
[[nodiscard]] CFRef<CFMutableDictionaryRef> DoCopyJobSettings(const DriverContext *context,
                                                              Handle record);

/// Takes over what such a dictionary holds. False when it is none, when the handle is too short
/// for a record, or when its hot folder cannot be found (the page range and copies are then taken
/// over all the same).
bool DoSetJobSettings(DriverContext *context, Handle record, CFTypeRef settings);
