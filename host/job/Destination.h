/// Where a document goes, and what it is called.
#pragma once

#include "host/job/JobOptions.h"
#include "host/job/JobPlan.h"
#include "host/job/RecordChoices.h"

/// What the options say, else the dialog or the settings file, else the user's defaults. Throws
/// HostError.
[[nodiscard]] Destination PlanDestination(const DriverSession &session, const JobOptions &options,
                                          const RecordChoices &choices, const SourceFile &first,
                                          bool eps);
