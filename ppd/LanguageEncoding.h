/// Text of a PPD file for people to read.
#pragma once

#include "support/CFRef.h"

#include <CoreFoundation/CoreFoundation.h>
#include <string>

namespace PPD {

/// `bytes` in the encoding that the file declares, the value of its "*LanguageEncoding". Null when
/// they are no text in it. For a file that declares none, or one that is not known: in UTF-8 if
/// they are that, else byte for byte as Latin-1.
[[nodiscard]] CFRef<CFStringRef> DecodeText(const std::string &bytes,
                                            const std::string &languageEncoding);

} // namespace PPD
