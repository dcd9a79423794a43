/// What zelprint says about a job: a line for people, JSON for programs.
#pragma once

#include "host/job/PrintJob.h"
#include "host/terminal/ExitStatus.h"

[[nodiscard]] std::string ReportAsText(const JobPlan &plan, const JobResult &result);
[[nodiscard]] std::string ReportAsJSON(const JobPlan &plan, const JobResult &result);

/// The same for a job that is not printed.
[[nodiscard]] std::string DryRunAsText(const JobPlan &plan);
[[nodiscard]] std::string DryRunAsJSON(const JobPlan &plan);

/// {"error":{"status":n,"message":s,"about":s}}, and "file" if one is told.
[[nodiscard]] std::string ErrorAsJSON(const HostError &error, const std::string &file = {});
