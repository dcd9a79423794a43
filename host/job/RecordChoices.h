/// What the user has chosen, wherever: saved defaults, a settings file, options, the dialogs.
#pragma once

#include "host/driver/PrinterModel.h"
#include "host/job/JobOptions.h"
#include "host/job/SourceFile.h"

/// The choices that a print record has no field for.
struct RecordChoices {
    PrinterModel printer;
    std::string folder;        ///< of the dialog or the settings file; empty: none
    std::optional<bool> queue; ///< of the options or the settings file
};

/// The PPD file that the options or the settings file name, empty for the built-in printer; none:
/// the user's. Throws HostError.
[[nodiscard]] std::optional<std::string> PPDOfJob(const JobOptions &options);

/// Fills the record from the user's defaults or the settings file, applies the options, runs the
/// dialogs asked for on `files` and saves the settings where that
/// is asked for. The session then has the printer. Throws HostError.
[[nodiscard]] RecordChoices ChooseRecord(const DriverSession &session, const JobOptions &options,
                                         const std::vector<SourceFile> &files, Handle record);
