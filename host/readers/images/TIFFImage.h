/// Pages of TIFF files as libvips images of colours that everybody knows.
#ifndef ZEL_HOST_IMAGES_TIFFIMAGE_H
#define ZEL_HOST_IMAGES_TIFFIMAGE_H

#include "host/readers/ImageFile.h"
#include "host/readers/TIFFPages.h"
#include "host/readers/images/VipsSupport.h"

/// Opens a page as `*out`: gray, RGB or CMYK, 8 or 16 bits a sample, or Lab and floating-point
/// colours made sRGB; then alpha, if the file has some; nothing else. 0, or -1 with libvips' error
/// set.
[[nodiscard]] int LoadTIFF(const char *path, const TIFFPage &page, VipsAccess access,
                           VipsImage **out);

/// Makes libvips keep what decoders of TIFF files complain about; to be called when it has started.
void HearTIFFDecoders();

/// What the decoders have complained about since libvips' errors were cleared, though all went on.
[[nodiscard]] Damage TakeTIFFDamage();

#endif
