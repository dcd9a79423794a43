// From a record to an open document: what is asked of the printer, and every refusal.
#include "support/BigEndian.h"
#include "tests/Common/Src/BundleHost.h"
#include "tests/Common/Src/TestPPD.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class DocumentOpeningTest : public testing::Test {
protected:
    DocumentOpeningTest() {
        ClearPreferences();
        setenv("CUPS_SERVER", "/no/such/scheduler", 1); // the print command fails and says so
        TestPPD ppd;
        ppd.custom = TestPPD::CustomPages();
        UsePrinter(ppd);
        Driver().ZELPrDefaults(session.Get(), record.Get());
        EXPECT_TRUE(session.SetHotFolder(record.Get(), output.Path()));
        SetSize(20, 10);
        record.Record().mXDpi_be = record.Record().mYDpi_be = DoubleToBigEndian(72);
    }
    ~DocumentOpeningTest() override { ClearPreferences(); }

    void UsePrinter(const TestPPD &ppd) {
        const CFRef<CFURLRef> url = MakeURL(folder.Write("Test.ppd", ppd.Text()));
        ASSERT_EQ(Driver().ZELPrSetPrinter(session.Get(), url.Get(), nullptr), 0);
    }
    void SetSize(double width, double height) {
        record.Record().mPageWidth_be = DoubleToBigEndian(width);
        record.Record().mPageHeight_be = DoubleToBigEndian(height);
    }
    void SetPageName(const char *name) {
        std::strncpy(record.Record().mPageName, name, sizeof record.Record().mPageName);
    }
    void SetResolutionName(const char *name) {
        std::strncpy(record.Record().mResolutionName, name, sizeof record.Record().mResolutionName);
    }
    void SetColourSpace(uint32_t colourSpace) {
        record.Record().mColourSpace_be = SwapBigEndian(colourSpace);
    }
    int32_t OpenDoc(uint16_t depth = 32) {
        Driver().ZELPrSuggestPage(session.Get(), nullptr, nullptr, depth);
        return Driver().ZELPrOpenDoc(session.Get());
    }
    /// The document of one page; empty when it could not be printed.
    std::string Print(uint16_t depth = 32) {
        EXPECT_EQ(OpenDoc(depth), 0);
        EXPECT_EQ(session.PrintPage(20, 10, depth), 0);
        EXPECT_EQ(Driver().ZELPrCloseDoc(session.Get()), 0);
        const std::vector<std::string> names = output.Names();
        return names.size() == 1 ? ReadFile(output.Path() / names[0]) : "";
    }
    /// Opening fails with -50 and says exactly this.
    void ExpectRefusal(const std::string &message) {
        StderrCapture messages;
        EXPECT_EQ(OpenDoc(), kZELBadParameter);
        EXPECT_EQ(messages.Text(), message);
        EXPECT_THAT(output.Names(), IsEmpty());
        EXPECT_EQ(session.Close(), kZELBadParameter);
    }

    ScratchFolder folder, output;
    RecordHandle record;
    Session session;
};

TEST_F(DocumentOpeningTest, NamedPage_ItsCodeAndTheResolutionsAreInTheSetup) {
    EXPECT_THAT(Print(), HasSubstr("/docsave save def\n"
                                   "<</HWResolution[600 600]>>setpagedevice\n"
                                   "<</PageSize[595 842]>>setpagedevice\n"
                                   "%%EndSetup\n"));
}

TEST_F(DocumentOpeningTest, NamedPage_ItsAreaIsTheBoundingBox) {
    const std::string document = Print();
    EXPECT_THAT(document, HasSubstr("%%BoundingBox: 10 12 585 830\n"));
    EXPECT_THAT(document, HasSubstr("10.000000 12.000000 translate\n"));
}

TEST_F(DocumentOpeningTest, Geometry_ComesFromTheRecordNotFromThePage) {
    const std::string document = Print();
    EXPECT_THAT(document, HasSubstr("/Width 20 /Height 10\n"));
    EXPECT_THAT(document, HasSubstr("20.000000 10.000000 scale\n"));
}

TEST_F(DocumentOpeningTest, Pixels_AreTruncated) {
    SetSize(20.99, 10.01);
    EXPECT_THAT(Print(), HasSubstr("/Width 20 /Height 10\n"));
}

TEST_F(DocumentOpeningTest, Flags_AnyNonZeroWordIsSet) {
    record.Record().mFlipH_be = 0x80000000;
    record.Record().mFlipV_be = 1;
    record.Record().mRotated_be = 0x100;
    const std::string document = Print();
    EXPECT_THAT(document, HasSubstr("90 rotate\n"));
    EXPECT_THAT(document, HasSubstr("-1 1 scale\n-1 0 translate\n1 -1 scale\n0 -1 translate\n"));
}

TEST_F(DocumentOpeningTest, JobName_IsTheTitleAndTheFileName) {
    (void)Driver().ZELPrSetJobName(session.Get(), nullptr, MakeString("Größe 1").Get());
    EXPECT_THAT(Print(), HasSubstr("%%Title: (Größe 1)\n"));
    EXPECT_THAT(output.Names(), ElementsAre("Größe 1.ps"));
}

// ---- EPS

TEST_F(DocumentOpeningTest, EPS_SelectsNothingOnThePrinterAndHasItsOwnSize) {
    record.Record().mEPSFormat_be = 1;
    const std::string document = Print();
    EXPECT_THAT(document, HasSubstr("%%BoundingBox: 0 0 20 10\n"));
    EXPECT_THAT(document, Not(HasSubstr("setpagedevice")));
}

TEST_F(DocumentOpeningTest, EPS_UnknownPageAndResolution_AreNotLookedUp) {
    record.Record().mEPSFormat_be = 1;
    SetPageName("no such page");
    SetResolutionName("no such resolution");
    StderrCapture messages;
    EXPECT_THAT(Print(), HasSubstr("%!PS-Adobe-3.0 EPSF-3.0\n"));
    EXPECT_EQ(messages.Text(), "");
}

TEST_F(DocumentOpeningTest, EPS_CustomPageOfAPrinterWithout_IsNotLookedAt) {
    UsePrinter({});
    record.Record().mEPSFormat_be = record.Record().mPageIsCustom_be = 1;
    EXPECT_THAT(Print(), HasSubstr("%%BoundingBox: 0 0 20 10\n"));
}

// How the second page of an EPS document fails; the first one is closed by then.
struct SecondPageFailure {
    const char *name;
    std::function<void(DriverContext *)> fail;
    int32_t code;
};

void PrintTo(const SecondPageFailure &c, std::ostream *out) {
    *out << c.name;
}

class EPSSecondPage : public DocumentOpeningTest,
                      public testing::WithParamInterface<SecondPageFailure> {
protected:
    EPSSecondPage() { record.Record().mEPSFormat_be = 1; }
    std::string Page(const std::string &name) const {
        std::string text = ReadFile(output.Path() / name);
        const size_t date = text.find("%%CreationDate:");
        if (date != std::string::npos) text.erase(date, text.find('\n', date) - date);
        return text;
    }
    void PrintFirstPage() {
        ASSERT_EQ(OpenDoc(), 0);
        ASSERT_EQ(session.PrintPage(20, 10), 0);
    }
};

void PrintBandOf(DriverContext *context, uint16_t pixelFormat) {
    const uint8_t pixel[8] = {};
    const ZELRect one = {0, 0, 1, 1};
    const ZELBand band = {pixel, one, 4, pixelFormat};
    (void)Driver().ZELPrPrintBitmap(context, &band, &one, &one);
}

TEST_P(EPSSecondPage, Fails_TheFirstStaysWhole) {
    PrintFirstPage();
    ASSERT_EQ(Driver().ZELPrCloseDoc(session.Get()), 0);
    const std::string whole = Page("Untitled.eps");
    ASSERT_THAT(whole, testing::EndsWith("~>\ngrestore\n%%EOF\n"));
    std::filesystem::remove(output.Path() / "Untitled.eps");
    PrintFirstPage();
    StderrCapture messages;
    (void)Driver().ZELPrOpenPage(session.Get(), nullptr, nullptr);
    GetParam().fail(session.Get());
    EXPECT_EQ(Driver().ZELPrClosePage(session.Get()), GetParam().code);
    EXPECT_EQ(Driver().ZELPrCloseDoc(session.Get()), GetParam().code);
    EXPECT_THAT(output.Names(), ElementsAre("Untitled.eps"));
    EXPECT_EQ(Page("Untitled.eps"), whole);
    EXPECT_EQ(session.Close(), GetParam().code);
}

INSTANTIATE_TEST_SUITE_P(
    , EPSSecondPage,
    testing::Values(
        SecondPageFailure{"WrongPixels", [](DriverContext *c) { PrintBandOf(c, kZELFormatCMYK32); },
                          kZELPixelFormatDiffers},
        SecondPageFailure{"HostsError", [](DriverContext *c) { Driver().ZELPrSetError(c, 4711); },
                          4711},
        SecondPageFailure{"Cancelled",
                          [](DriverContext *c) { Driver().ZELPrSetError(c, kZELUserCancelled); },
                          kZELUserCancelled}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(EPSSecondPage, NotOpened_TheFirstIsUnfinishedAndGoes) {
    PrintFirstPage();
    Driver().ZELPrSetError(session.Get(), 4711);
    EXPECT_EQ(Driver().ZELPrCloseDoc(session.Get()), 4711);
    EXPECT_THAT(output.Names(), IsEmpty());
}

// ---- which record is read

struct RecordCall {
    const char *name;
    std::function<void(DriverContext *, Handle own, Handle other)> call;
    bool counts;
};

void PrintTo(const RecordCall &c, std::ostream *out) {
    *out << c.name;
}

class RecordOfTheDocument : public DocumentOpeningTest,
                            public testing::WithParamInterface<RecordCall> {};

TEST_P(RecordOfTheDocument, IsTheOneOfTheLastCallThatCounts) {
    RecordHandle other(record.Bytes());
    other.Record().mEPSFormat_be = 1;
    const std::string eps = other.Bytes();
    GetParam().call(session.Get(), record.Get(), other.Get());
    ASSERT_EQ(other.Bytes().size(), eps.size());
    std::memcpy(*other.Get(), eps.data(), eps.size());
    EXPECT_NE(Print(), "");
    EXPECT_THAT(output.Names(), ElementsAre(GetParam().counts ? "Untitled.eps" : "Untitled.ps"));
}

INSTANTIATE_TEST_SUITE_P(
    , RecordOfTheDocument,
    testing::Values(
        RecordCall{"Validate",
                   [](DriverContext *c, Handle, Handle h) { Driver().ZELPrValidate(c, h); }, true},
        RecordCall{"Defaults",
                   [](DriverContext *c, Handle, Handle h) { Driver().ZELPrDefaults(c, h); }, true},
        RecordCall{"CopyJobSettings",
                   [](DriverContext *c, Handle, Handle h) {
                       CFRef<CFDictionaryRef>(Driver().ZELPrCopyJobSettings(c, h));
                   },
                   true},
        RecordCall{"SetJobSettings",
                   [](DriverContext *c, Handle, Handle h) {
                       Driver().ZELPrSetJobSettings(c, h, MakeDictionary().Get());
                   },
                   true},
        RecordCall{"GetInfo",
                   [](DriverContext *c, Handle, Handle h) {
                       ZELDriverInfo info = {};
                       Driver().ZELPrGetInfo(c, h, &info);
                   },
                   false},
        RecordCall{
            "JobMergeFrom",
            [](DriverContext *c, Handle own, Handle h) { Driver().ZELPrJobMerge(c, h, own); },
            false},
        RecordCall{
            "JobMergeInto",
            [](DriverContext *c, Handle own, Handle h) { Driver().ZELPrJobMerge(c, own, h); },
            false}),
    [](const auto &info) { return std::string(info.param.name); });

// ---- custom pages

TEST_F(DocumentOpeningTest, CustomPage_AsksForItsSize) {
    record.Record().mPageIsCustom_be = 1;
    SetSize(300, 200);
    ASSERT_EQ(OpenDoc(), 0);
    ASSERT_EQ(Driver().ZELPrOpenPage(session.Get(), nullptr, nullptr), 0);
    ASSERT_EQ(Driver().ZELPrClosePage(session.Get()), 0);
    ASSERT_EQ(Driver().ZELPrCloseDoc(session.Get()), 0);
    // With the orientation at 0 the first number goes to Height, the second to Width.
    EXPECT_THAT(ReadFile(output.Path() / "Untitled.ps"), HasSubstr("\n200 300 0 0 0 \ncustomcode"));
}

TEST_F(DocumentOpeningTest, CustomPage_Rotated_AsksForTheExchangedSize) {
    record.Record().mPageIsCustom_be = 1;
    record.Record().mRotated_be = 1;
    SetSize(300, 200);
    ASSERT_EQ(OpenDoc(), 0);
    ASSERT_EQ(Driver().ZELPrOpenPage(session.Get(), nullptr, nullptr), 0);
    ASSERT_EQ(Driver().ZELPrClosePage(session.Get()), 0);
    ASSERT_EQ(Driver().ZELPrCloseDoc(session.Get()), 0);
    EXPECT_THAT(ReadFile(output.Path() / "Untitled.ps"), HasSubstr("\n300 200 0 0 0 \ncustomcode"));
}

TEST_F(DocumentOpeningTest, CustomPage_PageNameIsNotLookedUp) {
    record.Record().mPageIsCustom_be = 1;
    SetPageName("no such page");
    EXPECT_EQ(OpenDoc(), 0);
}

// ---- colour space and pixel format

struct ColourCase {
    uint32_t colourSpace;
    uint16_t depth;
    const char *space;
};

class DocumentColour : public DocumentOpeningTest,
                       public testing::WithParamInterface<ColourCase> {};

TEST_P(DocumentColour, FollowsRecordAndDepth) {
    SetColourSpace(GetParam().colourSpace);
    const std::string document = Print(GetParam().depth);
    EXPECT_THAT(document, HasSubstr(GetParam().space));
}

INSTANTIATE_TEST_SUITE_P(, DocumentColour,
                         testing::Values(ColourCase{0, 32, "/DeviceCMYK setcolorspace\n"},
                                         ColourCase{0, 33, "/DeviceCMYK setcolorspace\n"},
                                         ColourCase{1, 8, "/DeviceGray setcolorspace\n"},
                                         ColourCase{1, 32, "/DeviceGray setcolorspace\n"},
                                         ColourCase{1, 33, "/DeviceGray setcolorspace\n"},
                                         ColourCase{2, 32, "/DeviceRGB setcolorspace\n"},
                                         ColourCase{2, 33, "/DeviceRGB setcolorspace\n"}));

TEST_F(DocumentOpeningTest, UnusualColourSpaces_NeverCrash) {
    for (uint32_t colourSpace : {3U, 255U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        for (uint16_t depth : {uint16_t{8}, uint16_t{32}, uint16_t{33}}) {
            Session other;
            RecordHandle copy(record.Bytes());
            copy.Record().mColourSpace_be = SwapBigEndian(colourSpace);
            copy.Record().mEPSFormat_be = 1;
            EXPECT_TRUE(other.SetHotFolder(copy.Get(), output.Path()));
            Driver().ZELPrSuggestPage(other.Get(), nullptr, nullptr, depth);
            if (Driver().ZELPrOpenDoc(other.Get()) == 0) (void)other.PrintPage(20, 10, depth);
            (void)Driver().ZELPrCloseDoc(other.Get());
        }
    }
}

TEST_F(DocumentOpeningTest, Separation_UnknownName_IsFileNotFound) {
    std::memcpy(record.Record().cmykSeparationName,
                "\x05"
                "nosuch",
                6);
    EXPECT_EQ(OpenDoc(), kZELFileNotFound);
    EXPECT_THAT(output.Names(), IsEmpty());
}

TEST_F(DocumentOpeningTest, Separation_NotUTF8_IsFileNotFound) {
    std::memcpy(record.Record().cmykSeparationName, "\x02\xff\xfe", 3);
    EXPECT_EQ(OpenDoc(), kZELFileNotFound);
    EXPECT_THAT(output.Names(), IsEmpty());
}

TEST_F(DocumentOpeningTest, Separation_NotUTF8_DoesNotMatterWhereNothingIsSeparated) {
    std::memcpy(record.Record().cmykSeparationName, "\x02\xff\xfe", 3);
    record.Record().mColourSpace_be = SwapBigEndian(uint32_t{kZELColourSpaceRGB});
    EXPECT_THAT(Print(), HasSubstr("/DeviceRGB setcolorspace\n"));
}

// ---- refusals

TEST_F(DocumentOpeningTest, Depth_OtherThan8And32And33_IsRefusedBeforeAnyLookUp) {
    SetPageName("no such page");
    for (uint16_t depth : {1, 16, 24, 31, 34, 64, 65535}) {
        Session other;
        EXPECT_TRUE(other.SetHotFolder(record.Get(), output.Path()));
        Driver().ZELPrSuggestPage(other.Get(), nullptr, nullptr, depth);
        StderrCapture messages;
        EXPECT_EQ(Driver().ZELPrOpenDoc(other.Get()), kZELBadParameter) << depth;
        EXPECT_EQ(messages.Text(), "");
    }
}

TEST_F(DocumentOpeningTest, UnknownResolution_IsNamed) {
    SetResolutionName("75dpi");
    ExpectRefusal("Printer does not have a resolution called: 75dpi\n");
}

TEST_F(DocumentOpeningTest, UnknownPage_IsNamed) {
    SetPageName("Tabloid");
    ExpectRefusal("Printer does not have a page called: Tabloid\n");
}

TEST_F(DocumentOpeningTest, ResolutionIsLookedUpBeforeThePage) {
    SetPageName("Tabloid");
    SetResolutionName("75dpi");
    ExpectRefusal("Printer does not have a resolution called: 75dpi\n");
}

TEST_F(DocumentOpeningTest, CustomPage_PrinterWithout_IsRefused) {
    UsePrinter({});
    record.Record().mPageIsCustom_be = 1;
    ExpectRefusal("Printer does not support variable page sizes\n");
}

TEST_F(DocumentOpeningTest, NameWithoutTerminator_EndsWithItsField) {
    std::memset(record.Record().mPageName, 'x', sizeof record.Record().mPageName);
    ExpectRefusal("Printer does not have a page called: " + std::string(41, 'x') + "\n");
}

TEST_F(DocumentOpeningTest, NameNotUTF8_ShowsTheGeneralMessage) {
    SetPageName("\xff\xfe");
    ExpectRefusal("An Error Occurred\n");
}

TEST_F(DocumentOpeningTest, AbsurdSizes_NeverCrash) {
    for (double size : {0.0, -1.0, kNaN, kInfinity, -kInfinity, 1e-300}) {
        for (double dpi : {72.0, 0.0, -72.0, kNaN, kInfinity}) {
            Session other;
            RecordHandle copy(record.Bytes());
            copy.Record().mEPSFormat_be = 1;
            copy.Record().mPageWidth_be = copy.Record().mPageHeight_be = DoubleToBigEndian(size);
            copy.Record().mXDpi_be = copy.Record().mYDpi_be = DoubleToBigEndian(dpi);
            EXPECT_TRUE(other.SetHotFolder(copy.Get(), output.Path()));
            StderrCapture messages;
            (void)Driver().ZELPrOpenDoc(other.Get());
            EXPECT_EQ(Driver().ZELPrOpenPage(other.Get(), nullptr, nullptr),
                      Driver().ZELPrSetJobName(other.Get(), nullptr, CFSTR("x")));
        }
    }
    EXPECT_THAT(output.Names(), IsEmpty()) << "closing the driver has thrown the documents away";
}

// ---- the print queue

TEST_F(DocumentOpeningTest, PrintQueue_ByPreferenceOrByTheHostsChoice) {
    if (!std::filesystem::exists("/usr/bin/lpr")) GTEST_SKIP() << "no print command here";
    const struct {
        bool preferred;
        int chosen; ///< -1: not at all
        bool sent;
    } cases[] = {{false, -1, false}, {true, -1, true},  {false, 1, true},
                 {true, 1, true},    {false, 0, false}, {true, 0, false}};
    for (const auto &c : cases) {
        SetPreference(CFSTR("SendToDefaultPrintQueue"),
                      c.preferred ? kCFBooleanTrue : kCFBooleanFalse);
        Session other;
        EXPECT_TRUE(other.SetHotFolder(record.Get(), output.Path()));
        record.Record().mEPSFormat_be = 1;
        if (c.chosen >= 0)
            Driver().ZELPrSetSendToPrintQueue(other.Get(), static_cast<Boolean>(c.chosen));
        ASSERT_EQ(Driver().ZELPrOpenDoc(other.Get()), 0);
        StderrCapture messages;
        EXPECT_EQ(other.PrintPage(20, 10), 0);
        EXPECT_EQ(Driver().ZELPrCloseDoc(other.Get()), 0) << "whatever the queue says";
        EXPECT_EQ(messages.Text().find("lpr: ") != std::string::npos, c.sent)
            << c.preferred << c.chosen << messages.Text();
    }
}

} // namespace
