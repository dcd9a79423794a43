/// Makes separation profiles for the driver from ordinary ICC profiles.
#pragma once

#include <cstdint>
#include <string>

/// What a separation profile is made from.
struct SeparationRecipe {
    std::string from;    ///< path of the RGB profile; empty: sRGB
    std::string to;      ///< path of the CMYK profile
    uint32_t intent = 0; ///< ICC rendering intent, 0 to 3
    bool blackPointCompensation = false;
    double inkLimit = 400;    ///< most ink in all, in percent; 400 is no limit
    uint32_t gridPoints = 17; ///< points an axis, 2 to 255
};

/// The bytes of the profile: an ICC lut16Type tag from RGB to eight inks, of which the last four
/// stay zero. Throws HostError when a profile cannot be used.
[[nodiscard]] std::string MakeSeparationProfile(const SeparationRecipe &recipe);

/// Throws HostError when no separation can be called so.
void CheckSeparationName(const std::string &name);

/// Puts a profile into the folder under a name, whole or not at all; the folder is made if needed.
/// An existing file is replaced only with `force`. Returns the path. Throws HostError.
std::string InstallSeparation(const std::string &folder, const std::string &name,
                              const std::string &bytes, bool force);
