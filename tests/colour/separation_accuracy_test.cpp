// How far the driver's table is from the ICC transform that it was made from: docs/separations.md
// gives the numbers that this prints, and the pictures that it leaves.
#include "colour/EightColourSeparation.h"
#include "tests/colour/Image.h"
#include "tests/colour/SeparationFile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<uint8_t>;

/// Red, green and blue in 16 steps each, most of them between the table's own five.
Bytes ColourCube() {
    Bytes rgb;
    rgb.reserve(3 * 4096);
    for (int i = 0; i < 4096; ++i)
        for (int shift : {8, 4, 0})
            rgb.push_back(static_cast<uint8_t>((i >> shift & 15) * 17));
    return rgb;
}

Bytes Greys() {
    Bytes rgb;
    rgb.reserve(3 * 256);
    for (int i = 0; i < 3 * 256; ++i)
        rgb.push_back(static_cast<uint8_t>(i / 3));
    return rgb;
}

Bytes Photograph() {
    return ReadImage(ZEL_SAMPLES "/photograph.jpg", 300).rgb;
}

/// The test chart: hue across, from light to dark and in three strengths down, greys below.
Image Chart() {
    constexpr int kColumns = 24;
    constexpr int kRowsOfColour = 15;
    constexpr int kPatch = 14;
    Image chart{kColumns * kPatch, (kRowsOfColour + 1) * kPatch, {}};
    for (int i = 0; i < chart.width * chart.height; ++i) {
        const int column = i % chart.width / kPatch;
        const int row = i / chart.width / kPatch;
        const int group = row / 5;
        const double strength = row == kRowsOfColour ? 0 : 1 - 0.33 * group;
        const double light = row == kRowsOfColour ? 1 - column / 23.0 : 1 - 0.2 * (row % 5);
        for (int c = 0; c < 3; ++c) {
            const double angle = (column / 24.0 - c / 3.0) * 2 * M_PI;
            const double pure = std::clamp(0.5 + std::cos(angle), 0.0, 1.0);
            chart.rgb.push_back(
                static_cast<uint8_t>(std::lround(255 * light * (1 - strength + strength * pure))));
        }
    }
    return chart;
}

Bytes ThroughICC(const Bytes &rgb, uint32_t intent, uint32_t flags) {
    const ICCTransform transform = SeparatingTransform(TYPE_RGB_8, TYPE_CMYK_8, intent, flags);
    Bytes inks(rgb.size() / 3 * 4);
    cmsDoTransform(transform.get(), rgb.data(), inks.data(),
                   static_cast<cmsUInt32Number>(rgb.size() / 3));
    return inks;
}

Bytes ThroughTable(const Bytes &rgb, const EightColourLUT &table) {
    Bytes inks(rgb.size() / 3 * 4);
    EightColourLUTSeparate(&table, rgb.data(), 3, static_cast<int64_t>(rgb.size() / 3), inks.data(),
                           4, 1, 4);
    return inks;
}

/// Of CIEDE2000 differences.
struct Difference {
    double mean, percentile95, maximum;
};

Difference Compare(const Bytes &inks, const Bytes &otherInks) {
    const ICCTransform printed = PrintedColour();
    const size_t count = inks.size() / 4;
    std::vector<cmsCIELab> lab(count);
    std::vector<cmsCIELab> otherLab(count);
    cmsDoTransform(printed.get(), inks.data(), lab.data(), static_cast<cmsUInt32Number>(count));
    cmsDoTransform(printed.get(), otherInks.data(), otherLab.data(),
                   static_cast<cmsUInt32Number>(count));
    std::vector<double> differences(count);
    double sum = 0;
    for (size_t i = 0; i < count; ++i)
        sum += differences[i] = cmsCIE2000DeltaE(&lab[i], &otherLab[i], 1, 1, 1);
    std::sort(differences.begin(), differences.end());
    return {sum / static_cast<double>(count), differences[count * 95 / 100], differences.back()};
}

struct Way {
    const char *name;
    uint32_t intent;
    bool blackPointCompensation;
};

Difference Measure(const Bytes &rgb, const Way &way) {
    SeparationRecipe recipe = CoatedPaperRecipe(way.intent);
    recipe.blackPointCompensation = way.blackPointCompensation;
    const TableOwner table = LoadTable(MakeSeparationProfile(recipe));
    const uint32_t flags = way.blackPointCompensation ? cmsFLAGS_BLACKPOINTCOMPENSATION : 0;
    const Difference d = Compare(ThroughTable(rgb, *table), ThroughICC(rgb, way.intent, flags));
    (void)std::printf("%-32s mean %.2f  95%% %.2f  maximum %.2f\n", way.name, d.mean,
                      d.percentile95, d.maximum);
    return d;
}

constexpr Way kWays[] = {{"perceptual", INTENT_PERCEPTUAL, false},
                         {"relative, black point", INTENT_RELATIVE_COLORIMETRIC, true}};

/// The limits that the documentation states.
void ExpectWithin(const Bytes &rgb, Difference limit) {
    for (const Way &way : kWays) {
        const Difference d = Measure(rgb, way);
        EXPECT_LE(d.mean, limit.mean) << way.name;
        EXPECT_LE(d.percentile95, limit.percentile95) << way.name;
        EXPECT_LE(d.maximum, limit.maximum) << way.name;
    }
}

TEST(SeparationAccuracy, ColourCube) {
    ExpectWithin(ColourCube(), {1.4, 3.5, 9.0});
}

TEST(SeparationAccuracy, Greys) {
    ExpectWithin(Greys(), {1.2, 3.6, 4.4});
}

TEST(SeparationAccuracy, Photograph) {
    ExpectWithin(Photograph(), {1.3, 3.4, 10.4});
}

/// The driver reads a profile at five points an axis, so a finer grid gains only where it meets
/// those points better: 5, 9, 17 and 33 do.
TEST(SeparationAccuracy, GridOfTheProfile_HardlyMatters) {
    const Bytes rgb = ColourCube();
    const Bytes exact = ThroughICC(rgb, INTENT_PERCEPTUAL, 0);
    for (const uint32_t gridPoints : {5U, 9U, 16U, 17U, 33U}) {
        SeparationRecipe recipe = CoatedPaperRecipe();
        recipe.gridPoints = gridPoints;
        const TableOwner table = LoadTable(MakeSeparationProfile(recipe));
        const Difference d = Compare(ThroughTable(rgb, *table), exact);
        (void)std::printf("%2u grid points %19s mean %.2f  95%% %.2f  maximum %.2f\n", gridPoints,
                          "", d.mean, d.percentile95, d.maximum);
        EXPECT_LE(d.mean, 1.5) << gridPoints;
    }
}

TEST(SeparationAccuracy, TheTablesOwnColours_AreTheTransforms) {
    Bytes rgb;
    for (int i = 0; i < 125; ++i)
        for (int level : {i / 25, i / 5 % 5, i % 5})
            rgb.push_back(static_cast<uint8_t>(level * 255 / 4));
    const TableOwner table = LoadTable(MakeSeparationProfile(CoatedPaperRecipe()));
    const Bytes expected = ThroughICC(rgb, INTENT_PERCEPTUAL, 0);
    const Bytes actual = ThroughTable(rgb, *table);
    // 63.75, 127.5 and 191.25 are no bytes; the table truncates where the transform rounds.
    for (size_t i = 0; i < actual.size(); ++i)
        EXPECT_NEAR(actual[i], expected[i], 4) << i;
}

Image OnScreen(const Image &image, const Bytes &inks) {
    const ICCTransform proof = Proof();
    Image result{image.width, image.height, Bytes(image.rgb.size())};
    cmsDoTransform(proof.get(), inks.data(), result.rgb.data(),
                   static_cast<cmsUInt32Number>(inks.size() / 4));
    return result;
}

void WriteBothWays(const Image &image, const std::string &name) {
    SeparationRecipe recipe = CoatedPaperRecipe(INTENT_RELATIVE_COLORIMETRIC);
    recipe.blackPointCompensation = true;
    const TableOwner table = LoadTable(MakeSeparationProfile(recipe));
    const Bytes exact = ThroughICC(image.rgb, recipe.intent, cmsFLAGS_BLACKPOINTCOMPENSATION);
    const std::string path = std::string(ZEL_TEST_OUTPUT) + "/" + name;
    WriteImage(path + "-icc.png", OnScreen(image, exact));
    WriteImage(path + "-table.png", OnScreen(image, ThroughTable(image.rgb, *table)));
}

TEST(SeparationAccuracy, PicturesForTheDocumentation) {
    std::filesystem::create_directories(ZEL_TEST_OUTPUT);
    WriteBothWays(Chart(), "separation-chart");
    WriteBothWays(ReadImage(ZEL_SAMPLES "/photograph.jpg", 240), "separation-photograph");
    for (const char *name : {"chart-icc", "chart-table", "photograph-icc", "photograph-table"})
        EXPECT_GT(std::filesystem::file_size(std::string(ZEL_TEST_OUTPUT) + "/separation-" + name +
                                             ".png"),
                  1000U);
}

} // namespace
