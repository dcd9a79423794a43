#include "Common/Src/record/PrintRecordEnvelope.h"
#include "tests/Common/Src/BundleHost.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace {

class EnvelopeTest : public testing::Test {
protected:
    EnvelopeTest() {
        CFDictionarySetValue(list.Get(), CFSTR("name"), CFSTR("value"));
        CFDictionarySetValue(list.Get(), CFSTR("number"), MakeNumber(int64_t{70000}).Get());
        const CFRef<CFMutableDictionaryRef> inner = MakeDictionary();
        CFDictionarySetValue(inner.Get(), CFSTR("flag"), kCFBooleanTrue);
        CFDictionarySetValue(list.Get(), CFSTR("inner"), inner.Get());
    }
    CFRef<CFDataRef> prefix = MakeData("PREFIX");
    CFRef<CFMutableDictionaryRef> list = MakeDictionary();
    RecordHandle handle{Size{3}};
};

TEST_F(EnvelopeTest, Encode_IsThePrefixAndABinaryListToTheEnd) {
    ASSERT_TRUE(EncodeHPrint(handle.Get(), prefix.Get(), list.Get()));
    EXPECT_EQ(handle.Bytes().substr(0, 14), "PREFIXbplist00");
    const CFRef<CFDataRef> bytes(CFPropertyListCreateData(
        kCFAllocatorDefault, list.Get(), kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
    EXPECT_EQ(static_cast<CFIndex>(handle.Bytes().size()), 6 + CFDataGetLength(bytes.Get()));
}

TEST_F(EnvelopeTest, Decode_GivesTheListBackWithMutableContainers) {
    ASSERT_TRUE(EncodeHPrint(handle.Get(), prefix.Get(), list.Get()));
    const CFRef<CFPropertyListRef> decoded = DecodeHPrint(prefix.Get(), handle.Get());
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(CFEqual(decoded.Get(), list.Get()));
    auto dictionary = (CFMutableDictionaryRef)decoded.Get();
    CFDictionarySetValue(dictionary, CFSTR("new"), CFSTR("entry"));
    auto inner = (CFMutableDictionaryRef)CFDictionaryGetValue(dictionary, CFSTR("inner"));
    CFDictionarySetValue(inner, CFSTR("new"), CFSTR("entry"));
    EXPECT_EQ(CFDictionaryGetCount(inner), 2);
}

TEST_F(EnvelopeTest, Encode_Again_ReplacesTheOldContent) {
    ASSERT_TRUE(EncodeHPrint(handle.Get(), prefix.Get(), list.Get()));
    ASSERT_TRUE(EncodeHPrint(handle.Get(), MakeData("P").Get(), MakeDictionary().Get()));
    const CFRef<CFPropertyListRef> decoded = DecodeHPrint(MakeData("P").Get(), handle.Get());
    ASSERT_TRUE(decoded);
    EXPECT_EQ(CFDictionaryGetCount(static_cast<CFDictionaryRef>(decoded.Get())), 0);
}

TEST_F(EnvelopeTest, Encode_NothingToEncode_LeavesTheHandle) {
    const std::string before = handle.Bytes();
    EXPECT_FALSE(EncodeHPrint(handle.Get(), prefix.Get(), nullptr));
    EXPECT_EQ(handle.Bytes(), before);
    EXPECT_FALSE(EncodeHPrint(nullptr, prefix.Get(), list.Get()));
}

TEST_F(EnvelopeTest, Encode_NaN_IsRefused) {
    // It used to ask for 16 GiB.
    const std::string before = handle.Bytes();
    CFDictionarySetValue(list.Get(), CFSTR("number"),
                         MakeNumber(std::numeric_limits<double>::quiet_NaN()).Get());
    EXPECT_FALSE(EncodeHPrint(handle.Get(), prefix.Get(), list.Get()));
    EXPECT_EQ(handle.Bytes(), before);
}

TEST_F(EnvelopeTest, EmptyPrefix_IsAListAlone) {
    const CFRef<CFDataRef> none = MakeData("");
    ASSERT_TRUE(EncodeHPrint(handle.Get(), none.Get(), list.Get()));
    EXPECT_TRUE(DecodeHPrint(none.Get(), handle.Get()));
}

TEST_F(EnvelopeTest, Decode_PrefixAlone_IsNone) {
    EXPECT_FALSE(DecodeHPrint(prefix.Get(), RecordHandle("PREFIX").Get()));
    EXPECT_FALSE(DecodeHPrint(MakeData("").Get(), RecordHandle("").Get()));
    EXPECT_FALSE(DecodeHPrint(MakeData("").Get(), nullptr));
}

TEST_F(EnvelopeTest, Decode_OtherPrefix_IsNone) {
    ASSERT_TRUE(EncodeHPrint(handle.Get(), prefix.Get(), list.Get()));
    for (const char *other : {"PREFIY", "prefix", "PREFIXb", "REFIX"})
        EXPECT_FALSE(DecodeHPrint(MakeData(other).Get(), handle.Get())) << other;
}

TEST_F(EnvelopeTest, Decode_EveryTruncation_IsNoneOrAListNeverACrash) {
    ASSERT_TRUE(EncodeHPrint(handle.Get(), prefix.Get(), list.Get()));
    const std::string bytes = handle.Bytes();
    for (size_t length = 0; length < bytes.size(); ++length)
        EXPECT_FALSE(DecodeHPrint(prefix.Get(), RecordHandle(bytes.substr(0, length)).Get()))
            << length;
}

TEST_F(EnvelopeTest, Decode_DamagedBytes_NeverCrash) {
    ASSERT_TRUE(EncodeHPrint(handle.Get(), prefix.Get(), list.Get()));
    std::mt19937 random(3);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes = handle.Bytes();
        for (int i = 0; i < 3; ++i)
            bytes[6 + random() % (bytes.size() - 6)] = static_cast<char>(random());
        (void)DecodeHPrint(prefix.Get(), RecordHandle(bytes).Get());
    }
}

} // namespace
