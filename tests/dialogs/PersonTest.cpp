#include "tests/dialogs/PersonTest.h"

#include "Common/Src/record/PrintRecord.h"
#include "support/BigEndian.h"
#include "tests/dialogs/TestBundle.h"
#include "tests/dialogs/WindowManager.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace {

class WindowManager : public testing::Environment {
public:
    void SetUp() override {
        ASSERT_TRUE(StartWindowManager());
        WatchEveryProgram();
    }
    void TearDown() override { StopWindowManager(); }

private:
    /// AppKit loads the bundles of this default into each program.
    static void WatchEveryProgram() {
        CFMutableArrayRef bundles =
            CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
        CFArrayAppendValue(bundles, CFSTR(ZEL_DIALOG_OBSERVER));
        CFPreferencesSetAppValue(CFSTR("GSAppKitUserBundles"), bundles, CFSTR("NSGlobalDomain"));
        CFPreferencesAppSynchronize(CFSTR("NSGlobalDomain"));
        CFRelease(bundles);
    }
};
const testing::Environment *const kWindowManager =
    testing::AddGlobalTestEnvironment(new WindowManager);

} // namespace

PSHPrint GoodRecord() {
    PSHPrint record = {};
    std::memcpy(record.mMagic_be, "POST", 4);
    SetRecordName(record.mPageName, "A4");
    SetRecordName(record.mResolutionName, "300dpi");
    record.mPageWidth_be = DoubleToBigEndian(595);
    record.mPageHeight_be = DoubleToBigEndian(842);
    record.mXDpi_be = record.mYDpi_be = DoubleToBigEndian(300);
    record.copies_be = Int16ToBigEndian(5);
    record.fromPage_be = Int16ToBigEndian(1);
    record.toPage_be = Int16ToBigEndian(999);
    return record;
}

void ExpectSameRecord(const PSHPrint &record, const PSHPrint &expected) {
    const auto *a = reinterpret_cast<const unsigned char *>(&record);
    const auto *b = reinterpret_cast<const unsigned char *>(&expected);
    for (size_t i = 0; i < sizeof record; ++i)
        ASSERT_EQ(int(a[i]), int(b[i])) << "byte " << i;
}

void SetPreference(CFStringRef key, CFTypeRef value) {
    CFPreferencesSetAppValue(key, value, TestBundleIdentifier());
    CFPreferencesAppSynchronize(TestBundleIdentifier());
}

std::string PreferencesFile() {
    const char *home = std::getenv("HOME");
    std::ifstream file(std::string(home != nullptr ? home : "") + "/GNUstep/Defaults/" +
                           StringText(TestBundleIdentifier()) + ".plist",
                       std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

PersonTest::PersonTest() : mFolder(MakeTestFolder()), mPerson(mFolder) {
    // What other processes have stored must be known before it can be removed.
    CFPreferencesAppSynchronize(TestBundleIdentifier());
    for (CFStringRef key : {CFSTR("MeasurementUnit"), CFSTR("SendToDefaultPrintQueue"),
                            CFSTR("PPDBookmark"), CFSTR("HotFolderBookmark"), CFSTR("PageOptions"),
                            CFSTR("FileFormat"), CFSTR("PSColourSpace")})
        SetPreference(key, nullptr);
    // File panels start where they were last, in a program that shows its first one in its folder.
    for (CFStringRef program : {CFSTR("dialog_host"), CFSTR("zelprint")}) {
        CFPreferencesAppSynchronize(program);
        CFPreferencesSetAppValue(CFSTR("NSDefaultOpenDirectory"), nullptr, program);
        CFPreferencesAppSynchronize(program);
    }
    EXPECT_EQ(chdir(mFolder.c_str()), 0);
}

PersonTest::~PersonTest() {
    EXPECT_EQ(chdir("/"), 0);
    RemoveTestFolder(mFolder);
}

void PersonTest::SavePlace(CFStringRef key, const std::string &path) {
    CFURLRef url = FolderURL(path);
    CFDataRef bookmark =
        CFURLCreateBookmarkData(kCFAllocatorDefault, url, 1024, nullptr, nullptr, nullptr);
    SetPreference(key, bookmark);
    CFRelease(bookmark);
    CFRelease(url);
}

void PersonTest::ForgetWindowPlaces() {
    for (CFStringRef program : {CFSTR("dialog_host"), CFSTR("zelprint")}) {
        CFPreferencesAppSynchronize(program);
        for (CFStringRef window :
             {CFSTR("NSWindow Frame ZELPostscriptPrinterDriverStyleDialogPosition"),
              CFSTR("NSWindow Frame ZELPostscriptPrinterDriverJobDialogPosition")})
            CFPreferencesSetAppValue(window, nullptr, program);
        CFPreferencesAppSynchronize(program);
    }
}

void PersonTest::UsePrinter(const PPDOptions &options) {
    SavePlace(CFSTR("PPDBookmark"), WriteFile(mFolder, "Test.ppd", PPDText(options)));
}

void PersonTest::OpenStyle(const PSHPrint &record) {
    mPerson.Open("style", record);
    mPerson.WaitForWindow("dialog");
}

void PersonTest::ExpectRefused(const std::string &field, const std::string &message,
                               const std::string &picture) {
    mPerson.ClickTo("okButton", "alert");
    EXPECT_NE(mPerson.Look().texts.find(message), std::string::npos) << mPerson.Look().texts;
    mPerson.TakePicture("real-" + picture + "-" + field);
    mPerson.PressTo("Return", [&](const Screen &s) { return s.kind == "dialog" && s.isKey; });
    mPerson.WaitFor("the selected text of " + field,
                    [&](const Screen &s) { return s.focus == field && s.isFocusSelected; });
}
