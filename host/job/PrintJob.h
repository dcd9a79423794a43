/// Prints a planned job: the driver's call sequence, band by band.
#pragma once

#include "host/driver/Driver.h"
#include "host/job/JobPlan.h"
#include "host/job/OutputStaging.h"
#include <functional>

/// What became of a job.
struct JobResult {
    std::vector<FinishedFile> files; ///< none when the print queue took the document
    bool queued = false;
};

/// Prints every page of the plan (SetUpJob) and puts the finished document in its place. On failure
/// nothing is left there and HostError tells why, except that a document that the queue refused is
/// kept.
[[nodiscard]] JobResult PrintJob(const DriverSession &session, Handle record, const JobPlan &plan,
                                 int bandHeight, bool quiet);
