// The rules of the page-setup dialog, without a window.
#include "Common/Src/record/PageSetup.h"

#include "Common/Src/record/PrintRecord.h"
#include "colour/Separations.h"
#include "ppd/ParserError.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "tests/dialogs/TestBundle.h"
#include "tests/dialogs/TestPPD.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class PageSetupRules : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("DISPLAY");
        mFolder = MakeTestFolder();
        mSeparations = ScanSeparationsFolder();
        mRecord.mXDpi_be = mRecord.mYDpi_be = DoubleToBigEndian(300);
        Use({});
    }
    void TearDown() override {
        delete mPrinter;
        DeleteSeparationsList(mSeparations);
        RemoveTestFolder(mFolder);
    }

    /// Starts over with a printer and the record.
    void Use(const PPDOptions &options) {
        const std::string path = WriteFile(mFolder, "Test.ppd", PPDText(options));
        CFURLRef url = FolderURL(path);
        delete mPrinter;
        mPrinter = new PostscriptPrinterInfo(url);
        CFRelease(url);
        mParams = {{2480, 3508, 210, 297}, mSeparations, &mPrinter, TestBundleIdentifier()};
        mSetup.Use(mRecord, &mParams);
    }
    std::string PageName() const { return RecordName(mSetup.Record().mPageName); }
    std::string ResolutionName() const { return RecordName(mSetup.Record().mResolutionName); }

    std::string mFolder;
    PSHPrint mRecord = {};
    PostscriptPrinterInfo *mPrinter = nullptr;
    Separations *mSeparations = nullptr;
    PageSetupSources mParams = {};
    PageSetup mSetup;
};

constexpr int kA4 = 0, kLetter = 1, kTabloid = 2;

PPDOptions WithoutCustomPages() {
    PPDOptions options;
    options.hasCustomPages = false;
    return options;
}

TEST_F(PageSetupRules, CustomSizes_PostScript_NeedThePrinter) {
    EXPECT_TRUE(mSetup.CanUseCustomPageSizes());
    Use(WithoutCustomPages());
    EXPECT_FALSE(mSetup.CanUseCustomPageSizes());
}

TEST_F(PageSetupRules, CustomSizes_EPS_AlwaysWithWideLimits) {
    Use(WithoutCustomPages());
    mSetup.SetEPS(true);
    EXPECT_TRUE(mSetup.CanUseCustomPageSizes());
    for (bool rotated : {false, true}) {
        mSetup.SetRotated(rotated);
        const CustomDimensions limits = mSetup.CustomLimits();
        EXPECT_EQ(limits.width.low, 0.01);
        EXPECT_EQ(limits.width.high, 1000000);
        EXPECT_EQ(limits.height.low, 0.01);
        EXPECT_EQ(limits.height.high, 1000000);
    }
}

TEST_F(PageSetupRules, CustomLimits_Rotated_AreSwapped) {
    EXPECT_EQ(mSetup.CustomLimits().width.low, 72);
    EXPECT_EQ(mSetup.CustomLimits().width.high, 1000);
    EXPECT_EQ(mSetup.CustomLimits().height.low, 144);
    EXPECT_EQ(mSetup.CustomLimits().height.high, 2000);
    mSetup.SetRotated(true);
    EXPECT_EQ(mSetup.CustomLimits().width.low, 144);
    EXPECT_EQ(mSetup.CustomLimits().width.high, 2000);
    EXPECT_EQ(mSetup.CustomLimits().height.low, 72);
    EXPECT_EQ(mSetup.CustomLimits().height.high, 1000);
}

TEST_F(PageSetupRules, Sync_KnownPage_TakesItsSize) {
    SetRecordName(mRecord.mPageName, "A4");
    Use({});
    EXPECT_EQ(mSetup.SyncPage(), kA4);
    EXPECT_EQ(mSetup.PaperWidth(), 595);
    EXPECT_EQ(mSetup.PaperHeight(), 842);
}

TEST_F(PageSetupRules, Sync_KnownPageRotated_TakesItsSizeSwapped) {
    SetRecordName(mRecord.mPageName, "A4");
    mRecord.mRotated_be = 1; // any pattern but zero counts
    Use({});
    EXPECT_EQ(mSetup.SyncPage(), kA4);
    EXPECT_EQ(mSetup.PaperWidth(), 842);
    EXPECT_EQ(mSetup.PaperHeight(), 595);
}

TEST_F(PageSetupRules, Sync_CustomSizeRotated_KeepsItsSides) {
    mRecord.mPageIsCustom_be = SwapBigEndian(uint32_t{1});
    mRecord.mPageWidth_be = DoubleToBigEndian(200);
    mRecord.mPageHeight_be = DoubleToBigEndian(300);
    Use({});
    mSetup.SetRotated(true);
    EXPECT_EQ(mSetup.SyncPage(), PageSetup::kCustomPageTag);
    EXPECT_EQ(mSetup.PaperWidth(), 200);
    EXPECT_EQ(mSetup.PaperHeight(), 300);
}

TEST_F(PageSetupRules, Sync_UnknownPage_TakesTheDefaultPage) {
    SetRecordName(mRecord.mPageName, "Gone");
    Use({});
    EXPECT_EQ(mSetup.SyncPage(), kLetter);
    EXPECT_EQ(PageName(), "Letter");
    EXPECT_EQ(mSetup.PaperWidth(), 612);
}

TEST_F(PageSetupRules, Sync_CustomSize_IsClampedToTheLimits) {
    mRecord.mPageIsCustom_be = SwapBigEndian(uint32_t{1});
    mRecord.mPageWidth_be = DoubleToBigEndian(50);
    mRecord.mPageHeight_be = DoubleToBigEndian(5000);
    Use({});
    EXPECT_EQ(mSetup.SyncPage(), PageSetup::kCustomPageTag);
    EXPECT_TRUE(mSetup.IsCustomPaper());
    EXPECT_EQ(mSetup.PaperWidth(), 72);
    EXPECT_EQ(mSetup.PaperHeight(), 2000);
}

TEST_F(PageSetupRules, Sync_CustomSizeOnAPrinterWithout_BecomesANamedPage) {
    mRecord.mPageIsCustom_be = SwapBigEndian(uint32_t{1});
    Use(WithoutCustomPages());
    EXPECT_EQ(mSetup.SyncPage(), kLetter);
    EXPECT_FALSE(mSetup.IsCustomPaper());
    EXPECT_EQ(PageName(), "Letter");
}

TEST_F(PageSetupRules, Sync_PrinterWithoutPages_LeavesTheRecord) {
    SetRecordName(mRecord.mPageName, "A4");
    PPDOptions options = WithoutCustomPages();
    options.hasPages = false;
    Use(options);
    EXPECT_EQ(mSetup.SyncPage(), PageSetup::kNoPageTag);
    EXPECT_EQ(std::memcmp(&mSetup.Record(), &mRecord, sizeof mRecord), 0);
    mSetup.ChoosePage(0);
    EXPECT_EQ(std::memcmp(&mSetup.Record(), &mRecord, sizeof mRecord), 0);
}

TEST_F(PageSetupRules, Sync_PageNameLongerThan40Bytes_FallsBackWithoutHarm) {
    const std::string name(60, 'P');
    PPDOptions options;
    options.extra = "*PageSize " + name + ": \"\"\n*ImageableArea " + name + ": \"0 0 100 200\"\n";
    Use(options);
    const std::vector<std::string> expected = {"A4", "US Letter", name, "Tabloid"};
    std::string error;
    EXPECT_EQ(mSetup.PageTitles(&error).size(), 4u);
    mSetup.ChoosePage(2);
    EXPECT_EQ(PageName(), name.substr(0, 40));
    EXPECT_EQ(mSetup.PaperWidth(), 100);
    EXPECT_EQ(mSetup.SyncPage(), kLetter); // the record cannot hold the whole name
}

TEST_F(PageSetupRules, ChoosePage_Rotated_TakesItsSizeTurned) {
    mSetup.SetRotated(true);
    mSetup.ChoosePage(kTabloid);
    EXPECT_EQ(PageName(), "Tabloid");
    EXPECT_EQ(mSetup.PaperWidth(), 1224);
    EXPECT_EQ(mSetup.PaperHeight(), 792);
}

TEST_F(PageSetupRules, ChoosePage_AfterCustom_IsNoLongerCustom) {
    mSetup.ChooseCustomPage();
    EXPECT_TRUE(mSetup.IsCustomPaper());
    mSetup.ChoosePage(kA4);
    EXPECT_FALSE(mSetup.IsCustomPaper());
}

TEST_F(PageSetupRules, ChoosePage_NoSuchIndex_IsIgnored) {
    mSetup.ChoosePage(kA4);
    for (int index : {-2, -100, 3, 1000}) {
        mSetup.ChoosePage(index);
        EXPECT_EQ(PageName(), "A4");
    }
}

TEST_F(PageSetupRules, Resolution_Chosen_IsStoredByName) {
    mSetup.ChooseResolution(2);
    EXPECT_EQ(ResolutionName(), "600dpi");
    mSetup.ChooseResolution(99);
    mSetup.ChooseResolution(-1);
    EXPECT_EQ(ResolutionName(), "600dpi");
    EXPECT_EQ(mSetup.SyncResolution(), 2);
}

TEST_F(PageSetupRules, Resolution_UnknownName_BecomesTheDefault) {
    SetRecordName(mRecord.mResolutionName, "77dpi");
    Use({});
    EXPECT_EQ(mSetup.SyncResolution(), 1);
    EXPECT_EQ(ResolutionName(), "300dpi");
}

TEST_F(PageSetupRules, Titles_AreDisplayNamesInThePrintersOrder) {
    std::string error;
    EXPECT_EQ(mSetup.PageTitles(&error), (std::vector<std::string>{"A4", "US Letter", "Tabloid"}));
    EXPECT_EQ(mSetup.ResolutionTitles(&error),
              (std::vector<std::string>{"1200x600dpi", "300dpi", "600 DPI fine"}));
    EXPECT_EQ(error, "");
}

TEST(Titles, ParserError_IsReportedWithItsPrefix) {
    std::string error;
    const auto titles = TitlesOrError(
        []() -> std::vector<std::string> { throw PPD::ParserError("*PageSize is odd"); }, &error);
    EXPECT_TRUE(titles.empty());
    EXPECT_EQ(error, "PPD Error: *PageSize is odd");
}

TEST(Titles, AnyOtherFailure_IsCaughtToo) {
    std::string error;
    (void)TitlesOrError([]() -> std::vector<std::string> { throw 5; }, &error);
    EXPECT_EQ(error, "PPD Error: unexpected failure");
}

struct TypingCase {
    const char *width, *height;
    int unit;
    bool accepted;
    int tag;
    double widthPoints, heightPoints;
};

class PageSetupTyping : public PageSetupRules, public testing::WithParamInterface<TypingCase> {};

TEST_P(PageSetupTyping, Type_Size_FindsThePageThatReadsTheSame) {
    mSetup.ChoosePage(kTabloid);
    const TypingCase &c = GetParam();
    int tag = 99;
    EXPECT_EQ(mSetup.TypeSize(c.width, c.height, c.unit, &tag), c.accepted);
    if (!c.accepted) {
        EXPECT_EQ(PageName(), "Tabloid");
        EXPECT_EQ(mSetup.PaperWidth(), 792);
        return;
    }
    EXPECT_EQ(tag, c.tag);
    EXPECT_NEAR(mSetup.PaperWidth(), c.widthPoints, 1e-9);
    EXPECT_NEAR(mSetup.PaperHeight(), c.heightPoints, 1e-9);
    EXPECT_EQ(mSetup.IsCustomPaper(), c.tag == PageSetup::kCustomPageTag);
    EXPECT_EQ(PageName(), c.tag == kA4 ? "A4" : c.tag == kLetter ? "Letter" : "");
}

constexpr int kCustom = PageSetup::kCustomPageTag;
INSTANTIATE_TEST_SUITE_P(
    Texts, PageSetupTyping,
    testing::Values(TypingCase{"595.00", "842.00", kPoints, true, kA4, 595, 842},
                    TypingCase{"595", "842", kPoints, true, kCustom, 595, 842},
                    TypingCase{"842.00", "595.00", kPoints, true, kCustom, 842, 595},
                    TypingCase{"8.50", "11.00", kInches, true, kLetter, 612, 792},
                    TypingCase{"2550", "3300", kPixels, true, kLetter, 612, 792},
                    TypingCase{"2551", "3300", kPixels, true, kCustom, 612.24, 792},
                    TypingCase{"215.90", "279.40", kMillimetres, true, kLetter, 612, 792},
                    TypingCase{"100", "200", kPoints, true, kCustom, 100, 200},
                    TypingCase{"", "200", kPoints, false, 0, 0, 0},
                    TypingCase{"100", "", kPoints, false, 0, 0, 0},
                    TypingCase{"100x", "200", kPoints, false, 0, 0, 0},
                    TypingCase{"-100", "200", kPoints, false, 0, 0, 0},
                    TypingCase{"1e99", "200", kPoints, false, 0, 0, 0},
                    TypingCase{"71", "200", kPoints, false, 0, 0, 0},
                    TypingCase{"100", "2001", kPoints, false, 0, 0, 0},
                    TypingCase{"100", "99999999999999999999", kPixels, false, 0, 0, 0}));

TEST_F(PageSetupRules, Type_SizeOnRotatedRecord_ComparesWithTurnedPages) {
    mSetup.SetRotated(true);
    int tag = 0;
    EXPECT_TRUE(mSetup.TypeSize("842.00", "595.00", kPoints, &tag));
    EXPECT_EQ(tag, kA4);
    EXPECT_EQ(PageName(), "A4");
}

TEST_F(PageSetupRules, Type_SizeThatReadsAsTheRecords_IsTakenAsTyped) {
    mSetup.SetPaperSize(200.001, 300.001);
    int tag = 0;
    EXPECT_TRUE(mSetup.TypeSize("200.00", "300.00", kPoints, &tag));
    EXPECT_EQ(mSetup.PaperWidth(), 200);
    EXPECT_EQ(mSetup.PaperHeight(), 300);
}

// One side of this page is exact with two decimals and the other is not; the typed numbers with the
// page's name would be a record that validation throws away.
TEST_F(PageSetupRules, Type_SizeOfAPage_TakesThePagesOwnSize) {
    PPDOptions options;
    options.extra = "*PageSize F: \"\"\n*ImageableArea F: \"0 0 595 792\"\n";
    for (const bool rotated : {false, true}) {
        Use(options);
        mSetup.SetRotated(rotated);
        int tag = 0;
        EXPECT_TRUE(mSetup.TypeSize(rotated ? "279.40" : "209.90", rotated ? "209.90" : "279.40",
                                    kMillimetres, &tag));
        EXPECT_EQ(PageName(), "F");
        EXPECT_EQ(mSetup.PaperWidth(), rotated ? 792 : 595);
        EXPECT_EQ(mSetup.PaperHeight(), rotated ? 595 : 792);
    }
}

/// A printer whose page A4 cannot be printed on evenly, and with `sheet` as its sheet's size.
PPDOptions UnevenMargins(const std::string &sheet) {
    PPDOptions options;
    options.hasPages = false;
    options.extra = "*PageSize A4: \"\"\n*ImageableArea A4: \"12 60 560 820\"\n";
    if (!sheet.empty()) options.extra += "*PaperDimension A4: \"" + sheet + "\"\n";
    return options;
}

struct SheetCase {
    const char *what, *dimension;
    bool rotated, eps, custom;
    double left, bottom, width, height; ///< of the page on the sheet
    double sheetWidth, sheetHeight;
};

class PageSetupSheet : public PageSetupRules, public testing::WithParamInterface<SheetCase> {};

TEST_P(PageSetupSheet, Place_IsThatOfTheAreaOnItsSheet) {
    const SheetCase &c = GetParam();
    Use(UnevenMargins(c.dimension));
    mSetup.SetRotated(c.rotated);
    mSetup.ChoosePage(0);
    mSetup.SetEPS(c.eps);
    if (c.custom) mSetup.ChooseCustomPage();
    const PagePlace place = mSetup.PlaceOnSheet();
    EXPECT_EQ(place.left, c.left);
    EXPECT_EQ(place.bottom, c.bottom);
    EXPECT_EQ(place.width, c.width);
    EXPECT_EQ(place.height, c.height);
    EXPECT_EQ(place.sheetWidth, c.sheetWidth);
    EXPECT_EQ(place.sheetHeight, c.sheetHeight);
}

INSTANTIATE_TEST_SUITE_P(
    Pages, PageSetupSheet,
    testing::Values(
        SheetCase{"told", "595 842", false, false, false, 12, 60, 548, 760, 595, 842},
        SheetCase{"turned", "595 842", true, false, false, 12, 60, 548, 760, 595, 842},
        SheetCase{"not told", "", false, false, false, 12, 60, 548, 760, 572, 880},
        SheetCase{"no number", "wide 842", false, false, false, 12, 60, 548, 760, 572, 880},
        SheetCase{"too small", "100 100", false, false, false, 12, 60, 548, 760, 560, 820},
        SheetCase{"EPS", "595 842", false, true, false, 0, 0, 548, 760, 548, 760},
        SheetCase{"custom", "595 842", false, false, true, 0, 0, 548, 760, 548, 760}),
    [](const testing::TestParamInfo<SheetCase> &info) {
        std::string name = info.param.what;
        std::replace(name.begin(), name.end(), ' ', '_');
        return name;
    });

TEST_F(PageSetupRules, Place_FollowsThePrinterThatIsChosen) {
    Use(UnevenMargins("595 842"));
    mSetup.ChoosePage(0);
    EXPECT_EQ(mSetup.PlaceOnSheet().sheetWidth, 595);
    CFURLRef url = FolderURL(WriteFile(mFolder, "Other.ppd", PPDText(UnevenMargins("700 900"))));
    mSetup.LoadPrinter(url);
    CFRelease(url);
    EXPECT_EQ(mSetup.PlaceOnSheet().sheetWidth, 700);
}

TEST_F(PageSetupRules, Place_FileThatHasGone_IsGuessed) {
    Use(UnevenMargins("595 842"));
    unlink((mFolder + "/Test.ppd").c_str());
    mSetup.ChoosePage(0);
    EXPECT_EQ(mSetup.PlaceOnSheet().sheetWidth, 572);
}

TEST_F(PageSetupRules, Type_PixelsWithoutResolution_ChangesNothing) {
    mRecord.mXDpi_be = mRecord.mYDpi_be = DoubleToBigEndian(0);
    Use({});
    int tag = 0;
    EXPECT_FALSE(mSetup.TypeSize("100", "200", kPixels, &tag));
}

TEST_F(PageSetupRules, Type_SizeAmong500Pages_FindsTheLast) {
    PPDOptions options;
    for (int i = 0; i < 500; ++i) {
        const std::string n = std::to_string(1000 + i);
        options.extra += "*PageSize P" + n + ": \"\"\n*ImageableArea P" + n + ": \"0 0 " +
                         std::to_string(200 + i) + " 500\"\n";
    }
    Use(options);
    int tag = 0;
    EXPECT_TRUE(mSetup.TypeSize("699.00", "500.00", kPoints, &tag));
    EXPECT_EQ(PageName(), "P1499");
}

TEST_F(PageSetupRules, Type_Resolution_MustLieWithinTheHostsLimits) {
    for (const char *bad : {"", "x", "9.99", "10000.01", "-300", "300dpi", "1e9"}) {
        EXPECT_FALSE(mSetup.TypeResolution(bad)) << bad;
        EXPECT_EQ(mSetup.XDpi(), 300);
    }
    for (const char *good : {"10", "10000", "299.5"}) {
        EXPECT_TRUE(mSetup.TypeResolution(good)) << good;
        EXPECT_EQ(mSetup.XDpi(), std::stod(good));
        EXPECT_EQ(mSetup.YDpi(), std::stod(good));
    }
}

TEST_F(PageSetupRules, DocumentSize_WithCustomPages_IsItsOwn) {
    mSetup.SetSizeFromDocument();
    EXPECT_TRUE(mSetup.IsCustomPaper());
    EXPECT_NEAR(mSetup.PaperWidth(), 595.2756, 1e-4);
    EXPECT_EQ(mSetup.XDpi(), 300);
    EXPECT_EQ(ResolutionName(), "600dpi"); // 300 is just below the document's 300.01
}

TEST_F(PageSetupRules, DocumentSize_TooLarge_DoesNotFitAndIsClamped) {
    PPDOptions options;
    options.maxWidth = 500;
    Use(options);
    EXPECT_FALSE(mSetup.DocumentFitsOnCustomPaper());
    mSetup.SetSizeFromDocument();
    EXPECT_EQ(mSetup.PaperWidth(), 500);
}

TEST_F(PageSetupRules, DocumentSize_WithoutCustomPages_IsTheBestNamedPage) {
    Use(WithoutCustomPages());
    mSetup.SetSizeFromDocument();
    EXPECT_FALSE(mSetup.IsCustomPaper());
    EXPECT_EQ(PageName(), "Tabloid"); // A4's imageable area is a little smaller than the document
}

TEST_F(PageSetupRules, DocumentSize_HostSuggestedNone_ChangesNothing) {
    mParams.document.widthPixels = 0;
    mParams.document.widthMM = 0;
    EXPECT_FALSE(mSetup.HasDocumentSize());
    mSetup.SetSizeFromDocument();
    EXPECT_EQ(std::memcmp(&mSetup.Record(), &mRecord, sizeof mRecord), 0);
}

TEST_F(PageSetupRules, Flags_AreStoredAsOneOrZero) {
    mSetup.SetFlippedHorizontally(true);
    mSetup.SetFlippedVertically(true);
    mSetup.SetRotated(true);
    mSetup.SetEPS(true);
    mSetup.SetColourSpace(2);
    const PSHPrint &record = mSetup.Record();
    for (uint32_t word :
         {record.mFlipH_be, record.mFlipV_be, record.mRotated_be, record.mEPSFormat_be})
        EXPECT_EQ(SwapBigEndian(word), 1u);
    EXPECT_EQ(SwapBigEndian(record.mColourSpace_be), 2u);
    EXPECT_EQ(mSetup.ColourSpace(), 2);
    mSetup.SetFlippedHorizontally(false);
    EXPECT_FALSE(mSetup.IsFlippedHorizontally());
    EXPECT_TRUE(mSetup.IsFlippedVertically());
}

TEST_F(PageSetupRules, SeparationName_NotUtf8_IsEmptied) {
    mRecord.cmykSeparationName[0] = 2;
    mRecord.cmykSeparationName[1] = 0xff;
    mRecord.cmykSeparationName[2] = 0xfe;
    Use({});
    EXPECT_EQ(StringText(mSetup.SeparationName().Get()), "");
    EXPECT_EQ(mSetup.Record().cmykSeparationName[0], 0);
}

TEST_F(PageSetupRules, SeparationName_Shorter_LeavesNothingOfTheLonger) {
    mSetup.SetSeparationName(CFSTR("A rather long name"));
    mSetup.SetSeparationName(CFSTR("Short"));
    PSHPrint expected = mRecord;
    std::memcpy(expected.cmykSeparationName, "\5Short", 6);
    EXPECT_EQ(std::memcmp(&mSetup.Record(), &expected, sizeof expected), 0);
}

TEST_F(PageSetupRules, SeparationName_LongerThan255Bytes_IsNotStored) {
    mSetup.SetSeparationName(CFSTR("Kept"));
    const std::string name(256, 'n');
    CFStringRef text =
        CFStringCreateWithCString(kCFAllocatorDefault, name.c_str(), kCFStringEncodingUTF8);
    mSetup.SetSeparationName(text);
    CFRelease(text);
    EXPECT_EQ(StringText(mSetup.SeparationName().Get()), "Kept");
}

TEST_F(PageSetupRules, Separations_NoFolder_OfferStandardOnly) {
    mParams.separations = nullptr;
    EXPECT_EQ(mSetup.SeparationCount(), 1);
    EXPECT_EQ(StringText(mSetup.SeparationNameAt(0)), "Standard");
    EXPECT_EQ(mSetup.SeparationIndex(CFSTR("Other")), 0);
}

TEST_F(PageSetupRules, Separations_EmptyAndStandard_AreGood) {
    EXPECT_TRUE(mSetup.IsGoodSeparation(CFSTR("")));
    EXPECT_TRUE(mSetup.IsGoodSeparation(CFSTR("Standard")));
    EXPECT_FALSE(mSetup.IsGoodSeparation(CFSTR("Removed profile")));
}

TEST_F(PageSetupRules, LoadPrinter_PPD_ReplacesThePrinterAndSavesItsPlace) {
    const std::string path = WriteFile(mFolder, "Other.ppd", PPDText(WithoutCustomPages()));
    CFURLRef url = FolderURL(path);
    mSetup.LoadPrinter(url);
    CFRelease(url);
    EXPECT_EQ(mPrinter->GetName(), "Other.ppd");
    EXPECT_EQ(mSetup.PrinterName(), "Other.ppd");
    CFPropertyListRef saved =
        CFPreferencesCopyAppValue(CFSTR("PPDBookmark"), TestBundleIdentifier());
    ASSERT_NE(saved, nullptr);
    CFURLRef found =
        CFURLCreateByResolvingBookmarkData(kCFAllocatorDefault, static_cast<CFDataRef>(saved), 256,
                                           nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(URLPath(found), path);
    CFRelease(found);
    CFRelease(saved);
}

TEST_F(PageSetupRules, LoadPrinter_FileThatDisappeared_TellsAndUsesTheBuiltIn) {
    CFURLRef url = FolderURL(mFolder + "/Gone.ppd");
    testing::internal::CaptureStderr();
    mSetup.LoadPrinter(url);
    const std::string messages = testing::internal::GetCapturedStderr();
    CFRelease(url);
    EXPECT_NE(messages.find("Using default settings instead"), std::string::npos) << messages;
    EXPECT_EQ(mPrinter->GetName(), "");
    EXPECT_EQ(mPrinter->Pages().NumPages(), 1);
}

TEST_F(PageSetupRules, IsPPDFile_OnlyRegularFilesThatTheReaderAccepts) {
    EXPECT_TRUE(mSetup.IsPPDFile(WriteFile(mFolder, "good.txt", PPDText())));
    EXPECT_FALSE(mSetup.IsPPDFile(WriteFile(mFolder, "bad.ppd", "%!PS-Adobe\n")));
    EXPECT_FALSE(mSetup.IsPPDFile(WriteFile(mFolder, "empty.ppd", "")));
    EXPECT_FALSE(mSetup.IsPPDFile(mFolder));
    EXPECT_FALSE(mSetup.IsPPDFile(mFolder + "/nothing"));
    EXPECT_FALSE(mSetup.IsPPDFile(""));
    const std::string fifo = mFolder + "/fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(mSetup.IsPPDFile(fifo)); // and does not wait for a writer
    const std::string link = mFolder + "/link";
    ASSERT_EQ(symlink((mFolder + "/good.txt").c_str(), link.c_str()), 0);
    EXPECT_TRUE(mSetup.IsPPDFile(link));
}

} // namespace
