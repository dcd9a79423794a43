/// Where a page of the document lies on the page, in the page's own pixels.
#pragma once

#include "host/placement/PagePlacement.h"

/// The page as the driver takes it.
struct PageGrid {
    int width = 0, height = 0; ///< pixels
    double dpiX = 0, dpiY = 0; ///< pixels an inch
};

/// An image as it is upright.
struct ImageSize {
    int width = 0, height = 0; ///< pixels
    double dpiX = 0, dpiY = 0; ///< pixels an inch; 0 when the file does not tell
    bool onlyShape = false;    ///< these two tell the shape of a pixel, but not its size
};

/// What of a page goes where, in whole pixels.
struct Placement {
    int left = 0, top = 0;     ///< in page pixels
    int width = 0, height = 0; ///< size of what is printed, within the page
    /// Size of the whole image on the page, and where in it begins what is printed.
    int scaledWidth = 0, scaledHeight = 0;
    int cropLeft = 0, cropTop = 0;
    bool pixelByPixel = false; ///< that is the image's own number of pixels

    [[nodiscard]] bool IsCropped() const { return width != scaledWidth || height != scaledHeight; }
};

/// The size of an image in points; its shape, if the file does not tell a size.
[[nodiscard]] DocumentPage PageOfImage(const ImageSize &image);

/// Puts an image that is `where` (see PlacePage; of the area that the page's pixels cover) on the
/// page's pixels. A size that differs from the image's own number of pixels by less than a
/// thousandth (and at most 1.5 pixels) becomes that number: such an image is not resampled.
[[nodiscard]] Placement LayOut(const PageGrid &page, const ImageSize &image,
                               const PagePlacement &where);

/// The area that the page's pixels cover, on a sheet with these margins.
[[nodiscard]] PrintableArea AreaOf(const PageGrid &page, const Edges &margins);

/// Changes `width` or `height` by the smallest step (one pixel, if the page has more than two) that
/// makes a page of `components` bytes a pixel a multiple of 4 bytes long. The driver's encoder
/// ends other images with a shortened group, which interpreters refuse or take for a missing row.
void AvoidShortGroup(int &width, int &height, int components);
