#include "Common/Src/PageOutput.h"

#include "tests/Common/Src/postscript/WriterFixture.h"
#include "tests/Common/Src/stream/ASCII85Reference.h"
#include "tests/GuardedBytes.h"

#include <limits>
#include <random>

namespace {

using Bytes = std::vector<uint8_t>;

constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr int32_t kMax = std::numeric_limits<int32_t>::max();

/// Documents of 4 x 4 grey pixels, unless a test says otherwise.
class PageOutput : public WriterTest {
protected:
    void SetUp() override {
        WriterTest::SetUp();
        mGeometry = {4, 4, 25.4, 25.4};
        mOptions = MakeOptions(kGrayMode, kZELFormatGray8);
    }

    int16_t Open(int16_t sourceFormat, int16_t outputDepth) {
        return OpenDocument(CFSTR("doc"), CFSTR("doc.ps"), &mGeometry, sourceFormat, outputDepth,
                            &mOptions, mFolder.URL(), &mSession);
    }

    void OpenGrayPage() {
        ASSERT_EQ(Open(kZELFormatGray8, 8), 0);
        ASSERT_EQ(OpenPage(mSession, nullptr, nullptr), 0);
    }

    int16_t Print(const ZELBand &band, const ZELRect &source, const ZELRect &dest) {
        return PrintBits(mSession, &band, &source, &dest);
    }

    /// One row of four grey pixels into page row `row`.
    int16_t PrintRow(int32_t row, const Bytes &pixels) {
        const auto width = static_cast<int32_t>(pixels.size());
        const ZELBand band = {pixels.data(), {0, 0, 1, width}, width, kZELFormatGray8};
        return Print(band, {0, 0, 1, width}, {row, 0, row + 1, width});
    }

    /// Closes page and document; the samples of the one page.
    Bytes Samples() {
        EXPECT_EQ(ClosePage(mSession), 0);
        EXPECT_EQ(CloseDocument(mSession), 0);
        return DecodeASCII85(ImageTexts(mFolder.Read("doc.ps")).at(0));
    }

    /// The same, with the darkness of grey pixels as the session was given it.
    Bytes Darkness() {
        Bytes samples = Samples();
        for (uint8_t &sample : samples)
            sample = static_cast<uint8_t>(255 - sample);
        return samples;
    }

    PageOutputSession *mSession = nullptr;
};

Bytes Joined(std::initializer_list<Bytes> rows) {
    Bytes all;
    for (const Bytes &row : rows)
        all.insert(all.end(), row.begin(), row.end());
    return all;
}

const Bytes kBlank = {0, 0, 0, 0}, kRowA = {1, 2, 3, 4}, kRowB = {5, 6, 7, 8};

} // namespace

TEST_F(PageOutput, APageWithoutABandIsWhite) {
    OpenGrayPage();
    EXPECT_EQ(Darkness(), Bytes(16, 0));
}

TEST_F(PageOutput, RowsAroundTheBandsAreWhite) {
    OpenGrayPage();
    EXPECT_EQ(PrintRow(1, kRowA), 0);
    EXPECT_EQ(PrintRow(2, kRowB), 0);
    EXPECT_EQ(Darkness(), Joined({kBlank, kRowA, kRowB, kBlank}));
}

TEST_F(PageOutput, AGapBetweenBandsIsWhite) {
    OpenGrayPage();
    EXPECT_EQ(PrintRow(0, kRowA), 0);
    EXPECT_EQ(PrintRow(3, kRowB), 0);
    EXPECT_EQ(Darkness(), Joined({kRowA, kBlank, kBlank, kRowB}));
}

TEST_F(PageOutput, ABandAboveTheRowsWrittenIsIgnored) {
    OpenGrayPage();
    EXPECT_EQ(PrintRow(2, kRowA), 0);
    EXPECT_EQ(PrintRow(0, kRowB), 0);
    EXPECT_EQ(PrintRow(2, kRowB), 0);
    EXPECT_EQ(Darkness(), Joined({kBlank, kBlank, kRowA, kBlank}));
}

TEST_F(PageOutput, OfABandThatBeginsAboveOnlyTheRestIsDrawn) {
    OpenGrayPage();
    EXPECT_EQ(PrintRow(1, kRowA), 0);
    const Bytes pixels = Joined({{9, 9, 9, 9}, {8, 8, 8, 8}, kRowB});
    const ZELBand band = {pixels.data(), {0, 0, 3, 4}, 4, kZELFormatGray8};
    EXPECT_EQ(Print(band, {0, 0, 3, 4}, {0, 0, 3, 4}), 0);
    EXPECT_EQ(Darkness(), Joined({kBlank, kRowA, kRowB, kBlank}));
}

TEST_F(PageOutput, ADestinationPastThePageIsClippedAndSampledAsAWhole) {
    OpenGrayPage();
    const Bytes pixels = Joined({kRowA, kRowB});
    const ZELBand band = {pixels.data(), {0, 0, 2, 4}, 4, kZELFormatGray8};
    // twice the size, two columns and one row of it before the page
    EXPECT_EQ(Print(band, {0, 0, 2, 4}, {-1, -2, 3, 6}), 0);
    EXPECT_EQ(Darkness(), Joined({{2, 2, 3, 3}, {6, 6, 7, 7}, {6, 6, 7, 7}, kBlank}));
}

TEST_F(PageOutput, ABandBesideThePageDrawsNothing) {
    OpenGrayPage();
    const ZELBand band = {nullptr, {0, 0, 2, 4}, 4, kZELFormatGray8};
    const ZELRect beside[] = {{4, 0, 6, 4}, {0, 4, 2, 8}, {-2, 0, 0, 4}, {0, -4, 2, 0}};
    for (const ZELRect &dest : beside)
        EXPECT_EQ(Print(band, {0, 0, 2, 4}, dest), 0);
    EXPECT_EQ(Darkness(), Bytes(16, 0));
}

TEST_F(PageOutput, EveryPageBeginsAtItsTop) {
    OpenGrayPage();
    EXPECT_EQ(PrintRow(3, kRowA), 0);
    EXPECT_EQ(ClosePage(mSession), 0);
    EXPECT_EQ(OpenPage(mSession, nullptr, nullptr), 0);
    EXPECT_EQ(PrintRow(0, kRowB), 0);
    KillPage(mSession);
    EXPECT_EQ(ClosePage(mSession), 0);
    EXPECT_EQ(CloseDocument(mSession), 0);
    const auto images = ImageTexts(mFolder.Read("doc.ps"));
    ASSERT_EQ(images.size(), 2U);
    EXPECT_EQ(DecodeASCII85(images[0])[12], 254);
    EXPECT_EQ(DecodeASCII85(images[1])[0], 250);
}

TEST_F(PageOutput, EveryFormatPairHasItsRowsAndItsWhite) {
    struct Case {
        int16_t sourceFormat, outputDepth;
        uint16_t documentFormat, white;
        int32_t mode;
        Bytes pixels; ///< two pixels, drawn into columns 0 and 1 of row 0
        Bytes row;    ///< samples of row 0
    };
    const Bytes two64 = {1, 2, 3, 4, 0, 0, 0, 0, 5, 6, 7, 8, 0, 0, 0, 0};
    const Case cases[] = {
        {8, 8, 8, 255, kGrayMode, {10, 20}, {245, 235, 255, 255}},
        {32, 8, 8, 255, kGrayMode, {0, 10, 200, 30, 0, 0, 0, 0}, {200, 0, 255, 255}},
        {33, 8, 8, 255, kGrayMode, {255, 0, 0, 0, 0, 0, 0, 255}, {176, 0, 255, 255}},
        {32,
         32,
         32,
         255,
         kRGBMode,
         {9, 1, 2, 3, 9, 4, 5, 6},
         {1, 2, 3, 4, 5, 6, 255, 255, 255, 255, 255, 255}},
        {33,
         32,
         32,
         255,
         kRGBMode,
         {0, 0, 0, 0, 0, 0, 0, 255},
         {255, 255, 255, 0, 0, 0, 255, 255, 255, 255, 255, 255}},
        {33,
         33,
         33,
         0,
         kCMYKMode,
         {1, 2, 3, 4, 5, 6, 7, 8},
         {1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, 0, 0, 0, 0}},
        {34, 0, 34, 0, kCMYKMode, two64, {1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, 0, 0, 0, 0}},
        {64, 0, 34, 0, kCMYKMode, two64, {1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, 0, 0, 0, 0}},
    };
    for (const Case &c : cases) {
        mOptions = MakeOptions(c.mode, c.documentFormat);
        ASSERT_EQ(Open(c.sourceFormat, c.outputDepth), 0);
        ASSERT_EQ(OpenPage(mSession, nullptr, nullptr), 0);
        const ZELBand band = {c.pixels.data(),
                              {0, 0, 1, 2},
                              static_cast<int32_t>(c.pixels.size()),
                              static_cast<uint16_t>(c.sourceFormat)};
        EXPECT_EQ(Print(band, {0, 0, 1, 2}, {0, 0, 1, 2}), 0);
        Bytes expected = c.row;
        expected.resize(4 * c.row.size(), static_cast<uint8_t>(c.white));
        EXPECT_EQ(Samples(), expected) << c.sourceFormat << " at " << c.outputDepth;
    }
}

TEST_F(PageOutput, XRGBInACMYKDocumentBecomesInk) {
    mOptions = MakeOptions(kCMYKMode, kZELFormatXRGB32);
    ASSERT_EQ(Open(kZELFormatXRGB32, 32), 0);
    ASSERT_EQ(OpenPage(mSession, nullptr, nullptr), 0);
    const Bytes pixels = {0, 255, 255, 255, 0, 255, 0, 255};
    const ZELBand band = {pixels.data(), {0, 0, 1, 2}, 8, kZELFormatXRGB32};
    EXPECT_EQ(Print(band, {0, 0, 1, 2}, {0, 0, 1, 2}), 0);
    Bytes expected(64, 0);
    expected[5] = 255; // magenta
    EXPECT_EQ(Samples(), expected);
}

TEST_F(PageOutput, FormatsOfTwelveBytesAreRefusedWithTheFirstRow) {
    for (int16_t format : {kZELFormatRGB96, kZELFormatCMYK96}) {
        mOptions = MakeOptions(kRGBMode, static_cast<uint16_t>(format));
        ASSERT_EQ(Open(format, 32), 0);
        ASSERT_EQ(OpenPage(mSession, nullptr, nullptr), 0);
        const Bytes pixels(48);
        const ZELBand band = {pixels.data(), {0, 0, 1, 4}, 48, static_cast<uint16_t>(format)};
        testing::internal::CaptureStderr();
        EXPECT_EQ(Print(band, {0, 0, 1, 4}, {0, 0, 1, 4}), -50);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "PrinterDriver PrintBits returned: -50\n");
        KillDocument(mSession);
    }
    EXPECT_TRUE(mFolder.Names().empty());
}

TEST_F(PageOutput, OtherHostFormatsAreRefusedSilently) {
    for (int16_t format : {0, 1, 16, 24, 37, -1}) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(Open(format, 8), -50) << format;
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(mSession, nullptr);
    }
    EXPECT_TRUE(mFolder.Names().empty());
}

TEST_F(PageOutput, AFailedCreationIsReportedAndLeavesNoSession) {
    std::filesystem::create_directory(mFolder.Path() / "doc.ps");
    mSession = reinterpret_cast<PageOutputSession *>(this);
    testing::internal::CaptureStderr();
    EXPECT_EQ(Open(kZELFormatGray8, 8), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "PrinterDriver Output_Create returned: -1\n");
    EXPECT_EQ(mSession, nullptr);
}

TEST_F(PageOutput, ANegativeWidthIsOutOfMemory) {
    mGeometry.widthPixels = -4;
    EXPECT_EQ(Open(kZELFormatGray8, 8), -108);
    EXPECT_EQ(mSession, nullptr);
}

TEST_F(PageOutput, AWidthBeyondAnyPaperIsOutOfMemory) {
    for (const int32_t width : {10000000, 80000000, INT32_MAX}) {
        mGeometry.widthPixels = width;
        EXPECT_EQ(Open(kZELFormatGray8, 8), -108) << width;
        EXPECT_EQ(mSession, nullptr);
    }
}

TEST_F(PageOutput, ABandOfAnotherFormatIsRefused) {
    OpenGrayPage();
    const ZELBand band = {kRowA.data(), {0, 0, 1, 4}, 4, kZELFormatXRGB32};
    testing::internal::CaptureStderr();
    EXPECT_EQ(Print(band, {0, 0, 1, 4}, {0, 0, 1, 4}), -157);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "PrinterDriver PrintBits returned: -157\n");
    EXPECT_EQ(PrintRow(0, kRowA), 0);
    EXPECT_EQ(Darkness(), Joined({kRowA, kBlank, kBlank, kBlank}));
}

TEST_F(PageOutput, AnEmptySourceOrDestinationDrawsNothing) {
    OpenGrayPage();
    const ZELBand band = {nullptr, {0, 0, 1, 4}, 4, kZELFormatGray8};
    const ZELRect whole = {0, 0, 1, 4};
    const ZELRect empties[] = {
        {0, 0, 0, 4}, {0, 2, 1, 2}, {1, 0, 0, 4}, {0, 4, 1, 0}, {kMax, kMax, kMin, kMin}};
    for (const ZELRect &empty : empties) {
        EXPECT_EQ(Print(band, empty, whole), 0);
        EXPECT_EQ(Print(band, whole, empty), 0);
    }
    EXPECT_EQ(PrintRow(0, kRowA), 0);
    EXPECT_EQ(Darkness(), Joined({kRowA, kBlank, kBlank, kBlank}));
}

TEST_F(PageOutput, ASourceOutsideTheBandIsRefused) {
    const GuardedBytes pixels(4);
    memcpy(pixels.Data(), kRowA.data(), 4);
    const ZELBand band = {pixels.Data(), {10, 20, 11, 24}, 4, kZELFormatGray8};
    const ZELRect outside[] = {{10, 20, 12, 24}, {10, 20, 11, 25}, {9, 20, 11, 24},
                               {10, 19, 11, 24}, {0, 0, 1, 4},     {kMin, kMin, kMax, kMax}};
    for (const ZELRect &source : outside) {
        OpenGrayPage();
        testing::internal::CaptureStderr();
        EXPECT_EQ(Print(band, source, {0, 0, 1, 4}), -50);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "PrinterDriver PrintBits returned: -50\n");
        KillDocument(mSession);
    }
    OpenGrayPage();
    EXPECT_EQ(Print(band, {10, 20, 11, 24}, {0, 0, 1, 4}), 0);
    EXPECT_EQ(Darkness(), Joined({kRowA, kBlank, kBlank, kBlank}));
}

TEST_F(PageOutput, AfterAFailedBandThePageGoesOnBelowIt) {
    OpenGrayPage();
    const ZELBand band = {nullptr, {0, 0, 2, 4}, 4, kZELFormatGray8};
    EXPECT_EQ(Print(band, {0, 0, 2, 4}, {1, 0, 3, 4}), -50);
    // rows 1 and 2 are lost, row 0 was blank
    EXPECT_EQ(PrintRow(2, kRowA), 0);
    EXPECT_EQ(PrintRow(3, kRowB), 0);
    EXPECT_EQ(Darkness(), Joined({kBlank, kRowB}));
}

TEST_F(PageOutput, MissingArgumentsAreRefused) {
    OpenGrayPage();
    const ZELBand band = {kRowA.data(), {0, 0, 1, 4}, 4, kZELFormatGray8};
    const ZELRect rect = {0, 0, 1, 4};
    EXPECT_EQ(PrintBits(mSession, nullptr, &rect, &rect), -50);
    EXPECT_EQ(PrintBits(mSession, &band, nullptr, &rect), -50);
    EXPECT_EQ(PrintBits(mSession, &band, &rect, nullptr), -50);
    EXPECT_EQ(PrintBits(nullptr, &band, &rect, &rect), -50);
    KillDocument(mSession);
    EXPECT_EQ(
        OpenDocument(CFSTR("doc"), nullptr, nullptr, 8, 8, &mOptions, mFolder.URL(), &mSession),
        -50);
    EXPECT_EQ(OpenDocument(nullptr, nullptr, &mGeometry, 8, 8, &mOptions, mFolder.URL(), &mSession),
              -50);
}

TEST_F(PageOutput, GreyPixelsInAColourDocumentStayInsideTheLineBuffer) {
    for (int32_t mode : {kRGBMode, kCMYKMode}) {
        for (const uint16_t format : {kZELFormatXRGB32, kZELFormatCMYK32, kZELFormat64}) {
            mOptions = MakeOptions(mode, format);
            ASSERT_EQ(Open(kZELFormatGray8, 8), 0);
            ASSERT_EQ(OpenPage(mSession, nullptr, nullptr), 0);
            const GuardedBytes pixels(16);
            memset(pixels.Data(), 0x11, 16);
            const ZELBand band = {pixels.Data(), {0, 0, 4, 4}, 4, kZELFormatGray8};
            EXPECT_EQ(Print(band, {0, 0, 4, 4}, {0, 0, 4, 4}), 0);
            EXPECT_EQ(Samples().size(), mode == kRGBMode ? 48U : 64U);
        }
    }
}

TEST_F(PageOutput, NarrowHostPixelsNeverPassAsAWiderDocumentsRow) {
    mOptions = MakeOptions(kCMYKMode, kZELFormat64);
    ASSERT_EQ(Open(kZELFormatXRGB32, 32), 0);
    ASSERT_EQ(OpenPage(mSession, nullptr, nullptr), 0);
    const GuardedBytes pixels(64);
    const ZELBand band = {pixels.Data(), {0, 0, 4, 4}, 16, kZELFormatXRGB32};
    EXPECT_EQ(Print(band, {0, 0, 4, 4}, {0, 0, 4, 4}), 0);
    EXPECT_EQ(Samples().size(), 64U);
}

TEST_F(PageOutput, SplittingAPageIntoBandsChangesNoByte) {
    struct Case {
        int16_t sourceFormat, outputDepth;
        int32_t mode;
        uint16_t documentFormat;
        int32_t pixelSize;
    };
    const Case cases[] = {{8, 8, kGrayMode, 8, 1},    {32, 8, kGrayMode, 8, 4},
                          {33, 8, kGrayMode, 8, 4},   {32, 32, kRGBMode, 32, 4},
                          {33, 32, kRGBMode, 32, 4},  {32, 32, kCMYKMode, 32, 4},
                          {33, 33, kCMYKMode, 33, 4}, {34, 34, kCMYKMode, 34, 8}};
    mGeometry = {61, 97, 50, 80};
    std::mt19937 random(5);
    for (const Case &c : cases) {
        mOptions = MakeOptions(c.mode, c.documentFormat);
        const int32_t rowBytes = mGeometry.widthPixels * c.pixelSize;
        Bytes pixels(static_cast<size_t>(rowBytes * mGeometry.heightPixels));
        for (uint8_t &byte : pixels)
            byte = static_cast<uint8_t>(random());
        std::string whole;
        for (int32_t bandHeight : {97, 1, 2, 7, 64, 96}) {
            ASSERT_EQ(Open(c.sourceFormat, c.outputDepth), 0);
            ASSERT_EQ(OpenPage(mSession, nullptr, nullptr), 0);
            for (int32_t top = 0; top < 97; top += bandHeight) {
                const int32_t bottom = std::min(97, top + bandHeight);
                const ZELRect rect = {top, 0, bottom, 61};
                const ZELBand band = {pixels.data() + int64_t{top} * rowBytes, rect, rowBytes,
                                      static_cast<uint16_t>(c.sourceFormat)};
                ASSERT_EQ(Print(band, rect, rect), 0);
            }
            ASSERT_EQ(ClosePage(mSession), 0);
            ASSERT_EQ(CloseDocument(mSession), 0);
            const std::string text = WithoutDate(mFolder.Read("doc.ps"));
            if (whole.empty()) whole = text;
            EXPECT_TRUE(text == whole) << c.sourceFormat << " in bands of " << bandHeight;
        }
    }
}

TEST_F(PageOutput, ClosingADocumentAlwaysSucceeds) {
    OpenGrayPage();
    std::filesystem::remove_all(mFolder.Path());
    EXPECT_EQ(ClosePage(mSession), 0);
    EXPECT_EQ(CloseDocument(mSession), 0);
    mOptions.eps = 1;
    ASSERT_EQ(Open(kZELFormatGray8, 8), 0);
    testing::internal::CaptureStderr();
    EXPECT_EQ(OpenPage(mSession, nullptr, nullptr), -1);
    EXPECT_EQ(ClosePage(mSession), -50);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "PrinterDriver OpenPage returned: -1\nClosePage returned: -50\n");
    EXPECT_EQ(CloseDocument(mSession), 0);
}

TEST_F(PageOutput, KillingADocumentDeletesItsFile) {
    OpenGrayPage();
    EXPECT_EQ(PrintRow(1, kRowA), 0);
    KillDocument(mSession);
    EXPECT_TRUE(mFolder.Names().empty());
}

TEST_F(PageOutput, ASessionThatIsNoneEndsTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(OpenPage(nullptr, nullptr, nullptr), "OpenPage.*self != 0");
}
