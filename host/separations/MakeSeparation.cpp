#include "host/separations/MakeSeparation.h"

#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <lcms2.h>
#include <memory>
#include <type_traits>
#include <vector>

namespace {

struct CloseProfile {
    void operator()(void *profile) const { cmsCloseProfile(profile); }
};
struct DeleteTransform {
    void operator()(void *transform) const { cmsDeleteTransform(transform); }
};
using Profile = std::unique_ptr<std::remove_pointer_t<cmsHPROFILE>, CloseProfile>;
using Transform = std::unique_ptr<std::remove_pointer_t<cmsHTRANSFORM>, DeleteTransform>;

constexpr size_t kInks = 4;
constexpr size_t kChannels = 8; ///< the format has eight inks; a press of four leaves four empty
constexpr uint16_t kFullInk = 65535;

Profile OpenProfile(const std::string &path) {
    // Only a regular file: opening a FIFO would wait for somebody to write to it.
    std::error_code error;
    Profile profile;
    if (std::filesystem::is_regular_file(path, error))
        profile.reset(cmsOpenProfileFromFile(path.c_str(), "r"));
    if (!profile)
        throw HostError(ExitStatus::Input, kAboutProfile,
                        "'" + path + "' is not an ICC profile, or cannot be read");
    return profile;
}

Profile OpenSource(const std::string &path) {
    if (path.empty()) return Profile(cmsCreate_sRGBProfile());
    Profile profile = OpenProfile(path);
    if (cmsGetColorSpace(profile.get()) != cmsSigRgbData)
        throw HostError(ExitStatus::Input, kAboutProfile,
                        "'" + path + "' is not an RGB profile; give --from one");
    return profile;
}

Profile OpenTarget(const std::string &path) {
    Profile profile = OpenProfile(path);
    if (cmsGetColorSpace(profile.get()) != cmsSigCmykData ||
        cmsGetDeviceClass(profile.get()) == cmsSigLinkClass)
        throw HostError(ExitStatus::Input, kAboutProfile,
                        "'" + path + "' is not a profile of a CMYK press; give --to one");
    return profile;
}

Transform OpenTransform(const SeparationRecipe &recipe) {
    const Profile source = OpenSource(recipe.from);
    const Profile target = OpenTarget(recipe.to);
    // Every colour is computed through the profiles themselves: the usual precalculated table
    // would add its own interpolation to the driver's.
    const cmsUInt32Number flags =
        cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE |
        (recipe.blackPointCompensation ? cmsFLAGS_BLACKPOINTCOMPENSATION : 0U);
    Transform transform(cmsCreateTransform(source.get(), TYPE_RGB_16, target.get(), TYPE_CMYK_16,
                                           recipe.intent, flags));
    if (!transform)
        throw HostError(ExitStatus::Input, kAboutProfile,
                        "'" + recipe.to +
                            "' cannot turn colours into inks "
                            "(no tables for output); choose another --to profile");
    return transform;
}

/// Takes colour away, in equal parts and black last, until the inks are within the limit.
void LimitInk(std::array<uint16_t, kInks> &inks, double limit) {
    const double black = std::min<double>(inks[3], limit);
    const double colour = inks[0] + inks[1] + inks[2];
    const double scale = colour + black > limit ? (limit - black) / colour : 1;
    for (size_t i = 0; i < 3; ++i)
        inks[i] = static_cast<uint16_t>(inks[i] * scale);
    inks[3] = static_cast<uint16_t>(black);
}

void AppendWord(std::string &bytes, uint32_t word) {
    bytes += {static_cast<char>(word >> 8), static_cast<char>(word)};
}

void AppendHeader(std::string &bytes, uint32_t gridPoints) {
    bytes += std::string("mft2\0\0\0\0", 8);
    bytes += {3, static_cast<char>(kChannels), static_cast<char>(gridPoints), 0};
    for (int i = 0; i < 9; ++i) { // the identity matrix, s15.16
        AppendWord(bytes, i % 4 == 0 ? 1 : 0);
        AppendWord(bytes, 0);
    }
    AppendWord(bytes, 2); // entries of an input curve
    AppendWord(bytes, 2); // entries of an output curve
}

void AppendStraightCurves(std::string &bytes, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        AppendWord(bytes, 0);
        AppendWord(bytes, kFullInk);
    }
}

/// The inks of one row of the grid, the last input running.
void AppendRow(std::string &bytes, cmsHTRANSFORM transform, const std::vector<uint16_t> &levels,
               size_t r, size_t g, double inkLimit) {
    std::vector<std::array<uint16_t, 3>> colours;
    colours.reserve(levels.size());
    for (const uint16_t b : levels)
        colours.push_back({levels[r], levels[g], b});
    std::vector<std::array<uint16_t, kInks>> inks(levels.size());
    cmsDoTransform(transform, colours.data(), inks.data(),
                   static_cast<cmsUInt32Number>(colours.size()));
    for (auto &point : inks) {
        LimitInk(point, inkLimit);
        for (const uint16_t ink : point)
            AppendWord(bytes, ink);
        bytes.append(2 * (kChannels - kInks), '\0');
    }
}

} // namespace

std::string MakeSeparationProfile(const SeparationRecipe &recipe) {
    const Transform transform = OpenTransform(recipe);
    const size_t n = recipe.gridPoints;
    std::vector<uint16_t> levels(n);
    for (size_t i = 0; i < n; ++i)
        levels[i] = static_cast<uint16_t>((i * 65535 + (n - 1) / 2) / (n - 1));
    const double inkLimit = std::floor(recipe.inkLimit / 100 * kFullInk);
    std::string bytes;
    AppendHeader(bytes, recipe.gridPoints);
    AppendStraightCurves(bytes, 3);
    for (size_t r = 0; r < n; ++r)
        for (size_t g = 0; g < n; ++g)
            AppendRow(bytes, transform.get(), levels, r, g, inkLimit);
    AppendStraightCurves(bytes, kChannels);
    return bytes;
}
