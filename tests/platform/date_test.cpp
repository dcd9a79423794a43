// Dates as the user's locale writes them.
#include "tests/platform/CFTest.h"
#include <cmath>
#include <gtest/gtest.h>

static std::string Format(CFDateFormatterStyle date, CFDateFormatterStyle time, CFAbsoluteTime at) {
    const CFRef locale(CFLocaleCopyCurrent());
    const CFRef formatter(CFDateFormatterCreate(nullptr, locale.Get(), date, time));
    return Text(CFRef(CFDateFormatterCreateStringWithAbsoluteTime(nullptr, formatter.Get(), at)));
}

// 2023-11-14 12:00:00 UTC: the same day everywhere but on the date line.
static constexpr CFAbsoluteTime kNoon = 721656000;

TEST(Date, NoNumberIsNoDate) {
    EXPECT_FALSE(CFRef(CFDateCreate(nullptr, std::nan(""))));
}

TEST(DateFormatter, WritesDateAndTime) {
    const std::string text =
        Format(kCFDateFormatterMediumStyle, kCFDateFormatterMediumStyle, kNoon);
    EXPECT_NE(text.find("2023"), std::string::npos) << text;
    EXPECT_NE(text.find("14"), std::string::npos) << text;
    EXPECT_NE(text.find(":00"), std::string::npos) << text;
}

TEST(DateFormatter, WritesTheDateAlone) {
    const std::string text = Format(kCFDateFormatterMediumStyle, kCFDateFormatterNoStyle, kNoon);
    EXPECT_NE(text.find("2023"), std::string::npos) << text;
    EXPECT_EQ(text.find(':'), std::string::npos) << text;
}

TEST(DateFormatter, WithoutFormatterThereIsNoText) {
    EXPECT_EQ(CFDateFormatterCreateStringWithAbsoluteTime(nullptr, nullptr, 0), nullptr);
}

TEST(Date, TimeIsCountedFromTheYear2001) {
    // Between 2025 and 2100.
    EXPECT_GT(CFAbsoluteTimeGetCurrent(), 757382400.0);
    EXPECT_LT(CFAbsoluteTimeGetCurrent(), 3124224000.0);
}
