// Numbers and booleans: types, conversions, what is lost in them.
#include "tests/platform/CFTest.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

template <class T>
struct Stored {
    bool exact;
    T value;
};

template <class T>
Stored<T> Get(CFNumberRef number, CFNumberType type) {
    T value{};
    const bool exact = CFNumberGetValue(number, type, &value) != 0;
    return {exact, value};
}

TEST(Number, ValuesOfEveryTypeComeBack) {
    const SInt8 small = -5;
    const SInt16 half = -30000;
    const SInt32 word = -2000000000;
    const SInt64 wide = std::numeric_limits<SInt64>::min();
    const float narrow = 1.5F;
    const CFRef a(CFNumberCreate(nullptr, kCFNumberSInt8Type, &small));
    const CFRef b(CFNumberCreate(nullptr, kCFNumberSInt16Type, &half));
    const CFRef c(CFNumberCreate(nullptr, kCFNumberSInt32Type, &word));
    const CFRef d(CFNumberCreate(nullptr, kCFNumberSInt64Type, &wide));
    const CFRef e(CFNumberCreate(nullptr, kCFNumberFloat32Type, &narrow));
    EXPECT_EQ(Get<SInt8>(a.Get(), kCFNumberSInt8Type).value, small);
    EXPECT_EQ(Get<SInt16>(b.Get(), kCFNumberShortType).value, half);
    EXPECT_EQ(Get<SInt32>(c.Get(), kCFNumberIntType).value, word);
    EXPECT_EQ(Get<SInt64>(d.Get(), kCFNumberCFIndexType).value, wide);
    EXPECT_EQ(Get<float>(e.Get(), kCFNumberFloatType).value, narrow);
    EXPECT_FALSE(CFNumberIsFloatType(a.Get()));
    EXPECT_TRUE(CFNumberIsFloatType(e.Get()));
}

TEST(Number, ZeroAndOneAreNotBooleans) {
    const SInt8 one = 1;
    const CFRef number(CFNumberCreate(nullptr, kCFNumberCharType, &one));
    EXPECT_EQ(CFGetTypeID(number.Get()), CFNumberGetTypeID());
    EXPECT_EQ(CFGetTypeID(Number(0).Get()), CFNumberGetTypeID());
}

TEST(Number, LossyConversionsAreReportedAndStoreTheNearestValue) {
    const auto big = Number(70000);
    EXPECT_FALSE(Get<SInt16>(big.Get(), kCFNumberSInt16Type).exact);
    EXPECT_EQ(Get<SInt16>(big.Get(), kCFNumberSInt16Type).value, 32767);
    const auto half = Real(2.5);
    EXPECT_FALSE(Get<SInt32>(half.Get(), kCFNumberSInt32Type).exact);
    EXPECT_EQ(Get<SInt32>(half.Get(), kCFNumberSInt32Type).value, 2);
    EXPECT_TRUE(Get<SInt32>(Real(3).Get(), kCFNumberSInt32Type).exact);
    EXPECT_TRUE(Get<double>(big.Get(), kCFNumberDoubleType).exact);
    EXPECT_FALSE(Get<float>(Real(0.1).Get(), kCFNumberFloatType).exact);
}

TEST(Number, DoublesWithoutAnIntegerAreClipped) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const auto integer = [](double value) {
        const auto stored = Get<SInt64>(Real(value).Get(), kCFNumberSInt64Type);
        EXPECT_FALSE(stored.exact) << value;
        return stored.value;
    };
    EXPECT_EQ(integer(std::nan("")), 0);
    EXPECT_EQ(integer(infinity), std::numeric_limits<SInt64>::max());
    EXPECT_EQ(integer(-infinity), std::numeric_limits<SInt64>::min());
    EXPECT_EQ(integer(9223372036854775808.0), std::numeric_limits<SInt64>::max());
    EXPECT_TRUE(std::isnan(Get<double>(Real(std::nan("")).Get(), kCFNumberDoubleType).value));
}

TEST(Number, UnknownTypesAndWrongObjectsAreRefused) {
    const int value = 1;
    int out = 77;
    EXPECT_EQ(CFNumberCreate(nullptr, 99, &value), nullptr);
    EXPECT_FALSE(CFNumberGetValue(Number(1).Get(), 99, &out));
    const auto text = static_cast<CFTypeRef>(CFSTR("1"));
    EXPECT_FALSE(CFNumberGetValue(static_cast<CFNumberRef>(text), kCFNumberIntType, &out));
    EXPECT_EQ(out, 77);
    EXPECT_FALSE(CFNumberIsFloatType(nullptr));
}

TEST(Boolean, ConstantsHaveTheirValues) {
    EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
    EXPECT_FALSE(CFBooleanGetValue(kCFBooleanFalse));
    EXPECT_FALSE(CFBooleanGetValue(nullptr));
    EXPECT_FALSE(CFEqual(kCFBooleanTrue, kCFBooleanFalse));
}
