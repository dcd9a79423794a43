/// The TIFF files that printing applications write: 8 bits a sample, in strips, upright. Their
/// samples go from the file to the driver as they are.
#pragma once

#include "host/readers/ImageFile.h"

/// Null when any page is not plain, or anything is wrong with the file. Its pages have rows when
/// they are printed pixel by pixel, in colours that are theirs.
[[nodiscard]] std::unique_ptr<ImageFile> OpenPlainTIFF(const std::string &path);
