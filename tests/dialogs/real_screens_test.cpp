// Both dialogs on small and large screens, at their usual and at twice their size (ZEL_SCALE): with
// the keyboard alone, and whether all of them can be seen.
#include "Common/Src/record/PrintRecord.h"
#include "support/BigEndian.h"
#include "tests/dialogs/PersonTest.h"
#include "tests/dialogs/WindowManager.h"

#include <cstdlib>

namespace {

std::string Highlighted(const Screen &screen) {
    for (const auto &[tag, item] : screen.items)
        if (item.value == "1") return tag;
    return "";
}

class ScreensTest : public PersonTest {
protected:
    ScreensTest() {
        const char *scale = std::getenv("ZEL_SCALE");
        if (scale == nullptr) return;
        CFStringRef factor = CFStringCreateWithCString(nullptr, scale, kCFStringEncodingUTF8);
        CFPreferencesSetAppValue(CFSTR("GSScaleFactor"), factor, CFSTR("dialog_host"));
        CFPreferencesAppSynchronize(CFSTR("dialog_host"));
        CFRelease(factor);
    }
    void OpenPageSetup() {
        PPDOptions options;
        options.extra = ManyPages(174);
        UsePrinter(options);
        ForgetWindowPlaces();
        OpenStyle(GoodRecord());
    }
    void OpenPrint() {
        UsePrinter({});
        SavePlace(CFSTR("HotFolderBookmark"), mFolder);
        ForgetWindowPlaces();
        mPerson.Open("job", GoodRecord());
        mPerson.WaitForWindow("dialog");
    }
    /// The front window and all its controls lie on the screen.
    void ExpectAllOfIt(const char *what) {
        const Screen screen = mPerson.Look();
        const WindowShape shape = ShapeOfWindow(screen.handle);
        EXPECT_GE(shape.place.x, 0) << what;
        EXPECT_GE(shape.place.y, 0) << what;
        EXPECT_LE(shape.place.x + shape.width, shape.screenWidth) << what;
        EXPECT_LE(shape.place.y + shape.height, shape.screenHeight) << what;
        for (const auto &[name, control] : screen.controls) {
            if (name.rfind("row:", 0) == 0) continue; // they scroll
            EXPECT_TRUE(0 < control.x && control.x < shape.width) << what << ": " << name;
            EXPECT_TRUE(0 < control.y && control.y < shape.height) << what << ": " << name;
        }
    }
    void ExpectMenuOnTheScreen(const std::string &popup) {
        mPerson.OpenMenu(popup);
        const Screen screen = mPerson.Look();
        const WindowShape window = ShapeOfWindow(screen.handle);
        EXPECT_GE(screen.menuX, 0) << popup;
        EXPECT_GE(screen.menuY, 0) << popup;
        EXPECT_LE(screen.menuX + screen.menuWidth, window.screenWidth) << popup;
        EXPECT_LE(screen.menuY + screen.menuHeight, window.screenHeight) << popup;
        mPerson.Press("Escape");
        mPerson.WaitFor("no menu", [](const Screen &s) { return s.menuHandle.empty(); });
    }
    /// With the keyboard.
    void GoTo(const std::string &control) {
        for (int i = 0; i < 30 && mPerson.Look().focus != control; ++i) {
            const std::string before = mPerson.Look().focus;
            mPerson.Press("Tab");
            mPerson.WaitFor("another control", [&](const Screen &s) { return s.focus != before; });
        }
        EXPECT_EQ(mPerson.Look().focus, control);
    }
    /// Opens the pop-up's menu with Space and goes down to the entry of that tag.
    void ChooseByKeys(const std::string &popup, const std::string &tag) {
        GoTo(popup);
        mPerson.Press("space");
        mPerson.WaitFor("an open menu", [](const Screen &s) { return !s.menuHandle.empty(); });
        for (int i = 0; i < 200 && Highlighted(mPerson.Look()) != tag; ++i) {
            const std::string before = Highlighted(mPerson.Look());
            mPerson.Press("Down");
            mPerson.WaitFor("the next entry",
                            [&](const Screen &s) { return Highlighted(s) != before; });
        }
        mPerson.Press("Return");
        mPerson.WaitFor("entry " + tag, [&](const Screen &s) {
            return s.menuHandle.empty() && s.controls.at(popup).value == tag;
        });
    }
    /// Over what a field has.
    void TypeByKeys(const std::string &field, const std::string &text) {
        GoTo(field);
        mPerson.Press("ctrl+a");
        for (const char letter : text)
            mPerson.Press(std::string(1, letter));
        mPerson.WaitFor(text, [&](const Screen &s) { return s.controls.at(field).value == text; });
    }
    std::string Picture(const std::string &name) {
        const char *size = std::getenv("ZEL_SCREEN"), *scale = std::getenv("ZEL_SCALE");
        return "screen-" + name + "-" + (size != nullptr ? size : "") + "-" +
               (scale != nullptr ? scale : "1");
    }
};

TEST_F(ScreensTest, PageSetup_AllOfItAndItsMenus_AreOnTheScreen) {
    OpenPageSetup();
    ExpectAllOfIt("page setup");
    mPerson.TakePicture(Picture("page-setup"));
    for (const char *popup :
         {"resolutionMenu", "pagesMenu", "unitsMenu", "colourMenu", "cmykMenu", "formatMenu"})
        ExpectMenuOnTheScreen(popup);
    mPerson.ClickTo("choosePPDButton", "panel");
    ExpectAllOfIt("PPD panel");
    mPerson.TakePicture(Picture("panel"));
    mPerson.ClickTo("Cancel", "dialog");
    mPerson.Type("pageWidth", "1");
    mPerson.ClickTo("okButton", "alert");
    ExpectAllOfIt("alert");
    mPerson.TakePicture(Picture("alert"));
    mPerson.ClickTo("OK", "dialog");
    mPerson.ClickTo("cancelButton", "");
}

TEST_F(ScreensTest, PageSetup_WithTheKeyboardAlone_IsChangedAndConfirmed) {
    OpenPageSetup();
    ChooseByKeys("pagesMenu", "3");
    ChooseByKeys("resolutionMenu", "2");
    TypeByKeys("resolution", "144");
    ChooseByKeys("formatMenu", "2");
    mPerson.PressTo("Return", [this](const Screen &) { return mPerson.HostHasEnded(); });
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
    const PSHPrint record = mPerson.Record();
    EXPECT_EQ(RecordName(record.mPageName), "P1001");
    EXPECT_EQ(RecordName(record.mResolutionName), "600dpi");
    EXPECT_EQ(DoubleFromBigEndian(record.mXDpi_be), 144);
    EXPECT_NE(record.mEPSFormat_be, 0u);
}

TEST_F(ScreensTest, Print_WithTheKeyboardAlone_IsChangedAndConfirmed) {
    OpenPrint();
    ExpectAllOfIt("print dialog");
    mPerson.TakePicture(Picture("print"));
    TypeByKeys("fromPageText", "2");
    TypeByKeys("toPageText", "7");
    GoTo("saveAsButton");
    mPerson.PressTo("space", [](const Screen &s) { return s.kind == "panel" && s.isKey; });
    ExpectAllOfIt("save panel");
    mPerson.PressTo("Escape", [](const Screen &s) { return s.kind == "dialog" && s.isKey; });
    mPerson.PressTo("Return", [this](const Screen &) { return mPerson.HostHasEnded(); });
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
    EXPECT_EQ(Int16FromBigEndian(mPerson.Record().fromPage_be), 2);
    EXPECT_EQ(Int16FromBigEndian(mPerson.Record().toPage_be), 7);
}

} // namespace
