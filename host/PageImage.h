/// One page's pixels as the driver takes them: upright, in their final size and colours.
#ifndef ZEL_HOST_PAGEIMAGE_H
#define ZEL_HOST_PAGEIMAGE_H

#include "host/SourceFile.h"

/// Which pixels a document takes.
enum class DocumentPixels {
    Darkness, ///< kZELFormatGray8
    XRGB,     ///< kZELFormatXRGB32
    CMYK      ///< kZELFormatCMYK32
};

/// Bytes a pixel.
[[nodiscard]] int PixelSize(DocumentPixels pixels);

struct PageImage {
    VipsImagePtr pixels; ///< 8 bits; 1 or 3 bands of gray or RGB, or 4 of CMYK
    Placement placement; ///< where it goes; the size is the image's
};

/// Page `page` of `file` for a page of the driver's; `turned` lays it on its left side. Nothing is
/// read yet but the header. Throws HostError.
[[nodiscard]] PageImage OpenPageImage(const SourceFile &file, int page, const PageGrid &grid,
                                      DocumentPixels target, bool turned);

/// Packs `count` pixels of `bands` samples for the driver.
void PackPixels(const uint8_t *source, int bands, int count, DocumentPixels target, uint8_t *out);

#endif
