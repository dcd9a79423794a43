#include "host/separations/ProfileCheck.h"

#include <cstdint>
#include <cstdlib>
#include <lcms2.h>
#include <memory>
#include <vector>

namespace {

struct CloseProfile {
    void operator()(void *profile) const { (void)cmsCloseProfile(profile); }
};
struct DeleteTransform {
    void operator()(void *transform) const { cmsDeleteTransform(transform); }
};
using Profile = std::unique_ptr<void, CloseProfile>;
using Transform = std::unique_ptr<void, DeleteTransform>;

/// A chart of 9 x 9 x 9 colours.
std::vector<uint8_t> SampleColours() {
    std::vector<uint8_t> colours;
    for (int r = 0; r < 9; ++r)
        for (int g = 0; g < 9; ++g)
            for (int b = 0; b < 9; ++b)
                for (const int level : {r, g, b})
                    colours.push_back(static_cast<uint8_t>(level * 255 / 8));
    return colours;
}

} // namespace

bool IsNearlySRGB(const void *profile, size_t size) {
    const Profile from(cmsOpenProfileFromMem(profile, static_cast<cmsUInt32Number>(size)));
    if (!from || cmsGetColorSpace(from.get()) != cmsSigRgbData) return false;
    const Profile to(cmsCreate_sRGBProfile());
    const Transform transform(cmsCreateTransform(from.get(), TYPE_RGB_8, to.get(), TYPE_RGB_8,
                                                 INTENT_RELATIVE_COLORIMETRIC, 0));
    if (!transform) return false;
    const std::vector<uint8_t> colours = SampleColours();
    std::vector<uint8_t> converted(colours.size());
    cmsDoTransform(transform.get(), colours.data(), converted.data(),
                   static_cast<cmsUInt32Number>(colours.size() / 3));
    for (size_t i = 0; i < colours.size(); ++i)
        if (std::abs(colours[i] - converted[i]) > 1) return false;
    return true;
}
