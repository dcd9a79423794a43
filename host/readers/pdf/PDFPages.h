/// The pages of a PDF file as the renderer finds them, before anything is drawn.
#ifndef ZEL_HOST_PDF_PDFPAGES_H
#define ZEL_HOST_PDF_PDFPAGES_H

#include "host/readers/pdf/PDFOptions.h"
#include "host/readers/pdf/PDFPlacement.h"
#include <vector>

/// Counts and measures the pages of a file; at least one. Throws HostError (Input) that names the
/// file when it cannot be read or a password is missing.
[[nodiscard]] std::vector<PDFPage> ReadPDFPages(const std::string &path, const PDFOptions &options);

/// The numbers, from 1, of the pages whose transparency is blended in RGB because they say so: all
/// of their inks become light, and are separated anew. None when that cannot be told.
[[nodiscard]] std::vector<int> ReadPagesBlendedInRGB(const std::string &path,
                                                     const PDFOptions &options,
                                                     const std::vector<PDFPage> &pages);

#endif
