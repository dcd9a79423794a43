#include "host/job/PageLayout.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

/// How many pixels a page may be smaller than an image that is still printed pixel by pixel:
/// A4 at 600 dpi is 7016 rows to a scanner and 7015 to a driver that truncates.
constexpr double kOverhang = 2;

constexpr double kAssumedDpi = 72;

bool IsUsable(double dpi) {
    return dpi >= 1 && dpi <= 100000;
}

bool IsNearly(double size, int pixels) {
    return std::abs(size - pixels) <= std::clamp(pixels * 0.001, 0.5, 1.5);
}

void CropToPage(int page, int &position, int &size, int &cropStart, int &cropSize) {
    position = static_cast<int>(std::floor((page - size) / 2.0));
    cropStart = std::max(0, -position);
    position = std::max(0, position);
    size = std::min(size, page);
    cropSize = size;
}

} // namespace

Placement PlaceImage(const PageGrid &page, const ImageSize &image) {
    const bool told = IsUsable(image.dpiX) && IsUsable(image.dpiY);
    const bool known = told && !image.onlyShape;
    double width = image.width * page.dpiX / (told ? image.dpiX : kAssumedDpi);
    double height = image.height * page.dpiY / (told ? image.dpiY : kAssumedDpi);
    const bool fits = width <= page.width + kOverhang && height <= page.height + kOverhang;
    if (!known || !fits) {
        const double scale = std::min(page.width / width, page.height / height);
        width *= scale;
        height *= scale;
    }
    Placement placement;
    if (IsNearly(width, image.width) && IsNearly(height, image.height)) {
        placement.width = image.width;
        placement.height = image.height;
        CropToPage(page.width, placement.left, placement.width, placement.cropLeft,
                   placement.cropWidth);
        CropToPage(page.height, placement.top, placement.height, placement.cropTop,
                   placement.cropHeight);
        return placement;
    }
    placement.width = std::clamp(static_cast<int>(std::lround(width)), 1, page.width);
    placement.height = std::clamp(static_cast<int>(std::lround(height)), 1, page.height);
    placement.left = (page.width - placement.width) / 2;
    placement.top = (page.height - placement.height) / 2;
    placement.cropWidth = image.width;
    placement.cropHeight = image.height;
    return placement;
}

void AvoidShortGroup(int &width, int &height, int components) {
    const auto fits = [components](int64_t w, int64_t h) {
        return w > 0 && h > 0 && w * h * components % 4 == 0;
    };
    for (int step = 0; step < 4; ++step) {
        // A row less before a row more: the image then never outgrows what the page holds.
        for (const int change : {-step, step}) {
            if (fits(width, height + change)) {
                height += change;
                return;
            }
            if (fits(width + change, height)) {
                width += change;
                return;
            }
        }
    }
}
