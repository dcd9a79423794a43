#include "colour/EightColourSeparation.h"
#include "colour/ColourKernels.h"
#include "colour/InkLayout.h"

#include <algorithm>
#include <utility>

namespace {

/// Position of a colour in the grid: the cell's first corner, and the fractions in 255ths.
struct GridPosition {
    size_t base;
    uint32_t r, g, b;
};

GridPosition Locate(const uint8_t *rgb) {
    uint32_t cell[3];
    uint32_t fraction[3];
    for (int i = 0; i < 3; ++i) {
        cell[i] = rgb[i] * 131588U >> 23; // = rgb[i] * 4 / 255
        fraction[i] = rgb[i] * 4U - cell[i] * 255U;
    }
    return {cell[0] * kGridStepR + cell[1] * kGridStepG + cell[2] * kGridStepB, fraction[0],
            fraction[1], fraction[2]};
}

/// The corners between a cell's first and last, in the order of the fractions, and the weights of
/// all four from the last to the first.
struct Tetrahedron {
    size_t two, one;
    uint32_t weight[4];
};

Tetrahedron ChooseTetrahedron(const GridPosition &p) {
    const auto [base, r, g, b] = p;
    switch ((g > b ? 1 : 0) + (r > b ? 2 : 0) + (r > g ? 4 : 0)) {
        case 0:
            return {24, 4, {r, g - r, b - g, 255 - b}};
        case 1:
            return {24, 20, {r, b - r, g - b, 255 - g}};
        case 3:
            return {120, 20, {b, r - b, g - r, 255 - g}};
        case 4:
            return {104, 4, {g, r - g, b - r, 255 - b}};
        case 6:
            return {104, 100, {g, b - g, r - b, 255 - r}};
        default:
            return {120, 100, {b, g - b, r - g, 255 - r}}; // 7: 2 and 5 contradict themselves
    }
}

/// The order of a colour's fractions, largest first, as steps in the grid. A bit tells that one
/// fraction is not less than others: 1 that G is not less than R, 2 that B is not less than both,
/// 4 that both are not less than B. Where several bits could be, the fractions are equal and
/// either order will do.
struct Order {
    size_t first, second;
};

constexpr Order kOrders[8] = {{kGridStepR, kGridStepB}, {kGridStepG, kGridStepB},
                              {kGridStepB, kGridStepR}, {kGridStepB, kGridStepG},
                              {kGridStepR, kGridStepG}, {kGridStepG, kGridStepR},
                              {kGridStepB, kGridStepR}, {kGridStepB, kGridStepG}};

/// Writes the corners of one tetrahedron: C, M, Y, K of the first two as pairs, then the others.
void WriteCorners(const uint8_t *base, Order order, uint8_t *corners) {
    const uint8_t *corner[4] = {base + kGridStepR + kGridStepG + kGridStepB,
                                base + order.first + order.second, base + order.first, base};
    for (int i = 0; i < 16; ++i) {
        const int pair = i / 8 * 2;
        corners[i] = corner[pair + i % 2][i % 8 / 2] ^ 0x80;
    }
}

void BuildCorners(EightColourLUT *table) {
    // An index is the cell's R and G, two bits each, which the vector form keeps in the lower byte
    // of an offset, then B and the order in its upper byte.
    for (size_t index = 0; index < 512; ++index) {
        const uint8_t *base = table->grid + (index >> 2 & 3) * kGridStepR +
                              (index & 3) * kGridStepG + (index >> 4 & 3) * kGridStepB;
        WriteCorners(base, kOrders[index >> 6], table->corners + 16 * index);
    }
}

void BuildPlanes(EightColourLUT *table) {
    for (size_t ink = 0; ink < 4; ++ink)
        for (size_t point = 0; point < kPlaneSize; ++point)
            table->planes[kPlaneSize * ink + point] = table->grid[4 * point + ink] ^ 0x80;
}

} // namespace

void BuildVectorTables(EightColourLUT *table) {
    BuildCorners(table);
    BuildPlanes(table);
}

void EightColourLUTSeparatePlain(const EightColourLUT *table, const uint8_t *src, int64_t srcStride,
                                 int64_t count, uint8_t *dst, int64_t planeStride,
                                 int64_t pixelStride) {
    for (; count > 0; --count, src += srcStride, dst += pixelStride) {
        const GridPosition position = Locate(src);
        const Tetrahedron t = ChooseTetrahedron(position);
        const uint8_t *corner = table->grid + position.base;
        for (int c = 0; c < 4; ++c, ++corner)
            dst[c * planeStride] =
                static_cast<uint8_t>((corner[124] * t.weight[0] + corner[t.two] * t.weight[1] +
                                      corner[t.one] * t.weight[2] + corner[0] * t.weight[3]) /
                                     255);
    }
}

void EightColourLUTSeparate(const EightColourLUT *table, const uint8_t *src, int64_t srcStride,
                            int64_t count, uint8_t *dst, int32_t /*channels*/, int64_t planeStride,
                            int64_t pixelStride) {
    if (count < 1) return;
    if (srcStride != 4 || VectorKernels().empty()) {
        EightColourLUTSeparatePlain(table, src, srcStride, count, dst, planeStride, pixelStride);
        return;
    }
    const auto convert = [table](const uint8_t *pixels, uint64_t n, uint8_t *inks) {
        return VectorKernels().back().kernel.eightColours(*table, pixels, n, inks);
    };
    ConvertInLayout({src, static_cast<uint64_t>(count), false}, dst, {planeStride, pixelStride},
                    convert);
}
