// Strings: creation from bytes, reading out, substrings, formats, comparison.
#include "tests/platform/CFTest.h"
#include <gtest/gtest.h>
#include <vector>

TEST(String, BytesThatAreNotTextGiveNull) {
    for (const char *bytes : {"\xff\xfe", "\xc3", "\xe2\x82", "a\x80", "\xc0\xaf", "\xed\xa0\x80"})
        EXPECT_EQ(CFStringCreateWithCString(nullptr, bytes, kCFStringEncodingUTF8), nullptr)
            << bytes;
    EXPECT_EQ(CFStringCreateWithCString(nullptr, nullptr, kCFStringEncodingUTF8), nullptr);
    EXPECT_EQ(CFStringCreateWithBytes(nullptr, nullptr, 3, kCFStringEncodingUTF8, false), nullptr);
    EXPECT_EQ(CFStringCreateWithPascalString(nullptr, nullptr, kCFStringEncodingUTF8), nullptr);
}

TEST(String, EveryByteIsTextInLatin1) {
    for (int byte = 1; byte < 256; ++byte) {
        const char text[] = {char(byte), 0};
        const CFRef string(CFStringCreateWithCString(nullptr, text, kCFStringEncodingISOLatin1));
        ASSERT_TRUE(string) << byte;
        EXPECT_EQ(CFStringGetLength(string.Get()), 1);
    }
}

TEST(String, Latin1BytesBecomeTheirCodePoints) {
    const CFRef string(CFStringCreateWithCString(nullptr, "\xe9\xdf", kCFStringEncodingISOLatin1));
    EXPECT_EQ(Text(string), "\xc3\xa9\xc3\x9f");
}

TEST(String, EmptyTextIsAString) {
    const auto empty = Str("");
    ASSERT_TRUE(empty);
    EXPECT_EQ(CFStringGetLength(empty.Get()), 0);
    EXPECT_EQ(Text(empty), "");
}

TEST(String, ZeroBytesAreKept) {
    const UInt8 bytes[] = {'a', 0, 'b'};
    const CFRef string(CFStringCreateWithBytes(nullptr, bytes, 3, kCFStringEncodingUTF8, false));
    EXPECT_EQ(CFStringGetLength(string.Get()), 3);
}

// Only text from outside may begin with a mark that says how it is stored.
TEST(String, ByteOrderMarksAreCharacters) {
    const std::string mark = "\xef\xbb\xbf";
    for (const auto &[bytes, length] :
         std::vector<std::pair<std::string, CFIndex>>{{mark, 1},
                                                      {mark + "abc", 4},
                                                      {mark + mark, 2},
                                                      {mark + mark + "\xc3\xa9", 3},
                                                      {"a" + mark, 2}}) {
        const auto size = static_cast<unsigned char>(bytes.size());
        const std::string pascal = static_cast<char>(size) + bytes;
        for (const CFRef<CFStringRef> &string :
             {CFRef(CFStringCreateWithBytes(nullptr, (const UInt8 *)bytes.data(), size,
                                            kCFStringEncodingUTF8, false)),
              CFRef(CFStringCreateWithPascalString(nullptr, (ConstStr255Param)pascal.data(),
                                                   kCFStringEncodingUTF8)),
              Str(bytes)}) {
            EXPECT_EQ(CFStringGetLength(string.Get()), length) << bytes;
            EXPECT_EQ(Text(string), bytes);
        }
    }
    EXPECT_FALSE(CFEqual(Str(mark).Get(), Str("").Get()));
    EXPECT_EQ(CFStringCreateWithCString(nullptr, (mark + "\xff").c_str(), kCFStringEncodingUTF8),
              nullptr);
}

TEST(String, ByteOrderMarksOfUTF16AreCharacters) {
    const UniChar units[] = {0xfeff, 0xfeff, 'a'};
    const CFRef string(CFStringCreateWithBytes(nullptr, (const UInt8 *)units, sizeof units,
                                               kCFStringEncodingUTF16, false));
    EXPECT_EQ(Text(string), "\xef\xbb\xbf\xef\xbb\xbf"
                            "a");
}

TEST(String, ByteOrderMarkOfTextFromOutsideIsDropped) {
    const CFRef string(CFStringCreateWithBytes(nullptr,
                                               (const UInt8 *)"\xef\xbb\xbf"
                                                              "abc",
                                               6, kCFStringEncodingUTF8, true));
    EXPECT_EQ(Text(string), "abc");
}

TEST(String, CStringNeedsRoomForItsTerminator) {
    const auto string = Str("r\xc3\xa9port");
    char buffer[8] = "?";
    EXPECT_FALSE(CFStringGetCString(string.Get(), buffer, 7, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, "?");
    EXPECT_TRUE(CFStringGetCString(string.Get(), buffer, 8, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, "r\xc3\xa9port");
    const auto kanji = Str("\xe6\x97\xa5");
    EXPECT_FALSE(CFStringGetCString(kanji.Get(), buffer, 8, kCFStringEncodingISOLatin1));
    EXPECT_FALSE(CFStringGetCString(nullptr, buffer, 8, kCFStringEncodingUTF8));
}

TEST(String, MaximumSizeHoldsAnyText) {
    for (const char *text : {"abc", "\xe2\x82\xac\xe2\x82\xac", "\xf0\x9f\x96\xa8", ""}) {
        const auto string = Str(text);
        const CFIndex size = CFStringGetMaximumSizeForEncoding(CFStringGetLength(string.Get()),
                                                               kCFStringEncodingUTF8);
        EXPECT_GE(size_t(size), std::string(text).size()) << text;
    }
}

TEST(String, PascalStringsHoldUpTo255Bytes) {
    Str255 buffer;
    for (const size_t length : {size_t(0), size_t(1), size_t(254), size_t(255)}) {
        const auto string = Str(std::string(length, 'x'));
        ASSERT_TRUE(CFStringGetPascalString(string.Get(), buffer, 256, kCFStringEncodingUTF8));
        EXPECT_EQ(buffer[0], length);
        const CFRef back(CFStringCreateWithPascalString(nullptr, buffer, kCFStringEncodingUTF8));
        EXPECT_TRUE(CFEqual(back.Get(), string.Get()));
    }
    const auto tooLong = Str(std::string(256, 'x'));
    EXPECT_FALSE(CFStringGetPascalString(tooLong.Get(), buffer, 256, kCFStringEncodingUTF8));
    const auto string = Str("abc");
    EXPECT_FALSE(CFStringGetPascalString(string.Get(), buffer, 3, kCFStringEncodingUTF8));
}

TEST(String, PascalStringThatIsNotUTF8GivesNull) {
    const unsigned char bytes[] = {2, 0xff, 0xfe};
    EXPECT_EQ(CFStringCreateWithPascalString(nullptr, bytes, kCFStringEncodingUTF8), nullptr);
}

TEST(String, SubstringOutsideTheStringGivesNull) {
    const auto string = Str("abcdef");
    const auto part = [&](CFIndex location, CFIndex length) {
        return Text(CFRef(
            CFStringCreateWithSubstring(nullptr, string.Get(), CFRangeMake(location, length))));
    };
    EXPECT_EQ(part(1, 3), "bcd");
    EXPECT_EQ(part(0, 6), "abcdef");
    EXPECT_EQ(part(6, 0), "");
    constexpr CFIndex most = 0x7fffffffffffffff;
    for (const auto &[location, length] : std::vector<std::pair<CFIndex, CFIndex>>{
             {0, 7}, {6, 1}, {7, 0}, {-1, 2}, {2, -1}, {1, most}, {most, 1}})
        EXPECT_EQ(part(location, length), "(null)") << location << " " << length;
}

TEST(String, FormatTakesObjectsNumbersAndPadding) {
    const auto name = Str("r\xc3\xa9port");
    const CFRef string(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%@_%02d.%@"), name.Get(),
                                                7, CFSTR("ps")));
    EXPECT_EQ(Text(string), "r\xc3\xa9port_07.ps");
    EXPECT_EQ(CFStringCreateWithFormat(nullptr, nullptr, nullptr), nullptr);
}

TEST(String, ConstantStringsAreEqualByContent) {
    EXPECT_TRUE(CFEqual(CFSTR("caf\xc3\xa9"), Str("caf\xc3\xa9").Get()));
    EXPECT_EQ(CFSTR("same"), CFRetain(CFSTR("same")));
}

struct Comparison {
    const char *a, *b;
    CFStringCompareFlags flags;
    CFComparisonResult result;
};

TEST(StringCompare, FollowsCodeUnitsCaseAndNumbersWhateverTheLocale) {
    constexpr CFComparisonResult less = kCFCompareLessThan, equal = kCFCompareEqualTo;
    const std::vector<Comparison> cases = {
        {"", "", 0, equal},
        {"", "a", 0, less},
        {"a", "ab", 0, less},
        {"B", "a", 0, less},
        {"a", "\xc3\xa9", 0, less},
        {"p10", "p2", 0, less},
        {"EPS", "eps", 0, less},
        {"EPS", "eps", kCFCompareCaseInsensitive, equal},
        {"\xc3\x89PS", "\xc3\xa9ps", kCFCompareCaseInsensitive, equal},
        {"eps", "epsf", kCFCompareCaseInsensitive, less},
        {"p2", "p10", kCFCompareNumerically, less},
        {"p2a", "p2b", kCFCompareNumerically, less},
        {"P2", "p10", kCFCompareNumerically | kCFCompareCaseInsensitive, less},
        {"p002", "p2", kCFCompareNumerically, equal},
        {"0", "00", kCFCompareNumerically, equal},
        {"9", "99999999999999999999999999", kCFCompareNumerically, less},
        {"99999999999999999999999998", "99999999999999999999999999", kCFCompareNumerically, less},
    };
    for (const Comparison &c : cases) {
        const auto a = Str(c.a), b = Str(c.b);
        EXPECT_EQ(CFStringCompare(a.Get(), b.Get(), c.flags), c.result) << c.a << " " << c.b;
        EXPECT_EQ(CFStringCompare(b.Get(), a.Get(), c.flags), -c.result) << c.b << " " << c.a;
    }
}

TEST(String, WrongTypesAreTakenForEmptyStrings) {
    const auto number = Number(7);
    const auto notAString = static_cast<CFStringRef>(static_cast<CFTypeRef>(number.Get()));
    char buffer[8];
    EXPECT_EQ(CFStringGetLength(notAString), 0);
    EXPECT_FALSE(CFStringGetCString(notAString, buffer, 8, kCFStringEncodingUTF8));
}

TEST(Object, TypesAreTold) {
    const auto number = Number(1);
    const auto real = Real(1.5);
    const auto data = Data("x");
    const auto array = Array();
    const auto dictionary = Dictionary();
    const CFRef date(CFDateCreate(nullptr, 0));
    const std::vector<std::pair<CFTypeRef, CFTypeID>> cases = {
        {CFSTR("x"), CFStringGetTypeID()},       {number.Get(), CFNumberGetTypeID()},
        {real.Get(), CFNumberGetTypeID()},       {kCFBooleanTrue, CFBooleanGetTypeID()},
        {kCFBooleanFalse, CFBooleanGetTypeID()}, {data.Get(), CFDataGetTypeID()},
        {array.Get(), CFArrayGetTypeID()},       {dictionary.Get(), CFDictionaryGetTypeID()},
        {date.Get(), CFDateGetTypeID()}};
    for (const auto &[object, type] : cases)
        EXPECT_EQ(CFGetTypeID(object), type);
    EXPECT_NE(CFGetTypeID(nullptr), CFStringGetTypeID());
}

TEST(Object, RetainCountsFollowRetainAndRelease) {
    const auto number = Data("not shared");
    EXPECT_EQ(CFGetRetainCount(number.Get()), 1);
    CFRetain(number.Get());
    EXPECT_EQ(CFGetRetainCount(number.Get()), 2);
    CFRelease(number.Get());
    EXPECT_EQ(CFGetRetainCount(number.Get()), 1);
}

TEST(Object, DescriptionIsShownOnStandardError) {
    testing::internal::CaptureStderr();
    CFShow(CFSTR("NO PPD INFO SET"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "NO PPD INFO SET\n");
    testing::internal::CaptureStderr();
    CFShow(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "(null)\n");
}
