// Property lists: types kept on the way through both formats, and data that cannot be trusted.
#include "tests/platform/CFTest.h"
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace {

CFRef<CFDataRef> Write(CFPropertyListRef list, CFPropertyListFormat format) {
    return CFRef(CFPropertyListCreateData(nullptr, list, format, 0, nullptr));
}

CFRef<CFPropertyListRef> Read(const std::string &bytes,
                              CFOptionFlags options = kCFPropertyListMutableContainers) {
    return CFRef(
        CFPropertyListCreateWithData(nullptr, Data(bytes).Get(), options, nullptr, nullptr));
}

CFDictionaryRef AsDictionary(const CFRef<CFPropertyListRef> &list) {
    return static_cast<CFDictionaryRef>(list.Get());
}

/// A dictionary with a value of every type.
CFRef<CFMutableDictionaryRef> Sample() {
    auto dictionary = Dictionary();
    const auto set = [&](const char *key, CFTypeRef value) {
        CFDictionarySetValue(dictionary.Get(), Str(key).Get(), value);
    };
    for (const SInt64 number : {SInt64(0), SInt64(1), SInt64(-7), SInt64(200), SInt64(70000),
                                SInt64(-70000), INT64_MAX, INT64_MIN})
        set(("int " + std::to_string(number)).c_str(), Number(number).Get());
    set("real", Real(0.1).Get());
    set("whole real", Real(2).Get());
    set("true", kCFBooleanTrue);
    set("false", kCFBooleanFalse);
    set("text", CFSTR("caf\xc3\xa9"));
    set("empty", CFSTR(""));
    set("kanji", CFSTR("\xe6\x97\xa5\xe6\x9c\xac"));
    set("long text", Str(std::string(3000, 'x')).Get());
    set("data", Data(std::string("\0\xff", 2)).Get());
    set("long data", Data(std::string(300, 'd')).Get());
    const CFRef date(CFDateCreate(nullptr, 721656000));
    set("date", date.Get());
    const auto array = Array();
    for (int i = 0; i < 20; ++i)
        CFArrayAppendValue(array.Get(), Number(i).Get());
    set("array", array.Get());
    const auto inner = Dictionary();
    CFDictionarySetValue(inner.Get(), CFSTR("FlipH"), kCFBooleanTrue);
    set("dictionary", inner.Get());
    return dictionary;
}

std::string BigEndian(uint64_t value, size_t size) {
    std::string bytes;
    for (size_t i = size; i-- > 0;)
        bytes += i < 8 ? char(value >> (8 * i)) : char(0);
    return bytes;
}

/// A binary property list put together by hand.
struct Binary {
    std::vector<std::string> objects;
    uint64_t top = 0;
    size_t offsetSize = 4, referenceSize = 4;

    [[nodiscard]] std::string Make() const {
        std::string bytes = "bplist00", table;
        for (const std::string &object : objects) {
            table += BigEndian(bytes.size(), offsetSize);
            bytes += object;
        }
        const size_t tableAt = bytes.size();
        return bytes + table + std::string(6, '\0') + char(offsetSize) + char(referenceSize) +
               BigEndian(objects.size(), 8) + BigEndian(top, 8) + BigEndian(tableAt, 8);
    }
};

std::string ArrayOf(const std::vector<uint64_t> &references) {
    std::string object = "\xaf\x12" + BigEndian(references.size(), 4);
    for (const uint64_t reference : references)
        object += BigEndian(reference, 4);
    return object;
}

/// Arrays within each other, `depth` of them.
std::string Nested(int depth) {
    Binary list;
    for (int i = 0; i + 1 < depth; ++i)
        list.objects.push_back(ArrayOf({uint64_t(i) + 1}));
    list.objects.push_back(ArrayOf({}));
    return list.Make();
}

} // namespace

TEST(PropertyList, TypesAndValuesSurviveBothFormats) {
    const auto sample = Sample();
    for (const CFPropertyListFormat format :
         {kCFPropertyListBinaryFormat_v1_0, kCFPropertyListXMLFormat_v1_0}) {
        const auto back = Read(Bytes(Write(sample.Get(), format).Get()));
        ASSERT_TRUE(back) << format;
        EXPECT_TRUE(CFEqual(back.Get(), sample.Get())) << format;
        const auto value = [&](const char *key) {
            return CFDictionaryGetValue(AsDictionary(back), Str(key).Get());
        };
        EXPECT_EQ(Integer(value("int -7")), -7) << format;
        EXPECT_EQ(Integer(value("int -9223372036854775808")), INT64_MIN) << format;
        EXPECT_EQ(CFGetTypeID(value("true")), CFBooleanGetTypeID());
        EXPECT_EQ(CFGetTypeID(value("int 1")), CFNumberGetTypeID());
        EXPECT_EQ(CFGetTypeID(value("int 0")), CFNumberGetTypeID());
        EXPECT_EQ(CFGetTypeID(value("date")), CFDateGetTypeID());
        EXPECT_TRUE(CFNumberIsFloatType(static_cast<CFNumberRef>(value("real"))));
    }
}

TEST(PropertyList, TextBeyond16BitsSurvivesTheBinaryFormat) {
    const auto text = Str("\xf0\x9f\x96\xa8 caf\xc3\xa9");
    const auto back = Read(Bytes(Write(text.Get(), kCFPropertyListBinaryFormat_v1_0).Get()));
    EXPECT_EQ(Text(static_cast<CFStringRef>(back.Get())), "\xf0\x9f\x96\xa8 caf\xc3\xa9");
}

TEST(PropertyList, BooleansAndEqualNumbersAreNotMixedUp) {
    for (const bool booleanFirst : {true, false}) {
        const auto array = Array();
        CFArrayAppendValue(array.Get(), booleanFirst ? CFTypeRef(kCFBooleanTrue) : Number(1).Get());
        CFArrayAppendValue(array.Get(), booleanFirst ? CFTypeRef(Number(1).Get()) : kCFBooleanTrue);
        CFArrayAppendValue(array.Get(), Real(1).Get());
        const auto back = Read(Bytes(Write(array.Get(), kCFPropertyListBinaryFormat_v1_0).Get()));
        ASSERT_TRUE(back);
        const auto type = [&](CFIndex i) {
            return CFGetTypeID(CFArrayGetValueAtIndex(static_cast<CFArrayRef>(back.Get()), i));
        };
        EXPECT_EQ(type(0), booleanFirst ? CFBooleanGetTypeID() : CFNumberGetTypeID());
        EXPECT_EQ(type(1), booleanFirst ? CFNumberGetTypeID() : CFBooleanGetTypeID());
        EXPECT_EQ(type(2), CFNumberGetTypeID());
    }
}

TEST(PropertyList, FormatsAreToldAndContainersAreMutable) {
    const auto sample = Sample();
    for (const CFPropertyListFormat format :
         {kCFPropertyListBinaryFormat_v1_0, kCFPropertyListXMLFormat_v1_0}) {
        CFPropertyListFormat found = 0;
        const auto data = Write(sample.Get(), format);
        const CFRef back(CFPropertyListCreateWithData(
            nullptr, data.Get(), kCFPropertyListMutableContainers, &found, nullptr));
        EXPECT_EQ(found, format);
        const auto inner = CFDictionaryGetValue(AsDictionary(back), CFSTR("dictionary"));
        const auto changed = static_cast<CFMutableDictionaryRef>(const_cast<void *>(inner));
        CFDictionarySetValue(changed, CFSTR("more"), CFSTR("x"));
        EXPECT_EQ(CFDictionaryGetCount(changed), 2);
    }
}

TEST(PropertyList, ObjectsThatAreNoneAreNotWritten) {
    const auto dictionary = Dictionary();
    CFDictionarySetValue(dictionary.Get(), CFSTR("url"), FileURL("/tmp").Get());
    const auto numbered = Dictionary();
    CFDictionarySetValue(numbered.Get(), Number(1).Get(), CFSTR("x"));
    for (const CFPropertyListFormat format :
         {kCFPropertyListBinaryFormat_v1_0, kCFPropertyListXMLFormat_v1_0}) {
        EXPECT_FALSE(Write(dictionary.Get(), format));
        EXPECT_FALSE(Write(FileURL("/tmp").Get(), format));
        EXPECT_FALSE(Write(numbered.Get(), format));
        EXPECT_FALSE(Write(nullptr, format));
    }
}

TEST(PropertyList, ErrorIsAlwaysSetToNull) {
    auto error = reinterpret_cast<CFErrorRef>(1);
    CFPropertyListCreateWithData(nullptr, nullptr, 0, nullptr, &error);
    EXPECT_EQ(error, nullptr);
    error = reinterpret_cast<CFErrorRef>(1);
    CFPropertyListCreateData(nullptr, nullptr, kCFPropertyListBinaryFormat_v1_0, 0, &error);
    EXPECT_EQ(error, nullptr);
}

TEST(PropertyList, TruncatedDataAreRefused) {
    const auto small = Dictionary();
    CFDictionarySetValue(small.Get(), CFSTR("copies"), Number(3).Get());
    CFDictionarySetValue(small.Get(), CFSTR("name"), CFSTR("caf\xc3\xa9"));
    for (const CFPropertyListFormat format :
         {kCFPropertyListBinaryFormat_v1_0, kCFPropertyListXMLFormat_v1_0}) {
        const std::string whole = Bytes(Write(small.Get(), format).Get());
        const size_t end = whole.find_last_not_of('\n') + 1;
        for (size_t length = 0; length < end; ++length)
            EXPECT_FALSE(Read(whole.substr(0, length))) << format << " " << length;
    }
}

TEST(PropertyList, BinaryDataWithAnyByteChangedAreReadOrRefused) {
    const std::string whole = Bytes(Write(Sample().Get(), kCFPropertyListBinaryFormat_v1_0).Get());
    const size_t text = whole.find(std::string(1000, 'x'));
    size_t refused = 0;
    for (size_t i = 0; i < whole.size(); ++i) {
        if (i > text && i < text + 2900) continue; // one byte of the long text is like another
        for (const int change : {0x01, 0x80, 0xff}) {
            std::string damaged = whole;
            damaged[i] = char(damaged[i] ^ change);
            refused += Read(damaged) ? 0 : 1;
        }
    }
    EXPECT_GT(refused, 0u);
}

TEST(PropertyList, OtherDataAreRefused) {
    for (const std::string &bytes :
         {std::string(), std::string(1, '\0'), std::string("x"), std::string("{ a = 1; }"),
          std::string("bplist00"), std::string("bplist00") + std::string(40, '\0'),
          std::string("bplist00") + std::string(40, '\xff'), std::string("<?xml"),
          std::string("<?xml?>"), std::string("<plist><dict><key>a</key></plist>"),
          std::string("<plist></array></plist>"), std::string(100000, '('),
          std::string(100000, '<')})
        EXPECT_FALSE(Read(bytes)) << bytes.substr(0, 40);
    EXPECT_EQ(CFPropertyListCreateWithData(nullptr, nullptr, 0, nullptr, nullptr), nullptr);
}

TEST(PropertyList, NestingIsLimited) {
    EXPECT_TRUE(Read(Nested(100)));
    EXPECT_FALSE(Read(Nested(200)));
    EXPECT_FALSE(Read(Nested(100000)));
}

TEST(PropertyList, NestingOfXMLIsLimitedHoweverItIsHidden) {
    const auto xml = [](const std::string &open, const std::string &close, int depth) {
        std::string text = "<?xml version=\"1.0\"?><plist version=\"1.0\">";
        for (int i = 0; i < depth; ++i)
            text += open;
        for (int i = 0; i < depth; ++i)
            text += close;
        return text + "</plist>";
    };
    EXPECT_TRUE(Read(xml("<array>", "</array>", 50)));
    for (const char *open : {"<array>", "<array><!--</array>-->", "<array><![CDATA[</array>]]>",
                             "<array a=\"/>\">", "<array a='x' >", "<array><?x </array>?>"})
        EXPECT_FALSE(Read(xml(open, "</array>", 100000))) << open;
    EXPECT_FALSE(Read("<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY a \"<array>\">]>"
                      "<plist><string>x</string></plist>"));
}

TEST(PropertyList, ContainersWithinThemselvesAreRefused) {
    EXPECT_FALSE(Read(Binary{{ArrayOf({0})}}.Make()));
    EXPECT_FALSE(Read(Binary{{ArrayOf({1}), ArrayOf({0})}}.Make()));
    EXPECT_FALSE(
        Read(Binary{{std::string("\xd1") + BigEndian(1, 4) + BigEndian(0, 4), std::string("\x51k")}}
                 .Make()));
}

TEST(PropertyList, SharedObjectsAreReadForEachUseUpToALimit) {
    Binary doubling;
    for (uint64_t i = 0; i < 10; ++i)
        doubling.objects.push_back(ArrayOf({i + 1, i + 1}));
    doubling.objects.push_back(std::string("\x51x"));
    EXPECT_TRUE(Read(doubling.Make()));
    doubling.objects.clear();
    for (uint64_t i = 0; i < 60; ++i)
        doubling.objects.push_back(ArrayOf({i + 1, i + 1}));
    doubling.objects.push_back(std::string("\x51x"));
    EXPECT_FALSE(Read(doubling.Make()));
}

TEST(PropertyList, TopObjectNeedNotBeTheFirst) {
    const auto text = Read(Binary{{"\x51"
                                   "a",
                                   "\x51"
                                   "b"},
                                  1}
                               .Make());
    EXPECT_EQ(Text(static_cast<CFStringRef>(text.Get())), "b");
    EXPECT_FALSE(Read(Binary{{"\x51"
                              "a",
                              "\x51"
                              "b"},
                             2}
                          .Make()));
}

TEST(PropertyList, SizesOfObjectsAreChecked) {
    const std::string huge = BigEndian(uint64_t(1) << 62, 8);
    const std::vector<std::string> objects = {
        "\x4f\x13" + huge, // data
        "\x5f\x13" + huge, // text
        "\x6f\x13" + huge, // UTF-16 text
        "\xaf\x13" + huge, // array
        "\xdf\x13" + huge, // dictionary
        "\x4f\x13" + BigEndian(~uint64_t(0), 8),
        "\x6f\x13" + BigEndian(uint64_t(1) << 63, 8),
        "\x5f\x22" + std::string(4, '\0'), // a count that is no integer
        "\x5f",                            // a count that is not there
        "\x14" + std::string(16, '\1'),    // an integer of 128 bits
        "\x15" + std::string(32, '\1'),
        "\x1f",
        "\x24" + std::string(16, '\1'),
        "\x32" + std::string(4, '\1'),
        "\x80\x01",               // a reference of an archive
        "\xc1" + BigEndian(0, 4), // a set
        "\x00",
        "\x70",
        "\xf0",
        "\x61" + BigEndian(0xd800, 2),     // half a pair
        "\x62" + BigEndian(0xdc00d800, 4), // a pair the wrong way round
        "\x52\xff\xfe"};
    for (const std::string &object : objects)
        EXPECT_FALSE(Read(Binary{{object}}.Make())) << testing::PrintToString(object);
}

TEST(PropertyList, TablesOfEverySizeAreRead) {
    for (size_t size = 1; size <= 8; ++size) {
        Binary list{{"\x51"
                     "a"},
                    0,
                    size,
                    1};
        EXPECT_TRUE(Read(list.Make())) << size;
        list.offsetSize = 2;
        list.referenceSize = size;
        list.objects = {"\xa1" + BigEndian(1, size), "\x51"
                                                     "a"};
        EXPECT_TRUE(Read(list.Make())) << size;
    }
    EXPECT_FALSE(Read(Binary{{"\x51"
                              "a"},
                             0,
                             9,
                             1}
                          .Make()));
    EXPECT_FALSE(Read(Binary{{"\x51"
                              "a"},
                             0,
                             0,
                             1}
                          .Make()));
    EXPECT_FALSE(Read(Binary{{"\x51"
                              "a"},
                             0,
                             1,
                             0}
                          .Make()));
}

TEST(PropertyList, DictionaryKeysMustBeText) {
    EXPECT_FALSE(
        Read(Binary{{std::string("\xd1") + BigEndian(1, 4) + BigEndian(1, 4), "\x10\x05"}}.Make()));
}

TEST(PropertyList, NumbersWithoutAValueAreNeitherReadNorWritten) {
    const struct {
        double value;
        std::string bits, text;
    } numbers[] = {
        {NAN, "\x7f\xf8", "nan"}, {INFINITY, "\x7f\xf0", "inf"}, {-INFINITY, "\xff\xf0", "-inf"}};
    for (const auto &number : numbers) {
        Binary list;
        list.objects = {ArrayOf({1}), "\x23" + number.bits + std::string(6, '\0')};
        EXPECT_FALSE(Read(list.Make())) << number.text;
        EXPECT_FALSE(Read("<?xml version=\"1.0\"?><plist version=\"1.0\"><array><real>" +
                          number.text + "</real></array></plist>"))
            << number.text;
        const auto array = Array();
        CFArrayAppendValue(array.Get(), Real(number.value).Get());
        for (const CFPropertyListFormat format :
             {kCFPropertyListBinaryFormat_v1_0, kCFPropertyListXMLFormat_v1_0})
            EXPECT_FALSE(Write(array.Get(), format)) << number.text;
    }
}

TEST(PropertyList, SharedDataTakeTheirMemoryOnce) {
    Binary list;
    list.objects = {ArrayOf(std::vector<uint64_t>(60000, 1)),
                    "\x4f\x12" + BigEndian(1 << 20, 4) + std::string(1 << 20, 'd')};
    const auto read = Read(list.Make());
    ASSERT_TRUE(read);
    const auto *array = static_cast<CFArrayRef>(read.Get());
    ASSERT_EQ(CFArrayGetCount(array), 60000);
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 0), CFArrayGetValueAtIndex(array, 59999));
}

TEST(PropertyList, DataThatLieOverEachOtherAreRefused) {
    // Sixteen objects, each of which claims all the bytes behind it.
    constexpr size_t size = 1 << 16;
    std::string bytes = "bplist00", table;
    std::vector<uint64_t> references;
    for (size_t i = 0; i < 16; ++i) {
        table += BigEndian(bytes.size(), 4);
        references.push_back(i);
        bytes += "\x4f\x12" + BigEndian(size, 4);
    }
    bytes += std::string(size + 100, 'd');
    table += BigEndian(bytes.size(), 4);
    bytes += ArrayOf(references);
    const size_t tableAt = bytes.size();
    EXPECT_FALSE(Read(bytes + table + std::string(6, '\0') + "\x04\x04" + BigEndian(17, 8) +
                      BigEndian(16, 8) + BigEndian(tableAt, 8)));
}
