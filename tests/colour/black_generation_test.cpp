#include "colour/RGBToCMYK.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <vector>

namespace {

using Table = std::array<uint8_t, kBlackGenerationTableSize>;

Table Build(int32_t curve, uint32_t level, uint32_t inkLimit, double ucrFactor) {
    Table table;
    table.fill(0xAA);
    zel_InitBG(table.data(), curve, level, inkLimit, ucrFactor);
    return table;
}

Table Standard() {
    return Build(2, 214, 1020, 0.2);
}

int Black(const Table &table, int g) {
    return table[static_cast<size_t>(g)];
}
int Removal(const Table &table, int g) {
    return table[256 + static_cast<size_t>(g)];
}

std::array<uint8_t, 4> Convert(const Table &table, uint8_t r, uint8_t g, uint8_t b) {
    const uint8_t src[4] = {99, r, g, b};
    std::array<uint8_t, 4> inks{};
    zel_RGBToCMYK(table.data(), src, inks.data(), 1);
    return inks;
}

using Inks = std::array<uint8_t, 4>;

TEST(InitBG, StandardTable_HasItsKnownRows) {
    const struct {
        int g, black, removal;
    } rows[] = {{0, 0, 0},      {114, 0, 0},    {115, 1, 0},   {128, 3, 0},
                {150, 13, 2},   {170, 29, 5},   {200, 70, 14}, {220, 111, 22},
                {240, 165, 33}, {250, 197, 39}, {255, 214, 42}};
    const Table table = Standard();
    for (const auto &row : rows) {
        EXPECT_EQ(Black(table, row.g), row.black) << row.g;
        EXPECT_EQ(Removal(table, row.g), row.removal) << row.g;
    }
}

TEST(InitBG, StandardTable_HasNothingBelow115AndRisesAbove) {
    const Table table = Standard();
    for (int g = 0; g < 115; ++g) {
        EXPECT_EQ(Black(table, g), 0);
        EXPECT_EQ(Removal(table, g), 0);
    }
    for (int g = 115; g < 256; ++g)
        EXPECT_GE(Black(table, g), Black(table, g - 1));
}

TEST(InitBG, CurveZero_IsAllZero) {
    const Table table = Build(0, 255, 1020, 1.0);
    EXPECT_TRUE(std::all_of(table.begin(), table.end(), [](uint8_t v) { return v == 0; }));
}

TEST(InitBG, CurveZero_InkLimitStillRaisesRemoval) {
    const Table table = Build(0, 255, 300, 0.0); // most: 100
    for (int g = 0; g < 256; ++g) {
        EXPECT_EQ(Removal(table, g), std::max(0, g - 100));
        EXPECT_EQ(Black(table, g), 0);
    }
}

TEST(InitBG, LinearCurve_FullLevelGivesTheGreyItself) {
    const Table table = Build(4, 255, 1020, 0.5);
    for (int g = 0; g < 256; ++g) {
        EXPECT_EQ(Black(table, g), g);
        EXPECT_EQ(Removal(table, g), g / 2);
    }
}

TEST(InitBG, LinearCurve_Truncates) {
    const Table table = Build(4, 100, 1020, 0.0);
    for (int g = 0; g < 256; ++g)
        EXPECT_EQ(Black(table, g), g * 100 / 255);
}

TEST(InitBG, OtherSelectors_AllMeanTheCubic) {
    const Table table = Standard();
    for (int32_t curve : {1, 2, 3, 5, 99, -1, INT32_MIN}) {
        EXPECT_EQ(Build(curve, 214, 1020, 0.2), table) << curve;
    }
}

TEST(InitBG, Level_OnlyLowByteCounts) {
    EXPECT_EQ(Build(2, 0xABC000D6, 1020, 0.2), Standard());
}

TEST(InitBG, InkLimit_OnlyLowWordCounts) {
    EXPECT_EQ(Build(2, 214, 0xFFFF03FC, 0.2), Standard());
}

TEST(InitBG, InkLimit300_RaisesRemovalAndReRampsBlack) {
    // most = (300 - 255) / 3 = 15; no g from 254 to 16 keeps its colour within it, so the knee is
    // 15, where black is 15.
    const Table table = Build(4, 255, 300, 0.0);
    for (int g = 0; g < 256; ++g) {
        EXPECT_EQ(Removal(table, g), std::max(0, g - 15)) << g;
        EXPECT_EQ(Black(table, g), g <= 15 ? g : 15 + (g - 15) * (255 - 15) / (255 - 15)) << g;
    }
}

TEST(InitBG, InkLimit_ReRampsTheCubicFromTheKnee) {
    // most = (500 - 214) / 3 = 95 and the removal is 0 up to g = 115: the knee is 95.
    const Table table = Build(2, 214, 500, 0.2);
    for (int g = 0; g < 256; ++g) {
        EXPECT_EQ(Black(table, g), g <= 95 ? 0 : (g - 95) * 214 / 160) << g;
    }
    EXPECT_EQ(Removal(table, 255), 160);
}

TEST(InitBG, InkLimitBelowBlack_WrapsModulo256) {
    // most = (0 - 255) / 3 = -85: every removal becomes g + 85, above 170 modulo 256.
    const Table table = Build(4, 255, 0, 0.0);
    for (int g = 0; g < 256; ++g)
        EXPECT_EQ(Removal(table, g), (g + 85) & 0xFF) << g;
}

TEST(InitBG, RemovalFactorAboveOne_WrapsModulo256) {
    const Table table = Build(4, 255, 1020, 2.0);
    for (int g = 0; g < 256; ++g)
        EXPECT_EQ(Removal(table, g), 2 * g & 0xFF) << g;
}

TEST(InitBG, LevelZero_HasNoBlack) {
    const Table table = Build(2, 0, 1020, 0.2);
    EXPECT_TRUE(std::all_of(table.begin(), table.end(), [](uint8_t v) { return v == 0; }));
}

TEST(Interpolate, PassesThroughItsPoints) {
    const double xs[4] = {0, 85, 170, 255};
    const double ys[4] = {0, 0, 35, 255};
    for (int i = 0; i < 4; ++i)
        EXPECT_DOUBLE_EQ(interpolate(xs, ys, xs[i]), ys[i]);
}

TEST(Interpolate, ReproducesACubic) {
    const auto cubic = [](double x) { return 2 * x * x * x - 3 * x * x + x - 7; };
    const double xs[4] = {-1, 0, 2, 5};
    const double ys[4] = {cubic(-1), cubic(0), cubic(2), cubic(5)};
    for (double x : {-3.0, 0.5, 1.0, 4.0, 10.0})
        EXPECT_NEAR(interpolate(xs, ys, x), cubic(x), 1e-9);
}

TEST(BlackGenExponents, KeepTheirValues) {
    const double expected[5] = {0.0, 1.0, 2.0, 3.2, 5.0};
    for (size_t i = 0; i < 5; ++i)
        EXPECT_EQ(blackGenExponents[i], expected[i]);
}

TEST(RGBToCMYK, Standard_WhiteAndBlack) {
    EXPECT_EQ(Convert(Standard(), 255, 255, 255), (Inks{0, 0, 0, 0}));
    EXPECT_EQ(Convert(Standard(), 0, 0, 0), (Inks{213, 213, 213, 214}));
}

TEST(RGBToCMYK, CurveZero_IsTheComplement) {
    EXPECT_EQ(Convert(Build(0, 214, 1020, 0.2), 10, 20, 30), (Inks{245, 235, 225, 0}));
}

TEST(RGBToCMYK, RemovalAboveTheInk_WrapsModulo256) {
    Table table{};
    table.fill(200);
    EXPECT_EQ(Convert(table, 255, 155, 0), (Inks{56, 156, 55, 200}));
}

TEST(RGBToCMYK, NullDestination_SaysSoOnTheConsole) {
    const Table table = Standard();
    const uint8_t src[4] = {};
    testing::internal::CaptureStderr();
    zel_RGBToCMYK(table.data(), src, nullptr, 1);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("CMYK == 0"), std::string::npos);
}

TEST(RGBToCMYK, NoPixels_WriteNothing) {
    const Table table = Standard();
    const uint8_t src[4] = {};
    for (int32_t count : {0, -1, INT32_MIN}) {
        Inks inks{1, 2, 3, 4};
        zel_RGBToCMYK(table.data(), src, inks.data(), count);
        EXPECT_EQ(inks, (Inks{1, 2, 3, 4}));
        zel_RGBToCMYK_planes(table.data(), src, &inks[0], &inks[1], &inks[2], &inks[3], count);
        EXPECT_EQ(inks, (Inks{1, 2, 3, 4}));
    }
    Inks inks{1, 2, 3, 4};
    CTRGBToCMYK(table.data(), src, 0, inks.data(), 1, 4);
    EXPECT_EQ(inks, (Inks{1, 2, 3, 4}));
}

} // namespace
