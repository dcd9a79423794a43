/// zelprint FILE...: prints a job from its options to its report.
#ifndef ZEL_HOST_PRINTCOMMAND_H
#define ZEL_HOST_PRINTCOMMAND_H

#include "host/job/JobOptions.h"
#include "host/terminal/ExitStatus.h"

/// Throws HostError.
[[nodiscard]] ExitStatus PrintCommand(const JobOptions &options);

#endif
