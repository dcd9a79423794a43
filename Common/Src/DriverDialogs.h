/// The two dialogs on a session's record.
#pragma once

#include <CoreServices/CoreServices.h>

struct DriverContext;

/// Runs the page-setup dialog on a copy of the record, which is written back only when the user
/// confirms; true then. The context's printer may have been replaced in any case.
[[nodiscard]] bool DoStyle(DriverContext *context, Handle record);

/// Runs the print dialog. True when the user confirms: the record then has the page range and one
/// copy, and the context the hot folder and the file name, if one was chosen.
[[nodiscard]] bool DoJob(DriverContext *context, Handle record);
