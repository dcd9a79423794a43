// Numbers in the user's locale. Run once for each of several languages.
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <platform/Platform.h>
#include <string>
#include <vector>

namespace {

/// The decimal separator of the language that this run is in.
std::string Separator() {
    const std::string language = std::string(getenv("LANG") ? getenv("LANG") : "").substr(0, 2);
    return language == "de" || language == "fr" ? "," : ".";
}

std::string Localized(std::string text) {
    const size_t point = text.find('.');
    return point == std::string::npos ? text : text.replace(point, 1, Separator());
}

} // namespace

TEST(NumberText, SeparatorIsTheLanguages) {
    EXPECT_EQ(PlatformFormatNumber(0.5, 1), "0" + Separator() + "5");
}

TEST(NumberText, DecimalsAreWrittenOutAndNothingIsGrouped) {
    struct Case {
        double value;
        int decimals;
        const char *text;
    };
    for (const Case &c : std::vector<Case>{{595.27559, 2, "595.28"},
                                           {1, 0, "1"},
                                           {0, 2, "0.00"},
                                           {0.5, 3, "0.500"},
                                           {1234567.891, 1, "1234567.9"},
                                           {-3.25, 1, "-3.2"},
                                           {-3.35, 0, "-3"},
                                           {2.5, 0, "2"},
                                           {1e15, 0, "1000000000000000"},
                                           {1.25, -3, "1"},
                                           {1.25, 25, "1.25000000000000000000"}})
        EXPECT_EQ(PlatformFormatNumber(c.value, c.decimals), Localized(c.text));
}

TEST(NumberText, WhatIsWrittenIsRead) {
    for (const double value : {0.0, 1.0, -1.5, 595.28, 1234567.25, 0.125}) {
        double back = 99;
        EXPECT_TRUE(PlatformScanNumber(PlatformFormatNumber(value, 3), back)) << value;
        EXPECT_EQ(back, value);
    }
}

TEST(NumberText, BlanksAroundANumberAreAllowed) {
    for (const char *text : {" 3", "3 ", "  3  ", "\t3", "+3", "3.", "3.0", "3e0"}) {
        double value = 99;
        EXPECT_TRUE(PlatformScanNumber(Localized(text), value)) << text;
        EXPECT_EQ(value, 3) << text;
    }
}

TEST(NumberText, OtherTextIsRefusedAndLeavesTheValueAlone) {
    for (const char *text : {"", " ", "x", "12x", "1 2", "--1", "1.2.3", "1,2,3", "e5", ".", "-",
                             "\xff", "12\xc3\xa9"}) {
        double value = 99;
        EXPECT_FALSE(PlatformScanNumber(text, value)) << text;
        EXPECT_EQ(value, 99) << text;
    }
}

TEST(NumberText, SeparatorOfOtherLanguagesIsRefused) {
    double value = 99;
    const char *other = Separator() == "." ? "1,5" : "1.5";
    EXPECT_FALSE(PlatformScanNumber(other, value));
    EXPECT_EQ(value, 99);
}

TEST(NumberText, EndlessNumbersCanBeWritten) {
    EXPECT_FALSE(PlatformFormatNumber(INFINITY, 2).empty());
    EXPECT_FALSE(PlatformFormatNumber(NAN, 2).empty());
    EXPECT_FALSE(PlatformFormatNumber(1e300, 2).empty());
}
