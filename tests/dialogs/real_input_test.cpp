// What people type and what they find: wrong numbers in every field and unit, other locales, odd
// printers, preferences that cannot be written. With real pointer and key events.
#include "Common/Src/BigEndian.h"
#include "Common/Src/PrintRecord.h"
#include "tests/dialogs/PersonTest.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
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
        ExpectRefused(field, wrong.message);
        mPerson.Type(field, (field == "pageWidth" ? goodWidths : goodHeights)[unit]);
    }
    mPerson.ClickTo("cancelButton", "");
    EXPECT_EQ(mPerson.Result(), "confirmed 0 opened 0 closed 0");
    ExpectSameRecord(mPerson.Record(), GoodRecord());
}

TEST_F(PersonTest, Resolution_Wrong_KeepsTheLastGoodOne) {
    UsePrinter({});
    OpenStyle(GoodRecord());
    for (const char *wrong : {"150", "", "10001", "-72", "fine", "144 dpi"})
        mPerson.Type("resolution", wrong);
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
    for (int i = 0; i < 500; ++i) {
        const std::string n = std::to_string(1000 + i);
        options.extra += "*PageSize P" + n + "/Page number " + n + ": \"\"\n*ImageableArea P" + n +
                         ": \"0 0 " + std::to_string(200 + i) + " 500\"\n";
    }
    UsePrinter(options);
    OpenStyle(GoodRecord());
    mPerson.Choose("pagesMenu", 101);
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
    EXPECT_EQ(RecordName(mPerson.Record().mPageName), "P1099");
}

} // namespace
