#include "support/DictionaryHelpers.h"
#include "tests/Common/Src/BundleHost.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

namespace {

class DictionaryHelpersTest : public testing::Test {
protected:
    void Set(CFTypeRef value) { CFDictionarySetValue(dictionary.Get(), CFSTR("key"), value); }
    int32_t SInt32(int32_t defaultValue, int32_t minimum, int32_t maximum) {
        return GetSInt32FromDictionaryWithChecking(dictionary.Get(), CFSTR("key"), defaultValue,
                                                   minimum, maximum);
    }
    double Double(double defaultValue, double minimum, double maximum) {
        return GetDoubleFromDictionaryWithChecking(dictionary.Get(), CFSTR("key"), defaultValue,
                                                   minimum, maximum);
    }
    /// What a read into a destination full of '?' leaves in its first `count` bytes.
    std::string Str255Read(const char *defaultString, size_t count) {
        Str255 destination;
        std::memset(destination, '?', sizeof destination);
        GetStr255FromDictionary(dictionary.Get(), CFSTR("key"),
                                reinterpret_cast<ConstStr255Param>(defaultString), destination);
        return {destination, destination + count};
    }

    CFRef<CFMutableDictionaryRef> dictionary = MakeDictionary();
};

TEST_F(DictionaryHelpersTest, NoDictionary_EveryReadIsTheDefault) {
    EXPECT_TRUE(GetBooleanFromDictionary(nullptr, CFSTR("key"), true));
    EXPECT_EQ(GetSInt32FromDictionaryWithChecking(nullptr, CFSTR("key"), 7, 0, 10), 7);
    EXPECT_EQ(GetDoubleFromDictionaryWithChecking(nullptr, CFSTR("key"), 7.5, 0, 10), 7.5);
    Str255 destination = {};
    GetStr255FromDictionary(nullptr, CFSTR("key"),
                            reinterpret_cast<ConstStr255Param>("\x03"
                                                               "abc"),
                            destination);
    EXPECT_EQ(std::memcmp(destination,
                          "\x03"
                          "ab\0",
                          4),
              0);
}

TEST_F(DictionaryHelpersTest, Boolean_OnlyBooleansCount) {
    EXPECT_FALSE(GetBooleanFromDictionary(dictionary.Get(), CFSTR("key"), false));
    EXPECT_TRUE(GetBooleanFromDictionary(dictionary.Get(), CFSTR("key"), true));
    Set(kCFBooleanTrue);
    EXPECT_TRUE(GetBooleanFromDictionary(dictionary.Get(), CFSTR("key"), false));
    Set(kCFBooleanFalse);
    EXPECT_FALSE(GetBooleanFromDictionary(dictionary.Get(), CFSTR("key"), true));
    Set(MakeNumber(int64_t{1}).Get());
    EXPECT_FALSE(GetBooleanFromDictionary(dictionary.Get(), CFSTR("key"), false));
    Set(CFSTR("true"));
    EXPECT_FALSE(GetBooleanFromDictionary(dictionary.Get(), CFSTR("key"), false));
}

TEST_F(DictionaryHelpersTest, SInt32_LimitsAreInclusive) {
    Set(MakeNumber(int64_t{10}).Get());
    EXPECT_EQ(SInt32(-1, 10, 20), 10);
    EXPECT_EQ(SInt32(-1, 0, 10), 10);
    EXPECT_EQ(SInt32(-1, 11, 20), -1);
    EXPECT_EQ(SInt32(-1, 0, 9), -1);
}

TEST_F(DictionaryHelpersTest, SInt32_OtherTypesAndLossyNumbers_AreTheDefault) {
    constexpr int32_t lowest = std::numeric_limits<int32_t>::min();
    constexpr int32_t highest = std::numeric_limits<int32_t>::max();
    EXPECT_EQ(SInt32(5, lowest, highest), 5);
    Set(CFSTR("12"));
    EXPECT_EQ(SInt32(5, lowest, highest), 5);
    Set(kCFBooleanTrue);
    EXPECT_EQ(SInt32(5, lowest, highest), 5);
    Set(MakeNumber(int64_t{1} << 32).Get());
    EXPECT_EQ(SInt32(5, lowest, highest), 5);
    Set(MakeNumber(2.5).Get());
    EXPECT_EQ(SInt32(5, lowest, highest), 5);
    Set(MakeNumber(int64_t{lowest}).Get());
    EXPECT_EQ(SInt32(5, lowest, highest), lowest);
}

TEST_F(DictionaryHelpersTest, Double_LimitsAreInclusiveAndNaNIsOutside) {
    Set(MakeNumber(2.5).Get());
    EXPECT_EQ(Double(-1, 2.5, 3), 2.5);
    EXPECT_EQ(Double(-1, 0, 2.5), 2.5);
    EXPECT_EQ(Double(-1, 2.6, 3), -1);
    Set(MakeNumber(int64_t{3}).Get());
    EXPECT_EQ(Double(-1, 0, 10), 3.0);
    Set(MakeNumber(std::numeric_limits<double>::quiet_NaN()).Get());
    EXPECT_EQ(Double(-1, 0, 10), -1);
    Set(CFSTR("2.5"));
    EXPECT_EQ(Double(-1, 0, 10), -1);
}

TEST_F(DictionaryHelpersTest, Str255_DefaultLosesItsLastCharacter) {
    EXPECT_EQ(Str255Read("\x03"
                         "abc",
                         5),
              "\x03"
              "ab??");
    EXPECT_EQ(Str255Read("\x01"
                         "a",
                         3),
              "\x01??");
}

TEST_F(DictionaryHelpersTest, Str255_EmptyDefault_LeavesTheDestination) {
    EXPECT_EQ(Str255Read("", 4), "????");
}

TEST_F(DictionaryHelpersTest, Str255_LongestDefault) {
    const std::string text = "\xff" + std::string(255, 'd');
    EXPECT_EQ(Str255Read(text.c_str(), 256), text.substr(0, 255) + "?");
}

TEST_F(DictionaryHelpersTest, Str255_String_ReplacesTheDefault) {
    Set(CFSTR("ab"));
    EXPECT_EQ(Str255Read("\x05hello", 7), "\x02"
                                          "abll?"
                                          "?");
    Set(CFSTR(""));
    EXPECT_EQ(Str255Read("", 3), std::string("\0??", 3));
    Set(MakeString("ä").Get());
    EXPECT_EQ(Str255Read("", 4), "\x02\xc3\xa4?");
}

TEST_F(DictionaryHelpersTest, Str255_TooLongOrOfAnotherType_KeepsTheDefault) {
    Set(MakeString(std::string(256, 'x')).Get());
    EXPECT_EQ(Str255Read("\x03"
                         "abc",
                         5),
              "\x03"
              "ab??");
    Set(MakeString(std::string(254, 'x') + "ä").Get());
    EXPECT_EQ(Str255Read("\x03"
                         "abc",
                         5),
              "\x03"
              "ab??")
        << "256 bytes of 255 characters";
    Set(MakeNumber(int64_t{1}).Get());
    EXPECT_EQ(Str255Read("\x03"
                         "abc",
                         5),
              "\x03"
              "ab??");
    Set(MakeString(std::string(255, 'x')).Get());
    EXPECT_EQ(Str255Read("", 256), "\xff" + std::string(255, 'x'));
}

TEST_F(DictionaryHelpersTest, Put_AddsEveryTypeAsItIsReadBack) {
    PutBooleanInDictionary(dictionary.Get(), CFSTR("b"), true);
    PutSInt32InDictionary(dictionary.Get(), CFSTR("i"), -5);
    PutDoubleInDictionary(dictionary.Get(), CFSTR("d"), 0.1);
    PutStr255InDictionary(dictionary.Get(), CFSTR("s"),
                          reinterpret_cast<ConstStr255Param>("\x02"
                                                             "hi"));
    EXPECT_TRUE(GetBooleanFromDictionary(dictionary.Get(), CFSTR("b"), false));
    EXPECT_EQ(GetSInt32FromDictionaryWithChecking(dictionary.Get(), CFSTR("i"), 0, -9, 9), -5);
    EXPECT_EQ(GetDoubleFromDictionaryWithChecking(dictionary.Get(), CFSTR("d"), 0, -9, 9), 0.1);
    EXPECT_TRUE(CFEqual(CFDictionaryGetValue(dictionary.Get(), CFSTR("s")), CFSTR("hi")));
}

TEST_F(DictionaryHelpersTest, Put_KeyPresent_KeepsItsValue) {
    Set(CFSTR("old"));
    PutBooleanInDictionary(dictionary.Get(), CFSTR("key"), true);
    PutSInt32InDictionary(dictionary.Get(), CFSTR("key"), 1);
    PutDoubleInDictionary(dictionary.Get(), CFSTR("key"), 1);
    PutStr255InDictionary(dictionary.Get(), CFSTR("key"),
                          reinterpret_cast<ConstStr255Param>("\x01"
                                                             "n"));
    EXPECT_TRUE(CFEqual(CFDictionaryGetValue(dictionary.Get(), CFSTR("key")), CFSTR("old")));
}

TEST_F(DictionaryHelpersTest, PutStr255_NotUTF8_AddsNothing) {
    PutStr255InDictionary(dictionary.Get(), CFSTR("key"),
                          reinterpret_cast<ConstStr255Param>("\x01\xff"));
    EXPECT_EQ(CFDictionaryGetCount(dictionary.Get()), 0);
}

} // namespace
