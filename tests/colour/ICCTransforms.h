/// Little CMS as the tests use it, and the profiles that they use it with.
#pragma once

#include <cstdint>
#include <lcms2.h>
#include <memory>
#include <type_traits>

/// A press with coated paper (SWOP), as Ghostscript brings it along.
constexpr const char *kCoatedPaper = "/usr/share/color/icc/ghostscript/default_cmyk.icc";

struct CloseICCProfile {
    void operator()(void *profile) const { cmsCloseProfile(profile); }
};
struct DeleteICCTransform {
    void operator()(void *transform) const { cmsDeleteTransform(transform); }
};
using ICCProfile = std::unique_ptr<std::remove_pointer_t<cmsHPROFILE>, CloseICCProfile>;
using ICCTransform = std::unique_ptr<std::remove_pointer_t<cmsHTRANSFORM>, DeleteICCTransform>;

inline ICCProfile OpenICCProfile(const char *path) {
    return ICCProfile(cmsOpenProfileFromFile(path, "r"));
}

/// sRGB to the press, computed through the profiles themselves.
inline ICCTransform SeparatingTransform(uint32_t rgbFormat, uint32_t cmykFormat, uint32_t intent,
                                        uint32_t flags = 0) {
    const ICCProfile source(cmsCreate_sRGBProfile());
    const ICCProfile press = OpenICCProfile(kCoatedPaper);
    if (!press) return nullptr;
    return ICCTransform(cmsCreateTransform(source.get(), rgbFormat, press.get(), cmykFormat, intent,
                                           flags | cmsFLAGS_NOOPTIMIZE));
}

/// What the press prints: inks to CIELAB, relative to the paper.
inline ICCTransform PrintedColour() {
    const ICCProfile press = OpenICCProfile(kCoatedPaper);
    const ICCProfile lab(cmsCreateLab4Profile(nullptr));
    if (!press) return nullptr;
    return ICCTransform(cmsCreateTransform(press.get(), TYPE_CMYK_8, lab.get(), TYPE_Lab_DBL,
                                           INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOOPTIMIZE));
}

/// What the print looks like on a screen.
inline ICCTransform Proof() {
    const ICCProfile press = OpenICCProfile(kCoatedPaper);
    const ICCProfile screen(cmsCreate_sRGBProfile());
    if (!press) return nullptr;
    return ICCTransform(cmsCreateTransform(press.get(), TYPE_CMYK_8, screen.get(), TYPE_RGB_8,
                                           INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOOPTIMIZE));
}
