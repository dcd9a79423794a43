// Fitting of resolution and page to the host's page.
#include "Common/Src/record/PageFitting.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "support/BigEndian.h"
#include "tests/Common/Src/BundleHost.h"
#include "tests/Common/Src/TestPPD.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr double kMMPerPoint = 25.4 / 72;

PostscriptPrinterInfo MakePrinter(const TestPPD &ppd) {
    ScratchFolder folder;
    return PostscriptPrinterInfo(MakeURL(folder.Write("Test.ppd", ppd.Text())).Get());
}

PageInfo_tag PageOfPoints(double width, double height) {
    return {1000, 1000, width * kMMPerPoint, height * kMMPerPoint, 32};
}

/// A page at exactly these resolutions.
PageInfo_tag PageOfDpi(int32_t dpiX, int32_t dpiY) {
    return {dpiX, dpiY, 25.4, 25.4, 32};
}

struct Record : PSHPrint {
    explicit Record(bool rotated = false) : PSHPrint() {
        std::memset(static_cast<PSHPrint *>(this), 0, sizeof(PSHPrint));
        mRotated_be = rotated ? 1 : 0;
    }
    double Width() const { return DoubleFromBigEndian(mPageWidth_be); }
    double Height() const { return DoubleFromBigEndian(mPageHeight_be); }
};

TestPPD WithResolutions(const std::vector<std::string> &names, const std::string &defaultName) {
    TestPPD ppd;
    ppd.defaultResolution = defaultName;
    ppd.resolutions.clear();
    for (const std::string &name : names)
        ppd.resolutions += "*Resolution " + name + ": \"\"\n";
    return ppd;
}

struct NamedSize {
    const char *name, *area;
};

TestPPD WithPages(const std::vector<NamedSize> &pages, const std::string &defaultName) {
    TestPPD ppd;
    ppd.defaultPage = defaultName;
    ppd.pages.clear();
    for (const NamedSize &page : pages)
        ppd.pages += std::string("*PageSize ") + page.name + ": \"\"\n*ImageableArea " + page.name +
                     ": \"" + page.area + "\"\n";
    return ppd;
}

/// The record that a host gets for a bad one, with the rotation as the user prefers it.
PSHPrint ValidatedRecord(const TestPPD &ppd, const PageInfo_tag &page, bool rotated) {
    ClearPreferences();
    const CFRef<CFMutableDictionaryRef> options = MakeDictionary();
    CFDictionarySetValue(options.Get(), CFSTR("Rotate"),
                         rotated ? kCFBooleanTrue : kCFBooleanFalse);
    SetPreference(CFSTR("PageOptions"), options.Get());
    ScratchFolder folder;
    Session session;
    const CFRef<CFURLRef> url = MakeURL(folder.Write("Test.ppd", ppd.Text()));
    EXPECT_EQ(Driver().ZELPrSetPrinter(session.Get(), url.Get(), nullptr), 0);
    const ZELPageRecord suggestion = {page.widthPixels, page.heightPixels, page.widthMM,
                                      page.heightMM};
    Driver().ZELPrSuggestPage(session.Get(), nullptr, &suggestion, 0);
    RecordHandle record;
    EXPECT_TRUE(Driver().ZELPrValidate(session.Get(), record.Get()));
    ClearPreferences();
    return record.Record();
}

// ---- resolution

struct ResolutionCase {
    const char *name;
    std::vector<std::string> offered;
    std::string defaultName;
    int32_t dpiX, dpiY;
    bool rotated;
    std::string chosen;
};

class Resolution : public testing::TestWithParam<ResolutionCase> {};

TEST_P(Resolution, IsTheClosestThatIsNotBelow) {
    const ResolutionCase &c = GetParam();
    const PostscriptPrinterInfo printer = MakePrinter(WithResolutions(c.offered, c.defaultName));
    const PageInfo_tag page = PageOfDpi(c.dpiX, c.dpiY);
    Record record(c.rotated);
    SetBestHardwareResolution(&printer, &page, &record);
    EXPECT_EQ(record.mResolutionName, c.chosen);
    const double larger = std::max(c.dpiX, c.dpiY);
    EXPECT_EQ(DoubleFromBigEndian(record.mXDpi_be), larger) << "the document's, not the printer's";
    EXPECT_EQ(DoubleFromBigEndian(record.mYDpi_be), larger);

    const PSHPrint validated =
        ValidatedRecord(WithResolutions(c.offered, c.defaultName), page, c.rotated);
    EXPECT_EQ(validated.mResolutionName, c.chosen);
    EXPECT_EQ(DoubleFromBigEndian(validated.mXDpi_be), larger);
    EXPECT_EQ(DoubleFromBigEndian(validated.mYDpi_be), larger);
}

const ResolutionCase kResolutionCases[] = {
    {"Exact", {"300dpi", "600dpi"}, "600dpi", 300, 300, false, "300dpi"},
    {"NextLarger", {"300dpi", "600dpi", "1200dpi"}, "300dpi", 301, 301, false, "600dpi"},
    {"NoneLargeEnough", {"300dpi", "600dpi"}, "300dpi", 700, 700, false, "300dpi"},
    {"OneDirectionTooSmall", {"300dpi", "1200x300dpi"}, "300dpi", 600, 600, false, "300dpi"},
    {"FirstOfEquals", {"300x400dpi", "400x300dpi"}, "400x300dpi", 300, 300, false, "300x400dpi"},
    {"FirstOfEqualsIsByName",
     {"400x300dpi", "300x400dpi"},
     "400x300dpi",
     300,
     300,
     false,
     "300x400dpi"},
    {"RotatedExchangesThePrinters",
     {"1200x600dpi", "2400dpi"},
     "2400dpi",
     600,
     1200,
     true,
     "1200x600dpi"},
    {"NotRotatedDoesNot", {"1200x600dpi", "2400dpi"}, "2400dpi", 600, 1200, false, "2400dpi"},
    {"OnlyTheDefault", {}, "360x180dpi", 200, 200, false, "360x180dpi"},
    {"DefaultUnknown", {"300dpi", "600dpi"}, "72dpi", 9999, 9999, false, "300dpi"},
};
INSTANTIATE_TEST_SUITE_P(, Resolution, testing::ValuesIn(kResolutionCases),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(ResolutionTest, A4At300_RoundsTo300ButNeedsMoreThan300) {
    // 299.962 by 300.011 dots per inch.
    const PageInfo_tag page = {2480, 3508, 210, 297, 32};
    Record record;
    const PostscriptPrinterInfo two = MakePrinter(WithResolutions({"300dpi", "600dpi"}, "300dpi"));
    SetBestHardwareResolution(&two, &page, &record);
    EXPECT_EQ(DoubleFromBigEndian(record.mXDpi_be), 300.0);
    EXPECT_EQ(DoubleFromBigEndian(record.mYDpi_be), 300.0);
    EXPECT_STREQ(record.mResolutionName, "600dpi");
    const PostscriptPrinterInfo one = MakePrinter(WithResolutions({"300dpi"}, "300dpi"));
    SetBestHardwareResolution(&one, &page, &record);
    EXPECT_STREQ(record.mResolutionName, "300dpi") << "the default";
    const PSHPrint validated =
        ValidatedRecord(WithResolutions({"300dpi", "600dpi"}, "300dpi"), page, false);
    EXPECT_EQ(DoubleFromBigEndian(validated.mXDpi_be), 300.0);
    EXPECT_STREQ(validated.mResolutionName, "600dpi");
}

TEST(ResolutionTest, HalvesAreRoundedAwayFromZero) {
    const PageInfo_tag page = {2001, 2001, 508, 508, 32}; // 100.05
    const PageInfo_tag half = {201, 201, 50.8, 50.8, 32}; // 100.5
    Record record;
    const PostscriptPrinterInfo printer;
    SetBestHardwareResolution(&printer, &page, &record);
    EXPECT_EQ(DoubleFromBigEndian(record.mXDpi_be), 100.0);
    SetBestHardwareResolution(&printer, &half, &record);
    EXPECT_EQ(DoubleFromBigEndian(record.mXDpi_be), 101.0);
}

TEST(ResolutionTest, PageWithoutSize_IsInfinitelyDenseAndGetsTheDefault) {
    const PageInfo_tag page = {100, 100, 0, 0, 32};
    Record record;
    const PostscriptPrinterInfo printer = MakePrinter({});
    SetBestHardwareResolution(&printer, &page, &record);
    EXPECT_TRUE(std::isinf(DoubleFromBigEndian(record.mXDpi_be)));
    EXPECT_STREQ(record.mResolutionName, "600dpi");
}

TEST(ResolutionTest, PageWithoutPixels_IsNotFitted) {
    for (const PageInfo_tag &page :
         {PageInfo_tag{0, 100, 254, 254, 32}, PageInfo_tag{100, 0, 254, 254, 32},
          PageInfo_tag{-100, -100, 254, 254, 32}}) {
        const PSHPrint validated = ValidatedRecord({}, page, false);
        EXPECT_STREQ(validated.mPageName, "A4") << "the defaults";
        EXPECT_EQ(DoubleFromBigEndian(validated.mXDpi_be), 600);
    }
}

TEST(ResolutionTest, OnePixel_IsFitted) {
    const PSHPrint validated = ValidatedRecord({}, {1, 1, 2.54, 2.54, 32}, false);
    EXPECT_EQ(DoubleFromBigEndian(validated.mXDpi_be), 10);
}

TEST(ResolutionTest, BelowTenDpi_TheSuggestionIsDropped) {
    const PSHPrint validated = ValidatedRecord({}, {90, 90, 254, 254, 32}, false);
    EXPECT_EQ(DoubleFromBigEndian(validated.mXDpi_be), 600);
}

TEST(ResolutionTest, LongName_IsCutAtFortyBytes) {
    const std::string name = "300dpi" + std::string(60, 'n');
    const PostscriptPrinterInfo printer = MakePrinter(WithResolutions({name}, name));
    const PageInfo_tag page = PageOfDpi(300, 300);
    Record record;
    std::memset(record.mResolutionName, 'x', sizeof record.mResolutionName);
    SetBestHardwareResolution(&printer, &page, &record);
    EXPECT_EQ(std::string(record.mResolutionName), name.substr(0, 40));
}

// ---- page

struct PageCase {
    const char *name;
    std::vector<NamedSize> offered;
    const char *defaultName;
    double width, height; ///< points
    bool rotated;
    const char *chosen;
    double chosenWidth, chosenHeight;
};

class Page : public testing::TestWithParam<PageCase> {};

TEST_P(Page, IsTheSmallestThatHoldsTheWanted) {
    const PageCase &c = GetParam();
    const PostscriptPrinterInfo printer = MakePrinter(WithPages(c.offered, c.defaultName));
    const PageInfo_tag page = PageOfPoints(c.width, c.height);
    Record record(c.rotated);
    record.mPageIsCustom_be = 1;
    SetBestPageSize(&printer, &page, &record);
    EXPECT_STREQ(record.mPageName, c.chosen);
    EXPECT_EQ(record.Width(), c.chosenWidth) << "the page's own, never exchanged";
    EXPECT_EQ(record.Height(), c.chosenHeight);
    EXPECT_EQ(record.mPageIsCustom_be, 0U);

    const PSHPrint validated =
        ValidatedRecord(WithPages(c.offered, c.defaultName), page, c.rotated);
    EXPECT_STREQ(validated.mPageName, c.chosen);
    EXPECT_EQ(DoubleFromBigEndian(validated.mPageWidth_be), c.chosenWidth);
    EXPECT_EQ(DoubleFromBigEndian(validated.mPageHeight_be), c.chosenHeight);
}

const std::vector<NamedSize> kOffice = {
    {"A3", "0 0 842 1191"}, {"A4", "0 0 595 842"}, {"Letter", "0 0 612 792"}};
const PageCase kPageCases[] = {
    {"Smallest", kOffice, "A3", 500, 700, false, "Letter", 612, 792},
    {"TallEnough", kOffice, "A3", 500, 800, false, "A4", 595, 842},
    {"WideEnough", kOffice, "A3", 600, 700, false, "Letter", 612, 792},
    {"OnlyTheLargest", kOffice, "A4", 613, 792, false, "A3", 842, 1191},
    {"TooLarge_Default", kOffice, "Letter", 843, 1, false, "Letter", 612, 792},
    {"RotatedLandscape", kOffice, "A3", 841, 594, true, "A4", 595, 842},
    {"LandscapeNotRotated", kOffice, "Letter", 841, 594, false, "A3", 842, 1191},
    {"FirstOfEquals",
     {{"B", "0 0 100 200"}, {"A", "5 5 105 205"}},
     "B",
     50,
     50,
     false,
     "A",
     100,
     200},
    {"AreaNotAtTheOrigin", {{"X", "10 20 110 220"}}, "X", 100, 200, false, "X", 100, 200},
    {"DefaultUnknown", kOffice, "Legal", 9999, 9999, false, "A3", 842, 1191},
};
INSTANTIATE_TEST_SUITE_P(, Page, testing::ValuesIn(kPageCases),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(PageTest, PrinterWithoutPages_RecordStaysAsItIs) {
    const PostscriptPrinterInfo printer = MakePrinter(WithPages({}, "A4"));
    const PageInfo_tag page = PageOfPoints(100, 100);
    Record record;
    std::strcpy(record.mPageName, "before");
    SetBestPageSize(&printer, &page, &record);
    EXPECT_STREQ(record.mPageName, "before");
}

// ---- custom pages

TestPPD CustomPrinter() {
    TestPPD ppd;
    ppd.custom = TestPPD::CustomPages(); // 100 to 800 by 200 to 1000 points
    return ppd;
}

struct CustomCase {
    double width, height;
    bool rotated;
    double fittedWidth, fittedHeight;
};

class CustomPage : public testing::TestWithParam<CustomCase> {};

TEST_P(CustomPage, IsOfTheWantedSizeWithinTheLimits) {
    const CustomCase &c = GetParam();
    const PostscriptPrinterInfo printer = MakePrinter(CustomPrinter());
    const PageInfo_tag page = PageOfPoints(c.width, c.height);
    Record record(c.rotated);
    std::strcpy(record.mPageName, "A4");
    SetBestPageSize(&printer, &page, &record);
    EXPECT_NEAR(record.Width(), c.fittedWidth, 1e-9);
    EXPECT_NEAR(record.Height(), c.fittedHeight, 1e-9);
    EXPECT_STREQ(record.mPageName, "");
    EXPECT_EQ(record.mPageIsCustom_be, SwapBigEndian(uint32_t{1}));

    const PSHPrint validated = ValidatedRecord(CustomPrinter(), page, c.rotated);
    EXPECT_NEAR(DoubleFromBigEndian(validated.mPageWidth_be), c.fittedWidth, 1e-9);
    EXPECT_NEAR(DoubleFromBigEndian(validated.mPageHeight_be), c.fittedHeight, 1e-9);
    EXPECT_EQ(validated.mPageIsCustom_be, SwapBigEndian(uint32_t{1}));
}

INSTANTIATE_TEST_SUITE_P(, CustomPage,
                         testing::Values(CustomCase{595, 842, false, 595, 842}, // though A4 fits
                                         CustomCase{50, 50, false, 100, 200},
                                         CustomCase{5000, 5000, false, 800, 1000},
                                         CustomCase{50, 50, true, 200, 100},
                                         CustomCase{5000, 5000, true, 1000, 800}));

TEST(CustomPageTest, CrossedLimits_TheMinimumWins) {
    TestPPD ppd = CustomPrinter();
    ppd.custom = "*MaxMediaWidth: \"50\"\n*CustomPageSize True: \"c\"\n"
                 "*ParamCustomPageSize Width: 1 points 100 800\n"
                 "*ParamCustomPageSize Height: 2 points 100 800\n";
    const PostscriptPrinterInfo printer = MakePrinter(ppd);
    const PageInfo_tag page = PageOfPoints(70, 70);
    Record record;
    SetBestPageSize(&printer, &page, &record);
    EXPECT_EQ(record.Width(), 100);
}

TEST(CustomPageTest, Limits_FollowTheOrientationThatAnEarlierCustomPageLeft) {
    TestPPD ppd = CustomPrinter();
    ppd.custom.replace(ppd.custom.find("int 0 0"), 7, "int 0 1");
    const PostscriptPrinterInfo printer = MakePrinter(ppd);
    const PageInfo_tag page = PageOfPoints(50, 50);
    Record before;
    SetBestPageSize(&printer, &page, &before);
    EXPECT_EQ(before.Width(), 100);
    EXPECT_EQ(before.Height(), 200);
    (void)printer.Pages().GetCustomPage(300, 300);
    Record after;
    SetBestPageSize(&printer, &page, &after);
    EXPECT_EQ(after.Width(), 200);
    EXPECT_EQ(after.Height(), 100);
}

TEST(PageFitsOnCustomPaperTest, PrinterWithoutCustomPages_EverythingFits) {
    const PostscriptPrinterInfo printer = MakePrinter({});
    const PageInfo_tag page = PageOfPoints(99999, 99999);
    const Record record;
    EXPECT_TRUE(PageFitsOnCustomPaper(&printer, &page, &record));
}

TEST(PageFitsOnCustomPaperTest, OnlyTheMaximumCounts) {
    const PostscriptPrinterInfo printer = MakePrinter(CustomPrinter());
    const struct {
        double width, height;
        bool rotated, fits;
    } cases[] = {{800, 1000, false, true},  {1, 1, false, true},      {800.1, 1, false, false},
                 {1, 1000.1, false, false}, {1000, 800, true, true},  {1000, 800, false, false},
                 {800, 1000, true, false},  {1000.1, 1, true, false}, {1, 800.1, true, false}};
    for (const auto &c : cases) {
        const PageInfo_tag page = PageOfPoints(c.width, c.height);
        const Record record(c.rotated);
        EXPECT_EQ(PageFitsOnCustomPaper(&printer, &page, &record), c.fits)
            << c.width << " x " << c.height;
    }
}

} // namespace
