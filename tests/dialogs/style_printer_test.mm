// The page-setup dialog's sheets and panels, and what printers and profiles do to it.
#import "dialogs/DialogSupport.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "support/Alerts.h"
#import "tests/dialogs/StyleFlow.h"
#include "tests/dialogs/TestBundle.h"

#include <atomic>
#include <dispatch/dispatch.h>
#include <filesystem>
#include <thread>

namespace {

constexpr int kA4 = 0, kLetter = 1, kTabloid = 2, kCustom = -1;

NSInteger SelectedTag(NSPopUpButton *popup) { return [[popup selectedItem] tag]; }

void ExpectTextAbove(const char *text) {
    EXPECT_NE(WindowTexts(WindowAboveDialog()).find(text), std::string::npos)
        << WindowTexts(WindowAboveDialog());
}

PPDOptions WithoutCustomPages() {
    PPDOptions options;
    options.hasCustomPages = false;
    return options;
}

// Separations

TEST_F(StyleFlow, Separations_Profiles_AreListedAndChosen) {
    AddProfile("Paper 10");
    AddProfile("Paper 2");
    SetSeparation("Paper 10");
    WhenOpen([] {
        NSPopUpButton *menu = [Controller() cmykMenu];
        EXPECT_EQ([menu numberOfItems], 3);
        EXPECT_EQ(std::string([[[menu itemAtIndex:1] title] UTF8String]), "Paper 2");
        EXPECT_EQ(std::string([[[menu itemAtIndex:2] title] UTF8String]), "Paper 10");
        EXPECT_EQ(SelectedTag(menu), 2);
        ChooseTag(menu, 0);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mRecord.cmykSeparationName[0], 8);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(mRecord.cmykSeparationName) + 1), "Standard");
}

TEST_F(StyleFlow, Separations_ProfileNamedStandard_IsListedButMeansTheBuiltIn) {
    AddProfile("Standard");
    SetSeparation("Standard");
    WhenOpen([] {
        EXPECT_EQ([[Controller() cmykMenu] numberOfItems], 2);
        EXPECT_EQ(SelectedTag([Controller() cmykMenu]), 0);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
}

TEST_F(StyleFlow, Separations_ProfileRemovedWhileOpen_CanStillBeChosen) {
    AddProfile("Fleeting");
    WhenOpen([this] {
        RemoveProfile("Fleeting");
        ChooseTag([Controller() cmykMenu], 1);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mRecord.cmykSeparationName[0], 8);
    // The next dialog tells.
    WhenAbove([] {
        ExpectTextAbove("Fleeting");
        PressButton(WindowAboveDialog(), @"Cancel");
    });
    EXPECT_FALSE(Run());
}

TEST_F(StyleFlow, MissingSeparation_Cancel_CancelsTheDialog) {
    SetSeparation("Removed profile");
    WhenAbove([] {
        ExpectTextAbove("The document cannot be printed as it is set up.");
        ExpectTextAbove("The CMYK separation \u201cRemoved profile\u201d is missing.");
        TakePicture(WindowAboveDialog(), "style-missing-separation-sheet");
        PressButton(WindowAboveDialog(), @"Cancel");
    });
    const PSHPrint before = mRecord;
    EXPECT_FALSE(Run());
    ExpectSameRecord(mRecord, before);
}

TEST_F(StyleFlow, MissingSeparation_UseStandard_EmptiesTheName) {
    SetSeparation("Removed profile");
    WhenAbove([] { PressButton(WindowAboveDialog(), @"Use Standard"); });
    WhenOpen([] { EXPECT_EQ(SelectedTag([Controller() cmykMenu]), 0); });
    Press(@"OK");
    EXPECT_TRUE(Run());
    for (uint8_t byte : mRecord.cmykSeparationName)
        EXPECT_EQ(byte, 0);
}

TEST_F(StyleFlow, MissingSeparation_NotCMYK_IsClearedWithoutAWord) {
    SetSeparation("Removed profile");
    mRecord.mColourSpace_be = SwapBigEndian(uint32_t{2});
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mRecord.cmykSeparationName[0], 0);
}

// Size from the document

TEST_F(StyleFlow, MissingSeparation_PrinterWithoutColour_IsClearedWithoutAWord) {
    PPDOptions options;
    options.hasColour = false;
    UsePrinter(options);
    SetSeparation("Removed profile");
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mRecord.mColourSpace_be, SwapBigEndian(uint32_t{1}));
    EXPECT_EQ(mRecord.cmykSeparationName[0], 0);
}

TEST_F(StyleFlow, DocumentSize_Fits_IsTakenAtOnce) {
    WhenOpen([] {
        PressControl([Controller() documentSizeButton]);
        EXPECT_EQ(SelectedTag([Controller() pagesMenu]), kCustom);
        EXPECT_EQ(Text([Controller() pageWidth]), "210.00");
        EXPECT_EQ(Text([Controller() pageHeight]), "297.00");
        EXPECT_EQ(Text([Controller() resolution]), "300");
        EXPECT_EQ(ResolutionName(), "600dpi");
        EXPECT_EQ(SelectedTag([Controller() resolutionMenu]), 2);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_NEAR(DoubleFromBigEndian(mRecord.mPageWidth_be), 210 * 72 / 25.4, 1e-9);
}

class StyleDocumentSheet : public StyleFlow {
  protected:
    /// Presses From Document, then `button` in the sheet that must have both texts.
    void AskAndPress(const char *message, const char *informative, NSString *button,
                     const char *picture) {
        WhenOpen([] { PressLater([Controller() documentSizeButton]); });
        WhenAbove([=] {
            ExpectTextAbove(message);
            ExpectTextAbove(informative);
            TakePicture(WindowAboveDialog(), picture);
            PressButton(WindowAboveDialog(), button);
        });
    }
    void UseSmallPaper() {
        PPDOptions options;
        options.maxWidth = 500;
        UsePrinter(options);
    }
};

TEST_F(StyleDocumentSheet, TooLarge_OK_MakesItAsLargeAsPossible) {
    UseSmallPaper();
    AskAndPress("too large", "as large as possible", @"OK", "style-too-large-sheet");
    WhenOpen([] { EXPECT_EQ(SelectedTag([Controller() pagesMenu]), kCustom); });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(DoubleFromBigEndian(mRecord.mPageWidth_be), 500);
    EXPECT_NEAR(DoubleFromBigEndian(mRecord.mPageHeight_be), 297 * 72 / 25.4, 1e-9);
}

TEST_F(StyleDocumentSheet, TooLarge_Cancel_ChangesNothing) {
    UseSmallPaper();
    AskAndPress("too large", "as large as possible", @"Cancel", "style-too-large-sheet");
    Press(@"OK");
    const PSHPrint before = mRecord;
    EXPECT_TRUE(Run());
    ExpectSameRecord(mRecord, before);
}

TEST_F(StyleDocumentSheet, NoCustomSize_OK_TakesTheBestStandardPage) {
    UsePrinter(WithoutCustomPages());
    AskAndPress("no custom page sizes", "standard size", @"OK", "style-no-custom-sheet");
    WhenOpen([] { EXPECT_EQ(SelectedTag([Controller() pagesMenu]), kTabloid); });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(RecordName(mRecord.mPageName), "Tabloid");
}

TEST_F(StyleDocumentSheet, NoCustomSize_Cancel_ChangesNothing) {
    UsePrinter(WithoutCustomPages());
    AskAndPress("no custom page sizes", "standard size", @"Cancel", "style-no-custom-sheet");
    Press(@"OK");
    const PSHPrint before = mRecord;
    EXPECT_TRUE(Run());
    ExpectSameRecord(mRecord, before);
}

TEST_F(StyleFlow, DocumentSize_EPS_IsTakenWithoutAsking) {
    PPDOptions options;
    options.maxWidth = 500;
    UsePrinter(options);
    mRecord.mEPSFormat_be = SwapBigEndian(uint32_t{1});
    WhenOpen([] {
        PressControl([Controller() documentSizeButton]);
        EXPECT_EQ(SelectedTag([Controller() pagesMenu]), kCustom);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
}

TEST_F(StyleFlow, DocumentSize_HostSuggestedNone_CannotBeAskedFor) {
    mParams.document.widthPixels = mParams.document.heightPixels = 0;
    WhenOpen([] { EXPECT_FALSE([[Controller() documentSizeButton] isEnabled]); });
    Press(@"OK");
    EXPECT_TRUE(Run());
}

// PPD files

class StylePPD : public StyleFlow {
  protected:
    /// Presses Choose and lets `answer` have the panel.
    void ChoosePPD(std::function<void(NSOpenPanel *)> answer) {
        WhenOpen([] { PressLater([Controller() choosePPDButton]); });
        WhenAbove([answer] {
            NSOpenPanel *panel = (NSOpenPanel *)WindowAboveDialog();
            ASSERT_TRUE([panel isKindOfClass:[NSOpenPanel class]]);
            answer(panel);
            StopModalAndWake();
        });
    }
    static CFRef<CFPropertyListRef> SavedPPD() {
        return CFRef<CFPropertyListRef>(
            CFPreferencesCopyAppValue(CFSTR("PPDBookmark"), TestBundleIdentifier()));
    }
    static NSBrowser *Browser(NSView *view) {
        for (NSView *sub in [view subviews]) {
            if ([sub isKindOfClass:[NSBrowser class]]) return (NSBrowser *)sub;
            if (NSBrowser *found = Browser(sub)) return found;
        }
        return nil;
    }
    static void Pick(NSOpenPanel *panel, const std::string &path) {
        NSString *chosen = [NSString stringWithUTF8String:path.c_str()];
        NSBrowser *browser = Browser([panel contentView]);
        // From the root on: when columns of another path are open, GNUstep's browser may count
        // wrong.
        [browser loadColumnZero];
        EXPECT_TRUE([browser setPath:chosen]) << path;
        TakePicture(panel, "style-open-panel");
        [panel ok:nil];
    }
};

TEST_F(StylePPD, Choose_File_ReplacesThePrinter) {
    PPDOptions options = WithoutCustomPages();
    options.hasColour = false;
    options.extra =
        "*PageSize B0: \"\"\n*ImageableArea B0: \"0 0 2834 4008\"\n*Resolution 2400dpi: \"\"\n";
    WriteFile(mFolder, "Other.ppd", PPDText(options));
    WriteFile(mFolder, "Notes.txt", "not a PPD file");
    ChoosePPD([this](NSOpenPanel *panel) {
        EXPECT_FALSE([panel allowsMultipleSelection]);
        EXPECT_TRUE([panel canChooseFiles]);
        EXPECT_FALSE([panel canChooseDirectories]);
        Pick(panel, mFolder + "/Other.ppd");
    });
    WhenOpen([] {
        EXPECT_EQ(Text([Controller() ppdTitleText]), "Other.ppd");
        EXPECT_EQ([[Controller() pagesMenu] numberOfItems], 5);
        EXPECT_EQ([[Controller() resolutionMenu] numberOfItems], 4);
        EXPECT_FALSE([[Controller() colourMenu] isEnabled]);
        EXPECT_FALSE([[Controller() pageWidth] isEnabled]);
        EXPECT_EQ(SelectedTag([Controller() pagesMenu]), kA4);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(mPrinter->GetName(), "Other.ppd");
    const CFRef<CFPropertyListRef> saved(SavedPPD());
    ASSERT_TRUE(saved);
    EXPECT_EQ(CFGetTypeID(saved.Get()), CFDataGetTypeID());
}

class StylePPDCancelled : public StylePPD, public testing::WithParamInterface<bool> {};

TEST_P(StylePPDCancelled, Choose_TwoFilesThenCancel_KeepsTheSavedChoice) {
    const bool hadChoice = GetParam();
    if (hadChoice) SetPreference(CFSTR("PPDBookmark"), CFSTR("what was saved before"));
    for (const char *name : {"/Second.ppd", "/Third.ppd"}) {
        WriteFile(mFolder, name, PPDText());
        ChoosePPD([this, name](NSOpenPanel *panel) { Pick(panel, mFolder + name); });
        WhenOpen([] {
            const CFRef<CFPropertyListRef> saved(SavedPPD());
            ASSERT_TRUE(saved);
            EXPECT_EQ(CFGetTypeID(saved.Get()), CFDataGetTypeID());
        });
    }
    Press(@"Cancel");
    EXPECT_FALSE(Run());
    const CFRef<CFPropertyListRef> saved(SavedPPD());
    ASSERT_EQ(static_cast<bool>(saved), hadChoice);
    if (hadChoice) EXPECT_TRUE(CFEqual(saved.Get(), CFSTR("what was saved before")));
    EXPECT_EQ(mPrinter->GetName(), "Third.ppd");
}

INSTANTIATE_TEST_SUITE_P(SavedBefore, StylePPDCancelled, testing::Bool());

TEST_F(StylePPD, Choose_Cancelled_KeepsThePrinter) {
    ChoosePPD([](NSOpenPanel *panel) { [panel cancel:nil]; });
    WhenOpen([] { EXPECT_EQ(Text([Controller() ppdTitleText]), "Test.ppd"); });
    Press(@"OK");
    const PostscriptPrinterInfo *before = mPrinter;
    EXPECT_TRUE(Run());
    EXPECT_EQ(mPrinter, before);
    EXPECT_FALSE(SavedPPD());
}

TEST_F(StylePPD, Choose_FoldersThatGoWhileThePanelIsOpen_AreNoHindrance) {
    const std::string deep = mFolder + "/1/2/3/4/5/6";
    std::filesystem::create_directories(deep);
    WriteFile(deep, "Deep.ppd", PPDText());
    std::filesystem::create_directory(mFolder + "/1/goes");
    ChoosePPD([&](NSOpenPanel *panel) {
        NSBrowser *browser = Browser([panel contentView]);
        [browser loadColumnZero];
        EXPECT_TRUE([browser setPath:[NSString stringWithUTF8String:(mFolder + "/1/2").c_str()]]);
        std::filesystem::remove(mFolder + "/1/goes");
        NSString *path = [NSString stringWithUTF8String:(deep + "/Deep.ppd").c_str()];
        EXPECT_TRUE([browser setPath:path]);
        [panel ok:nil];
    });
    WhenOpen([] { EXPECT_EQ(Text([Controller() ppdTitleText]), "Deep.ppd"); });
    Press(@"OK");
    EXPECT_TRUE(Run());
}

TEST_F(StyleFlow, PanelFilter_FoldersAndPPDFilesOnly) {
    WriteFile(mFolder, "good", PPDText());
    WriteFile(mFolder, "bad.ppd", "*PPD-Other: \"4.3\"\n");
    std::filesystem::create_directory(mFolder + "/folder");
    std::filesystem::create_directory(mFolder + "/Thing.app");
    WhenOpen([this] {
        const auto enables = [this](const char *name) {
            NSString *path = [NSString stringWithUTF8String:(mFolder + "/" + name).c_str()];
            const BOOL enabled = [Controller() panel:nil
                                     shouldEnableURL:[NSURL fileURLWithPath:path]];
            if (std::filesystem::exists(mFolder + "/" + name))
                EXPECT_EQ(enabled, [(id)Controller() panel:nil shouldShowFilename:path]);
            return enabled;
        };
        EXPECT_TRUE(enables("good"));
        EXPECT_TRUE(enables("Test.ppd"));
        EXPECT_TRUE(enables("folder"));
        EXPECT_FALSE(enables("bad.ppd"));
        EXPECT_FALSE(enables("Thing.app"));
        EXPECT_FALSE(enables("missing"));
    });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
}

TEST_F(StyleFlow, PPD_FileDisappearsWhileOpen_DialogWorksOn) {
    WhenOpen([this] {
        std::filesystem::remove(mFolder + "/Test.ppd");
        ChooseTag([Controller() formatMenu], 2);
        ChooseTag([Controller() formatMenu], 1);
        ChooseTag([Controller() pagesMenu], kLetter);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
    EXPECT_EQ(RecordName(mRecord.mPageName), "Letter");
}

TEST_F(StyleFlow, PPD_WithoutPages_SelectsNoneAndCanBeLeft) {
    PPDOptions options = WithoutCustomPages();
    options.hasPages = false;
    UsePrinter(options);
    WhenOpen([] {
        EXPECT_EQ([[Controller() pagesMenu] numberOfItems], 1);
        TakePicture(DialogWindow(), "style-no-pages");
        ChooseTag([Controller() formatMenu], 2);
        TypeInto([Controller() pageWidth], "100");
        EXPECT_EQ(SelectedTag([Controller() pagesMenu]), kCustom);
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
}

TEST_F(StyleFlow, PPD_500Pages_AreAllThere) {
    PPDOptions options;
    for (int i = 0; i < 500; ++i) {
        const std::string n = std::to_string(1000 + i);
        options.extra += "*PageSize P" + n + "/Page number " + n + ": \"\"\n*ImageableArea P" + n +
                         ": \"0 0 " + std::to_string(200 + i) + " 500\"\n";
    }
    UsePrinter(options);
    WhenOpen([] {
        EXPECT_EQ([[Controller() pagesMenu] numberOfItems], 504);
        ChooseTag([Controller() pagesMenu], 501);
        EXPECT_EQ(PageName(), "P1499");
        TypeInto([Controller() pageWidth], "70.56");
        EXPECT_EQ(PageName(), "P1000");
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
}

TEST_F(StyleFlow, PPD_EqualTitles_StaySeparateItems) {
    PPDOptions options;
    options.extra = "*PageSize X1/Same: \"\"\n*ImageableArea X1: \"0 0 300 400\"\n"
                    "*PageSize X2/Same: \"\"\n*ImageableArea X2: \"0 0 301 400\"\n";
    UsePrinter(options);
    WhenOpen([] {
        EXPECT_EQ([[Controller() pagesMenu] numberOfItems], 6);
        ChooseTag([Controller() pagesMenu], 4);
        EXPECT_EQ(PageName(), "X2");
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
}

TEST_F(StyleFlow, PPD_LongAndForeignNames_AreShown) {
    const std::string longName(300, 'L');
    PPDOptions options;
    options.extra = "*PageSize Long/" + longName +
                    ": \"\"\n*PageSize Latin/Gr\xf6\xdf"
                    "e: \"\"\n"
                    "*Resolution 150dpi/\xe4rmlich: \"\"\n";
    UsePrinter(options);
    SetRecordName(mRecord.mPageName, "Long");
    WhenOpen([longName] {
        NSPopUpButton *pages = [Controller() pagesMenu];
        EXPECT_EQ(std::string([[[pages itemAtIndex:1] title] UTF8String]), "Größe");
        EXPECT_EQ(std::string([[pages titleOfSelectedItem] UTF8String]), longName);
        EXPECT_EQ(std::string([[[[Controller() resolutionMenu] itemAtIndex:1] title] UTF8String]),
                  "ärmlich");
        TakePicture(DialogWindow(), "style-long-names");
        ChooseTag([Controller() resolutionMenu], 1);
        EXPECT_EQ(ResolutionName(), "150dpi");
    });
    Press(@"OK");
    EXPECT_TRUE(Run());
}

struct DeclaredEncoding {
    const char *name, *bytes, *shown;
};

class StyleEncoding : public StyleFlow, public testing::WithParamInterface<DeclaredEncoding> {};

TEST_P(StyleEncoding, PPD_Names_AreReadAsTheFileDeclares) {
    const DeclaredEncoding encoding = GetParam();
    PPDOptions options;
    options.extra = "*LanguageEncoding: " + std::string(encoding.name) + "\n*PageSize AA/" +
                    encoding.bytes + ": \"\"\n*Resolution 150dpi/" + encoding.bytes + ": \"\"\n";
    UsePrinter(options);
    WhenOpen([encoding] {
        const auto title = [](NSPopUpButton *popup, NSInteger index) {
            return std::string([[[popup itemAtIndex:index] title] UTF8String]);
        };
        EXPECT_EQ(title([Controller() pagesMenu], 1), encoding.shown);
        EXPECT_EQ(title([Controller() resolutionMenu], 1), encoding.shown);
    });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
}

INSTANTIATE_TEST_SUITE_P(Encodings, StyleEncoding,
                         testing::Values(DeclaredEncoding{"ISOLatin1",
                                                          "Gr\xf6\xdf"
                                                          "e",
                                                          "Größe"},
                                         DeclaredEncoding{"WindowsANSI", "\x84x\x93 \x80", "„x“ €"},
                                         DeclaredEncoding{"MacStandard",
                                                          "Gr\x9a\xa7"
                                                          "e",
                                                          "Größe"},
                                         DeclaredEncoding{"ISOLatin2", "\xb3", "ł"},
                                         DeclaredEncoding{"ISOLatin5", "\xfd", "ı"},
                                         DeclaredEncoding{"JIS83-RKSJ", "\x97p\x8e\x86", "用紙"},
                                         DeclaredEncoding{"UTF-8", "Größe", "Größe"},
                                         DeclaredEncoding{"UTF-8",
                                                          "Gr\xf6\xdf"
                                                          "e",
                                                          "PPD Error"},
                                         DeclaredEncoding{"None",
                                                          "Gr\xf6\xdf"
                                                          "e",
                                                          "Größe"},
                                         DeclaredEncoding{"None", "Größe", "Größe"}));

TEST_F(StyleFlow, PPD_VeryLongFileName_GivesWayInTheMiddle) {
    const std::string name =
        "A printer of a maker with a very long name and many options, revision 12.ppd";
    CFURLRef url = FolderURL(WriteFile(mFolder, name, PPDText()));
    delete mPrinter;
    mPrinter = new PostscriptPrinterInfo(url);
    CFRelease(url);
    WhenOpen([] {
        EXPECT_NE(Text([Controller() ppdTitleText]).find("…"), std::string::npos);
        TakePicture(DialogWindow(), "style-long-ppd-name");
    });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
}

TEST_F(StyleFlow, DisplayError_OfTwoLines_IsShownInTwoLines) {
    WhenOpen([] {
        dispatch_async_f(dispatch_get_main_queue(), nullptr, [](void *) {
            DisplayError(
                " PPD File error:*DefaultPageSize not found\rUsing default settings instead");
        });
    });
    WhenAbove([] {
        ExpectTextAbove("*DefaultPageSize not found\nUsing default settings instead");
        TakePicture(WindowAboveDialog(), "style-ppd-error-alert");
        PressButton(WindowAboveDialog(), @"OK");
    });
    Press(@"Cancel");
    EXPECT_FALSE(Run());
}

// Errors of other threads

TEST_F(StyleFlow, DisplayError_FromAWorker_WaitsUntilTheUserHasClosedIt) {
    static std::atomic<bool> returned;
    returned = false;
    std::thread worker;
    WhenOpen([&worker] {
        worker = std::thread([] {
            DisplayError("The disk is full");
            returned = true;
        });
    });
    WhenAbove([] {
        ExpectTextAbove("The disk is full");
        EXPECT_FALSE(returned);
        TakePicture(WindowAboveDialog(), "error-from-worker");
        PressButton(WindowAboveDialog(), @"OK");
    });
    mScript.When(
        "the worker", [] { return returned.load(); },
        [] { PressButton(DialogWindow(), @"Cancel"); });
    EXPECT_FALSE(Run());
    worker.join();
}

} // namespace
