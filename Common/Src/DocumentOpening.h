/// From a print record to an open document; and the printer description that it is made with.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <cstdint>
#include <memory>

struct DriverContext;
class PostscriptPrinterInfo;

/// The description of the printer that the user has chosen; the built-in one when there is none or
/// its file cannot be found or read, after telling the user why. Never null, never throws.
[[nodiscard]] std::unique_ptr<PostscriptPrinterInfo> LoadPrinterInfo(CFStringRef bundleIdentifier);

/// The description read from a PPD file; the built-in one when it is refused, after telling the
/// user why. Never null, never throws.
[[nodiscard]] std::unique_ptr<PostscriptPrinterInfo> LoadPrinterInfo(CFURLRef ppd);

/// Opens the context's document from its record. 0, or the code of what failed; the user has then
/// been told what the printer lacks.
[[nodiscard]] int16_t DoOpenDocument(DriverContext *context);
