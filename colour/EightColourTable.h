/// The table of a separation profile: RGB to C, M, Y, K on a 5x5x5 grid, tetrahedral in between.
#pragma once

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
