/// CoreFoundation strings as bytes.
#pragma once

#include "support/CFRef.h"
#include <optional>
#include <string>

/// The string in UTF-8, up to its first zero character. None for no string, and for one that has no
/// UTF-8 form (half a surrogate pair).
[[nodiscard]] std::optional<std::string> UTF8Text(CFStringRef string);

/// The text of bytes from a file that says nothing of their encoding, as PPD files: UTF-8, or
/// Latin-1 for what is not. Then every byte is one character, and none is lost.
[[nodiscard]] CFRef<CFStringRef> TextOfUnknownEncoding(const std::string &bytes);
