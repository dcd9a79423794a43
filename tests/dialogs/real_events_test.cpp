// Both dialogs as a person uses them: a window manager, real pointer and key events, and what the
// screen shows.
#include "Common/Src/record/PrintRecord.h"
#include "support/BigEndian.h"
#include "tests/dialogs/PersonTest.h"
#include "tests/dialogs/TestBundle.h"

#include <cstring>
#include <filesystem>

namespace {

/// A preferences file with the printer alone, and what the test of every control adds to it.
std::string WithEveryChoice(std::string preferences) {
    const std::string start = "    <key>PPDBookmark</key>", end = "</dict>\n</plist>";
    preferences.insert(preferences.find(end), "    <key>PSColourSpace</key>\n"
                                              "    <integer>0</integer>\n"
                                              "    <key>PageOptions</key>\n"
                                              "    <dict>\n"
                                              "\t<key>FlipH</key>\n\t<true/>\n"
                                              "\t<key>FlipV</key>\n\t<true/>\n"
                                              "\t<key>Rotate</key>\n\t<false/>\n"
                                              "\t<key>Separation</key>\n"
                                              "\t<string>Standard</string>\n"
                                              "    </dict>\n"
                                              "    <key>SendToDefaultPrintQueue</key>\n"
                                              "    <true/>\n");
    return preferences.insert(preferences.find(start), "    <key>FileFormat</key>\n"
                                                       "    <string>eps</string>\n"
                                                       "    <key>MeasurementUnit</key>\n"
                                                       "    <integer>1</integer>\n");
}

TEST_F(PersonTest, Style_EveryControl_EndsInTheRecord) {
    UsePrinter({});
    const std::string expectedPreferences = WithEveryChoice(PreferencesFile());
    OpenStyle(GoodRecord());
    mPerson.TakePicture("real-style");
    mPerson.Choose("unitsMenu", 1);
    mPerson.Choose("resolutionMenu", 2);
    mPerson.Choose("pagesMenu", 2);
    mPerson.Choose("colourMenu", 2);
    mPerson.WaitFor("no separations",
                    [](const Screen &s) { return !s.controls.at("cmykMenu").enabled; });
    mPerson.Choose("colourMenu", 0);
    mPerson.Choose("cmykMenu", 0);
    mPerson.Toggle("rotateBox");
    mPerson.Toggle("rotateBox");
    mPerson.Toggle("flipHorizontalBox");
    mPerson.Toggle("flipVerticalBox");
    mPerson.Toggle("sendToPrinterBox");
    mPerson.Type("pageWidth", "500");
    mPerson.Type("pageHeight", "700.5");
    mPerson.Type("resolution", "150");
    mPerson.Choose("formatMenu", 2);
    mPerson.TakePicture("real-style-changed");
    mPerson.ClickTo("okButton", "");
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
    PSHPrint expected = GoodRecord();
    SetRecordName(expected.mPageName, "");
    SetRecordName(expected.mResolutionName, "600dpi");
    expected.mPageWidth_be = DoubleToBigEndian(500);
    expected.mPageHeight_be = DoubleToBigEndian(700.5);
    expected.mXDpi_be = expected.mYDpi_be = DoubleToBigEndian(150);
    expected.mPageIsCustom_be = expected.mEPSFormat_be = SwapBigEndian(uint32_t{1});
    expected.mFlipH_be = expected.mFlipV_be = SwapBigEndian(uint32_t{1});
    std::memcpy(expected.cmykSeparationName, "\10Standard", 9);
    ExpectSameRecord(mPerson.Record(), expected);
    EXPECT_EQ(PreferencesFile(), expectedPreferences);
}

TEST_F(PersonTest, Style_WrongInputInEachField_IsRefusedOnOK) {
    UsePrinter({});
    OpenStyle(GoodRecord());
    mPerson.Choose("unitsMenu", 1);
    mPerson.Type("pageWidth", "wide");
    ExpectRefused("pageWidth", "Width is not a number.");
    mPerson.Type("pageWidth", "71");
    ExpectRefused("pageWidth", "Width should be a number between 72.00 and 1000.00.");
    mPerson.Type("pageWidth", "500");
    mPerson.Type("pageHeight", "2000.01");
    ExpectRefused("pageHeight", "Height should be a number between 144.00 and 2000.00.");
    mPerson.Type("pageHeight", "-1");
    ExpectRefused("pageHeight", "Height is not a number.");
    mPerson.Type("resolution", "9 dots");
    mPerson.PressTo("Escape", [this](const Screen &) { return mPerson.HostHasEnded(); });
    EXPECT_EQ(mPerson.Result(), "confirmed 0 opened 0 closed 0");
    ExpectSameRecord(mPerson.Record(), GoodRecord());
}

TEST_F(PersonTest, Style_NoPPD_TellsAndLetsTheUserChooseOne) {
    WriteFile(mFolder, "Chosen.ppd", PPDText());
    WriteFile(mFolder, "Notes.txt", "nothing");
    mPerson.Open("style", GoodRecord());
    EXPECT_NE(
        mPerson.WaitForWindow("alert").texts.find("No PPD file has been selected - using defaults"),
        std::string::npos);
    mPerson.TakePicture("real-no-ppd-alert");
    mPerson.ClickTo("OK", "dialog");
    mPerson.ClickTo("choosePPDButton", "panel");
    // The panel shows the system's PPD files; the path of another one is typed.
    mPerson.Type("name", mFolder + "/Chosen.ppd");
    mPerson.WaitFor("the file", [](const Screen &s) {
        return s.controls.count("row:Chosen.ppd") != 0 &&
               s.controls.at("row:Chosen.ppd").value == "1" && s.controls.at("OK").enabled;
    });
    EXPECT_EQ(mPerson.Look().controls.count("row:Notes.txt"), 0u);
    mPerson.TakePicture("real-ppd-panel");
    mPerson.ClickTo("OK", "dialog");
    mPerson.WaitFor("the printer's name", [](const Screen &s) {
        return s.texts.find("Chosen.ppd") != std::string::npos;
    });
    mPerson.Choose("pagesMenu", 1);
    mPerson.TakePicture("real-ppd-chosen");
    mPerson.PressTo("Return", [this](const Screen &) { return mPerson.HostHasEnded(); });
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
    EXPECT_EQ(RecordName(mPerson.Record().mPageName), "Letter");
}

TEST_F(PersonTest, Style_SizeFromDocumentTooLarge_AsksFirst) {
    PPDOptions options;
    options.maxWidth = 500;
    UsePrinter(options);
    OpenStyle(GoodRecord());
    mPerson.ClickTo("documentSizeButton", "alert");
    mPerson.TakePicture("real-too-large-sheet");
    mPerson.ClickTo("Cancel", "dialog");
    EXPECT_EQ(mPerson.Look().controls["pagesMenu"].value, "0");
    mPerson.ClickTo("documentSizeButton", "alert");
    mPerson.ClickTo("OK", "dialog");
    mPerson.WaitFor("the custom page",
                    [](const Screen &s) { return s.controls.at("pagesMenu").value == "-1"; });
    mPerson.ClickTo("okButton", "");
    EXPECT_EQ(DoubleFromBigEndian(mPerson.Record().mPageWidth_be), 500);
}

TEST_F(PersonTest, Style_NoCustomPages_AsksForAStandardSize) {
    PPDOptions options;
    options.hasCustomPages = false;
    UsePrinter(options);
    OpenStyle(GoodRecord());
    mPerson.ClickTo("documentSizeButton", "alert");
    mPerson.TakePicture("real-no-custom-sheet");
    mPerson.ClickTo("OK", "dialog");
    mPerson.WaitFor("the page",
                    [](const Screen &s) { return s.controls.at("pagesMenu").value == "2"; });
    mPerson.ClickTo("cancelButton", "");
    EXPECT_EQ(mPerson.Result(), "confirmed 0 opened 0 closed 0");
}

TEST_F(PersonTest, Style_MissingSeparation_AsksAndCanGoOn) {
    UsePrinter({});
    PSHPrint record = GoodRecord();
    std::memcpy(record.cmykSeparationName, "\11Newsprint", 10);
    mPerson.Open("style", record);
    EXPECT_NE(mPerson.WaitForWindow("alert").texts.find("Newsprint"), std::string::npos);
    mPerson.TakePicture("real-missing-separation");
    mPerson.ClickTo("Use Standard", "dialog");
    mPerson.ClickTo("okButton", "");
    ExpectSameRecord(mPerson.Record(), GoodRecord());
}

TEST_F(PersonTest, Style_WindowManagerClosesIt_IsACancel) {
    UsePrinter({});
    OpenStyle(GoodRecord());
    mPerson.PressTo("alt+F4", [this](const Screen &) { return mPerson.HostHasEnded(); });
    EXPECT_EQ(mPerson.Result(), "confirmed 0 opened 0 closed 0");
}

TEST_F(PersonTest, Style_TabKey_GoesThroughTheFields) {
    UsePrinter({});
    OpenStyle(GoodRecord());
    mPerson.WaitFor("the first field", [](const Screen &s) { return s.focus == "pageWidth"; });
    mPerson.PressTo("Tab", [](const Screen &s) { return s.focus == "pageHeight"; });
    mPerson.PressTo("shift+Tab", [](const Screen &s) { return s.focus == "pageWidth"; });
    mPerson.ClickTo("cancelButton", "");
}

TEST_F(PersonTest, Job_NoHotFolder_SaveAsGivesFolderAndName) {
    UsePrinter({});
    mPerson.Open("job", GoodRecord());
    mPerson.WaitForWindow("dialog");
    EXPECT_FALSE(mPerson.Look().controls["saveButton"].enabled);
    mPerson.TakePicture("real-job-no-hot-folder");
    mPerson.ClickTo("saveAsButton", "panel");
    mPerson.TakePicture("real-save-panel");
    mPerson.ClickTo("OK", "");
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
    PSHPrint expected = GoodRecord();
    expected.copies_be = Int16ToBigEndian(1);
    ExpectSameRecord(mPerson.Record(), expected);
    // The folder is remembered: now Save works.
    mPerson.Open("job", GoodRecord());
    mPerson.WaitForWindow("dialog");
    mPerson.ClickTo("saveButton", "");
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
}

TEST_F(PersonTest, Job_PageRange_IsTypedCheckedAndStored) {
    UsePrinter({});
    SavePlace(CFSTR("HotFolderBookmark"), mFolder);
    mPerson.Open("job", GoodRecord());
    mPerson.WaitForWindow("dialog");
    mPerson.TakePicture("real-job");
    mPerson.Click("pageModeMatrix:2",
                  [](const Screen &s) { return s.controls.at("pageModeMatrix:2").value == "1"; });
    EXPECT_EQ(mPerson.Look().controls["fromPageText"].value, "1");
    mPerson.Click("pageModeMatrix:1",
                  [](const Screen &s) { return s.controls.at("pageModeMatrix:1").value == "1"; });
    mPerson.Type("fromPageText", "5");
    EXPECT_EQ(mPerson.Look().controls["pageModeMatrix:2"].value, "1");
    for (const char *wrong : {"3", "1000", "x", "-5"}) {
        mPerson.Type("toPageText", wrong);
        mPerson.Click("saveButton",
                      [](const Screen &s) { return s.focus == "toPageText" && s.isFocusSelected; });
    }
    mPerson.TakePicture("real-job-wrong-range");
    mPerson.Type("toPageText", "7");
    for (const char *wrong : {"0", "abc", "99999999999"}) {
        mPerson.Type("fromPageText", wrong);
        mPerson.Click("saveAsButton", [](const Screen &s) {
            return s.focus == "fromPageText" && s.isFocusSelected;
        });
    }
    mPerson.Type("fromPageText", "6");
    mPerson.PressTo("Return", [this](const Screen &) { return mPerson.HostHasEnded(); });
    PSHPrint expected = GoodRecord();
    expected.copies_be = Int16ToBigEndian(1);
    expected.fromPage_be = Int16ToBigEndian(6);
    expected.toPage_be = Int16ToBigEndian(7);
    ExpectSameRecord(mPerson.Record(), expected);
}

TEST_F(PersonTest, Job_HotFolderInTheTrash_SaysSoAndIsCancelled) {
    UsePrinter({});
    const char *data = std::getenv("XDG_DATA_HOME");
    ASSERT_NE(data, nullptr);
    const std::string folder = mFolder + "/Hot", trash = std::string(data) + "/Trash/files";
    std::filesystem::create_directories(folder);
    std::filesystem::create_directories(trash);
    SavePlace(CFSTR("HotFolderBookmark"), folder);
    std::filesystem::rename(folder, trash + "/Hot");
    mPerson.Open("job", GoodRecord());
    mPerson.WaitForWindow("dialog");
    mPerson.ClickTo("saveButton", "alert");
    EXPECT_NE(mPerson.Look().texts.find("Cannot print because the Hot Folder is in the Trash"),
              std::string::npos);
    mPerson.TakePicture("real-job-trash-alert");
    mPerson.ClickTo("OK", "dialog");
    mPerson.PressTo("Escape", [this](const Screen &) { return mPerson.HostHasEnded(); });
    EXPECT_EQ(mPerson.Result(), "confirmed 0 opened 0 closed 0");
    ExpectSameRecord(mPerson.Record(), GoodRecord());
    std::filesystem::remove_all(trash + "/Hot");
}

TEST_F(PersonTest, JobWithCopies_CopiesAndCollate_AreChecked) {
    setenv("ZEL_HOT_FOLDER", mFolder.c_str(), 1);
    mPerson.Open("job-copies", GoodRecord());
    mPerson.WaitForWindow("dialog");
    mPerson.TakePicture("real-job-copies");
    for (const char *wrong : {"0", "1000", "many"}) {
        mPerson.Type("numberOfCopiesText", wrong);
        mPerson.Click("saveButton", [](const Screen &s) {
            return s.focus == "numberOfCopiesText" && s.isFocusSelected;
        });
    }
    mPerson.Type("numberOfCopiesText", "12");
    mPerson.Toggle("collateCheckbox");
    mPerson.ClickTo("saveButton", "");
    EXPECT_EQ(mPerson.Result(), "confirmed 1 copies 12 collate 0 first 1 last 999");
}

} // namespace
