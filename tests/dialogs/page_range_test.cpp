#include "dialogs/PageRange.h"

#include <climits>
#include <gtest/gtest.h>
#include <string>

namespace {

struct RangeCase {
    int first, last;
    PageRangeFault fault;
};

class PageRanges : public testing::TestWithParam<RangeCase> {};

TEST_P(PageRanges, Check_Range_NamesTheFirstFault) {
    EXPECT_EQ(CheckPageRange(GetParam().first, GetParam().last), GetParam().fault)
        << GetParam().first << " to " << GetParam().last;
}

INSTANTIATE_TEST_SUITE_P(Ranges, PageRanges,
                         testing::Values(RangeCase{1, 1, PageRangeFault::None},
                                         RangeCase{1, 999, PageRangeFault::None},
                                         RangeCase{999, 999, PageRangeFault::None},
                                         RangeCase{2, 3, PageRangeFault::None},
                                         RangeCase{0, 5, PageRangeFault::FirstPage},
                                         RangeCase{-1, 5, PageRangeFault::FirstPage},
                                         RangeCase{1000, 1000, PageRangeFault::FirstPage},
                                         RangeCase{INT_MAX, INT_MAX, PageRangeFault::FirstPage},
                                         RangeCase{INT_MIN, 1, PageRangeFault::FirstPage},
                                         RangeCase{0, 0, PageRangeFault::FirstPage},
                                         RangeCase{5, 3, PageRangeFault::LastPage},
                                         RangeCase{5, 1000, PageRangeFault::LastPage},
                                         RangeCase{1, 0, PageRangeFault::LastPage},
                                         RangeCase{1, INT_MAX, PageRangeFault::LastPage}));

TEST(PageRangeTest, AllPages_OnlyThePair1To999) {
    EXPECT_TRUE((PageRange{1, 999}.IsAllPages()));
    EXPECT_FALSE((PageRange{1, 998}.IsAllPages()));
    EXPECT_FALSE((PageRange{2, 999}.IsAllPages()));
    EXPECT_TRUE(PageRange().IsAllPages());
}

TEST(CopiesTest, Copies_1To999_AreGood) {
    for (int good : {1, 2, 999})
        EXPECT_TRUE(IsGoodNumberOfCopies(good)) << good;
    for (int bad : {0, -1, 1000, 65537, INT_MAX, INT_MIN})
        EXPECT_FALSE(IsGoodNumberOfCopies(bad)) << bad;
}

TEST(LeadingIntegerTest, Text_GivesItsFirstNumber) {
    EXPECT_EQ(LeadingInteger("12"), 12);
    EXPECT_EQ(LeadingInteger("  12 pages"), 12);
    EXPECT_EQ(LeadingInteger("12abc"), 12);
    EXPECT_EQ(LeadingInteger("-7"), -7);
    EXPECT_EQ(LeadingInteger("3,5"), 3);
    for (const char *none : {"", " ", "abc", "-", "+", ".5"})
        EXPECT_EQ(LeadingInteger(none), 0) << none;
}

TEST(LeadingIntegerTest, HugeNumber_DoesNotWrapAround) {
    EXPECT_EQ(LeadingInteger("4294967297"), INT_MAX);
    EXPECT_EQ(LeadingInteger("-4294967297"), INT_MIN);
    EXPECT_EQ(LeadingInteger("18446744073709551617"), INT_MAX);
    EXPECT_EQ(LeadingInteger(std::string(5000, '9')), INT_MAX);
}

TEST(BlankTest, WhiteSpaceOnly_IsBlank) {
    EXPECT_TRUE(IsBlank(""));
    EXPECT_TRUE(IsBlank(" \t"));
    EXPECT_FALSE(IsBlank(" 1 "));
    EXPECT_FALSE(IsBlank("x"));
}

} // namespace
