// Both dialogs for a German user: the words, and numbers with a decimal comma. Runs with that
// language and locale set.
#include "dialogs/JobDialog.h"
#import "dialogs/JobDialogController.h"
#import "tests/dialogs/StyleFlow.h"
#include "tests/dialogs/TestBundle.h"

namespace {

/// Does a text need more room than its control has?
bool IsCutOff(NSControl *control) {
    return [[control cell] cellSize].width > [control bounds].size.width + 1;
}

void ExpectNothingCutOff(NSView *view) {
    for (NSView *sub in [view subviews]) {
        const bool hasText =
            ([sub isKindOfClass:[NSButton class]] && ![sub isKindOfClass:[NSPopUpButton class]]) ||
            [sub isKindOfClass:[NSTextField class]];
        if (hasText)
            EXPECT_FALSE(IsCutOff((NSControl *)sub))
                << [[[(NSControl *)sub cell] title] UTF8String];
        ExpectNothingCutOff(sub);
    }
}

TEST_F(StyleFlow, German_PageSetup_IsTranslatedAndNothingCutOff) {
    WhenOpen([] {
        EXPECT_NE(WindowTexts(DialogWindow()).find("Papierformat:"), std::string::npos);
        EXPECT_TRUE(FindButton(DialogWindow(), @"Abbrechen") != nil);
        EXPECT_EQ(std::string([[[[Controller() pagesMenu] lastItem] title] UTF8String]),
                  "Eigenes Format");
        ExpectNothingCutOff([DialogWindow() contentView]);
        TakePicture(DialogWindow(), "style-german");
    });
    Press(@"Abbrechen");
    EXPECT_FALSE(Run());
}

TEST_F(StyleFlow, German_DecimalComma_IsShownAndRead) {
    WhenOpen([] {
        EXPECT_EQ(Text([Controller() pageWidth]), "209,90");
        TypeInto([Controller() pageWidth], "215,90");
        TypeInto([Controller() pageHeight], "279,40");
        EXPECT_EQ(PageName(), "Letter");
        const PSHPrint before = ShownRecord();
        TypeInto([Controller() pageWidth], "215.90");
        ExpectSameRecord(ShownRecord(), before);
        TypeInto([Controller() pageWidth], "100,5");
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_NEAR(DoubleFromBigEndian(mRecord.mPageWidth_be), 100.5 * 72 / 25.4, 1e-9);
}

TEST_F(StyleFlow, German_MissingSeparation_IsTranslated) {
    SetSeparation("Verloren");
    WhenAbove([] {
        EXPECT_NE(WindowTexts(WindowAboveDialog())
                      .find("Die CMYK-Separation \u201eVerloren\u201c fehlt."),
                  std::string::npos);
        PressButton(WindowAboveDialog(), @"Standard verwenden");
    });
    Press(@"Abbrechen");
    EXPECT_FALSE(Run());
}

TEST_F(StyleFlow, German_PrintDialog_IsTranslatedAndNothingCutOff) {
    JobChoices choices;
    choices.copies = 1;
    choices.collate = false;
    WhenOpen([] {
        EXPECT_NE(WindowTexts(DialogWindow()).find("Exemplare:"), std::string::npos);
        EXPECT_NE(WindowTexts(DialogWindow()).find("keiner"), std::string::npos);
        ExpectNothingCutOff([DialogWindow() contentView]);
        TakePicture(DialogWindow(), "job-german");
    });
    Press(@"Abbrechen");
    EXPECT_FALSE(
        JobDialog(TestBundleIdentifier(), {CFSTR("Drucken"), nullptr, CFSTR("ps")}, choices));
}

} // namespace
