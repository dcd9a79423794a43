/// Images that seem too large to be meant: damaged files, and files made to keep programs busy.
#pragma once

#include "host/job/JobPlan.h"

/// Throws HostError (Input) when an image has more pixels than any that is printed, or unfolds to a
/// large multiple of its file's size. PDF pages are drawn in the size of the page, and have no
/// limit.
void CheckImageSizes(const std::vector<PageReference> &pages);
