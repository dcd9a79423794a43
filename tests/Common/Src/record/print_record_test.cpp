// The print record's validity and defaults, through ZELPrValidate and ZELPrDefaults.
#include "support/BigEndian.h"
#include "tests/Common/Src/BundleHost.h"
#include "tests/Common/Src/TestPPD.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>
#include <random>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

void SetName(char (&field)[41], const std::string &name) {
    std::memset(field, 0, sizeof field);
    std::memcpy(field, name.data(), std::min(name.size(), sizeof field));
}

/// An open driver that prints with a description of the test's.
class RecordTest : public testing::Test {
protected:
    explicit RecordTest(const TestPPD &ppd = {}) {
        ClearPreferences();
        UsePrinter(ppd);
        Driver().ZELPrDefaults(session.Get(), record.Get());
    }
    ~RecordTest() override { ClearPreferences(); }

    void UsePrinter(const TestPPD &ppd) {
        const CFRef<CFURLRef> url = MakeURL(folder.Write("Test.ppd", ppd.Text()));
        ASSERT_EQ(Driver().ZELPrSetPrinter(session.Get(), url.Get(), nullptr), 0);
    }
    bool IsBad() { return Driver().ZELPrValidate(session.Get(), record.Get()) != 0; }
    /// Makes the record a custom page.
    void SetCustomPage(double width, double height) {
        record.Record().mPageIsCustom_be = 0x01000000;
        SetSize(width, height);
    }
    void SetSize(double width, double height) {
        record.Record().mPageWidth_be = DoubleToBigEndian(width);
        record.Record().mPageHeight_be = DoubleToBigEndian(height);
    }
    void SetDpi(double x, double y) {
        record.Record().mXDpi_be = DoubleToBigEndian(x);
        record.Record().mYDpi_be = DoubleToBigEndian(y);
    }

    ScratchFolder folder;
    RecordHandle record;
    Session session;
};

// ---- validity

TEST_F(RecordTest, Validate_DefaultsOfAColourPrinter_AreGoodAndUntouched) {
    const std::string before = record.Bytes();
    EXPECT_FALSE(IsBad());
    EXPECT_EQ(record.Bytes(), before);
}

TEST_F(RecordTest, Validate_BadRecord_BecomesTheDefaults) {
    const std::string defaults = record.Bytes();
    std::memset(*record.Get(), 0xAA, sizeof(PSHPrint));
    EXPECT_TRUE(IsBad());
    EXPECT_EQ(record.Bytes(), defaults);
}

TEST_F(RecordTest, Validate_EveryLength_ShorterIsBadLongerIsGood) {
    const std::string good = record.Bytes();
    for (Size size = 0; size <= 600; ++size) {
        std::string bytes = good;
        bytes.resize(static_cast<size_t>(size), 'x');
        RecordHandle handle(bytes);
        EXPECT_EQ(Driver().ZELPrValidate(session.Get(), handle.Get()) != 0, size < 416) << size;
        if (size < 416)
            EXPECT_EQ(handle.Bytes(), good);
        else
            EXPECT_EQ(handle.Bytes(), bytes) << "a longer handle stays as it is";
    }
}

TEST_F(RecordTest, Validate_NoHandle_IsBadAndHarmless) {
    StderrCapture messages;
    EXPECT_TRUE(Driver().ZELPrValidate(session.Get(), nullptr));
    EXPECT_THAT(
        messages.Text(),
        testing::HasSubstr("ZEL PostScript Printer Driver: SethandleSize_compat failed!\n"));
}

TEST_F(RecordTest, Validate_EveryByteOfTheMagic_Counts) {
    for (int i = 0; i < 4; ++i) {
        Driver().ZELPrDefaults(session.Get(), record.Get());
        record.Record().mMagic_be[i] |= 0x20; // lower case
        EXPECT_TRUE(IsBad()) << i;
    }
}

TEST_F(RecordTest, Validate_RandomBytes_NeverCrashes) {
    std::mt19937 random(1);
    for (int round = 0; round < 500; ++round) {
        std::string bytes(416, '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(random());
        if (round % 2) bytes.replace(0, 4, "POST");
        if (round % 4 == 3) bytes.replace(81, 7, std::string("300dpi\0", 7));
        RecordHandle handle(bytes);
        ZELDriverInfo info = {};
        (void)Driver().ZELPrGetInfo(session.Get(), handle.Get(), &info);
        EXPECT_TRUE(Driver().ZELPrValidate(session.Get(), handle.Get()));
        EXPECT_EQ(handle.Bytes(), record.Bytes());
    }
}

struct BadnessCase {
    const char *name;
    std::function<void(PSHPrint &)> change;
    bool bad;
};

void PrintTo(const BadnessCase &c, std::ostream *out) {
    *out << c.name;
}

void PaperSize(PSHPrint &record, double width, double height) {
    record.mPageWidth_be = DoubleToBigEndian(width);
    record.mPageHeight_be = DoubleToBigEndian(height);
}

void Dpi(PSHPrint &record, double x, double y) {
    record.mXDpi_be = DoubleToBigEndian(x);
    record.mYDpi_be = DoubleToBigEndian(y);
}

class RecordBadness : public RecordTest, public testing::WithParamInterface<BadnessCase> {};

TEST_P(RecordBadness, Validate) {
    GetParam().change(record.Record());
    const std::string changed = record.Bytes();
    EXPECT_EQ(IsBad(), GetParam().bad);
    if (!GetParam().bad) EXPECT_EQ(record.Bytes(), changed);
}

// The default page is A4 with an area of 575 by 818 points.
const BadnessCase kBadnessCases[] = {
    // Page: only a wrong width beside a right height is bad.
    {"SameWidthOtherHeight", [](PSHPrint &r) { PaperSize(r, 575, 100); }, false},
    {"OtherWidthSameHeight", [](PSHPrint &r) { PaperSize(r, 100, 818); }, true},
    {"BothDiffer", [](PSHPrint &r) { PaperSize(r, 595, 842); }, false},
    {"WidthWithinAThousandth", [](PSHPrint &r) { PaperSize(r, 575.0009, 818); }, false},
    {"WidthJustOutside", [](PSHPrint &r) { PaperSize(r, 575.0011, 818); }, true},
    {"WidthOutsideHeightOutside", [](PSHPrint &r) { PaperSize(r, 575.0011, 818.0011); }, false},
    {"WidthNaNSameHeight", [](PSHPrint &r) { PaperSize(r, kNaN, 818); }, true},
    {"WidthNaNHeightNaN", [](PSHPrint &r) { PaperSize(r, kNaN, kNaN); }, false},
    {"WidthInfiniteSameHeight", [](PSHPrint &r) { PaperSize(r, kInfinity, 818); }, true},
    {"HeightInfinite", [](PSHPrint &r) { PaperSize(r, 575, kInfinity); }, false},
    {"RotatedUnswappedSizes", [](PSHPrint &r) { r.mRotated_be = 1; }, false},
    {"RotatedSwappedSizes",
     [](PSHPrint &r) {
         r.mRotated_be = 1;
         PaperSize(r, 818, 575);
     },
     false},
    {"RotatedOnlyHeightMatches",
     [](PSHPrint &r) {
         r.mRotated_be = 1;
         PaperSize(r, 1, 575);
     },
     true},
    {"UnknownPage", [](PSHPrint &r) { SetName(r.mPageName, "B5"); }, true},
    {"PageNameInOtherCase", [](PSHPrint &r) { SetName(r.mPageName, "a4"); }, true},
    {"NoPageName", [](PSHPrint &r) { SetName(r.mPageName, ""); }, true},
    {"PageNameWithoutTerminator", [](PSHPrint &r) { SetName(r.mPageName, std::string(41, 'A')); },
     true},
    {"CustomPageWithoutSupport", [](PSHPrint &r) { r.mPageIsCustom_be = 1; }, true},
    // Resolution: name and range.
    {"UnknownResolution", [](PSHPrint &r) { SetName(r.mResolutionName, "72dpi"); }, true},
    {"NoResolutionName", [](PSHPrint &r) { SetName(r.mResolutionName, ""); }, true},
    {"ResolutionNameWithoutTerminator",
     [](PSHPrint &r) { SetName(r.mResolutionName, std::string(41, '3')); }, true},
    {"OtherResolutionName", [](PSHPrint &r) { SetName(r.mResolutionName, "1200x600dpi"); }, false},
    {"LowestDpi", [](PSHPrint &r) { Dpi(r, 10, 10); }, false},
    {"HighestDpi", [](PSHPrint &r) { Dpi(r, 10000, 10000); }, false},
    {"XDpiTooLow", [](PSHPrint &r) { Dpi(r, 9.99, 300); }, true},
    {"YDpiTooLow", [](PSHPrint &r) { Dpi(r, 300, 9.99); }, true},
    {"XDpiTooHigh", [](PSHPrint &r) { Dpi(r, 10000.01, 300); }, true},
    {"YDpiTooHigh", [](PSHPrint &r) { Dpi(r, 300, 10000.01); }, true},
    {"XDpiNaN", [](PSHPrint &r) { Dpi(r, kNaN, 300); }, true},
    {"YDpiNaN", [](PSHPrint &r) { Dpi(r, 300, kNaN); }, true},
    {"DpiInfinite", [](PSHPrint &r) { Dpi(r, kInfinity, kInfinity); }, true},
    {"DpiNegative", [](PSHPrint &r) { Dpi(r, -300, -300); }, true},
    // Colour space and separation.
    {"Gray", [](PSHPrint &r) { r.mColourSpace_be = SwapBigEndian(uint32_t{1}); }, false},
    {"RGB", [](PSHPrint &r) { r.mColourSpace_be = SwapBigEndian(uint32_t{2}); }, false},
    {"Standard", [](PSHPrint &r) { std::memcpy(r.cmykSeparationName, "\x08Standard", 9); }, false},
    {"StandardInOtherCase",
     [](PSHPrint &r) { std::memcpy(r.cmykSeparationName, "\x08standard", 9); }, true},
    {"UnknownSeparation",
     [](PSHPrint &r) {
         std::memcpy(r.cmykSeparationName,
                     "\x03"
                     "abc",
                     4);
     },
     true},
    {"UnknownSeparationInRGB",
     [](PSHPrint &r) {
         r.mColourSpace_be = SwapBigEndian(uint32_t{2});
         std::memcpy(r.cmykSeparationName,
                     "\x03"
                     "abc",
                     4);
     },
     false},
    {"SeparationIsAByteOrderMark",
     [](PSHPrint &r) { std::memcpy(r.cmykSeparationName, "\x03\xef\xbb\xbf", 4); }, true},
    {"SeparationNotUTF8", [](PSHPrint &r) { std::memcpy(r.cmykSeparationName, "\x02\xff\xfe", 3); },
     true},
    {"SeparationNotUTF8InGray",
     [](PSHPrint &r) {
         r.mColourSpace_be = SwapBigEndian(uint32_t{1});
         std::memcpy(r.cmykSeparationName, "\x02\xff\xfe", 3);
     },
     false},
    {"SeparationPathUpwards",
     [](PSHPrint &r) { std::memcpy(r.cmykSeparationName, "\x0d../Test.ppd/.", 14); }, true},
    // What is not looked at.
    {"Flips",
     [](PSHPrint &r) {
         r.mFlipH_be = 0x80;
         r.mFlipV_be = 0xFFFFFFFF;
     },
     false},
    {"EPS", [](PSHPrint &r) { r.mEPSFormat_be = 1; }, false},
    {"CopiesAndPages",
     [](PSHPrint &r) {
         r.copies_be = -1;
         r.fromPage_be = 0;
         r.toPage_be = -5;
     },
     false},
};
INSTANTIATE_TEST_SUITE_P(, RecordBadness, testing::ValuesIn(kBadnessCases),
                         [](const auto &info) { return std::string(info.param.name); });

class CustomPageRecord : public RecordTest {
protected:
    CustomPageRecord() : RecordTest(Printer()) {}
    static TestPPD Printer() {
        TestPPD ppd;
        ppd.custom = TestPPD::CustomPages(); // 100 to 800 by 200 to 1000 points
        return ppd;
    }
    bool IsBadAt(double width, double height, bool rotated = false) {
        Driver().ZELPrDefaults(session.Get(), record.Get());
        SetCustomPage(width, height);
        record.Record().mRotated_be = rotated ? 1 : 0;
        SetName(record.Record().mPageName, "a custom page's name is unused");
        return IsBad();
    }
};

TEST_F(CustomPageRecord, Validate_LimitsAreInclusive) {
    EXPECT_FALSE(IsBadAt(100, 200));
    EXPECT_FALSE(IsBadAt(800, 1000));
    EXPECT_TRUE(IsBadAt(99.999, 500));
    EXPECT_TRUE(IsBadAt(800.001, 500));
    EXPECT_TRUE(IsBadAt(500, 199.999));
    EXPECT_TRUE(IsBadAt(500, 1000.001));
    EXPECT_TRUE(IsBadAt(kInfinity, 500));
    EXPECT_TRUE(IsBadAt(500, -kInfinity));
}

TEST_F(CustomPageRecord, Validate_NaN_IsNeitherBelowNorAbove) {
    EXPECT_FALSE(IsBadAt(kNaN, 500));
    EXPECT_FALSE(IsBadAt(kNaN, kNaN));
    EXPECT_TRUE(IsBadAt(kNaN, 100));
}

TEST_F(CustomPageRecord, Validate_Rotated_WidthIsCheckedAgainstTheHeightLimits) {
    EXPECT_FALSE(IsBadAt(1000, 800, true));
    EXPECT_TRUE(IsBadAt(1000, 800, false));
    EXPECT_FALSE(IsBadAt(200, 100, true));
    EXPECT_TRUE(IsBadAt(199, 100, true));
}

TEST_F(RecordTest, Validate_Level1Printer_MakesEveryRecordBad) {
    TestPPD ppd;
    ppd.level = "1";
    UsePrinter(ppd);
    EXPECT_TRUE(IsBad());
    record.Record().mColourSpace_be = SwapBigEndian(uint32_t{1});
    EXPECT_TRUE(IsBad());
    EXPECT_EQ(record.Record().mColourSpace_be, 0U) << "defaulted again all the same";
}

TEST_F(RecordTest, Validate_PrinterWithoutColour_AcceptsGrayOnly) {
    TestPPD ppd;
    ppd.colour = "False";
    UsePrinter(ppd);
    for (uint32_t colourSpace : {0U, 2U, 3U}) {
        Driver().ZELPrDefaults(session.Get(), record.Get());
        record.Record().mColourSpace_be = SwapBigEndian(colourSpace);
        EXPECT_TRUE(IsBad()) << colourSpace;
    }
    record.Record().mColourSpace_be = SwapBigEndian(uint32_t{1});
    EXPECT_FALSE(IsBad());
}

TEST_F(RecordTest, Validate_PrinterWithoutColour_DefaultsTwiceAndReportsAChange) {
    TestPPD ppd;
    ppd.colour = "False";
    UsePrinter(ppd);
    SetPreference(CFSTR("PSColourSpace"), MakeNumber(int64_t{1}).Get());
    session.Suggest(1000, 1000, 100);
    Driver().ZELPrDefaults(session.Get(), record.Get());
    EXPECT_EQ(record.Record().mColourSpace_be, 0U);
    const std::string defaults = record.Bytes();
    EXPECT_TRUE(IsBad());
    EXPECT_EQ(record.Bytes(), defaults) << "the suggestions are dropped";
}

TEST_F(RecordTest, PrinterWithoutPages_RecordsAreBadAndNeverCrash) {
    TestPPD ppd;
    ppd.pages.clear();
    ppd.resolutions.clear();
    UsePrinter(ppd);
    session.Suggest(1000, 1000, 100);
    EXPECT_TRUE(IsBad());
    EXPECT_EQ(DoubleFromBigEndian(record.Record().mPageWidth_be), 0);
    EXPECT_STREQ(record.Record().mPageName, "");
    EXPECT_STREQ(record.Record().mResolutionName, "600dpi") << "made from the default";
    EXPECT_TRUE(IsBad());
}

TEST_F(RecordTest, NamesOfThePrinter_AreCutAtFortyBytes) {
    const std::string page(41, 'P');
    TestPPD ppd;
    ppd.defaultPage = page;
    ppd.pages = "*PageSize " + page + ": \"code\"\n*ImageableArea " + page + ": \"0 0 100 200\"\n";
    UsePrinter(ppd);
    Driver().ZELPrDefaults(session.Get(), record.Get());
    EXPECT_EQ(std::string(record.Record().mPageName), page.substr(0, 40));
    EXPECT_TRUE(IsBad()) << "and then name no page of the printer";
}

TEST_F(RecordTest, NameOfFortyBytes_FitsWithItsTerminator) {
    const std::string page(40, 'P');
    TestPPD ppd;
    ppd.defaultPage = page;
    ppd.pages = "*PageSize " + page + ": \"code\"\n*ImageableArea " + page + ": \"0 0 100 200\"\n";
    UsePrinter(ppd);
    Driver().ZELPrDefaults(session.Get(), record.Get());
    EXPECT_EQ(std::string(record.Record().mPageName), page);
    EXPECT_FALSE(IsBad());
}

// ---- defaults

TEST_F(RecordTest, Defaults_EveryLength_BecomesExactly416Bytes) {
    const std::string defaults = record.Bytes();
    for (Size size = 0; size <= 600; ++size) {
        RecordHandle handle(std::string(static_cast<size_t>(size), '\xEE'));
        Driver().ZELPrDefaults(session.Get(), handle.Get());
        EXPECT_EQ(handle.Bytes(), defaults) << size;
    }
}

TEST_F(RecordTest, Defaults_NoStaleByteSurvives) {
    const std::string defaults = record.Bytes();
    std::memset(*record.Get(), 0xFF, sizeof(PSHPrint));
    Driver().ZELPrDefaults(session.Get(), record.Get());
    EXPECT_EQ(record.Bytes(), defaults);
}

} // namespace
