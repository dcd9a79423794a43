/// zelprint FILE...: prints a job from its options to its report.
#pragma once

#include "host/job/JobOptions.h"
#include "host/terminal/ExitStatus.h"

/// Throws HostError.
[[nodiscard]] ExitStatus PrintCommand(const JobOptions &options);
