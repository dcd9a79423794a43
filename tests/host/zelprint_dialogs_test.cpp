// zelprint's dialogs as a person uses them: real pointer and key events to the real program.
#include "support/BigEndian.h"
#include "tests/dialogs/PersonTest.h"
#include "tests/dialogs/TestBundle.h"
#include "tests/dialogs/WindowManager.h"

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <tuple>

namespace {

namespace fs = std::filesystem;

std::string ReadAll(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool Contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

/// Where the user's bookmark points to.
std::string PlaceOf(CFStringRef key) {
    CFPreferencesAppSynchronize(TestBundleIdentifier());
    CFPropertyListRef data = CFPreferencesCopyAppValue(key, TestBundleIdentifier());
    if (data == nullptr) return {};
    Boolean isStale = 0;
    CFURLRef url =
        CFURLCreateByResolvingBookmarkData(kCFAllocatorDefault, static_cast<CFDataRef>(data), 256,
                                           nullptr, nullptr, &isStale, nullptr);
    std::string path = url != nullptr ? URLPath(url) : "";
    if (url != nullptr) CFRelease(url);
    CFRelease(data);
    return path;
}

/// What a settings file begins with.
struct Record {
    int copies, first, last;
    explicit Record(const std::string &settings) {
        PSHPrint record = {};
        settings.copy(reinterpret_cast<char *>(&record), sizeof record);
        copies = Int16FromBigEndian(record.copies_be);
        first = Int16FromBigEndian(record.fromPage_be);
        last = Int16FromBigEndian(record.toPage_be);
    }
};

/// A printer whose page A4 has code of its own.
std::string PrinterNamed(const std::string &name) {
    PPDOptions options;
    options.extra = "*PageSize A5/A5 of " + name + ": \"(" + name +
                    ") pop\"\n*ImageableArea A5: \"0 0 420 595\"\n";
    return PPDText(options);
}

class ZelprintTest : public PersonTest {
protected:
    ZelprintTest() : mHot(mFolder + "/hot") {
        fs::create_directory(mHot);
        std::ofstream(mFolder + "/page.pgm") << "P2 2 2 255 0 80 160 255\n";
        SavePlace(CFSTR("PPDBookmark"), WriteFile(mFolder, "Old.ppd", PrinterNamed("Old")));
    }
    void Zelprint(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {ZELPRINT_PROGRAM, "--colour-space", "gray"});
        arguments.push_back("page.pgm");
        mPerson.Start(arguments);
    }
    [[nodiscard]] std::vector<std::string> Files(const std::string &folder) const {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename());
        return names;
    }
    void ChooseRow(const std::string &name) {
        const std::string row = "row:" + name;
        mPerson.Click(row, [&](const Screen &s) {
            return s.controls.count(row) != 0 && s.controls.at(row).value == "1";
        });
    }
    std::string mHot;
};

class ZelprintCancelled : public ZelprintTest, public testing::WithParamInterface<const char *> {};

TEST_P(ZelprintCancelled, Escape_EndsTheJobAndWritesNothing) {
    SavePlace(CFSTR("HotFolderBookmark"), mHot);
    const std::string preferences = PreferencesFile();
    Zelprint({GetParam(), "--save-settings", "settings"});
    mPerson.WaitForWindow("dialog");
    mPerson.Press("Escape");
    EXPECT_EQ(mPerson.Status(), 130);
    EXPECT_TRUE(Contains(mPerson.Log(), "zelprint: cancelled in the dialog; nothing was printed"))
        << mPerson.Log();
    EXPECT_EQ(Files(mHot), std::vector<std::string>{});
    EXPECT_FALSE(fs::exists(mFolder + "/settings"));
    EXPECT_EQ(PreferencesFile(), preferences);
}

INSTANTIATE_TEST_SUITE_P(Dialogs, ZelprintCancelled,
                         testing::Values("--page-setup", "--print-dialog"));

TEST_F(ZelprintTest, PageSetup_AnotherPPD_IsThePrinterOfTheDocument) {
    const std::string chosen = WriteFile(mFolder, "New.ppd", PrinterNamed("New"));
    Zelprint({"--page-setup", "--hot-folder", "hot", "--save-settings", "settings"});
    mPerson.WaitForWindow("dialog");
    mPerson.ClickTo("choosePPDButton", "panel");
    ChooseRow("New.ppd");
    mPerson.ClickTo("OK", "dialog");
    mPerson.WaitFor("the printer's name",
                    [](const Screen &s) { return Contains(s.texts, "New.ppd"); });
    mPerson.Choose("pagesMenu", 1); // A5
    mPerson.Choose("resolutionMenu", 2);
    mPerson.TakePicture("zelprint-page-setup");
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Status(), 0) << mPerson.Log();
    ASSERT_EQ(Files(mHot), std::vector<std::string>{"page.ps"});
    const std::string document = ReadAll(mHot + "/page.ps");
    EXPECT_TRUE(Contains(document, "(New) pop"));
    EXPECT_FALSE(Contains(document, "(Old) pop"));
    EXPECT_TRUE(Contains(document, "%%BoundingBox: 0 0 420 595")) << document.substr(0, 500);
    EXPECT_EQ(PlaceOf(CFSTR("PPDBookmark")), chosen);
    const std::string settings = ReadAll(mFolder + "/settings");
    EXPECT_EQ(std::string(settings.c_str() + offsetof(PSHPrint, mPageName)), "A5");
    EXPECT_EQ(std::string(settings.c_str() + offsetof(PSHPrint, mResolutionName)), "600dpi");
}

TEST_F(ZelprintTest, PageSetup_AnotherPPDThenEscape_LeavesThePreferences) {
    WriteFile(mFolder, "New.ppd", PrinterNamed("New"));
    const std::string preferences = PreferencesFile();
    Zelprint({"--page-setup", "--hot-folder", "hot"});
    mPerson.WaitForWindow("dialog");
    mPerson.ClickTo("choosePPDButton", "panel");
    ChooseRow("New.ppd");
    mPerson.ClickTo("OK", "dialog");
    mPerson.WaitFor("the printer's name",
                    [](const Screen &s) { return Contains(s.texts, "New.ppd"); });
    mPerson.Press("Escape");
    EXPECT_EQ(mPerson.Status(), 130);
    EXPECT_EQ(Files(mHot), std::vector<std::string>{});
    EXPECT_EQ(PreferencesFile(), preferences);
}

TEST_F(ZelprintTest, PageSetup_FromDocument_TakesTheImagesSize) {
    std::ofstream picture(mFolder + "/page.pgm");
    picture << "P2 300 400 1\n";
    for (int i = 0; i < 300 * 400; ++i)
        picture << i % 2 << '\n';
    picture.close();
    Zelprint({"--page-setup", "--hot-folder", "hot"});
    mPerson.WaitForWindow("dialog");
    mPerson.Choose("unitsMenu", 1);
    mPerson.Click("documentSizeButton", [](const Screen &s) {
        return s.controls.at("pageWidth").value == "300.00" &&
               s.controls.at("pageHeight").value == "400.00" &&
               s.controls.at("resolution").value == "72";
    });
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Status(), 0) << mPerson.Log();
    const std::string document = ReadAll(mHot + "/page.ps");
    EXPECT_TRUE(Contains(document, "%%BoundingBox: 0 0 300 400")) << document.substr(0, 500);
}

// One side of the page reads exactly with two decimals, the other does not.
TEST_F(ZelprintTest, PageSetup_TypedSizeOfAPage_PrintsThePageInItsOwnSize) {
    PPDOptions options;
    options.extra = "*PageSize F: \"\"\n*ImageableArea F: \"0 0 595 792\"\n";
    UsePrinter(options);
    Zelprint({"--page-setup", "--hot-folder", "hot", "--save-settings", "settings"});
    mPerson.WaitForWindow("dialog");
    mPerson.Choose("unitsMenu", 2);
    mPerson.Type("pageWidth", "209.90");
    mPerson.Type("pageHeight", "279.40");
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Status(), 0) << mPerson.Log();
    const std::string settings = ReadAll(mFolder + "/settings");
    PSHPrint record = {};
    settings.copy(reinterpret_cast<char *>(&record), sizeof record);
    EXPECT_STREQ(record.mPageName, "F");
    EXPECT_EQ(DoubleFromBigEndian(record.mPageWidth_be), 595);
    EXPECT_EQ(DoubleFromBigEndian(record.mPageHeight_be), 792);
}

/// A PostScript document's number of pages.
int PagesOf(const std::string &path) {
    const std::string document = ReadAll(path);
    const size_t place = document.rfind("%%Pages: ");
    return place == std::string::npos ? 0 : std::atoi(document.c_str() + place + 9);
}

TEST_F(ZelprintTest, PageSetup_SavedPrinterInsteadOfTheOption_IsThePrinterOfTheDocument) {
    const std::string option = WriteFile(mFolder, "New.ppd", PrinterNamed("New"));
    Zelprint({"--ppd", option, "--page-setup", "--hot-folder", "hot", "--save-settings", "saved"});
    mPerson.WaitForWindow("dialog");
    mPerson.ClickTo("choosePPDButton", "panel");
    ChooseRow("Old.ppd");
    mPerson.ClickTo("OK", "dialog");
    mPerson.WaitFor("the printer's name",
                    [](const Screen &s) { return Contains(s.texts, "Old.ppd"); });
    mPerson.Choose("pagesMenu", 1); // A5
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Status(), 0) << mPerson.Log();
    EXPECT_TRUE(Contains(ReadAll(mHot + "/page.ps"), "(Old) pop"));
    const std::string settings = ReadAll(mFolder + "/saved");
    EXPECT_TRUE(Contains(settings, "Old.ppd"));
    EXPECT_FALSE(Contains(settings, "New.ppd"));
}

TEST_F(ZelprintTest, PageSetup_PrinterOfTheOption_IsShownWithoutAWordAboutTheUsers) {
    SetPreference(CFSTR("PPDBookmark"), nullptr);
    const std::string option = WriteFile(mFolder, "New.ppd", PrinterNamed("New"));
    Zelprint({"--ppd", option, "--page-setup", "--hot-folder", "hot"});
    const Screen screen =
        mPerson.WaitFor("a window", [](const Screen &s) { return !s.kind.empty(); });
    EXPECT_EQ(screen.kind, "dialog") << screen.texts;
    mPerson.WaitForWindow("dialog");
    EXPECT_TRUE(Contains(mPerson.Look().texts, "New.ppd"));
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Status(), 0) << mPerson.Log();
    EXPECT_FALSE(Contains(mPerson.Log(), "No PPD file")) << mPerson.Log();
}

TEST_F(ZelprintTest, PageSetup_ChosenPPDGoneBeforeOK_PrintsWhatIsShownAndSaysSo) {
    const std::string chosen = WriteFile(mFolder, "New.ppd", PrinterNamed("New"));
    Zelprint({"--page-setup", "--hot-folder", "hot"});
    mPerson.WaitForWindow("dialog");
    mPerson.ClickTo("choosePPDButton", "panel");
    ChooseRow("New.ppd");
    mPerson.ClickTo("OK", "dialog");
    mPerson.WaitFor("the printer's name",
                    [](const Screen &s) { return Contains(s.texts, "New.ppd"); });
    mPerson.Choose("pagesMenu", 1); // A5
    fs::remove(chosen);
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Status(), 0) << mPerson.Log();
    EXPECT_TRUE(Contains(ReadAll(mHot + "/page.ps"), "(New) pop"));
    EXPECT_TRUE(Contains(mPerson.Log(), chosen + ": it has gone since it was chosen"))
        << mPerson.Log();
}

TEST_F(ZelprintTest, PrintDialog_RangeAndCopiesOfTheOptions_AreFilledInAndKept) {
    SavePlace(CFSTR("HotFolderBookmark"), mHot);
    Zelprint({"--print-dialog", "-P", "1", "-n", "3", "--save-settings", "saved", "page.pgm",
              "page.pgm"});
    mPerson.WaitForWindow("dialog");
    mPerson.WaitFor("page 1", [](const Screen &s) {
        return s.controls.at("fromPageText").value == "1" &&
               s.controls.at("toPageText").value == "1";
    });
    mPerson.Type("fromPageText", "2");
    mPerson.Type("toPageText", "3");
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Status(), 0) << mPerson.Log();
    EXPECT_EQ(PagesOf(mHot + "/page.ps"), 6);
    Record saved(ReadAll(mFolder + "/saved"));
    EXPECT_EQ(saved.copies, 3);
    EXPECT_EQ(saved.first, 2);
    EXPECT_EQ(saved.last, 3);
}

TEST_F(ZelprintTest, PrintDialog_SeveralRanges_AreRefused) {
    SavePlace(CFSTR("HotFolderBookmark"), mHot);
    for (const char *range : {"1,3", "1000", "5-1200"}) {
        Zelprint({"--print-dialog", "-P", range});
        EXPECT_EQ(mPerson.Status(), 2) << range;
        EXPECT_TRUE(Contains(mPerson.Log(), "one range of pages")) << mPerson.Log();
    }
}

TEST_F(ZelprintTest, PageSetup_QueueOfTheOption_IsShownAndWhatIsConfirmedCounts) {
    Zelprint({"--queue", "--page-setup", "--hot-folder", "hot"});
    mPerson.WaitForWindow("dialog");
    EXPECT_EQ(mPerson.Look().controls["sendToPrinterBox"].value, "1");
    mPerson.Toggle("sendToPrinterBox");
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Status(), 0) << mPerson.Log();
}

struct EndingSignal {
    int number, status;
};

class ZelprintSignalled
    : public ZelprintTest,
      public testing::WithParamInterface<std::tuple<const char *, EndingSignal>> {};

TEST_P(ZelprintSignalled, WithAWindowAboveTheDialog_EndsItAsCancelled) {
    const auto [dialog, signal] = GetParam();
    WriteFile(mFolder, "New.ppd", PrinterNamed("New"));
    const std::string preferences = PreferencesFile();
    Zelprint({dialog});
    mPerson.WaitForWindow("dialog");
    if (std::string(dialog) == "--page-setup") {
        mPerson.ClickTo("choosePPDButton", "panel");
        ChooseRow("New.ppd");
        mPerson.ClickTo("OK", "dialog");
        mPerson.ClickTo("choosePPDButton", "panel");
    } else {
        mPerson.ClickTo("saveAsButton", "panel");
    }
    mPerson.Signal(signal.number);
    EXPECT_EQ(mPerson.Status(), signal.status);
    EXPECT_TRUE(Contains(mPerson.Log(), "zelprint: cancelled; nothing was printed"))
        << mPerson.Log();
    EXPECT_EQ(PreferencesFile(), preferences);
    EXPECT_EQ(Files(mHot), std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(Signals, ZelprintSignalled,
                         testing::Combine(testing::Values("--page-setup", "--print-dialog"),
                                          testing::Values(EndingSignal{SIGINT, 130},
                                                          EndingSignal{SIGTERM, 143})));

TEST_F(ZelprintTest, OpenMenu_Signal_EndsTheDialogAsCancelled) {
    Zelprint({"--page-setup", "--hot-folder", "hot"});
    mPerson.WaitForWindow("dialog");
    mPerson.Click("pagesMenu", [](const Screen &s) { return !s.menuHandle.empty(); });
    mPerson.Signal(SIGINT);
    EXPECT_EQ(mPerson.Status(), 130);
    EXPECT_TRUE(Contains(mPerson.Log(), "zelprint: cancelled; nothing was printed"))
        << mPerson.Log();
}

TEST_F(ZelprintTest, AlertBeforeTheDialog_Signal_EndsTheProgram) {
    SetPreference(CFSTR("PPDBookmark"), nullptr);
    Zelprint({"--page-setup", "--hot-folder", "hot"});
    mPerson.WaitForWindow("alert");
    mPerson.Signal(SIGTERM);
    EXPECT_EQ(mPerson.Status(), 143);
}

struct BrokenWindow {
    const char *what, *option, *file;
    const char *content; ///< null: removed; "half": its first half
};

class ZelprintBroken : public ZelprintTest, public testing::WithParamInterface<BrokenWindow> {};

TEST_P(ZelprintBroken, DialogsWindow_IsSaidAndEndsTheJob) {
    const BrokenWindow broken = GetParam();
    const fs::path bundle = mFolder + "/ZELPostscript.bundle";
    fs::copy(fs::path(ZELPRINT_PROGRAM).parent_path() / "ZELPostscript.bundle", bundle,
             fs::copy_options::recursive);
    const std::string file = bundle / "Resources" / broken.file;
    const std::string whole = ReadAll(file);
    ASSERT_NE(whole, "");
    fs::remove(file);
    if (broken.content != nullptr) {
        const bool isHalf = std::string(broken.content) == "half";
        std::ofstream(file) << (isHalf ? whole.substr(0, whole.size() / 2) : broken.content);
    }
    Zelprint({broken.option, "--bundle", bundle});
    EXPECT_EQ(mPerson.Status(), 4) << mPerson.Log();
    EXPECT_TRUE(Contains(mPerson.Log(), "dialog cannot be shown: its window")) << mPerson.Log();
    EXPECT_TRUE(Contains(mPerson.Log(), "zelprint: the driver cannot show its dialog"))
        << mPerson.Log();
}

INSTANTIATE_TEST_SUITE_P(
    Files, ZelprintBroken,
    testing::Values(
        BrokenWindow{"PageSetupMissing", "--page-setup", "PostscriptStyleDialog.xib", nullptr},
        BrokenWindow{"PageSetupEmpty", "--page-setup", "PostscriptStyleDialog.xib", ""},
        BrokenWindow{"PageSetupHalf", "--page-setup", "PostscriptStyleDialog.xib", "half"},
        BrokenWindow{"PageSetupNoXML", "--page-setup", "PostscriptStyleDialog.xib", "hello"},
        BrokenWindow{"PrintMissing", "--print-dialog", "JobDialog_NC.xib", nullptr},
        BrokenWindow{"PrintEmpty", "--print-dialog", "JobDialog_NC.xib", ""},
        BrokenWindow{"PrintHalf", "--print-dialog", "JobDialog_NC.xib", "half"},
        BrokenWindow{"PrintNoWindow", "--print-dialog", "JobDialog_NC.xib",
                     "<?xml version=\"1.0\"?><document><objects/></document>"}),
    [](const auto &test) { return test.param.what; });

class ZelprintWithoutFonts : public ZelprintTest,
                             public testing::WithParamInterface<const char *> {};

TEST_P(ZelprintWithoutFonts, Dialog_IsSaidAndEndsTheJob) {
    WriteFile(mFolder, "fonts.conf",
              "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"fonts.dtd\"><fontconfig>"
              "<cachedir>" +
                  mFolder + "/fonts</cachedir></fontconfig>");
    setenv("FONTCONFIG_FILE", (mFolder + "/fonts.conf").c_str(), 1);
    Zelprint({GetParam()});
    const int status = mPerson.Status();
    unsetenv("FONTCONFIG_FILE");
    EXPECT_EQ(status, 4);
    EXPECT_TRUE(Contains(mPerson.Log(), "dialog cannot be shown: ")) << mPerson.Log();
    EXPECT_TRUE(Contains(mPerson.Log(), "zelprint: the driver cannot show its dialog"))
        << mPerson.Log();
}

INSTANTIATE_TEST_SUITE_P(Dialogs, ZelprintWithoutFonts,
                         testing::Values("--page-setup", "--print-dialog"));

class ZelprintWithoutDisplay : public ZelprintTest,
                               public testing::WithParamInterface<const char *> {};

TEST_P(ZelprintWithoutDisplay, Dialog_IsAWrongCommandLineAndOneLine) {
    SetPreference(CFSTR("PPDBookmark"), nullptr);
    const std::string display = std::getenv("DISPLAY");
    setenv("DISPLAY", GetParam(), 1);
    Zelprint({"--print-dialog"});
    const int status = mPerson.Status();
    setenv("DISPLAY", display.c_str(), 1);
    EXPECT_EQ(status, 2);
    EXPECT_EQ(mPerson.Log(), "zelprint: there is no window system for a dialog; choose with "
                             "options instead\n");
}

INSTANTIATE_TEST_SUITE_P(Displays, ZelprintWithoutDisplay,
                         testing::Values("", ":7654", "nowhere:0"));

class ZelprintSaveAs : public ZelprintTest, public testing::WithParamInterface<const char *> {};

TEST_P(ZelprintSaveAs, NameInTheSavePanel_IsTheFilesName) {
    const std::string format = GetParam();
    Zelprint({"--print-dialog", format == "eps" ? "--eps" : "--ps"});
    mPerson.WaitForWindow("dialog");
    mPerson.ClickTo("saveAsButton", "panel");
    ChooseRow("hot");
    mPerson.Type("name", "Chosen name");
    mPerson.TakePicture("zelprint-save-panel-" + format);
    mPerson.ClickTo("OK", "");
    EXPECT_EQ(mPerson.Status(), 0) << mPerson.Log();
    EXPECT_EQ(Files(mHot), std::vector<std::string>{"Chosen name." + format}) << mPerson.Log();
    const std::string document = ReadAll(mHot + "/Chosen name." + format);
    EXPECT_EQ(document.rfind("%!PS-Adobe-", 0), 0u);
    EXPECT_TRUE(Contains(document, "%%EOF"));
    EXPECT_EQ(PlaceOf(CFSTR("HotFolderBookmark")), mHot);
}

INSTANTIATE_TEST_SUITE_P(Formats, ZelprintSaveAs, testing::Values("ps", "eps"));

TEST_F(ZelprintTest, BothDialogs_RangeTyped_PrintsThosePages) {
    SavePlace(CFSTR("HotFolderBookmark"), mHot);
    Zelprint({"--page-setup", "--print-dialog", "page.pgm", "page.pgm"});
    mPerson.WaitForWindow("dialog");
    mPerson.Click("okButton",
                  [](const Screen &s) { return s.isKey && s.controls.count("fromPageText") != 0; });
    mPerson.Type("fromPageText", "2");
    mPerson.Type("toPageText", "2");
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Status(), 0) << mPerson.Log();
    ASSERT_EQ(Files(mHot), std::vector<std::string>{"page.ps"});
    EXPECT_TRUE(Contains(ReadAll(mHot + "/page.ps"), "%%Pages: 1"));
}

TEST_F(ZelprintTest, PPDPanel_OpensBesideThePresentFile) {
    fs::create_directory(mFolder + "/printers");
    const std::string option = WriteFile(mFolder + "/printers", "New.ppd", PrinterNamed("New"));
    WriteFile(mFolder + "/printers", "Newer.ppd", PrinterNamed("Newer"));
    Zelprint({"--ppd", option, "--page-setup", "--hot-folder", "hot"});
    mPerson.WaitForWindow("dialog");
    mPerson.ClickTo("choosePPDButton", "panel");
    ChooseRow("Newer.ppd");
    mPerson.ClickTo("OK", "dialog");
    mPerson.WaitFor("the printer's name",
                    [](const Screen &s) { return Contains(s.texts, "Newer.ppd"); });
    mPerson.Press("Escape");
    EXPECT_EQ(mPerson.Status(), 130);
}

TEST_F(ZelprintTest, PPDPanel_TypedPathThenReturn_IsTheFile) {
    fs::create_directory(mFolder + "/printers");
    const std::string typed = WriteFile(mFolder + "/printers", "New.ppd", PrinterNamed("New"));
    Zelprint({"--page-setup", "--hot-folder", "hot"});
    mPerson.WaitForWindow("dialog");
    mPerson.ClickTo("choosePPDButton", "panel");
    mPerson.Type("name", typed);
    mPerson.PressTo("Return", [](const Screen &s) { return s.kind == "dialog" && s.isKey; });
    mPerson.WaitFor("the printer's name",
                    [](const Screen &s) { return Contains(s.texts, "New.ppd"); });
    mPerson.Press("Escape");
    EXPECT_EQ(mPerson.Status(), 130);
}

TEST_F(ZelprintTest, PrintDialog_SaysWhatIsPrinted) {
    SavePlace(CFSTR("HotFolderBookmark"), mHot);
    Zelprint({"--print-dialog", "--media", "A5", "-t", "Brochure", "page.pgm"});
    const Screen screen = mPerson.WaitForWindow("dialog");
    for (const char *text :
         {"Brochure (2 pages)\n", "Old.ppd\n", "A5 of Old, 148.17 \u00d7 209.90 millimetres\n"})
        EXPECT_TRUE(Contains(screen.texts, text)) << text << screen.texts;
    mPerson.TakePicture("zelprint-print-dialog");
    mPerson.Press("Escape");
    EXPECT_EQ(mPerson.Status(), 130);
}

TEST_F(ZelprintTest, PrintDialog_WithoutAHotFolder_ReturnAsksForOne) {
    Zelprint({"--print-dialog"});
    mPerson.WaitForWindow("dialog");
    mPerson.PressTo("Return", [](const Screen &s) { return s.kind == "panel" && s.isKey; });
    mPerson.ClickTo("Cancel", "dialog");
    mPerson.PressTo("Escape", [this](const Screen &) { return mPerson.HostHasEnded(); });
}

class ZelprintWindow : public ZelprintTest, public testing::WithParamInterface<const char *> {};

TEST_P(ZelprintWindow, FirstTime_IsADialogInTheMiddleOfTheScreen) {
    ForgetWindowPlaces();
    Zelprint({GetParam()});
    const Screen screen = mPerson.WaitForWindow("dialog");
    const WindowShape shape = ShapeOfWindow(screen.handle);
    EXPECT_EQ(shape.type, "_NET_WM_WINDOW_TYPE_DIALOG");
    EXPECT_NEAR(shape.place.x + shape.width / 2, shape.screenWidth / 2, 30);
    EXPECT_NEAR(shape.place.y + shape.height / 2, shape.screenHeight / 2, 30);
    mPerson.PressTo("Escape", [this](const Screen &) { return mPerson.HostHasEnded(); });
}

TEST_P(ZelprintWindow, TwoPrograms_DoNotLieOnOneAnother) {
    Zelprint({GetParam()});
    const WindowPlace first = PlaceOfWindow(mPerson.WaitForWindow("dialog").handle);
    const std::string folder = MakeTestFolder();
    {
        Person other(folder);
        other.Start({ZELPRINT_PROGRAM, GetParam(), mFolder + "/page.pgm"});
        const WindowPlace second = PlaceOfWindow(other.WaitForWindow("dialog").handle);
        EXPECT_GE(second.x - first.x, 10);
        EXPECT_GE(second.y - first.y, 10);
    }
    RemoveTestFolder(folder);
    mPerson.PressTo("Escape", [this](const Screen &) { return mPerson.HostHasEnded(); });
}

TEST_P(ZelprintWindow, FineScreen_IsScaled) {
    Zelprint({GetParam()});
    const int plain = ShapeOfWindow(mPerson.WaitForWindow("dialog").handle).width;
    mPerson.PressTo("Escape", [this](const Screen &) { return mPerson.HostHasEnded(); });
    SetDesktopResources("Xft.dpi:\t144\n");
    Zelprint({GetParam()});
    const int fine = ShapeOfWindow(mPerson.WaitForWindow("dialog").handle).width;
    mPerson.TakePicture("zelprint-fine" + std::string(GetParam()));
    SetDesktopResources("");
    mPerson.PressTo("Escape", [this](const Screen &) { return mPerson.HostHasEnded(); });
    EXPECT_NEAR(fine, plain * 1.5, 2);
}

INSTANTIATE_TEST_SUITE_P(Dialogs, ZelprintWindow,
                         testing::Values("--page-setup", "--print-dialog"));

TEST_F(ZelprintTest, Window_Dragged_OpensThereNextTime) {
    Zelprint({"--page-setup", "--hot-folder", "hot"});
    const WindowPlace before = PlaceOfWindow(mPerson.WaitForWindow("dialog").handle);
    mPerson.DragWindow(90, 60);
    const WindowPlace dragged = {before.x + 90, before.y + 60};
    mPerson.WaitFor("the drag's end", [&](const Screen &s) {
        const WindowPlace now = PlaceOfWindow(s.handle);
        return now.x == dragged.x && now.y == dragged.y;
    });
    mPerson.Press("Return");
    EXPECT_EQ(mPerson.Status(), 0) << mPerson.Log();
    Zelprint({"--page-setup", "--hot-folder", "hot"});
    const WindowPlace again = PlaceOfWindow(mPerson.WaitForWindow("dialog").handle);
    EXPECT_EQ(again.x, dragged.x);
    EXPECT_EQ(again.y, dragged.y);
    mPerson.Press("Escape");
    EXPECT_EQ(mPerson.Status(), 130);
}

} // namespace
