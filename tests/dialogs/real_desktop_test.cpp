// The dialogs among other programs: the desktop's font, its window manager, its clipboard, its
// monitors.
#include "Common/Src/record/PrintRecord.h"
#include "tests/dialogs/PersonTest.h"
#include "tests/dialogs/WindowManager.h"

#include <cstdlib>
#include <filesystem>

namespace {

TEST_F(PersonTest, Font_OfTheDesktop_IsTheDialogs) {
    const DesktopFont desktop("URW Gothic 11");
    UsePrinter({});
    OpenStyle(GoodRecord());
    EXPECT_EQ(mPerson.Look().font, "URWGothic-Book");
    mPerson.TakePicture("desktop-font");
    mPerson.ClickTo("choosePPDButton", "panel");
    mPerson.TakePicture("desktop-font-panel");
    mPerson.ClickTo("Cancel", "dialog");
    mPerson.ClickTo("cancelButton", "");
}

TEST_F(PersonTest, Font_WithoutLetters_IsNotTaken) {
    const DesktopFont desktop("Droid Sans Fallback 11");
    UsePrinter({});
    OpenStyle(GoodRecord());
    EXPECT_NE(mPerson.Look().font, "DroidSansFallback");
    EXPECT_NE(mPerson.Look().font, "");
    mPerson.ClickTo("cancelButton", "");
}

std::string TypeOf(const Screen &screen) {
    return ShapeOfWindow(screen.handle).type;
}

TEST_F(PersonTest, AlertAndPanel_AreDialogsToTheWindowManager) {
    PPDOptions options;
    options.hasCustomPages = false;
    UsePrinter(options);
    OpenStyle(GoodRecord());
    mPerson.ClickTo("documentSizeButton", "alert");
    EXPECT_EQ(TypeOf(mPerson.Look()), "_NET_WM_WINDOW_TYPE_DIALOG");
    mPerson.ClickTo("Cancel", "dialog");
    EXPECT_EQ(TypeOf(mPerson.Look()), "_NET_WM_WINDOW_TYPE_DIALOG");
    mPerson.ClickTo("choosePPDButton", "panel");
    EXPECT_EQ(TypeOf(mPerson.Look()), "_NET_WM_WINDOW_TYPE_DIALOG");
    mPerson.ClickTo("Cancel", "dialog");
    mPerson.ClickTo("cancelButton", "");
}

/// Another program copies a text.
void Copy(const std::string &folder, const std::string &text) {
    const std::string file = WriteFile(folder, "copied", text);
    ASSERT_GT(Spawn({"xclip", "-selection", "clipboard", "-i", file}, "/dev/null"), 0);
}

TEST_F(PersonTest, Panel_PathPastedFromAnotherProgram_IsChosen) {
    std::filesystem::create_directory(mFolder + "/Drücker und PPDs");
    const std::string path =
        WriteFile(mFolder + "/Drücker und PPDs", "Chosen.ppd", PPDText(PPDOptions()));
    UsePrinter({});
    OpenStyle(GoodRecord());
    Copy(mFolder, path + "\n"); // as a terminal's lines are copied
    mPerson.ClickTo("choosePPDButton", "panel");
    mPerson.PressTo("ctrl+v", [](const Screen &s) {
        return s.controls.count("row:Chosen.ppd") != 0 &&
               s.controls.at("row:Chosen.ppd").value == "1" && s.controls.at("OK").enabled;
    });
    mPerson.PressTo("Return", [](const Screen &s) { return s.kind == "dialog" && s.isKey; });
    mPerson.WaitFor("the printer's name", [](const Screen &s) {
        return s.texts.find("Chosen.ppd") != std::string::npos;
    });
    mPerson.ClickTo("cancelButton", "");
}

TEST_F(PersonTest, Field_KeysOfEveryDesktop_SelectCutAndPaste) {
    UsePrinter({});
    OpenStyle(GoodRecord());
    mPerson.Type("resolution", "1234");
    mPerson.Press("ctrl+a");
    mPerson.WaitFor("all of it", [](const Screen &s) { return s.isFocusSelected; });
    mPerson.PressTo("ctrl+x",
                    [](const Screen &s) { return s.controls.at("resolution").value.empty(); });
    mPerson.PressTo("ctrl+v",
                    [](const Screen &s) { return s.controls.at("resolution").value == "1234"; });
    mPerson.ClickTo("cancelButton", "");
}

void MovePointer(const char *x, const char *y) {
    ASSERT_EQ(std::system((std::string("xdotool mousemove ") + x + " " + y).c_str()), 0);
}

TEST_F(PersonTest, TwoMonitors_WindowAndMenusAreOnThePointersOne) {
    DivideScreen();
    PPDOptions options;
    options.extra = ManyPages(174);
    UsePrinter(options);
    struct Monitor {
        const char *pointer;
        int left, right;
    };
    for (const Monitor &monitor : {Monitor{"300", 0, 1000}, Monitor{"1500", 1000, 2000}}) {
        ForgetWindowPlaces();
        MovePointer(monitor.pointer, "200");
        OpenStyle(GoodRecord());
        const WindowShape shape = ShapeOfWindow(mPerson.Look().handle);
        EXPECT_NEAR(shape.place.x + shape.width / 2, (monitor.left + monitor.right) / 2, 20);
        EXPECT_NEAR(shape.place.y + shape.height / 2, 500, 40);
        mPerson.OpenMenu("pagesMenu");
        const Screen screen = mPerson.Look();
        EXPECT_GE(screen.menuX, monitor.left);
        EXPECT_LE(screen.menuX + screen.menuWidth, monitor.right);
        mPerson.Press("Escape");
        mPerson.WaitFor("no menu", [](const Screen &s) { return s.menuHandle.empty(); });
        mPerson.ClickTo("cancelButton", "");
    }
}

} // namespace
