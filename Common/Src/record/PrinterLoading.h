/// The printer description that the driver works with: the user's, or the built-in one.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <memory>

class PostscriptPrinterInfo;

/// The description of the printer that the user has chosen; the built-in one when there is none or
/// its file cannot be found or read, after telling the user why. Never null, never throws.
[[nodiscard]] std::unique_ptr<PostscriptPrinterInfo> LoadPrinterInfo(CFStringRef bundleIdentifier);

/// The description read from a PPD file; the built-in one when it is refused, after telling the
/// user why. Never null, never throws.
[[nodiscard]] std::unique_ptr<PostscriptPrinterInfo> LoadPrinterInfo(CFURLRef ppd);
