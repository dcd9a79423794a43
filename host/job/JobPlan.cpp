#include "host/job/JobPlan.h"

namespace {

/// Room for the text around the image data, a printer's own code included.
constexpr uint64_t kMostText = 1 << 20;

} // namespace

int ComponentsOf(uint32_t colourSpace) {
    return colourSpace == kZELColourSpaceGray ? 1 : colourSpace == kZELColourSpaceRGB ? 3 : 4;
}

const char *NameOfColourSpace(uint32_t colourSpace) {
    return colourSpace == kZELColourSpaceGray  ? "gray"
           : colourSpace == kZELColourSpaceRGB ? "rgb"
                                               : "cmyk";
}

PageTarget JobPlan::TargetOf(const PageReference &page) const {
    return {grid, turned ? TurnPlacement(page.placement, area.width) : page.placement, pixels, inks,
            intent};
}

uint64_t JobPlan::PageBytes() const {
    return static_cast<uint64_t>(grid.width) * static_cast<uint64_t>(grid.height) *
           static_cast<uint64_t>(ComponentsOf(colourSpace));
}

uint64_t JobPlan::LeastFileSize(int count) const {
    // Four zero samples are one character; everything else is longer.
    return static_cast<uint64_t>(count) * (PageBytes() / 4);
}

uint64_t JobPlan::MostFileSize(int count) const {
    // Five characters for four samples, in lines of 80 characters.
    const uint64_t characters = (PageBytes() + 3) / 4 * 5;
    const uint64_t page = characters + characters / 80 + 1 + kMostText;
    return static_cast<uint64_t>(count) * page + kMostText;
}
