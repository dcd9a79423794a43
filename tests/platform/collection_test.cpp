// Arrays and dictionaries: what is kept, and what is refused without an exception.
#include "tests/platform/CFTest.h"
#include <gtest/gtest.h>
#include <vector>

TEST(Array, KeepsItsValuesInOrderAndAlive) {
    const auto array = Array();
    for (int i = 0; i < 3; ++i)
        CFArrayAppendValue(array.Get(), Number(i).Get());
    ASSERT_EQ(CFArrayGetCount(array.Get()), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(Integer(CFArrayGetValueAtIndex(array.Get(), i)), i);
}

TEST(Array, IndexesOutsideGiveNull) {
    const auto array = Array();
    CFArrayAppendValue(array.Get(), CFSTR("x"));
    for (const CFIndex index : {CFIndex(1), CFIndex(-1), CFIndex(1) << 62})
        EXPECT_EQ(CFArrayGetValueAtIndex(array.Get(), index), nullptr);
    EXPECT_EQ(CFArrayGetCount(nullptr), 0);
    EXPECT_EQ(CFArrayGetValueAtIndex(nullptr, 0), nullptr);
}

TEST(Array, NullIsNotAdded) {
    const auto array = Array();
    CFArrayAppendValue(array.Get(), nullptr);
    EXPECT_EQ(CFArrayGetCount(array.Get()), 0);
}

static CFComparisonResult ByNumber(const void *a, const void *b, void *context) {
    ++*static_cast<int *>(context);
    const SInt64 x = Integer(a), y = Integer(b);
    return x < y ? kCFCompareLessThan : x > y ? kCFCompareGreaterThan : kCFCompareEqualTo;
}

static std::vector<SInt64> Sorted(std::vector<SInt64> numbers, CFRange range) {
    const auto array = Array();
    for (const SInt64 number : numbers)
        CFArrayAppendValue(array.Get(), Number(number).Get());
    int calls = 0;
    CFArraySortValues(array.Get(), range, ByNumber, &calls);
    for (size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = Integer(CFArrayGetValueAtIndex(array.Get(), CFIndex(i)));
    return numbers;
}

TEST(Array, SortsTheRangeOnly) {
    using Numbers = std::vector<SInt64>;
    EXPECT_EQ(Sorted({3, 1, 2}, CFRangeMake(0, 3)), (Numbers{1, 2, 3}));
    EXPECT_EQ(Sorted({9, 3, 1, 2, 0}, CFRangeMake(1, 3)), (Numbers{9, 1, 2, 3, 0}));
    EXPECT_EQ(Sorted({}, CFRangeMake(0, 0)), Numbers{});
    EXPECT_EQ(Sorted({2, 1}, CFRangeMake(0, 3)), (Numbers{2, 1}));
    EXPECT_EQ(Sorted({2, 1}, CFRangeMake(-1, 2)), (Numbers{2, 1}));
}

TEST(Dictionary, AddingKeepsAndSettingReplaces) {
    const auto dictionary = Dictionary();
    const auto get = [&] {
        return Text(CFStringRef(CFDictionaryGetValue(dictionary.Get(), CFSTR("k"))));
    };
    CFDictionaryAddValue(dictionary.Get(), CFSTR("k"), CFSTR("first"));
    CFDictionaryAddValue(dictionary.Get(), CFSTR("k"), CFSTR("second"));
    EXPECT_EQ(get(), "first");
    CFDictionarySetValue(dictionary.Get(), CFSTR("k"), CFSTR("third"));
    EXPECT_EQ(get(), "third");
    EXPECT_EQ(CFDictionaryGetCount(dictionary.Get()), 1);
}

TEST(Dictionary, MissingKeysLeaveTheOutputAlone) {
    const auto dictionary = Dictionary();
    const void *value = CFSTR("untouched");
    EXPECT_FALSE(CFDictionaryGetValueIfPresent(dictionary.Get(), CFSTR("k"), &value));
    EXPECT_EQ(value, CFSTR("untouched"));
    CFDictionarySetValue(dictionary.Get(), CFSTR("k"), kCFBooleanTrue);
    EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary.Get(), CFSTR("k"), &value));
    EXPECT_EQ(value, kCFBooleanTrue);
    EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary.Get(), CFSTR("k"), nullptr));
}

TEST(Dictionary, NullKeysValuesAndDictionariesDoNothing) {
    const auto dictionary = Dictionary();
    CFDictionarySetValue(dictionary.Get(), nullptr, CFSTR("v"));
    CFDictionarySetValue(dictionary.Get(), CFSTR("k"), nullptr);
    CFDictionaryAddValue(dictionary.Get(), CFSTR("k"), nullptr);
    EXPECT_EQ(CFDictionaryGetCount(dictionary.Get()), 0);
    EXPECT_EQ(CFDictionaryGetValue(dictionary.Get(), nullptr), nullptr);
    EXPECT_EQ(CFDictionaryGetValue(nullptr, CFSTR("k")), nullptr);
    EXPECT_EQ(CFDictionaryGetCount(nullptr), 0);
}

TEST(Dictionary, WrongTypesAreTakenForEmptyCollections) {
    const auto text = static_cast<CFTypeRef>(CFSTR("text"));
    EXPECT_EQ(CFDictionaryGetValue(static_cast<CFDictionaryRef>(text), CFSTR("k")), nullptr);
    EXPECT_EQ(CFArrayGetCount(static_cast<CFArrayRef>(text)), 0);
    EXPECT_EQ(CFDataGetLength(static_cast<CFDataRef>(text)), 0);
    EXPECT_EQ(CFDataGetBytePtr(static_cast<CFDataRef>(text)), nullptr);
}

TEST(Data, BytesComeBack) {
    const auto data = Data(std::string("a\0b\xff", 4));
    EXPECT_EQ(Bytes(data.Get()), std::string("a\0b\xff", 4));
    EXPECT_EQ(CFDataGetLength(Data("").Get()), 0);
    EXPECT_EQ(CFDataCreate(nullptr, nullptr, 3), nullptr);
    EXPECT_EQ(CFDataCreate(nullptr, nullptr, -1), nullptr);
}
