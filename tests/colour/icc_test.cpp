#include "ZELICC.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

using Matrix = std::array<int32_t, 9>;
using Triple = std::array<uint16_t, 3>;

constexpr int32_t kOne = 65536;
constexpr Matrix kIdentity{kOne, 0, 0, 0, kOne, 0, 0, 0, kOne};

/// A curve with the extra slot that the forward lookups read with weight zero.
std::vector<uint16_t> Curve(std::vector<uint16_t> entries) {
    entries.push_back(entries.back());
    return entries;
}

uint32_t Entries(const std::vector<uint16_t> &curve) {
    return static_cast<uint32_t>(curve.size() - 1);
}

// ---- Curves

TEST(OneDLookup, EndsAreTheFirstAndTheLastEntry) {
    for (const auto &curve : {Curve({7}), Curve({100, 60000}), Curve({5, 9, 300, 12, 65535})}) {
        EXPECT_EQ(ICC_OneDLookup(0, curve.data(), Entries(curve)), curve.front());
        EXPECT_EQ(ICC_OneDLookup(65535, curve.data(), Entries(curve)), curve.back());
    }
}

TEST(OneDLookup, IdentityCurve_IsExact) {
    const auto curve = Curve({0, 65535});
    for (uint32_t v = 0; v <= 65535; ++v)
        ASSERT_EQ(ICC_OneDLookup(v, curve.data(), 2), static_cast<uint16_t>(v));
}

TEST(OneDLookup, BetweenEntries_Truncates) {
    const auto curve = Curve({0, 10, 0});
    EXPECT_EQ(ICC_OneDLookup(16384, curve.data(), 3), 5); // 32768 / 65535 of the way to 10
    EXPECT_EQ(ICC_OneDLookup(16383, curve.data(), 3), 4);
    EXPECT_EQ(ICC_OneDLookup(49152, curve.data(), 3), 4); // 32769 / 65535 of the way back
}

TEST(OneDLookup32768, IndexAndWeightAreOnDifferentScales) {
    const auto curve = Curve({1000, 20000, 40000, 60000});
    const auto expected = [&curve](uint32_t value) {
        const uint64_t p = uint64_t{value} * 3;
        const uint64_t i = p / 65535;
        const auto w = static_cast<uint32_t>(p - i * 32768);
        const uint32_t sum = curve[i] * (32768U - w) + curve[i + 1] * w;
        return static_cast<uint16_t>(sum >> 15);
    };
    for (uint32_t v = 0; v <= 65535; v += 13)
        ASSERT_EQ(ICC_OneDLookup32768(v, curve.data(), 4), expected(v)) << v;
    EXPECT_EQ(ICC_OneDLookup32768(0, curve.data(), 4), 1000);
    EXPECT_EQ(ICC_OneDLookup32768(32768 / 3, curve.data(), 4), 19998);
    // Past a weight of 32768 the line goes on beyond the next entry, modulo 65536.
    EXPECT_EQ(ICC_OneDLookup32768(65534 / 3, curve.data(), 4), 38997);
}

TEST(OneDLookupWithExtrapolation, UpToOne_IsThePlainLookup) {
    const auto curve = Curve({100, 300, 50000});
    for (double v : {0.0, 0.1, 0.25, 0.5, 0.9999, 1.0}) {
        const auto rounded = static_cast<uint32_t>(std::lround(v * 65535.0));
        EXPECT_EQ(ICC_OneDLookupWithExtrapolation(curve.data(), 3, v),
                  ICC_OneDLookup(rounded, curve.data(), 3));
    }
}

TEST(OneDLookupWithExtrapolation, AboveOne_FollowsTheLastSegment) {
    const auto falling = Curve({0, 500, 400});
    EXPECT_EQ(ICC_OneDLookupWithExtrapolation(falling.data(), 3, 1.5), 0);
    const auto rising = Curve({0, 400, 401});
    // (1.0001 - 1) * 1 / (1 / 2) = 0.0002
    EXPECT_EQ(ICC_OneDLookupWithExtrapolation(rising.data(), 3, 1.0001), 13);
    EXPECT_EQ(ICC_OneDLookupWithExtrapolation(rising.data(), 3, 3.0), 65535);
    const auto flat = Curve({0, 9, 9});
    EXPECT_EQ(ICC_OneDLookupWithExtrapolation(flat.data(), 3, 1e300), 0);
}

TEST(OneDLookupWithExtrapolation, NegativeValue_IsTakenModulo65536) {
    const auto curve = Curve({0, 65535});
    EXPECT_EQ(ICC_OneDLookupWithExtrapolation(curve.data(), 2, -1.0 / 65535), 65535);
    EXPECT_EQ(ICC_OneDLookupWithExtrapolation(curve.data(), 2, -2.0 / 65535), 65534);
}

TEST(OneDLookupWithExtrapolation, NoNumberAndEndlessOnes_StayWithinTheCurve) {
    const auto curve = Curve({3, 65535});
    EXPECT_EQ(ICC_OneDLookupWithExtrapolation(curve.data(), 2, std::nan("")), 0);
    EXPECT_EQ(ICC_OneDLookupWithExtrapolation(curve.data(), 2, HUGE_VAL), 65535);
    EXPECT_EQ(ICC_OneDLookupWithExtrapolation(curve.data(), 2, -HUGE_VAL), 3);
    EXPECT_EQ(ICC_OneDLookupWithExtrapolation(curve.data(), 2, -1e300), 3);
}

struct Inverse {
    uint16_t value;
    uint8_t flag;
    bool operator==(const Inverse &) const = default;
};

Inverse Invert(uint32_t value, const std::vector<uint16_t> &curve) {
    Inverse result{0, 7}; // a flag that is not set stays as it was
    result.value = ICC_InverseOneDLookup(value, curve.data(), static_cast<uint32_t>(curve.size()),
                                         &result.flag);
    return result;
}

TEST(InverseOneDLookup, OutsideTheCurve_IsClippedAndFlagged) {
    const std::vector<uint16_t> curve{100, 200, 300};
    EXPECT_EQ(Invert(301, curve), (Inverse{65535, 255}));
    EXPECT_EQ(Invert(99, curve), (Inverse{0, 255}));
    EXPECT_EQ(Invert(70000, curve), (Inverse{65535, 255}));
}

TEST(InverseOneDLookup, Ends_AreNotFlagged) {
    const std::vector<uint16_t> curve{100, 200, 300};
    EXPECT_EQ(Invert(300, curve), (Inverse{65535, 7}));
    EXPECT_EQ(Invert(100, curve), (Inverse{0, 7}));
}

TEST(InverseOneDLookup, ConstantCurve_IsTheTopEnd) {
    EXPECT_EQ(Invert(50, {50, 50, 50}), (Inverse{65535, 7}));
}

TEST(InverseOneDLookup, BetweenEntries_InterpolatesAndTruncates) {
    const std::vector<uint16_t> curve{0, 100, 1000};
    EXPECT_EQ(Invert(50, curve).value, 16383);          // half of 32767
    EXPECT_EQ(Invert(550, curve).value, 32767 + 16384); // half of 32768 further
    EXPECT_EQ(Invert(100, curve).value, 32767);
}

TEST(InverseOneDLookup, FlatRun_GivesItsUpperEnd) {
    const std::vector<uint16_t> curve{0, 500, 500, 500, 900};
    EXPECT_EQ(Invert(500, curve).value, 3 * 65535 / 4);
}

TEST(InverseOneDLookup, TwoEntries_NeedNoSearch) {
    EXPECT_EQ(Invert(25, {0, 100}).value, 65535 / 4);
}

// ---- Grids

/// A grid whose values are known functions of the position; with the layer that is read with
/// weight zero at the top.
struct Grid {
    uint32_t n, stride;
    std::vector<uint16_t> values;

    template <typename Value>
    Grid(uint32_t points, uint32_t step, Value value)
        : n(points), stride(step),
          values(static_cast<size_t>(points + 1) * (points + 1) * (points + 1) * step, 0x5555) {
        size_t at = 0;
        for (uint32_t a = 0; a < n; ++a)
            for (uint32_t b = 0; b < n; ++b)
                for (uint32_t c = 0; c < n; ++c)
                    for (uint32_t j = 0; j < stride; ++j)
                        values[at++] = value(a, b, c, j);
    }
};

uint16_t Hash(uint32_t a, uint32_t b, uint32_t c, uint32_t j) {
    return static_cast<uint16_t>(
        (a * 7919 + b * 104729 + c * 1299709 + j * 15485863 + 12345) * 2654435761U >> 13);
}

/// The six cases written out one by one, as a second opinion.
uint16_t SixCases(const Triple &in, const Grid &grid, uint32_t j, uint64_t one, bool shifts) {
    uint64_t f[3];
    uint64_t i[3];
    for (size_t k = 0; k < 3; ++k) {
        const uint32_t p = in[k] * (grid.n - 1);
        i[k] = shifts ? p >> 15 : p / 65535;
        f[k] = shifts ? p & 0x7FFF : p % 65535;
    }
    const auto corner = [&](uint64_t a, uint64_t b, uint64_t c) -> uint64_t {
        const uint64_t n = grid.n;
        return grid.values[((i[0] + a) * n * n + (i[1] + b) * n + i[2] + c) * grid.stride + j];
    };
    uint64_t sum = 0;
    if (f[2] >= f[1] && f[1] >= f[0])
        sum = corner(1, 1, 1) * f[0] + corner(0, 1, 1) * (f[1] - f[0]) +
              corner(0, 0, 1) * (f[2] - f[1]) + corner(0, 0, 0) * (one - f[2]);
    else if (f[1] > f[2] && f[2] >= f[0])
        sum = corner(1, 1, 1) * f[0] + corner(0, 1, 1) * (f[2] - f[0]) +
              corner(0, 1, 0) * (f[1] - f[2]) + corner(0, 0, 0) * (one - f[1]);
    else if (f[1] >= f[0] && f[0] > f[2])
        sum = corner(1, 1, 1) * f[2] + corner(1, 1, 0) * (f[0] - f[2]) +
              corner(0, 1, 0) * (f[1] - f[0]) + corner(0, 0, 0) * (one - f[1]);
    else if (f[2] >= f[0] && f[0] > f[1])
        sum = corner(1, 1, 1) * f[1] + corner(1, 0, 1) * (f[0] - f[1]) +
              corner(0, 0, 1) * (f[2] - f[0]) + corner(0, 0, 0) * (one - f[2]);
    else if (f[0] > f[2] && f[2] >= f[1])
        sum = corner(1, 1, 1) * f[1] + corner(1, 0, 1) * (f[2] - f[1]) +
              corner(1, 0, 0) * (f[0] - f[2]) + corner(0, 0, 0) * (one - f[0]);
    else
        sum = corner(1, 1, 1) * f[2] + corner(1, 1, 0) * (f[1] - f[2]) +
              corner(1, 0, 0) * (f[0] - f[1]) + corner(0, 0, 0) * (one - f[0]);
    return static_cast<uint16_t>(shifts ? sum >> 15 : sum / 65535);
}

/// Inputs in every order, with ties, at both ends and at grid points.
std::vector<Triple> ManyInputs(uint16_t top) {
    std::vector<uint16_t> values;
    for (double part : {0.0, 0.0001, 0.1, 0.25, 0.2501, 0.49, 0.5, 0.66, 0.75, 0.9, 0.99999, 1.0})
        values.push_back(static_cast<uint16_t>(std::lround(part * top)));
    std::vector<Triple> inputs;
    for (uint16_t a : values)
        for (uint16_t b : values)
            for (uint16_t c : values)
                inputs.push_back({a, b, c});
    return inputs;
}

TEST(ThreeDLookup, EveryOrderOfFractions) {
    for (uint32_t n : {1U, 2U, 5U, 9U}) {
        const Grid grid(n, 3, Hash);
        for (const Triple &in : ManyInputs(65535)) {
            uint16_t out[3] = {};
            ICC_ThreeDLookup(in.data(), grid.values.data(), n, out, 3, 3);
            for (uint32_t j = 0; j < 3; ++j)
                ASSERT_EQ(out[j], SixCases(in, grid, j, 65535, false))
                    << in[0] << " " << in[1] << " " << in[2];
        }
    }
}

TEST(ThreeDLookup32768, EveryOrderOfFractions) {
    for (uint32_t n : {2U, 5U, 9U}) {
        const Grid grid(n, 2, Hash);
        for (const Triple &in : ManyInputs(32768)) {
            uint16_t out[2] = {};
            ICC_ThreeDLookup32768(in.data(), grid.values.data(), n, out, 2, 2);
            for (uint32_t j = 0; j < 2; ++j)
                ASSERT_EQ(out[j], SixCases(in, grid, j, 32768, true))
                    << in[0] << " " << in[1] << " " << in[2];
        }
    }
}

TEST(ThreeDLookup, FirstInputVariesSlowest) {
    const Grid grid(2, 1, [](uint32_t a, uint32_t b, uint32_t c, uint32_t) {
        return static_cast<uint16_t>(100 * a + 10 * b + c);
    });
    const struct {
        Triple in;
        uint16_t out;
    } cases[] = {{{65535, 0, 0}, 100},
                 {{0, 65535, 0}, 10},
                 {{0, 0, 65535}, 1},
                 {{65535, 65535, 65535}, 111}};
    for (const auto &c : cases) {
        uint16_t out = 0;
        ICC_ThreeDLookup(c.in.data(), grid.values.data(), 2, &out, 1, 1);
        EXPECT_EQ(out, c.out);
    }
}

TEST(ThreeDLookup, EqualInputsAtAGridPoint_GiveItsValue) {
    const Grid grid(6, 1, Hash); // five cells of 13107
    for (uint32_t i = 0; i < 6; ++i) {
        const auto v = static_cast<uint16_t>(13107 * i);
        const Triple in{v, v, v};
        uint16_t out = 0;
        ICC_ThreeDLookup(in.data(), grid.values.data(), 6, &out, 1, 1);
        EXPECT_EQ(out, Hash(i, i, i, 0));
    }
}

TEST(ThreeDLookup, ComputesOnlyTheOutputsAskedFor) {
    const Grid grid(3, 8, Hash);
    const Triple in{1000, 40000, 20000};
    std::array<uint16_t, 8> out;
    out.fill(0xABCD);
    ICC_ThreeDLookup(in.data(), grid.values.data(), 3, out.data(), 8, 4);
    for (uint32_t j = 0; j < 8; ++j)
        EXPECT_EQ(out[j], j < 4 ? SixCases(in, grid, j, 65535, false) : 0xABCD);
    out.fill(0xABCD);
    ICC_ThreeDLookup(in.data(), grid.values.data(), 3, out.data(), 8, 0);
    EXPECT_EQ(out[0], 0xABCD);
}

// ---- Matrices

TEST(Matrix, IdentityAndCopy) {
    Matrix m;
    m.fill(-1);
    ICC_MatrixIdentity(m.data());
    EXPECT_EQ(m, kIdentity);
    Matrix copy{};
    ICC_MatrixCopy(m.data(), copy.data());
    EXPECT_EQ(copy, m);
}

TEST(Matrix, Scaling_TruncatesTowardZero) {
    const Matrix m{10, -10, 7, 10, -10, 7, 10, -10, 7};
    const int32_t num[3] = {1, 2, 3};
    const int32_t den[3] = {3, 3, 2};
    Matrix columns = m;
    ICC_MatrixScaleColumns(columns.data(), num, den);
    EXPECT_EQ(columns, (Matrix{3, -6, 10, 3, -6, 10, 3, -6, 10}));
    Matrix rows = m;
    ICC_MatrixScaleRows(rows.data(), num, den);
    EXPECT_EQ(rows, (Matrix{3, -3, 2, 6, -6, 4, 15, -15, 10}));
    Matrix all = m;
    ICC_MatrixScale(all.data(), 2, -3);
    EXPECT_EQ(all, (Matrix{-6, 6, -4, -6, 6, -4, -6, 6, -4}));
}

TEST(Matrix, Scaling_ProductsAre64Bits) {
    Matrix m = kIdentity;
    ICC_MatrixScale(m.data(), 2000000000, 2000000000);
    EXPECT_EQ(m, kIdentity);
}

TEST(Matrix, Concat_RoundsTheSum) {
    const Matrix a{kOne / 2, 1, 0, 0, kOne, 0, 0, 0, kOne};
    const Matrix b{3, 0, 0, 32767, kOne, 0, 32768, 0, -kOne};
    Matrix r{};
    ICC_MatrixConcat(a.data(), b.data(), r.data());
    // Row 0: (32768*3 + 1*32767 + 32768) >> 16 = 2; (65536 + 32768) >> 16 = 1
    EXPECT_EQ(r, (Matrix{2, 1, 0, 32767, kOne, 0, 32768, 0, -kOne}));
}

TEST(Matrix, Concat_ResultMayBeAnOperand) {
    Matrix a{2 * kOne, kOne, 0, 0, kOne, 0, 0, 0, 3 * kOne};
    ICC_MatrixConcat(a.data(), a.data(), a.data());
    EXPECT_EQ(a, (Matrix{4 * kOne, 3 * kOne, 0, 0, kOne, 0, 0, 0, 9 * kOne}));
}

TEST(Matrix, Concat_LargestNumbersKeepTheLowBits) {
    Matrix a;
    a.fill(INT32_MIN);
    Matrix r{};
    ICC_MatrixConcat(a.data(), a.data(), r.data()); // 3 * 2^62, beyond 64 bits
    EXPECT_EQ(r, Matrix{});
}

TEST(Matrix, Inverse_OfASimpleMatrix) {
    const Matrix m{2 * kOne, 0, kOne, 0, 4 * kOne, 0, 0, 0, kOne};
    Matrix inverse{};
    ICC_MatrixInverse(m.data(), inverse.data());
    // The half that is added before truncation shows in the negative element.
    EXPECT_EQ(inverse, (Matrix{kOne / 2, 0, -kOne / 2 + 1, 0, kOne / 4, 0, 0, 0, kOne}));
}

TEST(Matrix, Inverse_IsNotTransposed) {
    const Matrix srgb{28578, 25241, 9376, 14580, 46981, 3975, 912, 6363, 46785};
    Matrix inverse{};
    Matrix product{};
    ICC_MatrixInverse(srgb.data(), inverse.data());
    ICC_MatrixConcat(srgb.data(), inverse.data(), product.data());
    for (size_t i = 0; i < 9; ++i)
        EXPECT_NEAR(product[i], kIdentity[i], 4);
}

TEST(Matrix, Inverse_ThatDoesNotFit_IsTheLeastNumber) {
    Matrix inverse{};
    ICC_MatrixInverse(Matrix{}.data(), inverse.data());
    for (const int32_t value : inverse)
        EXPECT_EQ(value, INT32_MIN);
    // 65536 does not fit.
    ICC_MatrixInverse(Matrix{1, 0, 0, 0, 1, 0, 0, 0, 1}.data(), inverse.data());
    EXPECT_EQ(inverse, (Matrix{INT32_MIN, 0, 0, 0, INT32_MIN, 0, 0, 0, INT32_MIN}));
}

TEST(Matrix, ImproveInverse_ComesCloserToTheInverse) {
    const Matrix a{2 * kOne, 0, 0, 0, 4 * kOne, 0, 0, 0, kOne};
    Matrix x{kOne / 2 + 600, 0, 0, 0, kOne / 4 - 200, 0, 0, 0, kOne + 900};
    ICC_ImproveMatrixInverse(a.data(), x.data());
    const Matrix expected{kOne / 2, 0, 0, 0, kOne / 4, 0, 0, 0, kOne};
    for (size_t i = 0; i < 9; ++i)
        EXPECT_NEAR(x[i], expected[i], 15) << i;
}

TEST(Matrix, ImproveInverse_OneStepByHand) {
    // x = 3, a = 1: t = (3 + 32768/65536..) = 3 * 65536 rounds to 3; u = 3 * 3 / 65536 rounds to 0.
    Matrix a = kIdentity;
    Matrix x{3, 0, 0, 0, -3, 0, 0, 0, 0};
    ICC_ImproveMatrixInverse(a.data(), x.data());
    // v = 12: (12 + 1) >> 1 = 6; v = -12: (-12 + 2) >> 1 = -5; v = 0: 1 >> 1 = 0.
    EXPECT_EQ(x, (Matrix{6, 0, 0, 0, -5, 0, 0, 0, 0}));
}

TEST(Matrix, Multiply_RoundsAndClips) {
    const Matrix m{kOne, 0, 0, -kOne, 0, 0, kOne, kOne, 0};
    const Triple in{40000, 30000, 5};
    Triple out{};
    uint8_t flag = 7;
    ICC_MatrixMultiply(m.data(), in.data(), out.data(), &flag);
    EXPECT_EQ(out, (Triple{40000, 0, 65535}));
    EXPECT_EQ(flag, 255);
}

TEST(Matrix, Multiply_InsideTheRange_LeavesTheFlagAlone) {
    const Matrix m{kOne / 2, 0, 0, 0, kOne, 0, 0, 0, 0};
    const Triple in{65535, 65535, 65535};
    Triple out{};
    uint8_t flag = 7;
    ICC_MatrixMultiply(m.data(), in.data(), out.data(), &flag);
    EXPECT_EQ(out, (Triple{32768, 65535, 0}));
    EXPECT_EQ(flag, 7);
}

TEST(Matrix, Multiply_ClipsAboveTheLargestExactSum) {
    // 65535 * 65536 = 0xFFFF0000 is the largest sum that is not clipped.
    const Triple in{65535, 1, 0};
    Triple out{};
    uint8_t flag = 0;
    ICC_MatrixMultiply(Matrix{kOne, 0, 0, kOne, 0, 0, kOne, 0, 0}.data(), in.data(), out.data(),
                       &flag);
    EXPECT_EQ(flag, 0);
    ICC_MatrixMultiply(Matrix{kOne, 1, 0, 0, 0, 0, 0, 0, 0}.data(), in.data(), out.data(), &flag);
    EXPECT_EQ(flag, 255);
    EXPECT_EQ(out, (Triple{65535, 0, 0}));
}

TEST(Matrix, FixedMultiply_RoundsAndDoesNotClip) {
    const Matrix m{kOne, 0, 0, -2 * kOne, 0, 0, kOne / 2, kOne / 2, 0};
    const int32_t in[3] = {70000, 1, 0};
    int32_t out[3] = {};
    ICC_FixedMatrixMultiply(m.data(), in, out);
    EXPECT_EQ(out[0], 70000);
    EXPECT_EQ(out[1], -140000);
    EXPECT_EQ(out[2], 35001); // 35000.5 rounds up
}

TEST(Transform3DLut, AppliesTheMatrixToEveryPoint) {
    const Matrix swap{0, kOne, 0, kOne, 0, 0, 0, 0, -kOne};
    std::vector<uint16_t> grid;
    for (uint16_t i = 0; i < 27 * 3; ++i)
        grid.push_back(static_cast<uint16_t>(800 * i));
    const auto before = grid;
    grid.push_back(4711);
    ICC_Transform3DLut(swap.data(), grid.data(), 3);
    for (size_t i = 0; i < 27; ++i) {
        EXPECT_EQ(grid[3 * i], before[3 * i + 1]);
        EXPECT_EQ(grid[3 * i + 1], before[3 * i]);
        EXPECT_EQ(grid[3 * i + 2], 0);
    }
    EXPECT_EQ(grid.back(), 4711);
}

} // namespace
