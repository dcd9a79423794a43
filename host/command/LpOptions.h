/// Options in lp's words, which people give with -o out of habit.
#pragma once

#include "host/job/JobOptions.h"

/// Sorts what -o has been given, in its order: words of lp that zelprint understands are taken, and
/// the last of the others names the file to write. Throws HostError (Usage) for every other word of
/// lp; it says which option is meant. A name that looks like such a word may be given as ./NAME.
void TakeOutputWords(JobOptions &options);
