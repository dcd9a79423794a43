#import "tests/dialogs/StyleFlow.h"

#include "colour/Separations.h"
#include "dialogs/StyleDialog.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "tests/dialogs/TestBundle.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <platform/Platform.h>

static std::string ProfilesFolder() {
    return PlatformApplicationSupportFolder() + "/ZEL/Profiles/Postscript";
}

void StyleFlow::SetUp() {
    ClearPreferences();
    mFolder = MakeTestFolder();
    std::filesystem::remove_all(ProfilesFolder());
    std::memcpy(mRecord.mMagic_be, "POST", 4);
    SetRecordName(mRecord.mPageName, "A4");
    SetRecordName(mRecord.mResolutionName, "300dpi");
    mRecord.mPageWidth_be = DoubleToBigEndian(595);
    mRecord.mPageHeight_be = DoubleToBigEndian(842);
    mRecord.mXDpi_be = mRecord.mYDpi_be = DoubleToBigEndian(300);
    mRecord.copies_be = Int16ToBigEndian(1);
    mRecord.fromPage_be = Int16ToBigEndian(1);
    mRecord.toPage_be = Int16ToBigEndian(999);
    mSeparations = ScanSeparationsFolder();
    mParams = {{2480, 3508, 210, 297}, mSeparations, &mPrinter, TestBundleIdentifier()};
    UsePrinter({});
}

void StyleFlow::TearDown() {
    delete mPrinter;
    DeleteSeparationsList(mSeparations);
    std::filesystem::remove_all(ProfilesFolder());
    RemoveTestFolder(mFolder);
}

void StyleFlow::UsePrinter(const PPDOptions &options) {
    CFURLRef url = FolderURL(WriteFile(mFolder, "Test.ppd", PPDText(options)));
    delete mPrinter;
    mPrinter = new PostscriptPrinterInfo(url);
    CFRelease(url);
}

void StyleFlow::AddProfile(const std::string &name) {
    std::filesystem::create_directories(ProfilesFolder());
    WriteFile(ProfilesFolder(), name, "mft2 and so on");
    DeleteSeparationsList(mSeparations);
    mParams.separations = mSeparations = ScanSeparationsFolder();
}

void StyleFlow::RemoveProfile(const std::string &name) {
    std::filesystem::remove(ProfilesFolder() + "/" + name);
}

void StyleFlow::SetSeparation(const std::string &name) {
    mRecord.cmykSeparationName[0] = static_cast<uint8_t>(name.size());
    std::memcpy(mRecord.cmykSeparationName + 1, name.data(), name.size());
}

bool StyleFlow::Run() {
    PageSetup setup;
    setup.Use(mRecord, &mParams);
    const bool confirmed = StyleDialog(TestBundle(), setup);
    if (confirmed) mRecord = setup.Record();
    EXPECT_TRUE(mScript.IsFinished());
    EXPECT_TRUE(DialogWindow() == nil);
    return confirmed;
}

void StyleFlow::ExpectSameRecord(const PSHPrint &record, const PSHPrint &expected) {
    const auto *a = reinterpret_cast<const unsigned char *>(&record);
    const auto *b = reinterpret_cast<const unsigned char *>(&expected);
    for (size_t i = 0; i < sizeof record; ++i)
        ASSERT_EQ(int(a[i]), int(b[i])) << "byte " << i;
}

PostscriptPrinterStyleDialogController *Controller() {
    return (PostscriptPrinterStyleDialogController *)[DialogWindow() windowController];
}

const PSHPrint &ShownRecord() { return static_cast<PageSetup *>([Controller() setup])->Record(); }
std::string PageName() { return RecordName(ShownRecord().mPageName); }
std::string ResolutionName() { return RecordName(ShownRecord().mResolutionName); }

std::string PreferencesFile() {
    CFPreferencesAppSynchronize(TestBundleIdentifier());
    const char *home = std::getenv("HOME");
    std::ifstream file(std::string(home != nullptr ? home : "") + "/GNUstep/Defaults/" +
                           StringText(TestBundleIdentifier()) + ".plist",
                       std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void ClearPreferences() {
    for (CFStringRef key :
         {CFSTR("MeasurementUnit"), CFSTR("SendToDefaultPrintQueue"), CFSTR("PPDBookmark")})
        SetPreference(key, nullptr);
}

void SetPreference(CFStringRef key, CFTypeRef value) {
    CFPreferencesSetAppValue(key, value, TestBundleIdentifier());
    CFPreferencesAppSynchronize(TestBundleIdentifier());
}
