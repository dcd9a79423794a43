/// What `zelprint printer-info` says about a printer, from the driver's property list of it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <nlohmann/json.hpp>
#include <string>

class DriverBundle;

/// The model of the PPD file `path`, as PrinterInfoJSON gives it. Throws HostError (Input) when it
/// is refused.
[[nodiscard]] nlohmann::ordered_json ReadPrinterInfo(const DriverBundle &bundle,
                                                     const std::string &path);

/// The printer model with the keys of ZELPrCopyPrinterInfo in their documented order; "custom" is
/// null without custom pages. Whole numbers are written without a fraction.
[[nodiscard]] nlohmann::ordered_json PrinterInfoJSON(CFDictionaryRef info);

/// The same for people, several lines: sizes in millimetres and points, "*" before the defaults.
[[nodiscard]] std::string PrinterInfoText(const nlohmann::ordered_json &info);
