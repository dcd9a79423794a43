#include "host/placement/PagePlacement.h"

#include <gtest/gtest.h>
#include <ostream>

namespace {

// Points. An A4 sheet with margins as printers have them, wider at the right and at the bottom.
constexpr double kA4Wide = 595;
constexpr double kA4High = 842;
const PrintableArea kA4 = {565, 802, {10, 15, 20, 25}, 0.5, 0.5};
const PrintableArea kUnknownSheet = {565, 802, {}, 0.5, 0.5};

constexpr bool kPicture = true;
constexpr bool kDrawn = false;

PlacementWishes Asked(ScaleRule rule, double percent = 100) {
    PlacementWishes wishes;
    wishes.rule = rule;
    wishes.percent = percent;
    return wishes;
}

PlacementWishes Upright(PlacementWishes wishes) {
    wishes.autoRotate = false;
    return wishes;
}

PlacementWishes At(Alignment across, Alignment down, PlacementWishes wishes = {}) {
    wishes.across = across;
    wishes.down = down;
    return wishes;
}

const PlacementWishes kNothing;
const PlacementWishes kFit = Asked(ScaleRule::Fit);
const PlacementWishes kFill = Asked(ScaleRule::Fill);
const PlacementWishes kNone = Asked(ScaleRule::Percent);

struct Case {
    const char *name;
    PrintableArea area;
    DocumentPage page;
    PlacementWishes wishes;
    double scale;
    bool turned;
    double left, top;
};

void PrintTo(const Case &c, std::ostream *out) {
    *out << c.name;
}

class PlacedPage : public testing::TestWithParam<Case> {};

TEST_P(PlacedPage, LiesWhereItBelongs) {
    const Case &c = GetParam();
    const PagePlacement place = PlacePage(c.area, c.page, c.wishes);
    EXPECT_NEAR(place.scale, c.scale, 1e-6);
    EXPECT_EQ(place.turned, c.turned);
    EXPECT_NEAR(place.left, c.left, 1e-6);
    EXPECT_NEAR(place.top, c.top, 1e-6);
    EXPECT_NEAR(place.width, c.scale * (c.turned ? c.page.height : c.page.width), 1e-6);
    EXPECT_NEAR(place.height, c.scale * (c.turned ? c.page.width : c.page.height), 1e-6);
}

INSTANTIATE_TEST_SUITE_P(
    All, PlacedPage,
    testing::Values(
        Case{"SheetsOwnSize_OnTheSheet",
             kA4,
             {595, 842, true, kDrawn},
             kNothing,
             1,
             false,
             -10,
             -15},
        Case{"SheetsOwnSizeUpToAMillimetre",
             kA4,
             {595.276, 841.89, true, kDrawn},
             kNothing,
             1,
             false,
             -10.138,
             -14.945},
        Case{"PictureOfSheetsOwnSize",
             kA4,
             {595, 842, true, kPicture},
             kNothing,
             1,
             false,
             -10,
             -15},
        Case{"SheetsOwnSizeInTheCorner_OnTheSheetAllTheSame",
             kA4,
             {595, 842, true, kDrawn},
             At(Alignment::Start, Alignment::End),
             1,
             false,
             -10,
             -15},
        Case{"SheetNotKnown_Shrunk",
             kUnknownSheet,
             {595, 842, true, kDrawn},
             kNothing,
             565.0 / 595,
             false,
             0,
             (802 - 842 * 565.0 / 595) / 2},
        Case{"SheetsOwnSizeFitted",
             kA4,
             {595, 842, true, kDrawn},
             kFit,
             565.0 / 595,
             false,
             0,
             802 - 842 * 565.0 / 595},
        Case{"LandscapeOfSheetsOwnSize_Turned",
             kA4,
             {842, 595, true, kDrawn},
             kNothing,
             1,
             true,
             -10,
             -15},
        Case{"LandscapeNotTurned",
             kA4,
             {842, 595, true, kDrawn},
             Upright(kNothing),
             565.0 / 842,
             false,
             0,
             421 - 15 - 297.5 * 565.0 / 842},
        Case{"SmallPage_InTheMiddleOfTheSheet",
             kA4,
             {200, 300, true, kDrawn},
             kNothing,
             1,
             false,
             187.5,
             256},
        Case{"SmallLandscape_NotTurned",
             kA4,
             {300, 200, true, kPicture},
             kNothing,
             1,
             false,
             137.5,
             306},
        Case{"NearlyAsLargeAsTheArea_PushedInside",
             kA4,
             {564, 300, true, kPicture},
             kNothing,
             1,
             false,
             1,
             256},
        Case{"DrawnPageWiderThanTheArea_KeepsItsSize",
             kA4,
             {590, 400, true, kDrawn},
             kNothing,
             1,
             true,
             87.5,
             101.0 + 10},
        Case{"PictureWiderThanTheArea_Shrunk",
             kA4,
             {590, 400, true, kPicture},
             Upright(kNothing),
             565.0 / 590,
             false,
             0,
             421 - 15 - 200 * 565.0 / 590},
        Case{"TooLarge_AsLargeAsFits",
             kA4,
             {1190, 1684, true, kDrawn},
             kNothing,
             565.0 / 1190,
             false,
             0,
             802 - 1684 * 565.0 / 1190},
        Case{"OwnSizeAskedFor", kA4, {1190, 1684, true, kDrawn}, kNone, 1, false, -307.5, -436},
        Case{"OwnSizeInTheCorner",
             kA4,
             {1190, 1684, true, kDrawn},
             At(Alignment::Start, Alignment::Start, kNone),
             1,
             false,
             0,
             0},
        Case{"OwnSizeInTheOtherCorner",
             kA4,
             {1190, 1684, true, kDrawn},
             At(Alignment::End, Alignment::End, kNone),
             1,
             false,
             565 - 1190,
             802 - 1684},
        Case{"OwnSizeOfALandscapePage_TurnedWhereMoreIsSeen",
             kA4,
             {802, 500, true, kPicture},
             kNone,
             1,
             true,
             37.5,
             0},
        Case{"Half",
             kA4,
             {400, 600, true, kDrawn},
             Asked(ScaleRule::Percent, 50),
             0.5,
             false,
             187.5,
             256},
        Case{"SizeNotKnown_Fits",
             kA4,
             {10, 10, false, kPicture},
             kNothing,
             56.5,
             false,
             0,
             421 - 15 - 282.5},
        Case{"SizeNotKnownLandscape_FitsTurned",
             kA4,
             {20, 10, false, kPicture},
             kNothing,
             40.1,
             true,
             87,
             0},
        Case{"SizeNotKnownShrunk",
             kA4,
             {10, 10, false, kPicture},
             Asked(ScaleRule::Shrink),
             1,
             false,
             282.5,
             401},
        Case{"Filled", kA4, {100, 100, false, kPicture}, kFill, 8.02, false, -113.5, 0},
        Case{"FilledLandscape_TurnedWhereMoreIsSeen",
             kA4,
             {200, 100, false, kPicture},
             kFill,
             5.65,
             true,
             0,
             -159},
        Case{"TopLeft",
             kA4,
             {200, 300, true, kPicture},
             At(Alignment::Start, Alignment::Start),
             1,
             false,
             0,
             0},
        Case{"BottomRight",
             kA4,
             {200, 300, true, kPicture},
             At(Alignment::End, Alignment::End),
             1,
             false,
             365,
             502},
        Case{"Square_NotTurned",
             kA4,
             {700, 700, true, kPicture},
             kNothing,
             565.0 / 700,
             false,
             0,
             421 - 15 - 282.5}),
    [](const testing::TestParamInfo<Case> &info) { return std::string(info.param.name); });

TEST(PlacePage, WhatIsOutsideOfThePrintableArea_IsCut) {
    const PagePlacement own = PlacePage(kA4, {kA4Wide, kA4High, true, kDrawn}, kNothing);
    EXPECT_DOUBLE_EQ(own.cut.left, 10);
    EXPECT_DOUBLE_EQ(own.cut.top, 15);
    EXPECT_DOUBLE_EQ(own.cut.right, 20);
    EXPECT_DOUBLE_EQ(own.cut.bottom, 25);
    const PagePlacement corner =
        PlacePage(kA4, {1190, 1684, true, kDrawn}, At(Alignment::Start, Alignment::Start, kNone));
    EXPECT_DOUBLE_EQ(corner.cut.left, 0);
    EXPECT_DOUBLE_EQ(corner.cut.right, 1190 - 565);
    EXPECT_DOUBLE_EQ(corner.cut.bottom, 1684 - 802);
    const PagePlacement whole = PlacePage(kA4, {100, 100, true, kDrawn}, kNothing);
    EXPECT_EQ(whole.cut.left + whole.cut.top + whole.cut.right + whole.cut.bottom, 0);
}

TEST(PlacePage, AnyPageThatIsNotCut_LiesWithinTheArea) {
    for (double width = 5; width < 2000; width *= 1.37)
        for (double height = 5; height < 2000; height *= 1.43)
            for (const bool known : {false, true})
                for (const Alignment across :
                     {Alignment::Start, Alignment::Middle, Alignment::End}) {
                    const PagePlacement place =
                        PlacePage(kA4, {width, height, known, kPicture}, At(across, across, kFit));
                    ASSERT_GE(place.left, -1e-9);
                    ASSERT_GE(place.top, -1e-9);
                    ASSERT_LE(place.left + place.width, 565 + 1e-9);
                    ASSERT_LE(place.top + place.height, 802 + 1e-9);
                    ASSERT_NEAR(place.width / place.height,
                                place.turned ? height / width : width / height, 1e-6);
                }
}

TEST(TurnPlacement, TurnsEverythingCounterclockwise) {
    PagePlacement place;
    place.left = 10;
    place.top = 20;
    place.width = 300;
    place.height = 100;
    place.cut = {1, 2, 3, 4};
    const PagePlacement turned = TurnPlacement(place, 565);
    EXPECT_TRUE(turned.turned);
    EXPECT_EQ(turned.left, 20);
    EXPECT_EQ(turned.top, 565 - 10 - 300);
    EXPECT_EQ(turned.width, 100);
    EXPECT_EQ(turned.height, 300);
    EXPECT_EQ(turned.cut.left, 2);
    EXPECT_EQ(turned.cut.top, 3);
    EXPECT_EQ(turned.cut.right, 4);
    EXPECT_EQ(turned.cut.bottom, 1);
    EXPECT_FALSE(TurnPlacement(turned, 100).turned);
}

} // namespace
