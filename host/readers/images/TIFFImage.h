/// Pages of TIFF files as libvips images of colours that everybody knows.
#pragma once

#include "host/readers/TIFFPages.h"
#include "host/readers/images/VipsSupport.h"

/// Opens a page as `*out`: gray, RGB or CMYK, 8 or 16 bits a sample, or Lab and floating-point
/// colours made sRGB; then alpha, if the file has some; nothing else. 0, or -1 with libvips' error
/// set.
[[nodiscard]] int LoadTIFF(const char *path, const TIFFPage &page, VipsAccess access,
                           VipsImage **out);
