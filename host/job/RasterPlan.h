/// From the record to the pages, the colours and the raster that are printed.
#pragma once

#include "host/driver/PrinterModel.h"
#include "host/job/JobOptions.h"
#include "host/job/JobPlan.h"
#include "host/job/PageSet.h"

/// Makes the record one that the driver prints as it reads: a named page gets its true size, and
/// the turn of an EPS page is taken off it (its bounding box would stay that of the unturned page).
/// Throws HostError (Usage) when the printer cannot print it.
[[nodiscard]] PaperPlan FitPaper(const PrinterModel &printer, Record &record);

/// The range that the options or the record ask for.
[[nodiscard]] PageSet PagesAskedFor(const DriverSession &session, const JobOptions &options,
                                    Handle record);

/// The pages in the range that the options or the record ask for. `files` must outlive the result.
/// Throws HostError (Usage) when there are none.
[[nodiscard]] PageChoice ChoosePages(const DriverSession &session, const JobOptions &options,
                                     const std::vector<SourceFile> &files, Handle record);

/// The way from light to ink for the pages of PDF files, as far as it can be told that it is needed
/// before the pages are known: they are counted meanwhile. Null if not. Throws as PlanColours.
[[nodiscard]] std::shared_ptr<const InkProfile> PrepareInks(const DriverBundle &bundle,
                                                            const JobOptions &options,
                                                            const Record &record,
                                                            const std::vector<SourceFile> &files);

/// The record's colours, and the pixels in which the driver gets the pages.
/// Throws HostError when a separation that is needed for them cannot be loaded.
[[nodiscard]] ColourPlan PlanColours(const DriverBundle &bundle, const JobOptions &options,
                                     const Record &record, const std::vector<PageReference> &pages,
                                     std::shared_ptr<const InkProfile> prepared);

/// The page's pixels; the record's resolution is corrected to give exactly these. Throws HostError
/// (Usage) when there is nothing to print on.
[[nodiscard]] RasterPlan PlanRaster(Record &record, uint32_t colourSpace);
