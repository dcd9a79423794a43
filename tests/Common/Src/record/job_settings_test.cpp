// Settings that travel with a job, through ZELPrCopyJobSettings and ZELPrSetJobSettings.
#include "support/BigEndian.h"
#include "tests/Common/Src/BundleHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace {

using testing::ElementsAre;

class JobSettingsTest : public testing::Test {
protected:
    JobSettingsTest() { Driver().ZELPrDefaults(session.Get(), record.Get()); }
    bool Set(CFTypeRef value) {
        return Driver().ZELPrSetJobSettings(session.Get(), record.Get(),
                                            static_cast<CFDictionaryRef>(value)) != 0;
    }
    CFRef<CFDictionaryRef> Copy() {
        return CFRef<CFDictionaryRef>(Driver().ZELPrCopyJobSettings(session.Get(), record.Get()));
    }
    void Put(CFStringRef key, CFTypeRef value) { CFDictionarySetValue(settings.Get(), key, value); }
    int16_t Copies() const { return Int16FromBigEndian(record.Record().copies_be); }

    ScratchFolder folder;
    RecordHandle record;
    Session session;
    CFRef<CFMutableDictionaryRef> settings = MakeDictionary();
};

TEST_F(JobSettingsTest, Copy_HasTheThreeNumbers) {
    record.Record().fromPage_be = Int16ToBigEndian(-2);
    const CFRef<CFDictionaryRef> copy = Copy();
    Put(CFSTR("fromPage"), MakeNumber(int64_t{-2}).Get());
    Put(CFSTR("toPage"), MakeNumber(int64_t{999}).Get());
    Put(CFSTR("copies"), MakeNumber(int64_t{1}).Get());
    EXPECT_TRUE(CFEqual(copy.Get(), settings.Get()));
}

TEST_F(JobSettingsTest, Copy_HasTheHotFolderWhileItExists) {
    EXPECT_TRUE(session.SetHotFolder(record.Get(), folder.Path()));
    EXPECT_EQ(CFDictionaryGetCount(Copy().Get()), 4);
    std::filesystem::remove(folder.Path());
    EXPECT_EQ(CFDictionaryGetCount(Copy().Get()), 3);
}

TEST_F(JobSettingsTest, Copy_CanBeSetInAnotherSession) {
    EXPECT_TRUE(session.SetHotFolder(record.Get(), folder.Path()));
    record.Record().copies_be = Int16ToBigEndian(7);
    const CFRef<CFDictionaryRef> copy = Copy();
    Session other;
    RecordHandle otherRecord;
    Driver().ZELPrDefaults(other.Get(), otherRecord.Get());
    EXPECT_TRUE(Driver().ZELPrSetJobSettings(other.Get(), otherRecord.Get(), copy.Get()));
    EXPECT_EQ(otherRecord.Record().copies_be, Int16ToBigEndian(7));
    EXPECT_EQ(Driver().ZELPrOpenDoc(other.Get()), 0);
    EXPECT_THAT(folder.Names(), ElementsAre("Untitled.ps"));
}

TEST_F(JobSettingsTest, Set_NoDictionary_IsRefused) {
    const std::string before = record.Bytes();
    EXPECT_FALSE(Set(nullptr));
    EXPECT_FALSE(Set(CFSTR("text")));
    EXPECT_FALSE(Set(kCFBooleanTrue));
    EXPECT_FALSE(Set(MakeData("x").Get()));
    EXPECT_EQ(record.Bytes(), before);
}

TEST_F(JobSettingsTest, Set_EmptyDictionary_ChangesNothing) {
    const std::string before = record.Bytes();
    EXPECT_TRUE(Set(settings.Get()));
    EXPECT_EQ(record.Bytes(), before);
}

TEST_F(JobSettingsTest, Set_Numbers_KeepTheirLowSixteenBits) {
    const struct {
        int64_t value;
        int16_t stored;
    } cases[] = {{1, 1},
                 {70000, 4464},
                 {-1, -1},
                 {65535, -1},
                 {65536, 0},
                 {32768, -32768},
                 {std::numeric_limits<int64_t>::max(), -1},
                 {std::numeric_limits<int64_t>::min(), 0}};
    for (const auto &c : cases) {
        Put(CFSTR("copies"), MakeNumber(c.value).Get());
        EXPECT_TRUE(Set(settings.Get()));
        EXPECT_EQ(Copies(), c.stored) << c.value;
    }
}

TEST_F(JobSettingsTest, Set_OtherTypes_ArePassedOverAndTheRestApplied) {
    Put(CFSTR("fromPage"), CFSTR("3"));
    Put(CFSTR("toPage"), MakeNumber(7.0).Get());
    Put(CFSTR("copies"), MakeNumber(int64_t{5}).Get());
    Put(CFSTR("outputFolder"), CFSTR("/tmp"));
    Put(CFSTR("unknown"), kCFBooleanTrue);
    EXPECT_TRUE(Set(settings.Get()));
    EXPECT_EQ(record.Record().fromPage_be, Int16ToBigEndian(1));
    EXPECT_EQ(record.Record().toPage_be, Int16ToBigEndian(999));
    EXPECT_EQ(Copies(), 5);
    Put(CFSTR("copies"), kCFBooleanTrue);
    EXPECT_TRUE(Set(settings.Get()));
    EXPECT_EQ(Copies(), 5) << "a boolean is no number";
}

TEST_F(JobSettingsTest, Set_EachNumberGoesToItsField) {
    Put(CFSTR("fromPage"), MakeNumber(int64_t{0x0102}).Get());
    Put(CFSTR("toPage"), MakeNumber(int64_t{0x0304}).Get());
    Put(CFSTR("copies"), MakeNumber(int64_t{0x0506}).Get());
    EXPECT_TRUE(Set(settings.Get()));
    EXPECT_EQ(record.Bytes().substr(148, 6), "\x05\x06\x01\x02\x03\x04");
}

TEST_F(JobSettingsTest, Set_FolderNotFound_IsRefusedButTheNumbersAreTaken) {
    EXPECT_TRUE(session.SetHotFolder(record.Get(), folder.Path()));
    CFRef<CFDataRef> gone;
    {
        ScratchFolder other;
        gone = MakeBookmark(other.Path());
    }
    for (const CFRef<CFDataRef> &bookmark : {gone, MakeData("damaged"), MakeData("")}) {
        Put(CFSTR("outputFolder"), bookmark.Get());
        Put(CFSTR("copies"), MakeNumber(int64_t{9}).Get());
        record.Record().copies_be = 0;
        EXPECT_FALSE(Set(settings.Get()));
        EXPECT_EQ(Copies(), 9);
    }
    EXPECT_EQ(Driver().ZELPrOpenDoc(session.Get()), 0);
    EXPECT_THAT(folder.Names(), ElementsAre("Untitled.ps")) << "the folder before still holds";
}

TEST_F(JobSettingsTest, Set_RenamedFolder_IsFound) {
    std::filesystem::create_directory(folder.Path() / "hot");
    Put(CFSTR("outputFolder"), MakeBookmark(folder.Path() / "hot").Get());
    std::filesystem::rename(folder.Path() / "hot", folder.Path() / "renamed");
    EXPECT_TRUE(Set(settings.Get()));
    EXPECT_EQ(Driver().ZELPrOpenDoc(session.Get()), 0);
    EXPECT_TRUE(std::filesystem::exists(folder.Path() / "renamed" / "Untitled.ps"));
}

TEST_F(JobSettingsTest, ShortHandle_IsRefusedUntouched) {
    Put(CFSTR("copies"), MakeNumber(int64_t{9}).Get());
    for (Size size : {0, 1, 150, 415}) {
        RecordHandle handle(std::string(static_cast<size_t>(size), 'x'));
        EXPECT_FALSE(Driver().ZELPrSetJobSettings(session.Get(), handle.Get(), settings.Get()));
        EXPECT_EQ(handle.Bytes(), std::string(static_cast<size_t>(size), 'x'));
        EXPECT_EQ(Driver().ZELPrCopyJobSettings(session.Get(), handle.Get()), nullptr);
    }
    EXPECT_FALSE(Driver().ZELPrSetJobSettings(session.Get(), nullptr, settings.Get()));
}

} // namespace
