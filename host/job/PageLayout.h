/// Where an image lies on the page, in the page's own pixels.
#ifndef ZEL_HOST_PAGELAYOUT_H
#define ZEL_HOST_PAGELAYOUT_H

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

struct Placement {
    int left = 0, top = 0;     ///< in page pixels
    int width = 0, height = 0; ///< size on the page, within the page
    /// What is printed of the image: all of it, except a pixel or two at the edges of an image that
    /// is that much larger than the page and is printed pixel by pixel.
    int cropLeft = 0, cropTop = 0, cropWidth = 0, cropHeight = 0;

    [[nodiscard]] bool IsPixelByPixel() const { return width == cropWidth && height == cropHeight; }
};

/// Puts the image in the middle of the page: in its own size if its resolution is known and it
/// fits, else as large as fits. The shape of its pixels is kept. A size that differs from the
/// image's own number of pixels by less than a thousandth (and at most 1.5 pixels) becomes that
/// number: such an image is not resampled.
[[nodiscard]] Placement PlaceImage(const PageGrid &page, const ImageSize &image);

/// Changes `width` or `height` by the smallest step (one pixel, if the page has more than two) that
/// makes a page of `components` bytes a pixel a multiple of 4 bytes long. The driver's encoder
/// ends other images with a shortened group, which interpreters refuse or take for a missing row.
void AvoidShortGroup(int &width, int &height, int components);

#endif
