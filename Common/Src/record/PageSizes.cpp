#include "Common/Src/record/PageSizes.h"

#include "ppd/PostscriptPages.h"

#include <utility>

PageSize SizeInRecord(const PostscriptPage &page, bool rotated) {
    PageSize size = {page.Geturx() - page.Getllx(), page.Getury() - page.Getlly()};
    if (rotated) std::swap(size.width, size.height);
    return size;
}

std::optional<CustomDimensions> LimitsInRecord(const PostscriptPages &pages, bool rotated) {
    CustomDimensions limits = {};
    try {
        pages.GetCustomPageLimits(limits.width.low, limits.width.high, limits.height.low,
                                  limits.height.high);
    } catch (...) {
        return std::nullopt;
    }
    if (rotated) std::swap(limits.width, limits.height);
    return limits;
}
