/// Job settings: the driver's dictionary, and the file that repeats a job.
///
/// The file is a print record of 416 bytes followed by a binary property list: the driver's
/// job-settings dictionary ("fromPage", "toPage", "copies", "outputFolder"), and, where the job had
/// them, "ppd" (the path of the PPD file) and "queue" (whether it went to the print queue).
#pragma once

#include "host/driver/CFOwner.h"
#include "host/driver/Driver.h"
#include <optional>
#include <string>
#include <vector>

/// What a settings file holds.
struct SavedSettings {
    std::vector<uint8_t> record; ///< 416 bytes
    CFOwner<CFDictionaryRef> jobSettings;
    std::optional<std::string> ppd; ///< empty: the built-in printer; none: the user's
    std::optional<bool> queue;
};

/// Throws HostError (Input) when the file cannot be read or is no settings file.
[[nodiscard]] SavedSettings ReadSettings(const std::string &path);

/// Writes a settings file, replacing one of that name only when it is complete. Throws HostError.
void WriteSettings(const std::string &path, Handle record, CFDictionaryRef jobSettings,
                   const std::optional<std::string> &ppd, std::optional<bool> queue);

/// The folder under "outputFolder"; empty when there is none or it is gone.
[[nodiscard]] std::string OutputFolderOf(CFDictionaryRef jobSettings);

/// Makes the driver write its documents into `folder`. Throws HostError (Driver).
void SetOutputFolder(const DriverSession &session, Handle record, const std::string &folder);
