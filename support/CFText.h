/// CoreFoundation strings as bytes.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <optional>
#include <string>

/// The string in UTF-8, up to its first zero character. None for no string, and for one that has no
/// UTF-8 form (half a surrogate pair).
[[nodiscard]] std::optional<std::string> UTF8Text(CFStringRef string);
