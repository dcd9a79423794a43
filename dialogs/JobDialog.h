/// The print dialog as the driver calls it.
#pragma once

#include "dialogs/JobDialogModel.h"

/// Runs the dialog; true when the user confirmed, and only then `choices` are changed. The bundle
/// of that identifier has the window.
bool JobDialog(CFStringRef bundleIdentifier, const JobDescription &job, JobChoices &choices);
