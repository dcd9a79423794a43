/// The folder in which the user keeps separation profiles. Nothing of the driver writes there.
#pragma once

#include "support/CFRef.h"
#include <string>

/// Its path, whether it exists or not; empty when the user's folders cannot be told.
[[nodiscard]] std::string ProfilesFolder();

/// The file of that name directly in the folder. Null when no file there can have the name, or the
/// folder cannot be told.
[[nodiscard]] CFRef<CFURLRef> ProfileURL(CFStringRef name);

/// The file names of all profiles in the folder and everywhere below it, in no order. What cannot
/// be read is passed over; so are names that are not UTF-8, which no string can hold.
[[nodiscard]] CFRef<CFMutableArrayRef> ProfileNames(const std::string &folder);
