/// The placement of every page of a job.
#pragma once

#include "host/driver/PrinterModel.h"
#include "host/job/JobPlan.h"

/// How the driver mirrors the page.
struct Mirroring {
    bool leftToRight = false, topToBottom = false;
};

/// The margins between the imageable area of `page` and the edges of its sheet; 0 where they are
/// not known or make no sense.
[[nodiscard]] Edges MarginsOf(const PrinterPage &page);

/// Places the pages of a plan that has its page, grid and pages by now.
void PlacePages(JobPlan &plan, const PrinterModel &printer, const Mirroring &mirroring,
                const PlacementWishes &wishes);

/// What to say of pages of which part is cut off, though they could be printed whole; empty when
/// there are none.
[[nodiscard]] std::string CutNotice(const JobPlan &plan, const PlacementWishes &wishes);
