// ZELPrJob: what the driver gives to the print dialog and what it keeps of the answer.
#import "dialogs/JobDialogController.h"
#import "tests/dialogs/DialogScript.h"
#include "tests/dialogs/TestBundle.h"

#include "Common/Src/DriverContext.h"
#include "Common/Src/record/PrintRecord.h"
#include "ZELPrint.h"
#include "ppd/PostscriptPrinterInfo.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace {

PostscriptPrinterDriverJobDialogController *Controller() {
    return (PostscriptPrinterDriverJobDialogController *)[DialogWindow() windowController];
}

std::string DialogTitle() { return [[DialogWindow() title] UTF8String]; }

CFRef<CFStringRef> MakeString(const std::string &text) {
    return CFRef<CFStringRef>(
        CFStringCreateWithCString(kCFAllocatorDefault, text.c_str(), kCFStringEncodingUTF8));
}

/// A session as ZELPrOpen makes it, as far as the print dialog needs it, and no hot folder yet.
class DriverJobFlow : public testing::Test {
  protected:
    DriverJobFlow() {
        SetPreference(CFSTR("HotFolder"), nullptr);
        SetPreference(CFSTR("HotFolderBookmark"), nullptr);
        mContext.bundle = CFRef<CFBundleRef>::Retain(TestBundle());
        mContext.bundleIdentifier = CFRef<CFStringRef>::Retain(TestBundleIdentifier());
        mContext.jobName = MakeString("Plan");
        mContext.printerInfo = new PostscriptPrinterInfo; // the context owns it
    }
    ~DriverJobFlow() override {
        DisposeHandle(mHandle);
        RemoveTestFolder(mFolder);
    }

    static void SetPreference(CFStringRef key, CFTypeRef value) {
        CFPreferencesSetAppValue(key, value, TestBundleIdentifier());
        (void)CFPreferencesAppSynchronize(TestBundleIdentifier());
    }
    /// Where the bookmark in the preferences leads.
    static std::string SavedFolder() {
        const CFRef<CFPropertyListRef> bookmark(
            CFPreferencesCopyAppValue(CFSTR("HotFolderBookmark"), TestBundleIdentifier()));
        if (!bookmark) return {};
        const CFRef<CFURLRef> url(CFURLCreateByResolvingBookmarkData(
            kCFAllocatorDefault, (CFDataRef)bookmark.Get(), kCFURLBookmarkResolutionWithoutUIMask,
            nullptr, nullptr, nullptr, nullptr));
        return url ? URLPath(url.Get()) : "";
    }
    PSHPrint &Record() const { return *reinterpret_cast<PSHPrint *>(*mHandle); }
    /// Runs the dialog with these steps while it is open and one button at the end.
    bool Run(DialogScript::Action look, NSString *button) {
        DialogScript script;
        script.When("the dialog", DialogIsOpen, std::move(look));
        script.When("the dialog", DialogIsOpen, [=] { PressButton(DialogWindow(), button); });
        const bool confirmed = ZELPrJob(&mContext, mHandle) != 0;
        EXPECT_TRUE(script.IsFinished());
        return confirmed;
    }

    std::string mFolder = MakeTestFolder();
    Handle mHandle = NewHandleClear(sizeof(PSHPrint));
    DriverContext mContext;
};

TEST_F(DriverJobFlow, Title_IsTheNameOfTheBundle) {
    EXPECT_FALSE(Run([] { EXPECT_EQ(DialogTitle(), "ZEL Postscript Printer Driver"); }, @"Cancel"));
}

struct TitleCase {
    const char *name, *info, *title;
};

void PrintTo(const TitleCase &c, std::ostream *out) { *out << c.name; }

class DriverJobTitle : public DriverJobFlow, public testing::WithParamInterface<TitleCase> {};

TEST_P(DriverJobTitle, ComesFromTheInfoOfTheBundle) {
    const std::string path = mFolder + "/Other.bundle";
    std::filesystem::create_directories(path + "/Resources");
    std::ofstream(path + "/Resources/Info-gnustep.plist") << GetParam().info;
    CFURLRef url = FolderURL(path);
    mContext.bundle = CFRef<CFBundleRef>(CFBundleCreate(kCFAllocatorDefault, url));
    CFRelease(url);
    ASSERT_TRUE(mContext.bundle);
    EXPECT_FALSE(Run([] { EXPECT_EQ(DialogTitle(), GetParam().title); }, @"Cancel"));
}

INSTANTIATE_TEST_SUITE_P(
    , DriverJobTitle,
    testing::Values(TitleCase{"Name", "{ CFBundleName = \"Another name\"; }", "Another name"},
                    TitleCase{"NoName", "{ CFBundleVersion = 1; }", "Job Dialog"},
                    TitleCase{"NameIsAList", "{ CFBundleName = (Two, Names); }", "Job Dialog"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(DriverJobFlow, NoHotFolder_CannotBeSaved) {
    EXPECT_FALSE(Run([] { EXPECT_FALSE([[Controller() saveButton] isEnabled]); }, @"Cancel"));
    EXPECT_EQ(mContext.state, SessionState::Cancelled);
    EXPECT_EQ(mContext.error, 0);
    EXPECT_EQ(SavedFolder(), "");
}

TEST_F(DriverJobFlow, HotFolderOfAnEarlyVersion_IsOfferedAndKeptAsABookmark) {
    SetPreference(CFSTR("HotFolder"), MakeString(mFolder).Get());
    Record().copies_be = Int16ToBigEndian(5);
    Record().fromPage_be = Int16ToBigEndian(2);
    Record().toPage_be = Int16ToBigEndian(3);
    EXPECT_TRUE(Run(
        [this] {
            EXPECT_TRUE([[Controller() saveButton] isEnabled]);
            EXPECT_EQ(std::string([[[Controller() hotFolder] path] UTF8String]), mFolder);
        },
        @"Save"));
    ASSERT_TRUE(mContext.hotFolder);
    EXPECT_EQ(URLPath(mContext.hotFolder.Get()), mFolder);
    EXPECT_EQ(SavedFolder(), mFolder);
    EXPECT_FALSE(mContext.hasOutputFileName);
    EXPECT_EQ(Int16FromBigEndian(Record().copies_be), 1);
    EXPECT_EQ(Int16FromBigEndian(Record().fromPage_be), 2);
    EXPECT_EQ(Int16FromBigEndian(Record().toPage_be), 3);
}

TEST_F(DriverJobFlow, FileNameOfAnEarlierDialog_IsForgottenBySave) {
    SetPreference(CFSTR("HotFolder"), MakeString(mFolder).Get());
    Record().fromPage_be = Int16ToBigEndian(1);
    Record().toPage_be = Int16ToBigEndian(999);
    mContext.hasOutputFileName = true;
    mContext.outputFileName = MakeString("earlier.ps");
    EXPECT_TRUE(Run([] {}, @"Save"));
    EXPECT_FALSE(mContext.hasOutputFileName);
    EXPECT_FALSE(mContext.outputFileName);
}

} // namespace
