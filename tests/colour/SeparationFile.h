/// A separation profile made by zelprint's own means, and its table.
#pragma once

#include "colour/EightColourLUT.h"
#include "host/separations/MakeSeparation.h"
#include "tests/TempFolder.h"
#include "tests/colour/ICCTransforms.h"
#include <memory>

struct FreeEightColourLUT {
    void operator()(EightColourLUT *table) const { ReleaseEightColourLUT(table); }
};
using TableOwner = std::unique_ptr<EightColourLUT, FreeEightColourLUT>;

inline SeparationRecipe CoatedPaperRecipe(uint32_t intent = INTENT_PERCEPTUAL) {
    SeparationRecipe recipe;
    recipe.to = kCoatedPaper;
    recipe.intent = intent;
    return recipe;
}

/// The table that the driver makes of the profile.
inline TableOwner LoadTable(const std::string &profile) {
    const TempFolder folder;
    const std::string path = (folder.Path() / "profile").string();
    std::ofstream(path, std::ios::binary) << profile;
    const CFRef url(CFURLCreateWithFileSystemPath(kCFAllocatorDefault, Str(path).Get(),
                                                  kCFURLPOSIXPathStyle, false));
    return TableOwner(LoadEightColourLUT(url.Get()));
}
