// The print dialog, driven from inside its process on a display of the test's own.
#import "dialogs/DialogSupport.h"
#include "dialogs/JobDialog.h"
#import "dialogs/JobDialogController.h"
#import "tests/dialogs/DialogScript.h"
#include "tests/dialogs/TestBundle.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

@interface PostscriptPrinterDriverJobDialogController (Failing)
- (void)failForTest:(id)sender;
@end
@implementation PostscriptPrinterDriverJobDialogController (Failing)
- (void)failForTest:(id)sender {
    [NSException raise:NSGenericException format:@"made by a test"];
}
@end

namespace {

PostscriptPrinterDriverJobDialogController *Controller() {
    return (PostscriptPrinterDriverJobDialogController *)[DialogWindow() windowController];
}

class JobDialogFlow : public testing::Test {
  protected:
    void SetUp() override {
        mFolder = MakeTestFolder();
        mHotFolder = FolderURL(mFolder);
        mBeepsBefore = -1;
    }
    void TearDown() override {
        if (mHotFolder != nullptr) CFRelease(mHotFolder);
        if (mJobName != nullptr) CFRelease(mJobName);
        RemoveTestFolder(mFolder);
    }

    void HaveNoHotFolder() {
        CFRelease(mHotFolder);
        mHotFolder = nullptr;
    }
    bool Run() {
        JobChoices choices;
        choices.hotFolder = CFRef<CFURLRef>(mHotFolder);
        choices.firstPage = mFirst;
        choices.lastPage = mLast;
        if (mWithCopies) choices.copies = mCopies;
        choices.collate = mCollate;
        const bool confirmed = JobDialog(
            TestBundleIdentifier(),
            {CFSTR("ZEL Postscript Printer Driver"), mSuggestedName, CFSTR("ps")}, choices);
        mHotFolder = choices.hotFolder.Detach();
        if (mJobName != nullptr) CFRelease(mJobName);
        mJobName = choices.fileName.Detach();
        mFirst = choices.firstPage;
        mLast = choices.lastPage;
        mCopies = choices.copies.value_or(mCopies);
        mCollate = *choices.collate;
        EXPECT_TRUE(mScript.IsFinished());
        EXPECT_TRUE(DialogWindow() == nil);
        return confirmed;
    }
    void WhenOpen(DialogScript::Action action) { mScript.When("the dialog", DialogIsOpen, action); }
    void WhenAbove(DialogScript::Action action) {
        mScript.When("an alert or panel", SomethingIsAbove, action);
    }
    void Press(NSString *title) {
        WhenOpen([title] { PressButton(DialogWindow(), title); });
    }

    DialogScript mScript;
    std::string mFolder;
    CFURLRef mHotFolder = nullptr;
    CFStringRef mJobName = nullptr, mSuggestedName = CFSTR("My job");
    int16_t mFirst = 1, mLast = 999, mCopies = 1;
    bool mCollate = false, mWithCopies = false;
    int mBeepsBefore;
};

TEST_F(JobDialogFlow, Open_Pages1To999_SelectsAllAndEmptiesBothFields) {
    WhenOpen([] {
        EXPECT_EQ([[Controller() pageModeMatrix].selectedCell tag], 1);
        EXPECT_EQ(Text([Controller() fromPageText]), "");
        EXPECT_EQ(Text([Controller() toPageText]), "");
        EXPECT_EQ(std::string([[DialogWindow() title] UTF8String]),
                  "ZEL Postscript Printer Driver");
        EXPECT_TRUE([[Controller() saveButton] isEnabled]);
        TakePicture(DialogWindow(), "job-all-pages");
    });
    Press(@"Save");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mFirst, 1);
    EXPECT_EQ(mLast, 999);
    EXPECT_TRUE(mJobName == nullptr);
    EXPECT_EQ(URLPath(mHotFolder), mFolder);
}

TEST_F(JobDialogFlow, Open_AnyOtherRange_ShowsBothNumbers) {
    mFirst = 1;
    mLast = 998;
    WhenOpen([] {
        EXPECT_EQ([[Controller() pageModeMatrix].selectedCell tag], 2);
        EXPECT_EQ(Text([Controller() fromPageText]), "1");
        EXPECT_EQ(Text([Controller() toPageText]), "998");
        TakePicture(DialogWindow(), "job-range");
    });
    Press(@"Save");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mFirst, 1);
    EXPECT_EQ(mLast, 998);
}

TEST_F(JobDialogFlow, Open_WithoutCopies_HasNeitherCopiesNorCollate) {
    WhenOpen([] {
        EXPECT_TRUE([Controller() numberOfCopiesText] == nil);
        EXPECT_TRUE([Controller() collateCheckbox] == nil);
        EXPECT_FALSE([Controller() collated]);
        EXPECT_TRUE([Controller() validateNumberOfCopies]);
        [Controller() setCollated:YES];
        EXPECT_FALSE([Controller() collated]);
    });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
}

TEST_F(JobDialogFlow, Save_WithoutCopies_LeavesTheCallersCollate) {
    mCollate = true;
    Press(@"Save");
    EXPECT_TRUE(Run());
    EXPECT_TRUE(mCollate);
}

TEST_F(JobDialogFlow, Typing_FirstPageWhileAll_SwitchesToRangeAndFillsLast) {
    WhenOpen([] {
        TypeInto([Controller() fromPageText], "1");
        EXPECT_EQ([[Controller() pageModeMatrix].selectedCell tag], 2);
        EXPECT_EQ(Text([Controller() fromPageText]), "1");
        EXPECT_EQ(Text([Controller() toPageText]), "1");
    });
    Press(@"Save");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mFirst, 1);
    EXPECT_EQ(mLast, 1);
}

TEST_F(JobDialogFlow, Typing_LastPageWhileAll_SwitchesToRangeAndFillsFirst) {
    WhenOpen([] {
        TypeInto([Controller() toPageText], "7");
        EXPECT_EQ([[Controller() pageModeMatrix].selectedCell tag], 2);
        EXPECT_EQ(Text([Controller() fromPageText]), "1");
    });
    Press(@"Save");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mFirst, 1);
    EXPECT_EQ(mLast, 7);
}

TEST_F(JobDialogFlow, Typing_CopiesWhileAll_StaysWithAll) {
    mWithCopies = true;
    WhenOpen([] {
        TypeInto([Controller() numberOfCopiesText], "3");
        EXPECT_EQ([[Controller() pageModeMatrix].selectedCell tag], 1);
        EXPECT_EQ(Text([Controller() fromPageText]), "");
    });
    Press(@"Save");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mCopies, 3);
    EXPECT_EQ(mLast, 999);
}

TEST_F(JobDialogFlow, PageMode_Changed_EmptiesOrFillsBlankFields) {
    mFirst = 4;
    mLast = 6;
    WhenOpen([] {
        SelectRadio([Controller() pageModeMatrix], 1);
        EXPECT_EQ(Text([Controller() fromPageText]), "");
        EXPECT_EQ(Text([Controller() toPageText]), "");
        SelectRadio([Controller() pageModeMatrix], 2);
        EXPECT_EQ(Text([Controller() fromPageText]), "1");
        EXPECT_EQ(Text([Controller() toPageText]), "1");
    });
    Press(@"Save");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mFirst, 1);
    EXPECT_EQ(mLast, 1);
}

struct BadRange {
    const char *first, *last;
    bool lastIsSelected;
};

class JobDialogBadRange : public JobDialogFlow, public testing::WithParamInterface<BadRange> {};

TEST_P(JobDialogBadRange, Save_BadRange_BeepsSelectsFieldAndStaysOpen) {
    mFirst = 2;
    mLast = 3;
    const BadRange range = GetParam();
    for (NSString *button in [NSArray arrayWithObjects:@"Save", @"Save As…", nil]) {
        WhenOpen([=, this] {
            TypeInto([Controller() fromPageText], range.first);
            TypeInto([Controller() toPageText], range.last);
            mBeepsBefore = BeepCount();
            PressButton(DialogWindow(), button);
            EXPECT_EQ(BeepCount(), mBeepsBefore + 1);
            NSTextField *wrong =
                range.lastIsSelected ? [Controller() toPageText] : [Controller() fromPageText];
            EXPECT_TRUE(IsTextSelected(wrong));
            EXPECT_FALSE([Controller() isOK]);
        });
    }
    WhenOpen([=] {
        if (std::string(range.first) == "5") TakePicture(DialogWindow(), "job-bad-range");
    });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
    EXPECT_EQ(mFirst, 2);
    EXPECT_EQ(mLast, 3);
}

INSTANTIATE_TEST_SUITE_P(
    Ranges, JobDialogBadRange,
    testing::Values(BadRange{"5", "3", true}, BadRange{"0", "3", false}, BadRange{"-1", "3", false},
                    BadRange{"1000", "1000", false}, BadRange{"x", "3", false},
                    BadRange{"", "3", false}, BadRange{"4294967297", "4294967298", false},
                    BadRange{"1", "1000", true}, BadRange{"1", "", true},
                    BadRange{"1", "abc", true}, BadRange{"1", "99999999999999999999", true}));

class JobDialogBadCopies : public JobDialogFlow,
                           public testing::WithParamInterface<const char *> {};

TEST_P(JobDialogBadCopies, Save_BadCopies_BeepsSelectsFieldAndStaysOpen) {
    mWithCopies = true;
    WhenOpen([this] {
        TypeInto([Controller() numberOfCopiesText], GetParam());
        mBeepsBefore = BeepCount();
        PressButton(DialogWindow(), @"Save");
        EXPECT_EQ(BeepCount(), mBeepsBefore + 1);
        EXPECT_TRUE(IsTextSelected([Controller() numberOfCopiesText]));
    });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
    EXPECT_EQ(mCopies, 1);
}

INSTANTIATE_TEST_SUITE_P(Copies, JobDialogBadCopies,
                         testing::Values("", "0", "-2", "1000", "two", "65537", "10000000000"));

TEST_F(JobDialogFlow, Save_CopiesAndCollate_AreReturned) {
    mWithCopies = true;
    mCopies = 2;
    mCollate = true;
    mFirst = 3;
    mLast = 5;
    WhenOpen([] {
        EXPECT_EQ([Controller() numberOfCopies], 2);
        EXPECT_TRUE([Controller() collated]);
        TakePicture(DialogWindow(), "job-copies");
        TypeInto([Controller() numberOfCopiesText], "12");
        PressControl([Controller() collateCheckbox]);
        EXPECT_FALSE([Controller() collated]);
    });
    Press(@"Save");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mCopies, 12);
    EXPECT_FALSE(mCollate);
    EXPECT_EQ(mFirst, 3);
    EXPECT_EQ(mLast, 5);
}

TEST_F(JobDialogFlow, Cancel_AfterChanges_LeavesTheCallersVariables) {
    mWithCopies = true;
    const CFURLRef hotFolder = mHotFolder;
    WhenOpen([] {
        TypeInto([Controller() fromPageText], "7");
        TypeInto([Controller() numberOfCopiesText], "9");
        [Controller() setCollated:YES];
    });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
    EXPECT_EQ(mFirst, 1);
    EXPECT_EQ(mLast, 999);
    EXPECT_EQ(mCopies, 1);
    EXPECT_FALSE(mCollate);
    EXPECT_EQ(mHotFolder, hotFolder);
    EXPECT_TRUE(mJobName == nullptr);
}

TEST_F(JobDialogFlow, Keys_EscapeCancels) {
    WhenOpen([] { PressKey("\033"); });
    EXPECT_FALSE(Run());
}

TEST_F(JobDialogFlow, Keys_ReturnConfirms) {
    WhenOpen([] { PressKey("\r"); });
    EXPECT_TRUE(Run());
}

TEST_F(JobDialogFlow, CloseButton_Cancels) {
    WhenOpen([] {
        [DialogWindow() performClose:nil];
        StopModalAndWake();
    });
    EXPECT_FALSE(Run());
}

TEST_F(JobDialogFlow, NoHotFolder_SaveIsDisabledAndReturnAsksForOne) {
    HaveNoHotFolder();
    WhenOpen([] {
        EXPECT_FALSE([[Controller() saveButton] isEnabled]);
        EXPECT_NE(WindowTexts(DialogWindow()).find("none"), std::string::npos);
        TakePicture(DialogWindow(), "job-no-hot-folder");
        PressKey("\r");
    });
    WhenAbove([] {
        EXPECT_TRUE([WindowAboveDialog() isKindOfClass:[NSSavePanel class]]);
        [(NSSavePanel *)WindowAboveDialog() cancel:nil];
        StopModalAndWake();
    });
    WhenOpen([] { EXPECT_FALSE([Controller() isOK]); });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
    EXPECT_TRUE(mHotFolder == nullptr);
}

TEST_F(JobDialogFlow, NoHotFolder_SaveCommand_SaysItCannotBeFound) {
    HaveNoHotFolder();
    // The alert is a nested session: the step that opens it returns when it has been closed.
    WhenOpen([] {
        [Controller() performSelector:@selector(handleSaveCommand)
                           withObject:nil
                           afterDelay:0
                              inModes:[NSArray arrayWithObject:NSModalPanelRunLoopMode]];
    });
    WhenAbove([] {
        EXPECT_NE(WindowTexts(WindowAboveDialog())
                      .find("Cannot print because the Hot Folder cannot be found"),
                  std::string::npos);
        TakePicture(WindowAboveDialog(), "job-hot-folder-missing-alert");
        PressButton(WindowAboveDialog(), @"OK");
    });
    WhenOpen([] { EXPECT_FALSE([Controller() isOK]); });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
}

class JobDialogTrash : public JobDialogFlow {
  protected:
    void SetUp() override {
        JobDialogFlow::SetUp();
        const char *data = std::getenv("XDG_DATA_HOME");
        ASSERT_NE(data, nullptr);
        mTrashed = std::string(data) + "/Trash/files/Hot";
        std::filesystem::create_directories(mTrashed);
        CFRelease(mHotFolder);
        mHotFolder = FolderURL(mTrashed);
    }
    std::string mTrashed;
};

TEST_F(JobDialogTrash, Save_HotFolderInTrash_SaysSoAndStaysOpen) {
    WhenOpen([] {
        EXPECT_TRUE([Controller() hotFolderIsInTrash]);
        [[Controller() saveButton]
            performSelector:@selector(performClick:)
                 withObject:nil
                 afterDelay:0
                    inModes:[NSArray arrayWithObject:NSModalPanelRunLoopMode]];
    });
    WhenAbove([] {
        EXPECT_NE(WindowTexts(WindowAboveDialog())
                      .find("Cannot print because the Hot Folder is in the Trash"),
                  std::string::npos);
        TakePicture(WindowAboveDialog(), "job-hot-folder-in-trash-alert");
        PressButton(WindowAboveDialog(), @"OK");
    });
    WhenOpen([] { EXPECT_FALSE([Controller() isOK]); });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
}

void PressSaveAs() { PressLater([Controller() saveAsButton]); }

TEST_F(JobDialogTrash, SaveAs_HotFolderInTrash_StartsElsewhere) {
    WhenOpen(PressSaveAs);
    WhenAbove([this] {
        NSSavePanel *panel = (NSSavePanel *)WindowAboveDialog();
        EXPECT_EQ(std::string([[panel directory] UTF8String]).find(mTrashed), std::string::npos);
        [panel cancel:nil];
        StopModalAndWake();
    });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
}

TEST_F(JobDialogFlow, SaveAs_Confirmed_GivesFolderAndName) {
    HaveNoHotFolder();
    WhenOpen(PressSaveAs);
    WhenAbove([this] {
        NSSavePanel *panel = (NSSavePanel *)WindowAboveDialog();
        EXPECT_TRUE([panel isKindOfClass:[NSSavePanel class]]);
        EXPECT_EQ(std::string([[panel nameFieldStringValue] UTF8String]), "My job");
        EXPECT_TRUE([panel canCreateDirectories]);
        EXPECT_FALSE([panel allowsOtherFileTypes]);
        EXPECT_TRUE([[panel allowedFileTypes] isEqual:[NSArray arrayWithObject:@"ps"]]);
        TakePicture(panel, "job-save-panel");
        [panel setDirectory:[NSString stringWithUTF8String:mFolder.c_str()]];
        [panel ok:nil];
        StopModalAndWake();
    });
    EXPECT_TRUE(Run());
    EXPECT_EQ(URLPath(mHotFolder), mFolder);
    EXPECT_EQ(StringText(mJobName), "My job.ps");
}

TEST_F(JobDialogFlow, SaveAs_HotFolder_IsWhereThePanelStarts) {
    WhenOpen(PressSaveAs);
    WhenAbove([this] {
        NSSavePanel *panel = (NSSavePanel *)WindowAboveDialog();
        EXPECT_EQ(std::filesystem::path([[panel directory] UTF8String]) / "",
                  std::filesystem::path(mFolder) / "");
        [panel cancel:nil];
        StopModalAndWake();
    });
    WhenOpen([] {
        EXPECT_FALSE([Controller() isOK]);
        EXPECT_TRUE([Controller() jobName] == nil);
    });
    Press(@"Save");
    EXPECT_TRUE(Run());
    EXPECT_EQ(URLPath(mHotFolder), mFolder);
    EXPECT_TRUE(mJobName == nullptr);
}

TEST_F(JobDialogFlow, SaveAs_BadCopies_AreNotChecked) {
    mWithCopies = true;
    WhenOpen([] {
        TypeInto([Controller() numberOfCopiesText], "0");
        PressSaveAs();
    });
    WhenAbove([] {
        NSSavePanel *panel = (NSSavePanel *)WindowAboveDialog();
        [panel ok:nil];
        StopModalAndWake();
    });
    EXPECT_TRUE(Run());
    EXPECT_EQ(mCopies, 0);
    EXPECT_EQ(StringText(mJobName), "My job.ps");
}

TEST_F(JobDialogFlow, SaveAs_NoSuggestedName_OffersNone) {
    mSuggestedName = nullptr;
    WhenOpen(PressSaveAs);
    WhenAbove([] {
        NSSavePanel *panel = (NSSavePanel *)WindowAboveDialog();
        EXPECT_EQ([[panel nameFieldStringValue] length], 0u);
        [panel cancel:nil];
        StopModalAndWake();
    });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
}

TEST_F(JobDialogFlow, Exception_InAnAction_ReturnsFalseAndTheNextDialogWorks) {
    WhenOpen([] {
        [[Controller() saveButton] setAction:@selector(failForTest:)];
        PressKey("\r");
    });
    EXPECT_FALSE(Run());
    Press(@"Save");
    EXPECT_TRUE(Run());
}

TEST_F(JobDialogFlow, LongHotFolderPath_StaysInsideTheWindow) {
    std::string path = mFolder;
    for (int i = 0; i < 12; ++i)
        path += "/a folder with a rather long name";
    CFRelease(mHotFolder);
    mHotFolder = FolderURL(path);
    WhenOpen([] { TakePicture(DialogWindow(), "job-long-hot-folder"); });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
}

TEST_F(JobDialogFlow, ThirtyDialogs_LeaveNoWindow) {
    for (int i = 0; i < 30; ++i) {
        Press(i % 2 ? @"Save" : @"Cancel");
        EXPECT_EQ(Run(), i % 2 == 1);
    }
    int count = 0;
    for (NSWindow *window in [NSApp windows])
        count += [window windowController] != nil;
    EXPECT_EQ(count, 0);
}

TEST(JobDialogWithoutBundle, UnknownIdentifier_ReturnsFalse) {
    JobChoices choices;
    EXPECT_FALSE(
        JobDialog(CFSTR("com.example.unknown"), {CFSTR("T"), nullptr, CFSTR("ps")}, choices));
}

} // namespace
