#include "host/job/JobSetup.h"

#include "host/job/Destination.h"
#include "host/job/PlacementPlan.h"
#include "host/job/RasterPlan.h"
#include "host/job/RecordChoices.h"
#include <utility>

namespace {

/// Who turns the page by hand has decided how it lies.
PlacementWishes WishesOf(const JobOptions &options) {
    PlacementWishes wishes = options.placement;
    wishes.autoRotate = options.autoRotate.value_or(!options.rotate.value_or(false));
    return wishes;
}

void TellDriver(const DriverSession &session, const JobPlan &plan) {
    const DriverBundle &bundle = session.Bundle();
    const ZELPageRecord page = {plan.grid.width, plan.grid.height, plan.widthMM, plan.heightMM};
    ZEL_CALL(bundle, ZELPrSuggestPage)(session.Context(), nullptr, &page, PixelFormat(plan.pixels));
    // Only a document that has been checked goes to the queue, so the driver must not send it.
    ZEL_CALL(bundle, ZELPrSetSendToPrintQueue)(session.Context(), false);
    (void)ZEL_CALL(bundle, ZELPrSetJobName)(session.Context(), nullptr,
                                            MakeCFString(plan.title).Get());
}

} // namespace

JobPlan SetUpJob(const DriverSession &session, const JobOptions &options,
                 const std::vector<SourceFile> &files, Handle handle) {
    const RecordChoices choices = ChooseRecord(session, options, files, handle);
    Record record(session.Bundle(), handle);
    PaperPlan paper = FitPaper(choices.printer, record);
    std::shared_ptr<const InkProfile> inks = PrepareInks(session.Bundle(), options, record, files);
    PageChoice pages = ChoosePages(session, options, files, handle);
    ColourPlan colours =
        PlanColours(session.Bundle(), options, record, pages.pages, std::move(inks));
    colours.intent = static_cast<ColourIntent>(options.intent);
    RasterPlan raster = PlanRaster(record, colours.colourSpace);
    Destination destination = PlanDestination(session, options, choices, files[0], paper.eps);
    JobPlan plan{std::move(pages), paper, std::move(colours), std::move(raster),
                 std::move(destination)};
    PlacePages(plan, choices.printer, {record.FlipH(), record.FlipV()}, WishesOf(options));
    TellDriver(session, plan);
    return plan;
}
