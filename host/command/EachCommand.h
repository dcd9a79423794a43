/// One document for each file of a command line (--each).
#pragma once

#include "host/job/JobOptions.h"
#include "host/terminal/ExitStatus.h"
#include <functional>

/// Calls `print` for one file after the other. What fails is complained about, and the others are
/// printed all the same, unless the user cancels. The status of the first failure. Throws HostError
/// (Usage) when the options make no sense for several documents.
[[nodiscard]] ExitStatus PrintEach(const JobOptions &options,
                                   const std::function<void(const JobOptions &)> &print);
