/// The table of a separation profile: RGB to C, M, Y, K on a 5x5x5 grid, tetrahedral in between.
#pragma once

#include "ZELColour.h"
#include <CoreFoundation/CoreFoundation.h>
#include <cstddef>
#include <cstdint>

/// Bytes from a grid point to the next in R, G and B; the four bytes of a point are C, M, Y, K.
constexpr size_t kGridStepR = 100;
constexpr size_t kGridStepG = 20;
constexpr size_t kGridStepB = 4;
constexpr size_t kGridPointsPerAxis = 5;
constexpr size_t kWhitePoint = 4 * (kGridStepR + kGridStepG + kGridStepB);

/// A grid has 500 bytes; the zeros after them are read, with weight zero, where a component is 255.
constexpr size_t kGridSize = 864;

/// The same once more in the orders of the vector forms. Corners: for each of 64 cells and 8 orders
/// of the fractions, the four corners of the tetrahedron with four inks each. Planes: the 125 grid
/// points of one ink, padded. All less 128, because vector products take them as signed.
constexpr size_t kCornersSize = size_t{64} * 8 * 16;
constexpr size_t kPlaneSize = 128;

/// One block of memory that begins with the grid; allocated zeroed, freed with free().
struct EightColourLUT {
    uint8_t grid[kGridSize];
    alignas(16) uint8_t corners[kCornersSize];
    uint8_t planes[4 * kPlaneSize];
};

/// Does the file begin with the profile signature? The file stays open: the descriptor belongs to
/// a keeper that closes it after a few more checks.
[[nodiscard]] bool IsEightColourLUT(CFURLRef url);

/// Loads a profile and samples it. Null when the file is no profile, is damaged, or memory is
/// short. When a profile passes the signature check but cannot be opened again, the table is zero
/// and separates everything to no ink; `*sampled`, if asked for, tells that it is not so.
[[nodiscard]] EightColourLUT *LoadEightColourLUT(CFURLRef url, bool *sampled = nullptr);

/// Frees a table.
void ReleaseEightColourLUT(EightColourLUT *table);

/// Separates `count` pixels R, G, B at src, src + srcStride and so on. C, M, Y, K of a pixel go to
/// dst[0], dst[planeStride], dst[2*planeStride], dst[3*planeStride]; dst then advances by
/// pixelStride. Always four inks, whatever `channels` says.
void EightColourLUTSeparate(const EightColourLUT *table, const uint8_t *src, int64_t srcStride,
                            int64_t count, uint8_t *dst, int32_t channels, int64_t planeStride,
                            int64_t pixelStride);
