/// One page as a libvips image that the driver's pixels can be packed from.
#pragma once

#include "host/readers/images/VipsLoader.h"

struct VipsPage {
    VipsImagePtr pixels; ///< upright, in its final size; 8 bits; 1 or 3 bands of light, 4 of ink
    Placement placement;
};

/// Page `page` of `file`, which looks like `source`, for a page of the driver's; see
/// ImageFile::OpenPage. Throws HostError.
[[nodiscard]] VipsPage OpenVipsPage(const VipsLoader &file, int page, const SourcePage &source,
                                    const PageTarget &target);
