// Numbers as a German user writes them; runs with that locale set in its environment.
#include "support/Units.h"

#include <gtest/gtest.h>

namespace {

TEST(DecimalComma, Fetch_CommaNumber_IsRead) {
    double value = 0;
    EXPECT_EQ(FetchDoubleFromText("12,5", value, {0, 100}), kFetchNumber);
    EXPECT_DOUBLE_EQ(value, 12.5);
}

TEST(DecimalComma, Fetch_PointNumber_IsNotANumber) {
    double value = 99;
    EXPECT_EQ(FetchDoubleFromText("12.5", value, {0, 100}), kFetchNotANumber);
    EXPECT_EQ(value, 0);
}

TEST(DecimalComma, Fetch_GroupedNumber_IsNotANumber) {
    double value = 99;
    EXPECT_EQ(FetchDoubleFromText("1.234,5", value, {0, 10000}), kFetchNotANumber);
}

TEST(DecimalComma, Format_Number_HasCommaAndNoGrouping) {
    EXPECT_EQ(FormatDouble(2, 1234.5), "1234,50");
    EXPECT_EQ(FormatDouble(0, 1234.5), "1234");
}

TEST(DecimalComma, Format_ThenFetch_IsTheSameNumber) {
    for (double number : {0.01, 210.0, 841.89, 1e6}) {
        double value = 0;
        EXPECT_EQ(FetchDoubleFromText(FormatDouble(2, number), value, {0, 1e7}), kFetchNumber);
        EXPECT_DOUBLE_EQ(value, number);
    }
}

TEST(DecimalComma, AcceptedRange_LimitShownWithComma_IsReadBack) {
    EXPECT_DOUBLE_EQ(AcceptedRange(kFieldMillimetres, {0, 35.27777777777778}).high, 35.28);
}

TEST(DecimalComma, Check_OutOfRange_NamesLimitsWithComma) {
    const DimensionCheck check = CheckDimension("5,5", "Height", kPoints, 300, {10.25, 100});
    EXPECT_FALSE(check.isValid);
    EXPECT_EQ(check.message, "Height should be a number between 10,25 and 100,00.");
    EXPECT_DOUBLE_EQ(check.points, 10.25);
}

} // namespace
