// Pop-up menus under the hands of a person: clicks of any length, the wheel, the keyboard, and
// menus that are longer than the screen.
#include "Common/Src/record/PrintRecord.h"
#include "tests/dialogs/PersonTest.h"
#include "tests/dialogs/WindowManager.h"

#include <algorithm>
#include <chrono>

namespace {

using namespace std::chrono_literals;

constexpr int kScreenHeight = 1024; // of the test's display
constexpr int kCustomPage = -1;

bool IsOpen(const Screen &screen) {
    return !screen.menuHandle.empty();
}

std::string Highlighted(const Screen &screen) {
    for (const auto &[tag, item] : screen.items)
        if (item.value == "1") return tag;
    return "";
}

class MenuTest : public PersonTest {
protected:
    void OpenWithPages(int count, const std::string &page) {
        PPDOptions options;
        options.extra = ManyPages(count);
        UsePrinter(options);
        PSHPrint record = GoodRecord();
        SetRecordName(record.mPageName, page);
        OpenStyle(record);
    }
    std::string ChosenPage() { return mPerson.Look().controls["pagesMenu"].value; }
    Screen WaitForMenu() { return mPerson.WaitFor("an open menu", IsOpen); }
    void WaitForNoMenu() {
        mPerson.WaitFor("a closed menu", [](const Screen &s) { return !IsOpen(s); });
    }
    void WaitForHighlight(const std::string &tag) {
        mPerson.WaitFor("item " + tag, [&](const Screen &s) { return Highlighted(s) == tag; });
    }
    void WaitForChoice(const std::string &tag) {
        mPerson.WaitFor("page " + tag, [&](const Screen &s) {
            return !IsOpen(s) && s.controls.at("pagesMenu").value == tag;
        });
    }
    /// Ends the dialog by Return, which confirms it.
    std::string ConfirmedPage() {
        mPerson.PressTo("Return", [this](const Screen &) { return mPerson.HostHasEnded(); });
        EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
        return RecordName(mPerson.Record().mPageName);
    }
};

struct LongMenu {
    int pages;
    const char *page, *tag;
};

class LongMenuTest : public MenuTest, public testing::WithParamInterface<LongMenu> {};

TEST_P(LongMenuTest, Press_HeldForAnyTime_LeavesTheMenuOpenAtTheChosenEntry) {
    const LongMenu &menu = GetParam();
    OpenWithPages(menu.pages, menu.page);
    ASSERT_EQ(ChosenPage(), menu.tag);
    for (const auto time : {20ms, 100ms, 300ms, 600ms}) {
        mPerson.Hold("pagesMenu", time);
        const Screen screen = WaitForMenu();
        EXPECT_EQ(Highlighted(screen), menu.tag) << time.count();
        EXPECT_GE(screen.menuY, 0);
        EXPECT_LE(screen.menuY + screen.menuHeight, kScreenHeight);
        const Screen::Control &entry = screen.items.at(menu.tag);
        EXPECT_TRUE(0 < entry.y && entry.y < screen.menuRoom) << entry.y;
        EXPECT_EQ(ChosenPage(), menu.tag);
        mPerson.Press("Escape");
        WaitForNoMenu();
        EXPECT_EQ(ChosenPage(), menu.tag);
    }
    EXPECT_EQ(ConfirmedPage(), menu.page);
}

TEST_P(LongMenuTest, WhatIsUnderThePointer_IsChosen) {
    OpenWithPages(GetParam().pages, GetParam().page);
    mPerson.OpenMenu("pagesMenu");
    const Screen screen = WaitForMenu();
    mPerson.TakePicture("menu-" + std::to_string(GetParam().pages) + "-" + GetParam().page);
    const int y = screen.items.at(GetParam().tag).y;
    const auto far = std::find_if(screen.items.begin(), screen.items.end(), [&](const auto &item) {
        return std::abs(item.second.y - y) > 50 && 40 < item.second.y &&
               item.second.y < screen.menuRoom - 40;
    });
    ASSERT_NE(far, screen.items.end());
    mPerson.Press("Escape");
    WaitForNoMenu();
    mPerson.Drag("pagesMenu", std::stoi(far->first));
    EXPECT_EQ(ChosenPage(), far->first);
    ConfirmedPage();
}

INSTANTIATE_TEST_SUITE_P(Pages, LongMenuTest,
                         testing::Values(LongMenu{3, "A4", "0"}, LongMenu{171, "P1170", "172"},
                                         LongMenu{297, "P1296", "298"}, LongMenu{497, "P1007", "9"},
                                         LongMenu{497, "P1280", "282"},
                                         LongMenu{9000, "P5678", "4680"}),
                         [](const auto &test) {
                             return std::to_string(test.param.pages) + "_" + test.param.page;
                         });

TEST_F(MenuTest, Click_ThenAnotherOnAnEntry_ChoosesIt) {
    OpenWithPages(300, "A4");
    mPerson.Choose("pagesMenu", 2);
    EXPECT_EQ(ConfirmedPage(), "P1000");
}

TEST_F(MenuTest, PressMoveAndLetGo_ChoosesWhatIsUnderThePointer) {
    OpenWithPages(0, "A4");
    mPerson.Drag("pagesMenu", 2);
    EXPECT_EQ(ConfirmedPage(), "Tabloid");
}

TEST_F(MenuTest, ClickBesideTheMenu_ClosesItAlone) {
    OpenWithPages(0, "A4");
    mPerson.OpenMenu("pagesMenu");
    mPerson.Hold("okButton", 50ms);
    WaitForNoMenu();
    EXPECT_EQ(mPerson.Look().kind, "dialog");
    EXPECT_EQ(ConfirmedPage(), "A4");
}

TEST_F(MenuTest, KeysInAnOpenMenu_MoveAndChooseThereAlone) {
    OpenWithPages(300, "A4");
    mPerson.OpenMenu("pagesMenu");
    mPerson.Press("Down");
    WaitForHighlight("1");
    mPerson.Press("Up");
    WaitForHighlight("0");
    mPerson.Press("End");
    WaitForHighlight(std::to_string(kCustomPage));
    mPerson.Press("Home");
    WaitForHighlight("0");
    mPerson.Press("Next");
    mPerson.WaitFor("a page further", [](const Screen &s) { return Highlighted(s).size() == 2; });
    mPerson.Press("Escape");
    WaitForNoMenu();
    EXPECT_EQ(ChosenPage(), "0");
    mPerson.OpenMenu("pagesMenu");
    mPerson.Press("Down");
    WaitForHighlight("1");
    mPerson.Press("Return");
    WaitForChoice("1");
    EXPECT_EQ(ConfirmedPage(), "Letter");
}

TEST_F(MenuTest, LettersInAnOpenMenu_GoToTheTitleThatStartsWithThem) {
    OpenWithPages(9000, "A4");
    mPerson.OpenMenu("pagesMenu");
    mPerson.Press("t");
    WaitForHighlight("9002"); // Tabloid
    mPerson.Press("space");
    WaitForChoice("9002");
    mPerson.OpenMenu("pagesMenu");
    for (const char *key :
         {"p", "a", "g", "e", "space", "n", "u", "m", "b", "e", "r", "space", "7"})
        mPerson.Press(key);
    mPerson.WaitFor("page 7000", [](const Screen &s) { return Highlighted(s) == "6002"; });
    mPerson.Press("Return");
    WaitForChoice("6002");
    EXPECT_EQ(ConfirmedPage(), "P7000");
}

TEST_F(MenuTest, MenuOpenedByTheKeyboard_KeepsReturnAndEscapeToItself) {
    OpenWithPages(0, "A4");
    for (int i = 0; i < 30 && mPerson.Look().focus != "pagesMenu"; ++i) {
        const std::string before = mPerson.Look().focus;
        mPerson.Press("Tab");
        mPerson.WaitFor("another control", [&](const Screen &s) { return s.focus != before; });
    }
    for (const char *opening : {"space", "Down", "Up"}) {
        mPerson.Press(opening);
        WaitForMenu();
        mPerson.Press("Escape");
        WaitForNoMenu();
        EXPECT_EQ(mPerson.Look().kind, "dialog");
        EXPECT_EQ(ChosenPage(), "0");
    }
    mPerson.Press("space");
    WaitForMenu();
    mPerson.Press("Down");
    WaitForHighlight("1");
    mPerson.Press("Return");
    WaitForChoice("1");
    EXPECT_EQ(mPerson.Look().kind, "dialog");
    EXPECT_EQ(ConfirmedPage(), "Letter");
}

TEST_F(MenuTest, Wheel_ScrollsTheMenuAndNotTheChoice) {
    OpenWithPages(300, "A4");
    mPerson.OpenMenu("pagesMenu");
    const int before = WaitForMenu().items.at("10").y;
    mPerson.Wheel(2);
    mPerson.WaitFor("a scrolled menu", [&](const Screen &s) {
        return IsOpen(s) && s.items.at("10").y < before - 100;
    });
    mPerson.Wheel(-2);
    mPerson.WaitFor("the menu as before",
                    [&](const Screen &s) { return IsOpen(s) && s.items.at("10").y == before; });
    mPerson.Press("Escape");
    WaitForNoMenu();
    EXPECT_EQ(ConfirmedPage(), "A4");
}

TEST_F(MenuTest, AnotherProgramInFront_ClosesTheMenuForGood) {
    OpenWithPages(0, "A4");
    mPerson.OpenMenu("pagesMenu");
    {
        const ForeignWindow window;
        WaitForNoMenu();
    }
    mPerson.WaitForWindow("dialog");
    mPerson.Toggle("rotateBox");
    EXPECT_FALSE(IsOpen(mPerson.Look()));
    EXPECT_EQ(ConfirmedPage(), "A4");
}

/// Scales the windows of the test's host; as before when it has gone.
class ScaleFactor {
public:
    explicit ScaleFactor(CFStringRef factor) { Set(factor); }
    ~ScaleFactor() { Set(nullptr); }
    ScaleFactor(const ScaleFactor &) = delete;
    ScaleFactor &operator=(const ScaleFactor &) = delete;

private:
    static void Set(CFStringRef factor) {
        CFPreferencesSetAppValue(CFSTR("GSScaleFactor"), factor, CFSTR("dialog_host"));
        CFPreferencesAppSynchronize(CFSTR("dialog_host"));
    }
};

TEST_F(MenuTest, ScaledWindow_IsUsedAlike) {
    const ScaleFactor factor(CFSTR("1.4"));
    OpenWithPages(300, "P1100");
    mPerson.Hold("pagesMenu", 100ms);
    const Screen screen = WaitForMenu();
    mPerson.TakePicture("menu-scaled");
    const Screen::Control &entry = screen.items.at("102");
    EXPECT_EQ(Highlighted(screen), "102");
    EXPECT_TRUE(0 < entry.y && entry.y < screen.menuRoom) << entry.y;
    EXPECT_LE(screen.menuY + screen.menuHeight, kScreenHeight);
    // A row is higher than without the factor.
    EXPECT_GT(screen.items.at("103").y - entry.y, 28);
    mPerson.Press("Escape");
    WaitForNoMenu();
    mPerson.Choose("pagesMenu", 110);
    mPerson.Toggle("flipVerticalBox");
    mPerson.ClickTo("okButton", "");
    EXPECT_EQ(mPerson.Result(), "confirmed 1 opened 0 closed 0");
    EXPECT_EQ(RecordName(mPerson.Record().mPageName), "P1108");
    EXPECT_NE(mPerson.Record().mFlipV_be, 0u);
}

TEST_F(MenuTest, WindowClosedWhileAMenuIsOpen_IsACancel) {
    OpenWithPages(0, "A4");
    mPerson.OpenMenu("pagesMenu");
    mPerson.PressTo("alt+F4", [this](const Screen &) { return mPerson.HostHasEnded(); });
    EXPECT_EQ(mPerson.Result(), "confirmed 0 opened 0 closed 0");
}

} // namespace
