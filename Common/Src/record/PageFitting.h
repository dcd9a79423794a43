/// Fits a print record to the host's page: the printer's best resolution and paper for it.
///
/// Points are millimetres x 72 / 25.4; a document's resolution is pixels x 25.4 / millimetres. What
/// takes a record reads its rotation, and the caller keeps the record's handle locked.
#pragma once

#include "Common/Src/record/PageInfo.h"
#include "PSHPrint.h"
#include <CoreServices/CoreServices.h>

class PostscriptPrinterInfo;

/// Writes the document's own resolution into `mXDpi_be` and `mYDpi_be` (the larger of both,
/// rounded) and the name of the closest printer resolution that is not below it, or of the default
/// one, into `mResolutionName`. The numbers stay the document's although the name is the printer's:
/// the page's pixels are the host's, and the printer scales.
void SetBestHardwareResolution(const PostscriptPrinterInfo *printer, const PageInfo_tag *page,
                               PSHPrint *record);

/// Writes the page: on a printer with custom pages always one of the wanted size within the limits,
/// otherwise the smallest named page that holds the wanted size, or the default page.
void SetBestPageSize(const PostscriptPrinterInfo *printer, const PageInfo_tag *page,
                     PSHPrint *record);

/// False when the printer has custom pages and the host's page exceeds their maximum.
[[nodiscard]] bool PageFitsOnCustomPaper(const PostscriptPrinterInfo *printer,
                                         const PageInfo_tag *page, const PSHPrint *record);

/// Fits resolution and page of the record in a handle to a suggested page of at least one pixel;
/// otherwise does nothing. Locks the handle.
void SetSuggestions(const PostscriptPrinterInfo *printer, Handle handle, const PageInfo_tag *page);
