// What people type and what they find: wrong numbers in every field and unit, other locales, odd
// printers, preferences that cannot be written. With real pointer and key events.
#include "Common/Src/record/PrintRecord.h"
#include "support/BigEndian.h"
#include "tests/dialogs/PersonTest.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <platform/Platform.h>

namespace {

enum { kPixels = 0, kPoints = 1, kMillimetres = 2, kInches = 3 };

struct WrongSize {
    int unit;
    const char *field, *text, *message;
};

TEST_F(PersonTest, Size_WrongInEachFieldAndUnit_IsRefusedOnOK) {
    const WrongSize wrongs[] = {
        {kPixels, "pageWidth", "", "Width is not a number."},
        {kPixels, "pageHeight", "8333.5", "Height should be a number between 600 and 8333."},
        {kPoints, "pageWidth", "99999999999999999999", "Width is not a number."},
        {kPoints, "pageHeight", "-842", "Height is not a number."},
        {kMillimetres, "pageWidth", "wide", "Width is not a number."},
        {kMillimetres, "pageHeight", "297 mm", "Height is not a number."},
        {kInches, "pageWidth", "0.99", "Width should be a number between 1.00 and 13.89."},
        {kInches, "pageHeight", "27.79", "Height should be a number between 2.00 and 27.78."}};
    const char *const goodWidths[] = {"2479", "595", "209.9", "8.26"}, *const goodHeights[] = {
                                                                           "3508", "842", "297",
                                                                           "11.7"};
    UsePrinter({});
    OpenStyle(GoodRecord());
    int unit = -1;
    for (const WrongSize &wrong : wrongs) {
        const std::string field = wrong.field;
        if (wrong.unit != unit) mPerson.Choose("unitsMenu", unit = wrong.unit);
        mPerson.Type(field, wrong.text);
        ExpectRefused(field, wrong.message, "refused-input");
        mPerson.Type(field, (field == "pageWidth" ? goodWidths : goodHeights)[unit]);
    }
    mPerson.ClickTo("cancelButton", "");
    EXPECT_EQ(mPerson.Result(), "confirmed 0 opened 0 closed 0");
    ExpectSameRecord(mPerson.Record(), GoodRecord());
}

TEST_F(PersonTest, Resolution_Wrong_IsRefusedOnOK) {
    UsePrinter({});
    OpenStyle(GoodRecord());
    for (const char *wrong : {"", "10001", "-72", "fine", "144 dpi"}) {
        mPerson.Type("resolution", wrong);
        ExpectRefused("resolution", "Resolution: 10 to 10000 dpi");
    }
    mPerson.Type("resolution", "144");
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
    PSHPrint expected = GoodRecord();
    expected.mXDpi_be = expected.mYDpi_be = DoubleToBigEndian(144);
    ExpectSameRecord(mPerson.Record(), expected);
}

TEST_F(PersonTest, Tab_GoesThroughEveryControlOfThePageSetup) {
    UsePrinter({});
    OpenStyle(GoodRecord());
    const char *const order[] = {"pageHeight",         "unitsMenu",         "rotateBox",
                                 "resolution",         "colourMenu",        "cmykMenu",
                                 "formatMenu",         "flipHorizontalBox", "flipVerticalBox",
                                 "sendToPrinterBox",   "cancelButton",      "okButton",
                                 "choosePPDButton",    "resolutionMenu",    "pagesMenu",
                                 "documentSizeButton", "pageWidth"};
    mPerson.WaitFor("the first field", [](const Screen &s) { return s.focus == "pageWidth"; });
    for (const char *next : order) {
        mPerson.Press("Tab");
        mPerson.WaitFor(next, [&](const Screen &s) { return s.focus == next; });
    }
    mPerson.Press("Escape");
    EXPECT_EQ(mPerson.Result(), "confirmed 0 opened 0 closed 0");
}

TEST_F(PersonTest, PPD_500Pages_OneBeyondTheScreenCanBeChosen) {
    PPDOptions options;
    options.extra = ManyPages(500);
    UsePrinter(options);
    OpenStyle(GoodRecord());
    mPerson.Choose("pagesMenu", 101);
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
    EXPECT_EQ(RecordName(mPerson.Record().mPageName), "P1099");
}

/// The environment of the hosts that a test starts; as before when it has gone.
class EnvironmentValue {
public:
    EnvironmentValue(const char *name, const std::string &value) : mName(name) {
        if (const char *before = std::getenv(name)) mBefore = before;
        setenv(name, value.c_str(), 1);
    }
    ~EnvironmentValue() {
        if (mBefore)
            setenv(mName, mBefore->c_str(), 1);
        else
            unsetenv(mName);
    }
    EnvironmentValue(const EnvironmentValue &) = delete;
    EnvironmentValue &operator=(const EnvironmentValue &) = delete;

private:
    const char *mName;
    std::optional<std::string> mBefore;
};

TEST_F(PersonTest, DecimalComma_IsTypedCheckedAndStored) {
    const EnvironmentValue language("LANG", "de_DE.UTF-8"), locale("LC_ALL", "de_DE.UTF-8");
    UsePrinter({});
    OpenStyle(GoodRecord());
    EXPECT_EQ(mPerson.Look().controls["pageHeight"].value, "297,04");
    mPerson.Choose("unitsMenu", kInches);
    mPerson.Type("pageWidth", "5.5");
    ExpectRefused("pageWidth", "Width is not a number.", "refused-german");
    mPerson.Type("pageWidth", "0,5");
    ExpectRefused("pageWidth", "Width should be a number between 1,00 and 13,89.",
                  "refused-german");
    mPerson.Type("pageWidth", "5,5");
    mPerson.TakePicture("real-decimal-comma");
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
    EXPECT_EQ(DoubleFromBigEndian(mPerson.Record().mPageWidth_be), 5.5 * 72);
}

TEST_F(PersonTest, PPD_WithoutPages_CanBeLeft) {
    PPDOptions options;
    options.hasPages = options.hasCustomPages = false;
    UsePrinter(options);
    OpenStyle(GoodRecord());
    EXPECT_FALSE(mPerson.Look().controls["pageWidth"].enabled);
    mPerson.Choose("formatMenu", 2);
    mPerson.Type("pageWidth", "100");
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
    EXPECT_NE(mPerson.Record().mPageIsCustom_be, 0u);
}

TEST_F(PersonTest, PPDAndProfile_GoneWhileTheDialogIsOpen_HarmNothing) {
    const std::string profiles = PlatformApplicationSupportFolder() + "/ZEL/Profiles/Postscript";
    std::filesystem::create_directories(profiles);
    const std::string profile = WriteFile(profiles, "Fleeting", "mft2 and so on");
    UsePrinter({});
    OpenStyle(GoodRecord());
    std::filesystem::remove(mFolder + "/Test.ppd");
    std::filesystem::remove(profile);
    mPerson.Choose("cmykMenu", 1);
    mPerson.Choose("pagesMenu", 1);
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
    EXPECT_EQ(RecordName(mPerson.Record().mPageName), "Letter");
    // The next time the profile is missed, and Escape leaves everything as it is.
    const PSHPrint stored = mPerson.Record();
    UsePrinter({});
    mPerson.Open("style", stored);
    EXPECT_NE(mPerson.WaitForWindow("alert").texts.find("Fleeting"), std::string::npos);
    mPerson.Press("Escape");
    EXPECT_EQ(mPerson.Result(), "confirmed 0 opened 0 closed 0");
    ExpectSameRecord(mPerson.Record(), stored);
}

TEST_F(PersonTest, ReadOnlyPreferences_BothDialogsWork) {
    // Not even root can write there.
    std::ifstream original(std::getenv("GNUSTEP_CONFIG_FILE"));
    std::ofstream changed(mFolder + "/GNUstep.conf");
    for (std::string line; std::getline(original, line);)
        changed << (line.rfind("GNUSTEP_USER_DEFAULTS_DIR=", 0) == 0
                        ? "GNUSTEP_USER_DEFAULTS_DIR=/proc/self/nowhere"
                        : line)
                << "\n";
    changed.close();
    const EnvironmentValue config("GNUSTEP_CONFIG_FILE", mFolder + "/GNUstep.conf");
    mPerson.Open("style", GoodRecord());
    mPerson.ClickTo("OK", "dialog"); // no printer
    mPerson.Choose("unitsMenu", kInches);
    mPerson.Toggle("flipVerticalBox");
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
    EXPECT_NE(mPerson.Record().mFlipV_be, 0u);
    mPerson.Open("job", GoodRecord());
    mPerson.ClickTo("OK", "dialog");
    mPerson.ClickTo("saveAsButton", "panel");
    mPerson.ClickTo("OK", "");
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
}

TEST_F(PersonTest, Tab_GoesThroughEveryControlOfThePrintDialog) {
    UsePrinter({});
    SavePlace(CFSTR("HotFolderBookmark"), mFolder);
    mPerson.Open("job", GoodRecord());
    mPerson.WaitForWindow("dialog");
    mPerson.WaitFor("the first field", [](const Screen &s) { return s.focus == "fromPageText"; });
    for (const char *next :
         {"toPageText", "saveAsButton", "Cancel", "saveButton", "pageModeMatrix", "fromPageText"}) {
        mPerson.Press("Tab");
        mPerson.WaitFor(next, [&](const Screen &s) { return s.focus == next; });
    }
    mPerson.Press("Escape");
    EXPECT_EQ(mPerson.Result(), "confirmed 0 opened 0 closed 0");
}

} // namespace
