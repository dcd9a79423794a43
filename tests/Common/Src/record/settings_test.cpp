// The preferences that only the dialogs read and write, and the user's saved defaults.
#include "Common/Src/record/Preferences.h"
#include "Common/Src/record/PrintRecord.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "support/BigEndian.h"
#include "tests/Common/Src/BundleHost.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

class SettingsTest : public testing::Test {
protected:
    SettingsTest() { ClearPreferences(); }
    ~SettingsTest() override { ClearPreferences(); }
    ScratchFolder folder;
    RecordHandle record;
};

TEST_F(SettingsTest, MeasurementUnits_OnlyTwoToFour) {
    EXPECT_EQ(GetMeasurementUnits(ApplicationID()), 3) << "missing";
    const struct {
        int64_t stored;
        int32_t read;
    } cases[] = {{0, 3}, {1, 3}, {2, 2},  {3, 3},
                 {4, 4}, {5, 3}, {-2, 3}, {(int64_t{1} << 32) + 2, 3}};
    for (const auto &c : cases) {
        SetPreference(CFSTR("MeasurementsUnit"), MakeNumber(c.stored).Get());
        EXPECT_EQ(GetMeasurementUnits(ApplicationID()), c.read) << c.stored;
    }
    SetPreference(CFSTR("MeasurementsUnit"), MakeDictionary().Get());
    EXPECT_EQ(GetMeasurementUnits(ApplicationID()), 3);
}

TEST_F(SettingsTest, MeasurementUnits_TheOtherSpellingIsAnotherKey) {
    SetPreference(CFSTR("MeasurementUnit"), MakeNumber(int64_t{4}).Get());
    EXPECT_EQ(GetMeasurementUnits(ApplicationID()), 3);
    SaveMeasurementUnits(ApplicationID(), 2);
    EXPECT_EQ(GetMeasurementUnits(ApplicationID()), 2);
    const CFRef<CFPropertyListRef> other = CopyPreference(CFSTR("MeasurementUnit"));
    EXPECT_TRUE(CFEqual(other.Get(), MakeNumber(int64_t{4}).Get()));
}

TEST_F(SettingsTest, FileLocation_StoresABookmarkButNotNothing) {
    const CFRef<CFDataRef> bookmark = MakeBookmark(folder.Path());
    SetFileLocationPreference(ApplicationID(), CFSTR("HotFolderBookmark"), bookmark.Get());
    SetFileLocationPreference(ApplicationID(), CFSTR("HotFolderBookmark"), nullptr);
    const CFRef<CFDataRef> read =
        CopyFileLocationPreference(ApplicationID(), CFSTR("HotFolderBookmark"), CFSTR("HotFolder"));
    ASSERT_TRUE(read);
    EXPECT_TRUE(CFEqual(read.Get(), bookmark.Get()));
}

TEST_F(SettingsTest, FileLocation_None) {
    EXPECT_FALSE(CopyPPDFileLocation(ApplicationID()));
}

TEST_F(SettingsTest, FileLocation_BookmarkIsReturnedAsItIs) {
    SavePPDFileLocation(ApplicationID(), MakeData("not a bookmark").Get());
    const CFRef<CFDataRef> read = CopyPPDFileLocation(ApplicationID());
    ASSERT_TRUE(read);
    EXPECT_TRUE(CFEqual(read.Get(), MakeData("not a bookmark").Get()));
}

TEST_F(SettingsTest, FileLocation_LegacyPath_BecomesABookmarkThatIsNotWrittenBack) {
    const std::filesystem::path file = folder.Write("A.ppd", "x");
    SetPreference(CFSTR("PPDFile"), MakeString(file.string()).Get());
    const CFRef<CFDataRef> bookmark = CopyPPDFileLocation(ApplicationID());
    ASSERT_TRUE(bookmark);
    const CFRef<CFURLRef> url(CFURLCreateByResolvingBookmarkData(
        kCFAllocatorDefault, bookmark.Get(), 0, nullptr, nullptr, nullptr, nullptr));
    ASSERT_TRUE(url);
    const CFRef<CFStringRef> path(CFURLCopyFileSystemPath(url.Get(), kCFURLPOSIXPathStyle));
    EXPECT_TRUE(CFEqual(path.Get(), MakeString(file.string()).Get()));
    EXPECT_FALSE(CopyPreference(CFSTR("PPDBookmark")));
}

TEST_F(SettingsTest, FileLocation_BookmarkWinsOverTheLegacyKey) {
    SetPreference(CFSTR("PPDFile"), MakeString(folder.Write("A.ppd", "x").string()).Get());
    SavePPDFileLocation(ApplicationID(), MakeData("B").Get());
    EXPECT_TRUE(CFEqual(CopyPPDFileLocation(ApplicationID()).Get(), MakeData("B").Get()));
}

TEST_F(SettingsTest, SaveDefaults_StoresWhatTheRecordSays) {
    PSHPrint &r = record.Record();
    r.mFlipH_be = 0x100;
    r.mRotated_be = SwapBigEndian(uint32_t{1});
    r.mEPSFormat_be = 1;
    r.mColourSpace_be = SwapBigEndian(uint32_t{2});
    std::memcpy(r.cmykSeparationName, "\x04News", 5);
    SaveDefaults(ApplicationID(), CopyRecord(record.Get()));
    const CFRef<CFMutableDictionaryRef> options = MakeDictionary();
    CFDictionarySetValue(options.Get(), CFSTR("FlipH"), kCFBooleanTrue);
    CFDictionarySetValue(options.Get(), CFSTR("FlipV"), kCFBooleanFalse);
    CFDictionarySetValue(options.Get(), CFSTR("Rotate"), kCFBooleanTrue);
    CFDictionarySetValue(options.Get(), CFSTR("Separation"), CFSTR("News"));
    EXPECT_TRUE(CFEqual(CopyPreference(CFSTR("PageOptions")).Get(), options.Get()));
    EXPECT_TRUE(CFEqual(CopyPreference(CFSTR("FileFormat")).Get(), CFSTR("eps")));
    EXPECT_TRUE(
        CFEqual(CopyPreference(CFSTR("PSColourSpace")).Get(), MakeNumber(int64_t{2}).Get()));
}

TEST_F(SettingsTest, SaveDefaults_ComeBackInTheNextRecord) {
    PSHPrint &r = record.Record();
    r.mFlipV_be = SwapBigEndian(uint32_t{1});
    SaveDefaults(ApplicationID(), CopyRecord(record.Get()));
    Session session;
    RecordHandle next;
    Driver().ZELPrDefaults(session.Get(), next.Get());
    EXPECT_EQ(next.Record().mFlipV_be, SwapBigEndian(uint32_t{1}));
    EXPECT_EQ(next.Record().mFlipH_be, 0U);
    EXPECT_EQ(next.Record().mEPSFormat_be, 0U);
}

TEST_F(SettingsTest, SaveDefaults_SeparationNotUTF8_IsLeftOut) {
    std::memcpy(record.Record().cmykSeparationName, "\x01\xff", 2);
    SaveDefaults(ApplicationID(), CopyRecord(record.Get()));
    const CFRef<CFPropertyListRef> options = CopyPreference(CFSTR("PageOptions"));
    ASSERT_TRUE(options);
    EXPECT_EQ(CFDictionaryGetCount(static_cast<CFDictionaryRef>(options.Get())), 3);
}

} // namespace
