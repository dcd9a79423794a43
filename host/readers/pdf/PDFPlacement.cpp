#include "host/readers/pdf/PDFPlacement.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double kPointsPerInch = 72;
/// A box that the file does not tell: US Letter, as PDF readers assume.
constexpr double kUsualWidth = 612;
constexpr double kUsualHeight = 792;
/// Farther away nothing is drawn.
constexpr double kFarthest = 1e9;
constexpr double kLargestUnit = 1e5;

PDFBox Normalized(PDFBox box) {
    if (box.left > box.right) std::swap(box.left, box.right);
    if (box.bottom > box.top) std::swap(box.bottom, box.top);
    return box;
}

bool IsSensible(const PDFBox &box) {
    const auto near = [](double value) { return std::abs(value) <= kFarthest; };
    return near(box.left) && near(box.right) && near(box.bottom) && near(box.top) &&
           box.Width() > 0 && box.Height() > 0;
}

PDFBox Intersection(const PDFBox &a, const PDFBox &b) {
    return {std::max(a.left, b.left), std::max(a.bottom, b.bottom), std::min(a.right, b.right),
            std::min(a.top, b.top)};
}

/// What is no multiple of 90 degrees counts less, as in the renderer.
bool IsOnItsSide(double rotation) {
    return std::abs(rotation) <= kFarthest && std::fmod(std::trunc(rotation / 90), 2) != 0;
}

} // namespace

PDFPage MakePDFPage(const PDFPageEntry &entry) {
    const PDFBox media = Normalized(entry.media);
    PDFBox box = Normalized(entry.crop);
    if (!IsSensible(box)) box = media;
    // As the renderer does, and so every reader.
    if (IsSensible(media)) box = Normalized(Intersection(box, media));
    const bool sensible = IsSensible(box);
    const double unit = entry.userUnit > 0 && entry.userUnit <= kLargestUnit ? entry.userUnit : 1;
    PDFPage page;
    page.width = (sensible ? box.Width() : kUsualWidth) * unit;
    page.height = (sensible ? box.Height() : kUsualHeight) * unit;
    if (IsOnItsSide(entry.rotation)) std::swap(page.width, page.height);
    page.transparent = entry.transparent;
    return page;
}

PDFMatrix MatrixOf(const PageGrid &grid, const PDFPage &page, const PagePlacement &where) {
    const double pixelX = kPointsPerInch / grid.dpiX;
    const double pixelY = kPointsPerInch / grid.dpiY;
    // On a whole pixel, so that what is sharp in the file is sharp on paper.
    const double left = std::round(where.left / pixelX) * pixelX;
    const double bottom =
        std::round((grid.height * pixelY - where.top - where.height) / pixelY) * pixelY;
    const double across = where.width / (where.turned ? page.height : page.width);
    const double up = where.height / (where.turned ? page.width : page.height);
    if (!where.turned) return {across, 0, 0, up, left, bottom};
    return {0, up, -across, 0, left + where.width, bottom};
}
