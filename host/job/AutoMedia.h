/// The page that --media auto stands for: what the document is made for.
#pragma once

#include "host/driver/PrinterModel.h"
#include "host/driver/Record.h"
#include "host/job/PageSet.h"
#include "host/job/SourceFile.h"
#include <vector>

/// What --media is given for it.
inline constexpr const char *kAutoMedia = "auto";

/// Width and height in points.
struct DocumentSize {
    double width = 0, height = 0;
};

/// The size that all pages of `range` have, to a millimetre and whichever way they lie: the first
/// page's. Throws HostError (Usage) when they have several, or when one has no size of its own.
[[nodiscard]] DocumentSize SizeOfDocument(const std::vector<SourceFile> &files,
                                          const PageSet &range);

/// A page of the printer, on paper as it lies there: one of the document's size to a millimetre,
/// else a custom page, else the one with the edges that are least off. For EPS the document's own
/// size.
[[nodiscard]] RecordPage NearestMedia(const PrinterModel &printer, const DocumentSize &size,
                                      bool eps);
