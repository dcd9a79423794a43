// The page-setup dialog's controls, driven from inside its process on a display of the test's own.
#import "dialogs/DialogSupport.h"
#include "ppd/PostscriptPrinterInfo.h"
#import "tests/dialogs/StyleFlow.h"
#include "tests/dialogs/TestBundle.h"

#include <cstring>

/// Notes what the key "isCMYK" becomes.
@interface ZELChangeCounter : NSObject {
  @public
    std::vector<bool> _values;
}
@end

@implementation ZELChangeCounter
- (void)observeValueForKeyPath:(NSString *)path
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context {
    _values.push_back([[change objectForKey:NSKeyValueChangeNewKey] boolValue]);
}
@end

namespace {

constexpr int kA4 = 0, kLetter = 1, kTabloid = 2, kCustom = -1;

std::vector<std::string> Titles(NSPopUpButton *popup) {
    std::vector<std::string> titles;
    for (NSMenuItem *item in [popup itemArray])
        titles.push_back([[item title] UTF8String]);
    return titles;
}

NSInteger SelectedTag(NSPopUpButton *popup) { return [[popup selectedItem] tag]; }

SInt32 IntegerPreference(CFStringRef key) {
    Boolean exists = 0;
    const CFIndex value = CFPreferencesGetAppIntegerValue(key, TestBundleIdentifier(), &exists);
    return exists ? (SInt32)value : -1;
}

CFNumberRef Number(SInt32 value) {
    return CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &value);
}

TEST_F(StyleFlow, Open_Record_IsShown) {
    WhenOpen([] {
        EXPECT_EQ(std::string([[DialogWindow() title] UTF8String]),
                  "ZEL Postscript Printer Driver");
        EXPECT_NE(Text([Controller() versionText]), "");
        EXPECT_EQ(Text([Controller() ppdTitleText]), "Test.ppd");
        EXPECT_EQ(Titles([Controller() pagesMenu]),
                  (std::vector<std::string>{"A4", "US Letter", "Tabloid", "Custom"}));
        EXPECT_EQ(SelectedTag([Controller() pagesMenu]), kA4);
        EXPECT_EQ(Titles([Controller() resolutionMenu]),
                  (std::vector<std::string>{"1200x600dpi", "300dpi", "600 DPI fine"}));
        EXPECT_EQ(SelectedTag([Controller() resolutionMenu]), 1);
        EXPECT_EQ(Titles([Controller() cmykMenu]), std::vector<std::string>{"Standard"});
        EXPECT_EQ(SelectedTag([Controller() unitsMenu]), kMillimetres);
        EXPECT_EQ(SelectedTag([Controller() formatMenu]), 1);
        EXPECT_EQ(Text([Controller() pageWidth]), "209.90");
        EXPECT_EQ(Text([Controller() pageHeight]), "297.04");
        EXPECT_EQ(Text([Controller() resolution]), "300");
        EXPECT_TRUE([[Controller() pageWidth] isEnabled]);
        EXPECT_TRUE([[[Controller() pagesMenu] lastItem] isEnabled]);
        EXPECT_TRUE([[Controller() colourMenu] isEnabled]);
        EXPECT_TRUE([[Controller() cmykMenu] isEnabled]);
        EXPECT_TRUE([[Controller() pageWidth] currentEditor] != nil);
        EXPECT_TRUE([[Controller() pageWidth] isEditable]);
        EXPECT_FALSE([[Controller() ppdTitleText] isEditable]);
        EXPECT_FALSE([[Controller() versionText] isSelectable]);
        TakePicture(DialogWindow(), "style-open");
    });
    Press(@"OK");
    const PSHPrint before = mRecord;
    EXPECT_TRUE(Run());
    ExpectSameRecord(mRecord, before);
}

TEST_F(StyleFlow, AllControls_Changed_AreInTheRecordAndThePreferences) {
    AddProfile("Newsprint");
    WhenOpen([] {
        ChooseTag([Controller() resolutionMenu], 2);
        ChooseTag([Controller() cmykMenu], 1);
        ChooseTag([Controller() colourMenu], 2);
        ChooseTag([Controller() unitsMenu], kInches);
        PressControl([Controller() rotateBox]);
        ChooseTag([Controller() pagesMenu], kTabloid);
        TypeInto([Controller() resolution], "150");
        PressControl([Controller() flipHorizontalBox]);
        PressControl([Controller() flipVerticalBox]);
        PressControl([Controller() sendToPrinterBox]);
        TakePicture(DialogWindow(), "style-all-changed");
    });
    Press(@"OK");
    PSHPrint expected = mRecord;
    EXPECT_TRUE(Run());
    SetRecordName(expected.mPageName, "Tabloid");
    SetRecordName(expected.mResolutionName, "600dpi");
    expected.mPageWidth_be = DoubleToBigEndian(1224); // turned
    expected.mPageHeight_be = DoubleToBigEndian(792);
    expected.mXDpi_be = expected.mYDpi_be = DoubleToBigEndian(150);
    expected.mColourSpace_be = SwapBigEndian(uint32_t{2});
    expected.mFlipH_be = expected.mFlipV_be = expected.mRotated_be = SwapBigEndian(uint32_t{1});
    std::memcpy(expected.cmykSeparationName, "\11Newsprint", 10);
    ExpectSameRecord(mRecord, expected);
    EXPECT_EQ(IntegerPreference(CFSTR("MeasurementUnit")), kInches);
    Boolean exists = 0;
    EXPECT_TRUE(CFPreferencesGetAppBooleanValue(CFSTR("SendToDefaultPrintQueue"),
                                                TestBundleIdentifier(), &exists));
    EXPECT_TRUE(exists);
}

class StyleCancelled : public StyleFlow, public testing::WithParamInterface<int> {};

TEST_P(StyleCancelled, AnyWay_LeavesRecordAndPreferencesUntouched) {
    const int way = GetParam();
    CFNumberRef unit = Number(kPoints);
    SetPreference(CFSTR("MeasurementUnit"), unit);
    CFRelease(unit);
    WhenOpen([] {
        ChooseTag([Controller() pagesMenu], kTabloid);
        ChooseTag([Controller() unitsMenu], kInches);
        ChooseTag([Controller() formatMenu], 2);
        TypeInto([Controller() pageWidth], "3");
        PressControl([Controller() rotateBox]);
        PressControl([Controller() sendToPrinterBox]);
    });
    WhenOpen([way] {
        if (way == 0) PressButton(DialogWindow(), @"Cancel");
        if (way == 1) PressKey("\033");
        if (way == 2) {
            [DialogWindow() performClose:nil];
            StopModalAndWake();
        }
    });
    const PSHPrint before = mRecord;
    const std::string preferences = PreferencesFile();
    EXPECT_NE(preferences.find("MeasurementUnit"), std::string::npos);
    EXPECT_FALSE(Run());
    ExpectSameRecord(mRecord, before);
    EXPECT_EQ(PreferencesFile(), preferences);
}

INSTANTIATE_TEST_SUITE_P(Ways, StyleCancelled, testing::Values(0, 1, 2));

TEST_F(StyleFlow, Keys_ReturnConfirms) {
    WhenOpen([] { PressKey("\r"); });
    EXPECT_TRUE(Run());
}

TEST_F(StyleFlow, Colour_LeavingCMYK_DisablesSeparations) {
    WhenOpen([] {
        EXPECT_TRUE([Controller() isCMYK]);
        ChooseTag([Controller() colourMenu], 1);
        EXPECT_FALSE([Controller() isCMYK]);
        EXPECT_FALSE([[Controller() cmykMenu] isEnabled]);
        ChooseTag([Controller() colourMenu], 2);
        EXPECT_FALSE([[Controller() cmykMenu] isEnabled]);
        TakePicture(DialogWindow(), "style-rgb");
        ChooseTag([Controller() colourMenu], 0);
        EXPECT_TRUE([[Controller() cmykMenu] isEnabled]);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mRecord.mColourSpace_be, 0u);
}

TEST_F(StyleFlow, Colour_Set_IsAnnouncedToObservers) {
    WhenOpen([] {
        ZELChangeCounter *counter = [[ZELChangeCounter new] autorelease];
        PostscriptPrinterStyleDialogController *dialog = Controller();
        [dialog addObserver:counter
                 forKeyPath:@"isCMYK"
                    options:NSKeyValueObservingOptionNew
                    context:NULL];
        [dialog setColourspace:2];
        EXPECT_EQ(counter->_values, std::vector<bool>{false});
        ChooseTag([dialog colourMenu], 1);
        ChooseTag([dialog colourMenu], 0);
        EXPECT_EQ(counter->_values, (std::vector<bool>{false, false, true}));
        [dialog removeObserver:counter forKeyPath:@"isCMYK"];
    });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
}

TEST_F(StyleFlow, Colour_PrinterWithout_IsGrayAndDisabled) {
    PPDOptions options;
    options.hasColour = false;
    UsePrinter(options);
    WhenOpen([] {
        EXPECT_FALSE([[Controller() colourMenu] isEnabled]);
        EXPECT_FALSE([[Controller() cmykMenu] isEnabled]);
        EXPECT_EQ(SelectedTag([Controller() colourMenu]), 1);
        TakePicture(DialogWindow(), "style-no-colour");
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(SwapBigEndian(mRecord.mColourSpace_be), 1u);
}

TEST_F(StyleFlow, Units_Chosen_ShowTheSameSize) {
    WhenOpen([] {
        const char *const widths[] = {"2479", "595.00", "209.90", "8.26"};
        const char *const heights[] = {"3508", "842.00", "297.04", "11.69"};
        for (int unit = 0; unit < 4; ++unit) {
            ChooseTag([Controller() unitsMenu], unit);
            EXPECT_EQ(Text([Controller() pageWidth]), widths[unit]);
            EXPECT_EQ(Text([Controller() pageHeight]), heights[unit]);
        }
    });
    Press(@"OK");
    const PSHPrint before = mRecord;
    EXPECT_TRUE(Run());
    ExpectSameRecord(mRecord, before);
}

struct UnitPreference {
    SInt32 stored, shown;
};

class StyleUnitPreference : public StyleFlow, public testing::WithParamInterface<UnitPreference> {};

TEST_P(StyleUnitPreference, Open_Unit_ComesFromThePreferences) {
    CFNumberRef number = Number(GetParam().stored);
    SetPreference(CFSTR("MeasurementUnit"), number);
    CFRelease(number);
    WhenOpen([] { EXPECT_EQ(SelectedTag([Controller() unitsMenu]), GetParam().shown); });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(IntegerPreference(CFSTR("MeasurementUnit")), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(Units, StyleUnitPreference,
                         testing::Values(UnitPreference{0, 0}, UnitPreference{1, 1},
                                         UnitPreference{3, 3}, UnitPreference{4, kMillimetres},
                                         UnitPreference{-1, kMillimetres}));

TEST_F(StyleFlow, Preferences_OfWrongTypes_AreIgnored) {
    SetPreference(CFSTR("MeasurementUnit"), CFSTR("furlongs"));
    CFMutableArrayRef list = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    SetPreference(CFSTR("SendToDefaultPrintQueue"), list);
    CFRelease(list);
    WhenOpen([] {
        EXPECT_EQ(SelectedTag([Controller() unitsMenu]), kMillimetres);
        EXPECT_FALSE([Controller() sendToPrinter]);
    });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
}

TEST_F(StyleFlow, Queue_StoredTrue_IsShownAndCanBeTurnedOff) {
    SetPreference(CFSTR("SendToDefaultPrintQueue"), kCFBooleanTrue);
    WhenOpen([] {
        EXPECT_EQ([[Controller() sendToPrinterBox] state], NSOnState);
        PressControl([Controller() sendToPrinterBox]);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    Boolean exists = 0;
    EXPECT_FALSE(CFPreferencesGetAppBooleanValue(CFSTR("SendToDefaultPrintQueue"),
                                                 TestBundleIdentifier(), &exists));
    EXPECT_TRUE(exists);
}

TEST_F(StyleFlow, Page_Chosen_ShowsItsSize) {
    WhenOpen([] {
        ChooseTag([Controller() pagesMenu], kLetter);
        EXPECT_EQ(Text([Controller() pageWidth]), "215.90");
        EXPECT_EQ(PageName(), "Letter");
        ChooseTag([Controller() pagesMenu], kCustom);
        EXPECT_TRUE(ShownRecord().mPageIsCustom_be != 0);
        EXPECT_EQ(Text([Controller() pageWidth]), "215.90");
        TakePicture(DialogWindow(), "style-custom");
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(SwapBigEndian(mRecord.mPageIsCustom_be), 1u);
    EXPECT_EQ(DoubleFromBigEndian(mRecord.mPageWidth_be), 612);
}

TEST_F(StyleFlow, Page_UnknownName_BecomesTheDefaultPage) {
    SetRecordName(mRecord.mPageName, "Gone");
    WhenOpen([] { EXPECT_EQ(SelectedTag([Controller() pagesMenu]), kLetter); });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(RecordName(mRecord.mPageName), "Letter");
}

TEST_F(StyleFlow, Rotate_NamedPage_TurnsItsSize) {
    WhenOpen([] {
        PressControl([Controller() rotateBox]);
        EXPECT_TRUE([Controller() rotate90]);
        EXPECT_EQ(Text([Controller() pageWidth]), "297.04");
        EXPECT_EQ(Text([Controller() pageHeight]), "209.90");
        EXPECT_EQ(SelectedTag([Controller() pagesMenu]), kA4);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(DoubleFromBigEndian(mRecord.mPageWidth_be), 842);
    EXPECT_EQ(SwapBigEndian(mRecord.mRotated_be), 1u);
}

TEST_F(StyleFlow, Page_ChosenAgainOnARotatedRecord_StaysAsItIsShown) {
    mRecord.mRotated_be = SwapBigEndian(uint32_t{1});
    WhenOpen([] {
        for (const int page : {kA4, kLetter, kA4}) {
            ChooseTag([Controller() pagesMenu], page);
            EXPECT_EQ(Text([Controller() pageWidth]), page == kA4 ? "297.04" : "279.40");
            EXPECT_EQ(Text([Controller() pageHeight]), page == kA4 ? "209.90" : "215.90");
        }
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(DoubleFromBigEndian(mRecord.mPageWidth_be), 842);
    EXPECT_EQ(DoubleFromBigEndian(mRecord.mPageHeight_be), 595);
}

// A size that is being typed is checked when the user confirms, whatever else has been changed.
TEST_F(StyleFlow, Typing_ThenRotateOrFormat_KeepsTheText) {
    WhenOpen([] {
        TypeInto([Controller() pageWidth], "wide");
        PressControl([Controller() rotateBox]);
        EXPECT_EQ(Text([Controller() pageWidth]), "wide");
        ChooseTag([Controller() formatMenu], 2);
        EXPECT_EQ(Text([Controller() pageWidth]), "wide");
        ChooseTag([Controller() formatMenu], 1);
        EXPECT_EQ(Text([Controller() pageWidth]), "wide");
        PressLater([Controller() okButton]);
    });
    WhenAbove([] {
        EXPECT_NE(WindowTexts(WindowAboveDialog()).find("Width is not a number."),
                  std::string::npos);
        PressButton(WindowAboveDialog(), @"OK");
    });
    WhenOpen([] { TypeInto([Controller() pageWidth], "100"); });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_NEAR(DoubleFromBigEndian(mRecord.mPageWidth_be), 100 * 72 / 25.4, 1e-9);
}

TEST_F(StyleFlow, Typing_ThenAFormatWithoutCustomSizes_ShowsThePage) {
    PPDOptions options;
    options.hasCustomPages = false;
    UsePrinter(options);
    mRecord.mEPSFormat_be = SwapBigEndian(uint32_t{1});
    WhenOpen([] {
        TypeInto([Controller() pageWidth], "wide");
        ChooseTag([Controller() formatMenu], 1);
        EXPECT_EQ(Text([Controller() pageWidth]), "209.90");
        EXPECT_FALSE([[Controller() pageWidth] isEnabled]);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(RecordName(mRecord.mPageName), "A4");
}

TEST_F(StyleFlow, Typing_SizeOfAPageThenRotate_TurnsThePage) {
    WhenOpen([] {
        TypeInto([Controller() pageWidth], "215.90");
        TypeInto([Controller() pageHeight], "279.40");
        PressControl([Controller() rotateBox]);
        EXPECT_EQ(Text([Controller() pageWidth]), "279.40");
        EXPECT_EQ(PageName(), "Letter");
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(DoubleFromBigEndian(mRecord.mPageWidth_be), 792);
}

TEST_F(StyleFlow, Page_CustomChosenAgain_KeepsWhatIsTyped) {
    WhenOpen([] {
        TypeInto([Controller() pageWidth], "100");
        TypeInto([Controller() pageHeight], "20");
        ChooseTag([Controller() pagesMenu], kCustom);
        EXPECT_EQ(Text([Controller() pageHeight]), "20");
    });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
}

TEST_F(StyleFlow, Format_EPS_AllowsCustomSizesOnAnyPrinter) {
    PPDOptions options;
    options.hasCustomPages = false;
    UsePrinter(options);
    WhenOpen([] {
        EXPECT_FALSE([[Controller() pageWidth] isEnabled]);
        EXPECT_FALSE([[Controller() pageHeight] isEnabled]);
        EXPECT_FALSE([[[Controller() pagesMenu] lastItem] isEnabled]);
        EXPECT_TRUE([[Controller() resolution] currentEditor] != nil);
        TakePicture(DialogWindow(), "style-no-custom-sizes");
        ChooseTag([Controller() formatMenu], 2);
        EXPECT_TRUE([[Controller() pageWidth] isEnabled]);
        EXPECT_TRUE([[[Controller() pagesMenu] lastItem] isEnabled]);
        TypeInto([Controller() pageWidth], "1000");
        EXPECT_EQ(SelectedTag([Controller() pagesMenu]), kCustom);
        TakePicture(DialogWindow(), "style-eps-custom");
        double limits[4];
        [Controller() getCustomDimensionMinWidth:limits
                                       minHeight:limits + 1
                                        maxWidth:limits + 2
                                       maxHeight:limits + 3];
        EXPECT_EQ(limits[0], 0.01);
        EXPECT_EQ(limits[3], 1000000);
        ChooseTag([Controller() formatMenu], 1);
        EXPECT_FALSE([[Controller() pageWidth] isEnabled]);
        EXPECT_EQ(SelectedTag([Controller() pagesMenu]),
                  kLetter); // no name is left of a custom page
        EXPECT_EQ(ShownRecord().mPageIsCustom_be, 0u);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mRecord.mEPSFormat_be, 0u);
}

TEST_F(StyleFlow, Format_StoredEPS_IsSelected) {
    mRecord.mEPSFormat_be = 7;
    WhenOpen([] { EXPECT_EQ(SelectedTag([Controller() formatMenu]), 2); });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mRecord.mEPSFormat_be, 7u);
}

TEST_F(StyleFlow, Typing_SizeOfAPage_SelectsIt) {
    WhenOpen([] {
        TypeInto([Controller() pageWidth], "215.90");
        EXPECT_EQ(SelectedTag([Controller() pagesMenu]), kCustom);
        EXPECT_EQ(PageName(), "");
        TypeInto([Controller() pageHeight], "279.40");
        EXPECT_EQ(SelectedTag([Controller() pagesMenu]), kLetter);
        EXPECT_EQ(PageName(), "Letter");
        EXPECT_EQ(ShownRecord().mPageIsCustom_be, 0u);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(RecordName(mRecord.mPageName), "Letter");
    EXPECT_NEAR(DoubleFromBigEndian(mRecord.mPageWidth_be), 612, 1e-9);
}

// While it is typed the page's own size is shown, in any unit; what is confirmed is what was typed.
TEST_F(StyleFlow, Typing_SizeOfAPage_IsStoredAsTyped) {
    WhenOpen([] {
        TypeInto([Controller() pageWidth], "209.90");
        TypeInto([Controller() pageHeight], "297.04");
        EXPECT_EQ(DoubleFromBigEndian(ShownRecord().mPageWidth_be), 595);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(RecordName(mRecord.mPageName), "A4");
    EXPECT_EQ(mRecord.mPageIsCustom_be, 0u);
    EXPECT_NEAR(DoubleFromBigEndian(mRecord.mPageWidth_be), 209.90 * 72 / 25.4, 1e-9);
    EXPECT_NEAR(DoubleFromBigEndian(mRecord.mPageHeight_be), 297.04 * 72 / 25.4, 1e-9);
}

TEST_F(StyleFlow, Typing_SizeOfAPageThenAnotherUnit_KeepsThePage) {
    WhenOpen([] {
        TypeInto([Controller() pageWidth], "209.90");
        TypeInto([Controller() pageHeight], "297.04");
        ChooseTag([Controller() unitsMenu], kPoints);
        EXPECT_EQ(Text([Controller() pageWidth]), "595.00");
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(RecordName(mRecord.mPageName), "A4");
    EXPECT_EQ(DoubleFromBigEndian(mRecord.mPageWidth_be), 595);
}

TEST_F(StyleFlow, Typing_WithoutDecimals_IsRefreshedAndMatchedOnOK) {
    WhenOpen([] {
        ChooseTag([Controller() unitsMenu], kPoints);
        TypeInto([Controller() pageWidth], "612");
        TypeInto([Controller() pageHeight], "792");
        EXPECT_EQ(SelectedTag([Controller() pagesMenu]), kCustom);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(RecordName(mRecord.mPageName), "Letter");
    EXPECT_EQ(mRecord.mPageIsCustom_be, 0u);
    EXPECT_EQ(DoubleFromBigEndian(mRecord.mPageWidth_be), 612);
}

TEST_F(StyleFlow, Typing_CustomSize_IsStored) {
    WhenOpen([] {
        TypeInto([Controller() pageWidth], "100");
        TypeInto([Controller() pageHeight], "200");
    });
    Press(@"OK");
    PSHPrint expected = mRecord;
    EXPECT_TRUE(Run());
    expected.mPageIsCustom_be = SwapBigEndian(uint32_t{1});
    SetRecordName(expected.mPageName, "");
    expected.mPageWidth_be = DoubleToBigEndian(100 * 72.0 / 25.4);
    expected.mPageHeight_be = DoubleToBigEndian(200 * 72.0 / 25.4);
    ExpectSameRecord(mRecord, expected);
}

// What is stored is what the fields show, in the unit that they show it in.
TEST_F(StyleFlow, Typing_MoreThanTwoDecimals_IsStoredAsShown) {
    WhenOpen([] {
        TypeInto([Controller() pageWidth], "100.123");
        TypeInto([Controller() pageHeight], "200.456");
        EXPECT_NEAR(DoubleFromBigEndian(ShownRecord().mPageWidth_be), 100.123 * 72 / 25.4, 1e-9);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_NEAR(DoubleFromBigEndian(mRecord.mPageWidth_be), 100.12 * 72 / 25.4, 1e-9);
    EXPECT_NEAR(DoubleFromBigEndian(mRecord.mPageHeight_be), 200.46 * 72 / 25.4, 1e-9);
}

TEST_F(StyleFlow, Typing_ThenAnotherUnit_IsStoredAsShown) {
    WhenOpen([] {
        ChooseTag([Controller() unitsMenu], kPoints);
        TypeInto([Controller() pageWidth], "201");
        TypeInto([Controller() pageHeight], "302");
        ChooseTag([Controller() unitsMenu], kInches);
        EXPECT_EQ(Text([Controller() pageWidth]), "2.79");
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_NEAR(DoubleFromBigEndian(mRecord.mPageWidth_be), 2.79 * 72, 1e-9);
    EXPECT_NEAR(DoubleFromBigEndian(mRecord.mPageHeight_be), 4.19 * 72, 1e-9);
}

TEST_F(StyleFlow, Typing_ThenAChosenPage_IsForgotten) {
    PPDOptions options;
    options.maxWidth = 500; // A4 is larger than any custom page, and no less good a choice
    UsePrinter(options);
    WhenOpen([] {
        TypeInto([Controller() pageWidth], "wide");
        ChooseTag([Controller() pagesMenu], kA4);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(RecordName(mRecord.mPageName), "A4");
    EXPECT_EQ(DoubleFromBigEndian(mRecord.mPageWidth_be), 595);
}

struct BadSize {
    int unit;
    const char *width, *height, *message;
    bool heightIsWrong;
    const char *hint;
};

class StyleBadSize : public StyleFlow, public testing::WithParamInterface<BadSize> {};

TEST_P(StyleBadSize, OK_BadSize_BeepsTellsSelectsAndStaysOpen) {
    const BadSize bad = GetParam();
    static int beeps;
    WhenOpen([bad] {
        ChooseTag([Controller() unitsMenu], bad.unit);
        const PSHPrint before = ShownRecord();
        TypeInto([Controller() pageWidth], bad.width);
        TypeInto([Controller() pageHeight], bad.height);
        if (!bad.heightIsWrong) ExpectSameRecord(ShownRecord(), before);
        beeps = BeepCount();
        PressLater([Controller() okButton]);
    });
    WhenAbove([bad] {
        EXPECT_EQ(BeepCount(), beeps + 1);
        EXPECT_NE(WindowTexts(WindowAboveDialog()).find(bad.message), std::string::npos)
            << WindowTexts(WindowAboveDialog());
        EXPECT_NE(WindowTexts(WindowAboveDialog()).find(bad.hint), std::string::npos)
            << WindowTexts(WindowAboveDialog());
        TakePicture(WindowAboveDialog(),
                    bad.heightIsWrong ? "style-range-alert" : "style-no-number-alert");
        PressButton(WindowAboveDialog(), @"OK");
    });
    WhenOpen([bad] {
        EXPECT_FALSE([Controller() isOK]);
        EXPECT_TRUE(IsTextSelected(bad.heightIsWrong ? [Controller() pageHeight]
                                                     : [Controller() pageWidth]));
        ChooseTag([Controller() pagesMenu], kA4);
    });
    Press(@"OK");
    const PSHPrint before = mRecord;
    EXPECT_TRUE(Run());
    ExpectSameRecord(mRecord, before);
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, StyleBadSize,
    testing::Values(
        BadSize{kMillimetres, "", "200", "Width is not a number.", false,
                "Width: 25.40 to 352.78 millimetres"},
        BadSize{kPoints, "wide", "200", "Width is not a number.", false,
                "Width: 72.00 to 1000.00 points"},
        BadSize{kInches, "8.5in", "11", "Width is not a number.", false,
                "Width: 1.00 to 13.89 inches"},
        BadSize{kPixels, "-600", "2000", "Width is not a number.", false,
                "Width: 300 to 4167 pixels"},
        BadSize{kPoints, "99999999999999999999", "200", "Width is not a number.", false,
                "Width: 72.00 to 1000.00 points"},
        BadSize{kPoints, "71", "200", "Width should be a number between 72.00 and 1000.00.", false,
                "Width: 72.00 to 1000.00 points"},
        BadSize{kPixels, "299", "2000", "Width should be a number between 300 and 4167.", false,
                "Width: 300 to 4167 pixels"},
        BadSize{kPoints, "100", "2000.5", "Height should be a number between 144.00 and 2000.00.",
                true, "Height: 144.00 to 2000.00 points"},
        BadSize{kInches, "5", "x", "Height is not a number.", true, "Height: 2.00 to 27.78 inches"},
        BadSize{kMillimetres, "100", "50.79", "Height should be a number between 50.80 and 705.56.",
                true, "Height: 50.80 to 705.56 millimetres"}));

TEST_F(StyleFlow, OK_NoNumberInEachFieldAndUnit_IsToldAndSelected) {
    for (int unit = 0; unit < 4; ++unit) {
        WhenOpen([unit] { ChooseTag([Controller() unitsMenu], unit); });
        for (const bool isWidth : {true, false}) {
            for (const char *wrong : {"", "1e99", "-1", "wide", "8 in"}) {
                WhenOpen([=] {
                    ChooseTag([Controller() pagesMenu], kA4);
                    TypeInto(isWidth ? [Controller() pageWidth] : [Controller() pageHeight], wrong);
                    PressLater([Controller() okButton]);
                });
                WhenAbove([=] {
                    EXPECT_NE(
                        WindowTexts(WindowAboveDialog())
                            .find(isWidth ? "Width is not a number." : "Height is not a number."),
                        std::string::npos)
                        << wrong << " in unit " << unit;
                    PressButton(WindowAboveDialog(), @"OK");
                });
                WhenOpen([=] {
                    EXPECT_TRUE(IsTextSelected(isWidth ? [Controller() pageWidth]
                                                       : [Controller() pageHeight]));
                    EXPECT_EQ(PageName(), "A4");
                });
            }
        }
    }
    Press(@"Cancel");
    const PSHPrint before = mRecord;
    EXPECT_FALSE(Run());
    ExpectSameRecord(mRecord, before);
}

TEST_F(StyleFlow, Typing_Resolution_FollowsOnlyGoodNumbers) {
    WhenOpen([] {
        for (const char *bad : {"", "x", "9", "10001", "-1", "300 dpi"}) {
            TypeInto([Controller() resolution], bad);
            EXPECT_EQ(ShownRecord().mXDpi_be, DoubleToBigEndian(300)) << bad;
        }
        TypeInto([Controller() resolution], "72.5");
        EXPECT_EQ(ShownRecord().mXDpi_be, DoubleToBigEndian(72.5));
        EXPECT_EQ(ShownRecord().mYDpi_be, DoubleToBigEndian(72.5));
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mRecord.mXDpi_be, DoubleToBigEndian(72.5));
}

class StyleBadResolution : public StyleFlow, public testing::WithParamInterface<const char *> {};

TEST_P(StyleBadResolution, OK_BadResolution_TellsSelectsAndStaysOpen) {
    const char *const bad = GetParam();
    WhenOpen([bad] {
        TypeInto([Controller() resolution], bad);
        PressLater([Controller() okButton]);
    });
    WhenAbove([] {
        const std::string texts = WindowTexts(WindowAboveDialog());
        const char *message = texts.find("is not") != std::string::npos
                                  ? "Resolution is not a number."
                                  : "Resolution should be a number between 10 and 10000.";
        EXPECT_NE(texts.find(message), std::string::npos) << texts;
        EXPECT_NE(texts.find("Resolution: 10 to 10000 dpi"), std::string::npos) << texts;
        TakePicture(WindowAboveDialog(), "style-resolution-alert");
        PressButton(WindowAboveDialog(), @"OK");
    });
    WhenOpen([bad] {
        EXPECT_FALSE([Controller() isOK]);
        EXPECT_EQ(Text([Controller() resolution]), bad);
        EXPECT_TRUE(IsTextSelected([Controller() resolution]));
        TypeInto([Controller() resolution], "1200");
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mRecord.mXDpi_be, DoubleToBigEndian(1200));
}

INSTANTIATE_TEST_SUITE_P(Resolutions, StyleBadResolution,
                         testing::Values("12000", "9", "-1", "fine", "300 dpi", ""));

TEST_F(StyleFlow, Typing_BadResolutionThenFromDocument_IsForgotten) {
    WhenOpen([] {
        TypeInto([Controller() resolution], "12000");
        PressControl([Controller() documentSizeButton]);
        EXPECT_EQ(Text([Controller() resolution]), "300");
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mRecord.mXDpi_be, DoubleToBigEndian(300));
}

TEST_F(StyleFlow, Typing_ResolutionWhilePixels_ShowsTheNewPixelCount) {
    WhenOpen([] {
        ChooseTag([Controller() unitsMenu], kPixels);
        TypeInto([Controller() resolution], "72");
        EXPECT_EQ(Text([Controller() pageWidth]), "595");
        EXPECT_EQ(Text([Controller() pageHeight]), "842");
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(DoubleFromBigEndian(mRecord.mPageWidth_be), 595);
}

TEST_F(StyleFlow, Window_Moved_OpensThereNextTime) {
    static NSPoint origin;
    WhenOpen([] {
        [DialogWindow() setFrameOrigin:NSMakePoint(123, 234)];
        origin = [DialogWindow() frame].origin;
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    WhenOpen([] {
        EXPECT_NEAR([DialogWindow() frame].origin.x, origin.x, 1);
        EXPECT_NEAR([DialogWindow() frame].origin.y, origin.y, 1);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
}

TEST_F(StyleFlow, TwentyDialogs_LeaveNoWindow) {
    for (int i = 0; i < 20; ++i) {
        Press(@"OK");
        EXPECT_TRUE(Run());
    }
    int count = 0;
    for (NSWindow *window in [NSApp windows])
        count += [window windowController] != nil;
    EXPECT_EQ(count, 0);
}

} // namespace
