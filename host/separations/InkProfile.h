/// ICC profiles that stand for the way in which the driver turns light into ink, for renderers that
/// draw in ink: what they draw with them has the inks that the driver would have chosen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

/// A separation: makes C, M, Y, K of `count` pixels x, R, G, B.
using SeparateColours = std::function<void(const uint8_t *light, size_t count, uint8_t *ink)>;

/// The two belong together: from light to ink, the curves and primaries of one take back what the
/// other does, and only the separation is left.
struct InkProfile {
    std::string light; ///< sRGB, version 4
    std::string ink;   ///< CMYK, an output profile of version 2; its way back is (1 - C)(1 - K)
};

/// Samples a separation at 33 x 33 x 33 colours. Throws HostError (Driver).
[[nodiscard]] InkProfile MakeInkProfile(const SeparateColours &separate);
