#include "host/job/PlacementPlan.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr double kMMPerPoint = 25.4 / 72;
/// Less than a tenth of a millimetre is a rounding error.
constexpr double kNoticeable = 0.1 / kMMPerPoint;

/// Paper that is turned by a quarter counterclockwise, as who reads it sees it.
Edges Turned(const Edges &paper) {
    return {paper.bottom, paper.left, paper.top, paper.right};
}

/// The margins as who reads the page sees them, before the driver mirrors it.
Edges MarginsInFront(const JobPlan &plan, const PrinterModel &printer, Mirroring mirroring) {
    const PrinterPage *page = plan.media.custom ? nullptr : printer.FindPage(plan.media.name);
    if (!page) return {};
    Edges margins = MarginsOf(*page);
    if (plan.rotated) margins = Turned(margins);
    // What zelprint turns is turned before the driver mirrors it.
    if (plan.turned) std::swap(mirroring.leftToRight, mirroring.topToBottom);
    if (mirroring.leftToRight) std::swap(margins.left, margins.right);
    if (mirroring.topToBottom) std::swap(margins.top, margins.bottom);
    return margins;
}

bool IsCut(const PagePlacement &place) {
    const Edges &cut = place.cut;
    return std::max({cut.left, cut.top, cut.right, cut.bottom}) > kNoticeable;
}

std::string CutText(const Edges &cut) {
    std::string text;
    const auto add = [&text](double points, const char *edge) {
        if (points <= kNoticeable) return;
        char part[64];
        (void)snprintf(part, sizeof part, "%s%.1f mm at the %s", text.empty() ? "" : ", ",
                       points * kMMPerPoint, edge);
        text += part;
    };
    add(cut.left, "left");
    add(cut.top, "top");
    add(cut.right, "right");
    add(cut.bottom, "bottom");
    return text;
}

} // namespace

Edges MarginsOf(const PrinterPage &page) {
    if (page.sheetWidth <= 0 || page.sheetHeight <= 0) return {};
    const Edges margins = {page.llx, page.sheetHeight - page.ury, page.sheetWidth - page.urx,
                           page.lly};
    // Files are not exact about sheets; but an area that is far off its sheet is none of it.
    constexpr double kTolerance = 3;
    const auto [least, most] =
        std::minmax({margins.left, margins.top, margins.right, margins.bottom});
    if (least < -kTolerance || most > std::max(page.sheetWidth, page.sheetHeight) / 2) return {};
    return {std::max(0.0, margins.left), std::max(0.0, margins.top), std::max(0.0, margins.right),
            std::max(0.0, margins.bottom)};
}

void PlacePages(JobPlan &plan, const PrinterModel &printer, const Mirroring &mirroring,
                const PlacementWishes &wishes) {
    const Edges margins = MarginsInFront(plan, printer, mirroring);
    PageGrid inFront = plan.grid;
    if (plan.turned) {
        std::swap(inFront.width, inFront.height);
        std::swap(inFront.dpiX, inFront.dpiY);
    }
    plan.area = AreaOf(inFront, margins);
    for (PageReference &page : plan.pages)
        page.placement = PlacePage(plan.area, PageOf(page.file->Describe(page.page)), wishes);
}

std::string CutNotice(const JobPlan &plan, const PlacementWishes &wishes) {
    // Nobody misses the margins of a page that lies on its own sheet.
    if (!wishes.rule || *wishes.rule == ScaleRule::Shrink || *wishes.rule == ScaleRule::Fit)
        return {};
    const auto isCut = [](const PageReference &page) { return IsCut(page.placement); };
    const auto first = std::find_if(plan.pages.begin(), plan.pages.end(), isCut);
    if (first == plan.pages.end()) return {};
    const auto count = std::count_if(first, plan.pages.end(), isCut);
    std::string text = count == 1 ? "a page is cut off: page "
                                  : std::to_string(count) + " pages are cut off: page ";
    return text + std::to_string(first - plan.pages.begin() + 1) + " loses " +
           CutText(first->placement.cut) + "; print with --scale shrink to have all of it";
}
