#include "host/placement/PageLayout.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

/// How many pixels a page may be smaller than an image that is still printed pixel by pixel:
/// A4 at 600 dpi is 7016 rows to a scanner and 7015 to a driver that truncates.
constexpr double kOverhang = 2;

constexpr double kPointsPerInch = 72;
constexpr double kAssumedDpi = 72;
/// As many as libvips takes.
constexpr double kMostPixels = 10000000;

bool IsUsable(double dpi) {
    return dpi >= 1 && dpi <= 100000;
}

bool IsNearly(double size, int pixels) {
    return std::abs(size - pixels) <= std::clamp(pixels * 0.001, 0.5, 1.5);
}

/// One direction: `start` and `size` of all of the image become those of what is on the page;
/// returns what is before it.
int CropToPage(int page, int &start, int &size) {
    const int before = std::clamp(-start, 0, std::max(0, size - 1));
    start = std::max(0, start);
    size = std::clamp(size - before, 1, std::max(1, page - start));
    start = std::min(start, page - 1);
    return before;
}

/// The first pixel of an image that would begin at `start` and be `size` pixels long, but has
/// `whole` ones. It stays on the page if it fits.
int FirstPixel(double start, double size, int whole, int page) {
    constexpr double kRoundingError = 0.01;
    // What is enlarged beyond measure begins far away, in the middle of nowhere.
    const double exact = std::floor(start + (size - whole) / 2 + kRoundingError);
    const int first = static_cast<int>(std::clamp(exact, -kMostPixels, kMostPixels));
    return whole <= page && start > -kOverhang ? std::clamp(first, 0, page - whole) : first;
}

int WholePixels(double size) {
    return static_cast<int>(std::lround(std::clamp(size, 1.0, kMostPixels)));
}

} // namespace

DocumentPage PageOfImage(const ImageSize &image) {
    const bool told = IsUsable(image.dpiX) && IsUsable(image.dpiY);
    return {std::max(1, image.width) * kPointsPerInch / (told ? image.dpiX : kAssumedDpi),
            std::max(1, image.height) * kPointsPerInch / (told ? image.dpiY : kAssumedDpi),
            told && !image.onlyShape, true};
}

PrintableArea AreaOf(const PageGrid &page, const Edges &margins) {
    const double pointsX = kPointsPerInch / page.dpiX;
    const double pointsY = kPointsPerInch / page.dpiY;
    return {page.width * pointsX, page.height * pointsY, margins, kOverhang * pointsX,
            kOverhang * pointsY};
}

Placement LayOut(const PageGrid &page, const ImageSize &image, const PagePlacement &where) {
    const double across = page.dpiX / kPointsPerInch;
    const double down = page.dpiY / kPointsPerInch;
    const double width = where.width * across;
    const double height = where.height * down;
    const int ownWidth = where.turned ? image.height : image.width;
    const int ownHeight = where.turned ? image.width : image.height;
    Placement place;
    place.pixelByPixel = IsNearly(width, ownWidth) && IsNearly(height, ownHeight);
    place.scaledWidth = place.pixelByPixel ? ownWidth : WholePixels(width);
    place.scaledHeight = place.pixelByPixel ? ownHeight : WholePixels(height);
    place.left = FirstPixel(where.left * across, width, place.scaledWidth, page.width);
    place.top = FirstPixel(where.top * down, height, place.scaledHeight, page.height);
    place.width = place.scaledWidth;
    place.height = place.scaledHeight;
    place.cropLeft = CropToPage(page.width, place.left, place.width);
    place.cropTop = CropToPage(page.height, place.top, place.height);
    return place;
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
