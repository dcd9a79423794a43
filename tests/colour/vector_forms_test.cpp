// The vector forms give the plain form's bytes and touch nothing else. Where a processor has none,
// the public functions are the plain form and these tests hold all the same.
#include "colour/ColourKernels.h"
#include "colour/EightColourSeparation.h"
#include "colour/RGBToCMYK.h"
#include "tests/GuardedBytes.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

using BlackTable = std::array<uint8_t, kBlackGenerationTableSize>;

BlackTable StandardTable() {
    BlackTable table;
    zel_InitBG(table.data(), 2, 214, 1020, 0.2);
    return table;
}

BlackTable RandomTable(uint32_t seed) {
    std::mt19937 random(seed);
    BlackTable table;
    for (auto &value : table)
        value = static_cast<uint8_t>(random());
    return table;
}

/// Non-zero in one slice of 16 entries only.
BlackTable SparseTable(size_t slice, bool removal) {
    BlackTable table{};
    for (size_t i = 0; i < 16; ++i)
        table[(removal ? 256 : 0) + 16 * slice + i] = static_cast<uint8_t>(201 + i);
    return table;
}

std::unique_ptr<EightColourLUT> RandomGrid(uint32_t seed) {
    std::mt19937 random(seed);
    auto table = std::make_unique<EightColourLUT>();
    for (size_t i = 0; i < 500; ++i)
        table->grid[i] = static_cast<uint8_t>(random());
    BuildVectorTables(table.get());
    return table;
}

/// Only 0 and 255: the largest sums and differences.
std::unique_ptr<EightColourLUT> ExtremeGrid() {
    auto table = RandomGrid(4);
    for (size_t i = 0; i < 500; ++i)
        table->grid[i] = table->grid[i] & 1 ? 255 : 0;
    BuildVectorTables(table.get());
    return table;
}

/// A conversion of x, R, G, B in its public and in its plain form.
struct Conversion {
    std::shared_ptr<BlackTable> black;
    std::shared_ptr<EightColourLUT> grid;

    explicit Conversion(const BlackTable &table) : black(std::make_shared<BlackTable>(table)) {}
    explicit Conversion(std::unique_ptr<EightColourLUT> table) : grid(std::move(table)) {}

    void Public(const uint8_t *src, size_t count, uint8_t *dst, InkLayout layout) const {
        const auto [plane, pixel] = layout;
        if (black)
            CTRGBToCMYK(black->data(), src, count, dst, plane, pixel);
        else
            EightColourLUTSeparate(grid.get(), src + 1, 4, static_cast<int64_t>(count), dst, 4,
                                   plane, pixel);
    }
    void Plain(const uint8_t *src, size_t count, uint8_t *dst, InkLayout layout) const {
        if (black)
            RGBToCMYKPlain(black->data(), src, count, dst, layout);
        else
            EightColourLUTSeparatePlain(grid.get(), src + 1, 4, static_cast<int64_t>(count), dst,
                                        layout.planeStride, layout.pixelStride);
    }
};

constexpr InkLayout kInterleaved{1, 4};

std::vector<Conversion> AllConversions() {
    std::vector<Conversion> all;
    all.emplace_back(StandardTable());
    all.emplace_back(RandomTable(1));
    all.emplace_back(BlackTable{});
    all.emplace_back(SparseTable(0, true));
    all.emplace_back(SparseTable(15, false));
    all.emplace_back(RandomGrid(2));
    all.emplace_back(RandomGrid(3));
    all.emplace_back(ExtremeGrid());
    return all;
}

void ExpectSame(const Conversion &conversion, const std::vector<uint8_t> &pixels) {
    const size_t count = pixels.size() / 4;
    std::vector<uint8_t> expected(pixels.size());
    std::vector<uint8_t> actual(pixels.size(), 0xEE);
    conversion.Plain(pixels.data(), count, expected.data(), kInterleaved);
    conversion.Public(pixels.data(), count, actual.data(), kInterleaved);
    ASSERT_EQ(std::memcmp(expected.data(), actual.data(), expected.size()), 0);
}

/// Every colour once, 65536 a row; the ignored byte varies.
void ExpectSameForAllColours(const Conversion &conversion) {
    std::vector<uint8_t> pixels(4 * size_t{65536});
    for (unsigned r = 0; r < 256; ++r) {
        for (unsigned i = 0; i < 65536; ++i) {
            uint8_t *pixel = &pixels[4 * size_t{i}];
            pixel[0] = static_cast<uint8_t>(i * 7 + r);
            pixel[1] = static_cast<uint8_t>(r);
            pixel[2] = static_cast<uint8_t>(i >> 8);
            pixel[3] = static_cast<uint8_t>(i);
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(conversion, pixels));
    }
}

std::vector<uint8_t> RandomPixels(size_t count, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> pixels(4 * count);
    for (auto &value : pixels)
        value = static_cast<uint8_t>(random());
    return pixels;
}

/// Runs of 1 to 70 equal pixels, many of them black or white.
std::vector<uint8_t> PixelsInRuns(size_t count, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> pixels;
    while (pixels.size() < 4 * count) {
        const uint32_t kind = random() % 4;
        const uint32_t colour = kind == 0 ? 0 : kind == 1 ? 0xFFFFFFFF : random();
        for (size_t run = 1 + random() % 70; run > 0; --run)
            for (int shift = 0; shift < 32; shift += 8)
                pixels.push_back(static_cast<uint8_t>(colour >> shift));
    }
    pixels.resize(4 * count);
    return pixels;
}

/// The kernels by themselves: the public functions take the best only. `pixels` has one more than
/// `count`.
void ExpectKernelsGivePlainForms(const BlackTable &black, const EightColourLUT &grid,
                                 const std::vector<uint8_t> &pixels, size_t count) {
    std::vector<uint8_t> blackInks(4 * count);
    std::vector<uint8_t> gridInks(4 * count);
    RGBToCMYKPlain(black.data(), pixels.data(), count, blackInks.data(), kInterleaved);
    EightColourLUTSeparatePlain(&grid, pixels.data(), 4, static_cast<int64_t>(count),
                                gridInks.data(), 1, 4);
    for (const auto &[name, kernels] : VectorKernels()) {
        std::vector<uint8_t> actual(4 * count);
        size_t done = kernels.blackGeneration(black.data(), pixels.data(), count, actual.data());
        ASSERT_LE(done, count);
        ASSERT_EQ(std::memcmp(actual.data(), blackInks.data(), 4 * done), 0) << name;
        done = kernels.eightColours(grid, pixels.data(), count, actual.data());
        ASSERT_LE(done, count);
        ASSERT_EQ(std::memcmp(actual.data(), gridInks.data(), 4 * done), 0) << name;
    }
}

TEST(VectorForms, EveryKernelOfThisProcessor_IsThePlainForm) {
    const auto grid = RandomGrid(21);
    for (const BlackTable &black : {StandardTable(), RandomTable(6)})
        for (size_t count = 1; count < 6000; count += 1 + count / 9) {
            const auto pixels = PixelsInRuns(count + 1, static_cast<uint32_t>(count));
            ASSERT_NO_FATAL_FAILURE(ExpectKernelsGivePlainForms(black, *grid, pixels, count));
        }
}

/// White blocks have a way of their own; one byte that is not quite white, wherever it is, may
/// not get lost there.
TEST(VectorForms, EveryKernelOfThisProcessor_NearlyWhiteBlocks) {
    const auto grid = RandomGrid(23);
    const BlackTable black = RandomTable(24);
    constexpr size_t kCount = 192;
    for (const size_t ignored : {size_t{0}, size_t{3}}) {
        std::vector<uint8_t> pixels(4 * (kCount + 1), 255);
        for (size_t i = 0; i <= kCount; ++i)
            pixels[4 * i + ignored] = static_cast<uint8_t>(i * 37);
        ASSERT_NO_FATAL_FAILURE(ExpectKernelsGivePlainForms(black, *grid, pixels, kCount));
        for (uint8_t &byte : pixels) {
            const uint8_t before = std::exchange(byte, uint8_t{254});
            ASSERT_NO_FATAL_FAILURE(ExpectKernelsGivePlainForms(black, *grid, pixels, kCount));
            byte = before;
        }
    }
}

TEST(VectorForms, EveryKernelOfThisProcessor_AllColours) {
    constexpr size_t kCount = 65536;
    const BlackTable black = RandomTable(25);
    const auto grid = RandomGrid(22);
    std::vector<uint8_t> pixels(4 * (kCount + 1));
    for (unsigned r = 0; r < 256; ++r) {
        for (unsigned i = 0; i < kCount; ++i) {
            uint8_t *pixel = &pixels[4 * size_t{i}];
            pixel[0] = pixel[3] = static_cast<uint8_t>(r);
            pixel[1] = static_cast<uint8_t>(i >> 8);
            pixel[2] = static_cast<uint8_t>(i);
        }
        ASSERT_NO_FATAL_FAILURE(ExpectKernelsGivePlainForms(black, *grid, pixels, kCount)) << r;
    }
}

TEST(VectorForms, EveryKernelOfThisProcessor_TakesAllWholeBlocks) {
    const BlackTable black = StandardTable();
    const auto grid = RandomGrid(26);
    const auto pixels = RandomPixels(1000, 27);
    std::vector<uint8_t> inks(pixels.size());
    for (const auto &[name, kernels] : VectorKernels()) {
        EXPECT_GE(kernels.blackGeneration(black.data(), pixels.data(), 1000, inks.data()), 936U);
        EXPECT_GE(kernels.eightColours(*grid, pixels.data(), 1000, inks.data()), 936U);
        EXPECT_EQ(kernels.eightColours(*grid, pixels.data(), 65, inks.data()), 64U);
    }
}

TEST(VectorForms, BlackGeneration_AllColoursAreThePlainForms) {
    ExpectSameForAllColours(Conversion(StandardTable()));
}

TEST(VectorForms, BlackGeneration_AnyTable_AllColoursAreThePlainForms) {
    ExpectSameForAllColours(Conversion(RandomTable(7)));
}

TEST(VectorForms, EightColours_AllColoursAreThePlainForms) {
    ExpectSameForAllColours(Conversion(RandomGrid(8)));
}

TEST(VectorForms, EightColours_ExtremeGrid_AllColoursAreThePlainForms) {
    ExpectSameForAllColours(Conversion(ExtremeGrid()));
}

TEST(VectorForms, RandomRows_AreThePlainForms) {
    for (const auto &conversion : AllConversions())
        ExpectSame(conversion, RandomPixels(10007, 11));
}

TEST(VectorForms, RowsWithRuns_AreThePlainForms) {
    for (const auto &conversion : AllConversions())
        for (uint32_t seed = 0; seed < 20; ++seed)
            ExpectSame(conversion, PixelsInRuns(4960, seed));
}

TEST(VectorForms, EveryLength_StaysInsideItsMemory) {
    const auto side = {GuardedBytes::kEnd, GuardedBytes::kStart};
    for (const auto &conversion : AllConversions())
        for (size_t count = 0; count < 140; ++count)
            for (auto guard : side) {
                const GuardedBytes src(4 * count, guard);
                const GuardedBytes dst(4 * count, guard);
                const auto pixels = RandomPixels(count, static_cast<uint32_t>(count));
                std::vector<uint8_t> expected(4 * count);
                std::copy(pixels.begin(), pixels.end(), src.Data());
                conversion.Plain(src.Data(), count, expected.data(), kInterleaved);
                conversion.Public(src.Data(), count, dst.Data(), kInterleaved);
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst.Data())) << count;
            }
}

TEST(VectorForms, EveryMisalignment_IsThePlainForm) {
    const auto pixels = RandomPixels(300, 5);
    for (const auto &conversion : AllConversions())
        for (size_t shift = 0; shift < 32; ++shift) {
            std::vector<uint8_t> expected(4 * 280);
            std::vector<uint8_t> actual(4 * 280 + 32);
            conversion.Plain(&pixels[shift], 280, expected.data(), kInterleaved);
            conversion.Public(&pixels[shift], 280, &actual[shift], kInterleaved);
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), &actual[shift])) << shift;
        }
}

TEST(VectorForms, OtherLayouts_AreThePlainForms) {
    const InkLayout layouts[] = {{1500, 1}, {1, 5}, {2, 8}, {1500, 2}, {6000, 4}, {0, 4}};
    const auto pixels = RandomPixels(1300, 6);
    for (const auto &conversion : AllConversions())
        for (const InkLayout layout : layouts)
            for (size_t count : {size_t{0}, size_t{1}, size_t{33}, size_t{1300}}) {
                std::vector<uint8_t> expected(24000, 0x77);
                std::vector<uint8_t> actual(24000, 0x77);
                conversion.Plain(pixels.data(), count, expected.data(), layout);
                conversion.Public(pixels.data(), count, actual.data(), layout);
                ASSERT_EQ(expected, actual) << layout.planeStride << " " << layout.pixelStride;
            }
}

TEST(VectorForms, BackwardLayout_IsThePlainForm) {
    const auto pixels = RandomPixels(600, 9);
    for (const auto &conversion : AllConversions()) {
        std::vector<uint8_t> expected(2400);
        std::vector<uint8_t> actual(2400);
        conversion.Plain(pixels.data(), 600, &expected[2399], {-600, -1});
        conversion.Public(pixels.data(), 600, &actual[2399], {-600, -1});
        ASSERT_EQ(expected, actual);
    }
}

TEST(VectorForms, InPlace_IsThePlainForm) {
    for (const auto &conversion : AllConversions()) {
        auto expected = RandomPixels(500, 10);
        auto actual = expected;
        const auto source = expected;
        conversion.Plain(source.data(), 500, expected.data(), kInterleaved);
        conversion.Public(actual.data(), 500, actual.data(), kInterleaved);
        ASSERT_EQ(expected, actual);
    }
}

TEST(VectorForms, Planes_AreTheInterleavedInks) {
    const BlackTable table = StandardTable();
    for (int32_t count : {1, 31, 32, 511, 512, 513, 2000}) {
        const auto pixels = RandomPixels(static_cast<size_t>(count), 12);
        std::vector<uint8_t> inks(pixels.size());
        std::vector<std::vector<uint8_t>> planes(4, std::vector<uint8_t>(pixels.size() / 4));
        zel_RGBToCMYK(table.data(), pixels.data(), inks.data(), count);
        zel_RGBToCMYK_planes(table.data(), pixels.data(), planes[0].data(), planes[1].data(),
                             planes[2].data(), planes[3].data(), count);
        for (size_t i = 0; i < inks.size(); ++i)
            ASSERT_EQ(planes[i % 4][i / 4], inks[i]) << i;
    }
}

} // namespace
