#include "support/Units.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

constexpr NumberRange kAnything = {-1e300, 1e300};

struct FetchCase {
    const char *text;
    double low, high;
    FetchResult result;
    double value;
};

class FetchDoubleText : public testing::TestWithParam<FetchCase> {};

TEST_P(FetchDoubleText, Fetch_TypedText_GivesResultAndValue) {
    double value = 99;
    EXPECT_EQ(FetchDoubleFromText(GetParam().text, value, {GetParam().low, GetParam().high}),
              GetParam().result)
        << '"' << GetParam().text << '"';
    EXPECT_DOUBLE_EQ(value, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Typing, FetchDoubleText,
    testing::Values(
        FetchCase{"12.5", 0, 100, kFetchNumber, 12.5}, FetchCase{"-3", -10, 0, kFetchNumber, -3},
        FetchCase{"1e2", 0, 100, kFetchNumber, 100}, FetchCase{"  7 ", 0, 10, kFetchNumber, 7},
        FetchCase{".5", 0, 1, kFetchNumber, 0.5}, FetchCase{"5.", 0, 10, kFetchNumber, 5},
        FetchCase{"10", 10, 10, kFetchNumber, 10}, FetchCase{"", 0, 1, kFetchNotANumber, 0},
        FetchCase{"   ", 0, 1, kFetchNotANumber, 0}, FetchCase{"12mm", 0, 100, kFetchNotANumber, 0},
        FetchCase{"12 13", 0, 100, kFetchNotANumber, 0},
        FetchCase{"abc", 0, 1, kFetchNotANumber, 0}, FetchCase{"-", -1, 1, kFetchNotANumber, 0},
        FetchCase{"0x10", 0, 100, kFetchNotANumber, 0},
        FetchCase{"1.2.3", 0, 100, kFetchNotANumber, 0},
        FetchCase{"nan", -1e9, 1e9, kFetchNotANumber, 0},
        FetchCase{"\xd9\xa3", 0, 100, kFetchNotANumber, 0},
        FetchCase{"11", 0, 10, kFetchOutOfRange, 0}, FetchCase{"-0.1", 0, 10, kFetchOutOfRange, 0},
        FetchCase{"1e300", 0, 10, kFetchOutOfRange, 0},
        FetchCase{"99999999999999999999999999", 0, 1e9, kFetchOutOfRange, 0}));

TEST(FetchDoubleTextTest, Fetch_NumberTooLargeForADouble_IsNotInRange) {
    double value = 99;
    EXPECT_NE(FetchDoubleFromText("1e999", value, {0, 1e308}), kFetchNumber);
    EXPECT_EQ(value, 0);
}

TEST(FetchDoubleTextTest, Fetch_TenThousandDigits_DoesNotCrash) {
    double value = 99;
    EXPECT_NE(FetchDoubleFromText(std::string(10000, '9'), value, {0, 1e9}), kFetchNumber);
    EXPECT_EQ(value, 0);
}

TEST(FormatDoubleTest, Format_Decimals_AreFixed) {
    EXPECT_EQ(FormatDouble(2, 1), "1.00");
    EXPECT_EQ(FormatDouble(2, 0), "0.00");
    EXPECT_EQ(FormatDouble(2, 1234567.891), "1234567.89");
    EXPECT_EQ(FormatDouble(0, 299.6), "300");
    EXPECT_EQ(FormatDouble(-3, 299.6), "300");
    EXPECT_EQ(FormatDouble(1, -0.25), "-0.2");
}

TEST(FormatDoubleTest, Format_MoreThanTwentyDecimals_ShowsTwenty) {
    EXPECT_EQ(FormatDouble(25, 0.5), "0.50000000000000000000");
    EXPECT_EQ(FormatDouble(20, 0.5), "0.50000000000000000000");
}

TEST(FieldUnitsTest, Factor_EachCode_GivesMillimetres) {
    EXPECT_DOUBLE_EQ(KeptUnitFactor(1), 0.35277777777777775);
    EXPECT_DOUBLE_EQ(KeptUnitFactor(3), 25.4);
    for (int other : {0, 2, 4, -1, 1000})
        EXPECT_DOUBLE_EQ(KeptUnitFactor(other), 1.0) << other;
}

TEST(FieldUnitsTest, FetchUnit_72Points_Is25Point4Millimetres) {
    double value = 0;
    EXPECT_EQ(FetchUnitNumberFromText("72", kFieldPoints, value, kAnything), kFetchNumber);
    EXPECT_DOUBLE_EQ(value, 25.4);
}

TEST(FieldUnitsTest, FetchUnit_LimitWithinAMillionth_IsAccepted) {
    double value = 0;
    EXPECT_EQ(FetchUnitNumberFromText("10.0000009", 0, value, {0, 10}), kFetchNumber);
    EXPECT_EQ(FetchUnitNumberFromText("10.0000011", 0, value, {0, 10}), kFetchOutOfRange);
    EXPECT_EQ(FetchUnitNumberFromText("-0.0000009", 0, value, {0, 10}), kFetchNumber);
    EXPECT_EQ(FetchUnitNumberFromText("-0.0000011", 0, value, {0, 10}), kFetchOutOfRange);
}

TEST(FieldUnitsTest, FetchUnit_Failure_GivesZero) {
    double value = 99;
    EXPECT_EQ(FetchUnitNumberFromText("x", kFieldInches, value, kAnything), kFetchNotANumber);
    EXPECT_EQ(value, 0);
    value = 99;
    EXPECT_EQ(FetchUnitNumberFromText("12", kFieldInches, value, {0, 25.4}), kFetchOutOfRange);
    EXPECT_EQ(value, 0);
}

TEST(FieldUnitsTest, AcceptedRange_LimitShownRounded_IsInside) {
    // 100 points are 35.2777... mm; kept 33.333 mm are shown as 94.49 points.
    const NumberRange mm = AcceptedRange(kFieldMillimetres, {10.006, 35.27777777777778});
    EXPECT_DOUBLE_EQ(mm.low, 10.006); // shown as 10.01, which lies inside anyway
    EXPECT_DOUBLE_EQ(mm.high, 35.28);
    const NumberRange low = AcceptedRange(kFieldMillimetres, {10.004, 20});
    EXPECT_DOUBLE_EQ(low.low, 10.0);
    EXPECT_DOUBLE_EQ(low.high, 20);
}

TEST(FieldUnitsTest, AcceptedRange_InfiniteLimits_StayInfinite) {
    const double inf = std::numeric_limits<double>::infinity();
    const NumberRange r = AcceptedRange(kFieldPoints, {-inf, inf});
    EXPECT_EQ(r.low, -inf);
    EXPECT_EQ(r.high, inf);
}

struct UnitCase {
    int unit;
    double points, dpi;
    const char *text;
};

class DialogUnits : public testing::TestWithParam<UnitCase> {};

TEST_P(DialogUnits, Format_Points_InThatUnit) {
    EXPECT_EQ(FormatPoints(GetParam().points, GetParam().unit, GetParam().dpi), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Formats, DialogUnits,
                         testing::Values(UnitCase{kPixels, 72, 300, "300"},
                                         UnitCase{kPixels, 595.276, 300, "2480"},
                                         UnitCase{kPixels, 1e6, 10000, "138888889"},
                                         UnitCase{kPixels, 0.01, 72, "0"},
                                         UnitCase{kPoints, 595.276, 300, "595.28"},
                                         UnitCase{kMillimetres, 72, 300, "25.40"},
                                         UnitCase{kMillimetres, 595.27559055, 300, "210.00"},
                                         UnitCase{kInches, 612, 300, "8.50"},
                                         UnitCase{kInches, 1000000, 300, "13888.89"}));

TEST(DialogUnitsTest, Convert_ThereAndBack_IsTheSame) {
    for (int unit : {kPoints, kMillimetres, kInches})
        for (double points : {0.01, 72.0, 595.276, 1e6})
            EXPECT_NEAR(PointsFromDisplayed(DisplayedFromPoints(points, unit, 300), unit, 300),
                        points, points * 1e-12);
    EXPECT_DOUBLE_EQ(PointsFromDisplayed(300, kPixels, 300), 72);
}

TEST(DialogUnitsTest, Read_WithinRange_GivesPoints) {
    double points = 0;
    EXPECT_TRUE(ReadDimension("25.4", kMillimetres, 300, {10, 100}, points));
    EXPECT_DOUBLE_EQ(points, 72);
    EXPECT_TRUE(ReadDimension("600", kPixels, 300, {10, 200}, points));
    EXPECT_DOUBLE_EQ(points, 144);
}

TEST(DialogUnitsTest, Read_BadText_LeavesPointsAlone) {
    double points = 55;
    for (const char *text : {"", "x", "25.4 mm", "-25.4", "1e9", "2"})
        EXPECT_FALSE(ReadDimension(text, kMillimetres, 300, {10, 100}, points)) << text;
    EXPECT_EQ(points, 55);
}

struct CheckCase {
    const char *text;
    int unit;
    double min, max;
    bool valid;
    double points;
    const char *message;
};

class DimensionChecks : public testing::TestWithParam<CheckCase> {};

TEST_P(DimensionChecks, Check_Text_GivesPointsAndMessage) {
    const CheckCase &c = GetParam();
    const DimensionCheck check = CheckDimension(c.text, "Width", c.unit, 300, {c.min, c.max});
    EXPECT_EQ(check.isValid, c.valid);
    EXPECT_NEAR(check.points, c.points, 1e-9);
    EXPECT_EQ(check.message, c.message);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, DimensionChecks,
    testing::Values(CheckCase{"50", kPoints, 10, 100, true, 50, ""},
                    CheckCase{"10", kPoints, 10, 100, true, 10, ""},
                    CheckCase{"100", kPoints, 10, 100, true, 100, ""},
                    CheckCase{"5", kPoints, 10, 100, false, 10,
                              "Width should be a number between 10.00 and 100.00."},
                    CheckCase{"100.01", kPoints, 10, 100, false, 100,
                              "Width should be a number between 10.00 and 100.00."},
                    CheckCase{"-0.005", kPoints, 10, 100, false, 10,
                              "Width should be a number between 10.00 and 100.00."},
                    CheckCase{"", kPoints, 10, 100, false, 0, "Width is not a number."},
                    CheckCase{"wide", kPoints, 10, 100, false, 0, "Width is not a number."},
                    CheckCase{"50pt", kPoints, 10, 100, false, 0, "Width is not a number."},
                    CheckCase{"-5", kPoints, 10, 100, false, 0, "Width is not a number."},
                    CheckCase{"2000000000", kPoints, 10, 100, false, 0, "Width is not a number."},
                    CheckCase{"1", kInches, 72, 144, true, 72, ""},
                    CheckCase{"3", kInches, 72, 144, false, 144,
                              "Width should be a number between 1.00 and 2.00."},
                    CheckCase{"25.4", kMillimetres, 72, 144, true, 72, ""},
                    CheckCase{"25", kMillimetres, 72, 144, false, 72,
                              "Width should be a number between 25.40 and 50.80."},
                    CheckCase{"300", kPixels, 72, 144, true, 72, ""},
                    CheckCase{"299", kPixels, 72, 144, false, 72,
                              "Width should be a number between 300 and 600."},
                    CheckCase{"601", kPixels, 72, 144, false, 144,
                              "Width should be a number between 300 and 600."}));

} // namespace
