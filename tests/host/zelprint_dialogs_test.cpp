// zelprint's dialogs as a person uses them: real pointer and key events to the real program.
#include "tests/dialogs/PersonTest.h"
#include "tests/dialogs/TestBundle.h"
#include "tests/dialogs/WindowManager.h"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>

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
