/// What zelprint checks of a PPD file before the driver reads it, and says when the driver refuses
/// it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <string>

/// Throws HostError (Input) when the file is larger than any printer's description: reading it
/// would take minutes.
void CheckPPDSize(const std::string &ppd);

/// Throws HostError (Input) when there is no file of that name that can be read, or CheckPPDSize
/// does.
void CheckPPDName(const std::string &ppd);

/// Why the driver has refused the PPD file `ppd`: that it cannot be read, or else `message`, the
/// driver's words, to which any failure to read is a file that is no PPD file.
[[nodiscard]] std::string WhyRefused(const std::string &ppd, CFStringRef message);

/// Throws HostError (Input) that says so.
[[noreturn]] void RefusePPD(const std::string &ppd, CFStringRef message);
