#include "host/job/PageSet.h"

#include "host/terminal/ExitStatus.h"
#include <gtest/gtest.h>

namespace {

std::string PagesOf(const PageSet &range, int last = 12) {
    std::string pages;
    for (int page = 1; page <= last; ++page)
        if (range.Contains(page)) pages += (pages.empty() ? "" : " ") + std::to_string(page);
    return pages;
}

struct RangeCase {
    const char *text;
    const char *pages;
};

class PageSetText : public testing::TestWithParam<RangeCase> {};

TEST_P(PageSetText, NamesPages) {
    EXPECT_EQ(PagesOf(PageSet::Parse(GetParam().text)), GetParam().pages);
}

INSTANTIATE_TEST_SUITE_P(Good, PageSetText,
                         testing::Values(RangeCase{"1-4,7,9-", "1 2 3 4 7 9 10 11 12"},
                                         RangeCase{"3", "3"}, RangeCase{"-2", "1 2"},
                                         RangeCase{"2-2", "2"}, RangeCase{"11-", "11 12"},
                                         RangeCase{"5,1", "1 5"}, RangeCase{"1-3,2-4", "1 2 3 4"},
                                         RangeCase{"100", ""}));

class BadPageSetText : public testing::TestWithParam<const char *> {};

TEST_P(BadPageSetText, IsAUsageError) {
    try {
        (void)PageSet::Parse(GetParam());
        FAIL() << "accepted";
    } catch (const HostError &error) {
        EXPECT_EQ(error.Status(), ExitStatus::Usage);
    }
}

INSTANTIATE_TEST_SUITE_P(Bad, BadPageSetText,
                         testing::Values("", "-", "0", "0-3", "4-1", "a", "1,", ",1", "1--3", "1 2",
                                         "1;2", "99999999999", "+1", "1-x"));

TEST(PageSet, OfTheDialog_999IsTheEnd) {
    EXPECT_TRUE(PageSet(1, 999).Contains(5000));
    EXPECT_EQ(PagesOf(PageSet(3, 5)), "3 4 5");
    EXPECT_TRUE(PageSet().Contains(1));
}

using Ends = std::pair<int, int>;

TEST(PageSetForDialog, OneRange_IsWrittenAsARecordHasIt) {
    EXPECT_EQ(PageSet::Parse("3-7").ForDialog(), Ends(3, 7));
    EXPECT_EQ(PageSet::Parse("4").ForDialog(), Ends(4, 4));
    EXPECT_EQ(PageSet::Parse("-4").ForDialog(), Ends(1, 4));
    EXPECT_EQ(PageSet::Parse("5-").ForDialog(), Ends(5, 999));
    EXPECT_EQ(PageSet().ForDialog(), Ends(1, 999));
}

TEST(PageSetForDialog, MoreThanARecordHolds_IsNone) {
    for (const char *text : {"1,3", "1-2,3-4", "1000", "5-1000", "1000-"})
        EXPECT_FALSE(PageSet::Parse(text).ForDialog()) << text;
}

} // namespace
