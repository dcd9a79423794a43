/// From the command line and the user's defaults to a print record and a plan.
#pragma once

#include "host/driver/Driver.h"
#include "host/job/JobOptions.h"
#include "host/job/JobPlan.h"

/// Fills the record of a new session, runs the dialogs asked for and plans the job; the driver is
/// told of it and ready to open the document. `files` must outlive the plan. Throws HostError.
[[nodiscard]] JobPlan SetUpJob(const DriverSession &session, const JobOptions &options,
                               const std::vector<SourceFile> &files, Handle record);
