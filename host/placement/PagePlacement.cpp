#include "host/placement/PagePlacement.h"

#include <algorithm>
#include <cmath>

namespace {

/// As much as two makers' ideas of one paper size differ by: 1 mm.
constexpr double kSameSheet = 72 / 25.4;
/// Less is no reason to turn a page, and nothing that anybody misses.
constexpr double kNoticeable = 0.001;

/// One direction across the sheet.
struct Span {
    double area = 0, before = 0, after = 0, slack = 0;

    [[nodiscard]] double Sheet() const { return before + area + after; }
    [[nodiscard]] bool Holds(double size) const { return size <= area + slack; }
    [[nodiscard]] bool IsSheets(double size) const {
        return std::abs(size - Sheet()) <= kSameSheet;
    }

    /// Where a page of this size begins, from the beginning of the printable area.
    [[nodiscard]] double Place(double size, Alignment alignment) const {
        const double inTheMiddle = (Sheet() - size) / 2 - before;
        if (!Holds(size) && (alignment == Alignment::Middle || IsSheets(size))) return inTheMiddle;
        if (alignment == Alignment::Start) return 0;
        if (alignment == Alignment::End) return area - size;
        if (size > area) return (area - size) / 2;
        return std::clamp(inTheMiddle, 0.0, area - size);
    }
};

Span Across(const PrintableArea &area) {
    return {area.width, area.margins.left, area.margins.right, area.slackX};
}

Span Down(const PrintableArea &area) {
    return {area.height, area.margins.top, area.margins.bottom, area.slackY};
}

/// Whether the page may have its own size. A page of the sheet's size belongs on the sheet: what
/// its maker put there is in its place, and the printer's margins cut it.
bool FitsAsItIs(const Span &across, const Span &down, const DocumentPage &page) {
    if (across.Holds(page.width) && down.Holds(page.height)) return true;
    if (across.IsSheets(page.width) && down.IsSheets(page.height)) return true;
    return !page.picture && page.width <= across.Sheet() + kSameSheet &&
           page.height <= down.Sheet() + kSameSheet;
}

double ScaleOf(const Span &across, const Span &down, const DocumentPage &page, ScaleRule rule,
               double percent) {
    const double wide = across.area / page.width;
    const double high = down.area / page.height;
    switch (rule) {
        case ScaleRule::Percent:
            return percent / 100;
        case ScaleRule::Fill:
            return std::max(wide, high);
        case ScaleRule::Shrink:
            if (FitsAsItIs(across, down, page)) return 1;
            break;
        case ScaleRule::Fit:
            break;
    }
    return std::min(wide, high);
}

PagePlacement PlaceUpright(const PrintableArea &area, const DocumentPage &page, ScaleRule rule,
                           const PlacementWishes &wishes) {
    const Span across = Across(area);
    const Span down = Down(area);
    PagePlacement place;
    place.ofOwnSize = page.known;
    place.scale = ScaleOf(across, down, page, rule, wishes.percent);
    place.width = page.width * place.scale;
    place.height = page.height * place.scale;
    place.left = across.Place(place.width, wishes.across);
    place.top = down.Place(place.height, wishes.down);
    place.cut = {std::max(0.0, -place.left), std::max(0.0, -place.top),
                 std::max(0.0, place.left + place.width - area.width),
                 std::max(0.0, place.top + place.height - area.height)};
    return place;
}

/// How much of the page is printed: 1 is all.
double Shown(const PagePlacement &place) {
    const double across = 1 - (place.cut.left + place.cut.right) / place.width;
    const double down = 1 - (place.cut.top + place.cut.bottom) / place.height;
    return std::max(0.0, across) * std::max(0.0, down);
}

/// Larger where the size is the sheet's to say, else more of it.
bool IsBetter(const PagePlacement &place, const PagePlacement &than, ScaleRule rule) {
    if (rule == ScaleRule::Fit || rule == ScaleRule::Shrink) {
        if (place.scale > than.scale * (1 + kNoticeable)) return true;
        if (place.scale < than.scale * (1 - kNoticeable)) return false;
    }
    return Shown(place) > Shown(than) + kNoticeable;
}

} // namespace

PagePlacement PlacePage(const PrintableArea &area, const DocumentPage &page,
                        const PlacementWishes &wishes) {
    const ScaleRule rule = wishes.rule.value_or(page.known ? ScaleRule::Shrink : ScaleRule::Fit);
    const PagePlacement upright = PlaceUpright(area, page, rule, wishes);
    if (!wishes.autoRotate) return upright;
    DocumentPage onItsSide = page;
    std::swap(onItsSide.width, onItsSide.height);
    PagePlacement turned = PlaceUpright(area, onItsSide, rule, wishes);
    turned.turned = true;
    return IsBetter(turned, upright, rule) ? turned : upright;
}

PagePlacement TurnPlacement(const PagePlacement &placement, double width) {
    PagePlacement turned = placement;
    turned.turned = !placement.turned;
    turned.left = placement.top;
    turned.top = width - placement.left - placement.width;
    std::swap(turned.width, turned.height);
    turned.cut = {placement.cut.top, placement.cut.right, placement.cut.bottom, placement.cut.left};
    return turned;
}
