#include "Common/Src/postscript/PostscriptDocument.h"
#include "colour/Separations.h"
#include "tests/Common/Src/postscript/WriterFixture.h"
#include "tests/Common/Src/stream/ASCII85Reference.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Names = std::vector<std::string>;

using Output = WriterTest;

std::string LineOf(const std::string &text, const std::string &start) {
    const size_t at = text.find("\n" + start);
    return at == std::string::npos ? "" : text.substr(at + 1, text.find('\n', at + 1) - at - 1);
}

} // namespace

TEST_F(Output, FileTypeAndCreatorAreFixedCodes) {
    EXPECT_EQ(Output_FileType(), 0x54455854U);
    EXPECT_EQ(Output_Creator(), 0x50445332U);
}

TEST_F(Output, APostScriptDocumentOfOnePageIsExactlyThis) {
    PostscriptDocument document;
    for (uint32_t section = 0; section < 6; ++section)
        document.AddCodeToSection("(code " + std::to_string(section) + ") pop", section, 1);
    mOptions.document = &document;
    ASSERT_EQ(Create("report"), 0);
    AddPage({9, 0, 0, 0, 9, 0, 255, 255});
    ASSERT_EQ(Output_Close(mOutput), 0);
    EXPECT_EQ(mFolder.Names(), Names{"report.ps"});
    EXPECT_EQ(WithoutDate(mFolder.Read("report.ps")), R"(%!PS-Adobe-3.0
%%Creator: (ZEL Postscript Printer Driver)
%%Title: (report)
%%CreationDate: (DATE)
%%Pages: (atend)
%%BoundingBox: 10 20 301 401
%%HiResBoundingBox: 10.200000 20.700000 300.100000 400.900000
%%LanguageLevel: 2
%%DocumentData: Clean7Bit
(code 0) pop
%%EndComments
%%BeginProlog
(code 1) pop
%%EndProlog
%%BeginSetup
% Disable CTRL-D as an end-of-file marker...
userdict dup(\004)cvn{}put (\004\004)cvn{}put
/docsave save def
(code 2) pop
%%EndSetup
%%Page: 1 1
%%BeginPageSetup
/pgsave save def
(code 3) pop
%%EndPageSetup
/DeviceRGB setcolorspace
10.200000 20.700000 translate
72.000000 36.000000 scale
<<
/ImageType 1
/Width 2 /Height 1
/BitsPerComponent 8
/Decode [0 1 0 1 0 1]
/ImageMatrix [2 0 0 -1 0 1]
/DataSource currentfile /ASCII85Decode filter
>>
image
zN'~>
%%PageTrailer
(code 4) pop
pgsave restore
showpage
%%Trailer
(code 5) pop
docsave restore
%%Pages: 1
%%EOF
)");
}

TEST_F(Output, ASecondPageFollowsTheFirstPagesTrailer) {
    PostscriptDocument document;
    document.AddCodeToSection("(page setup) pop", PostscriptDocument::kPageSetup, 1);
    document.AddCodeToSection("(page trailer) pop", PostscriptDocument::kPageTrailer, 1);
    mOptions.document = &document;
    mOptions.colourMode = kGrayMode;
    mOptions.pixelFormat = kZELFormatGray8;
    mGeometry = {4, 1, 25.4, 25.4};
    ASSERT_EQ(Create("two"), 0);
    AddPage({0, 0, 0, 0});
    AddPage({255, 255, 255, 255});
    ASSERT_EQ(Output_Close(mOutput), 0);
    const std::string text = mFolder.Read("two.ps");
    EXPECT_EQ(text.substr(text.find("%%Page: ")), R"(%%Page: 1 1
%%BeginPageSetup
/pgsave save def
(page setup) pop
%%EndPageSetup
/DeviceGray setcolorspace
10.200000 20.700000 translate
72.000000 72.000000 scale
<<
/ImageType 1
/Width 4 /Height 1
/BitsPerComponent 8
/Decode [0 1]
/ImageMatrix [4 0 0 -1 0 1]
/DataSource currentfile /ASCII85Decode filter
>>
image
s8W-!~>
%%PageTrailer
(page trailer) pop
pgsave restore
showpage
%%Page: 2 2
%%BeginPageSetup
/pgsave save def
(page setup) pop
%%EndPageSetup
/DeviceGray setcolorspace
10.200000 20.700000 translate
72.000000 72.000000 scale
<<
/ImageType 1
/Width 4 /Height 1
/BitsPerComponent 8
/Decode [0 1]
/ImageMatrix [4 0 0 -1 0 1]
/DataSource currentfile /ASCII85Decode filter
>>
image
z~>
%%PageTrailer
(page trailer) pop
pgsave restore
showpage
%%Trailer
docsave restore
%%Pages: 2
%%EOF
)");
}

TEST_F(Output, AnEPSFileIsExactlyThis) {
    PostscriptDocument document;
    for (uint32_t section = 0; section < 6; ++section)
        document.AddCodeToSection("%%Code: " + std::to_string(section), section, 1);
    mOptions.document = &document;
    mOptions.eps = 1;
    mOptions.colourMode = kCMYKMode;
    mOptions.pixelFormat = kZELFormatCMYK32;
    ASSERT_EQ(Create("chart"), 0);
    EXPECT_TRUE(mFolder.Names().empty());
    AddPage({0, 0, 0, 0, 255, 255, 255, 255});
    ASSERT_EQ(Output_Close(mOutput), 0);
    EXPECT_EQ(mFolder.Names(), Names{"chart.eps"});
    EXPECT_EQ(WithoutDate(mFolder.Read("chart.eps")), R"(%!PS-Adobe-3.0 EPSF-3.0
%%Creator: (ZEL Postscript Printer Driver)
%%Title: (chart)
%%CreationDate: (DATE)
%%BoundingBox: 10 20 301 401
%%HiResBoundingBox: 10.200000 20.700000 300.100000 400.900000
%%DocumentProcessColors: Cyan Magenta Yellow Black
%%LanguageLevel: 2
%%DocumentData: Clean7Bit
%%Code: 0
%%EndComments
%%BeginProlog
%%EndProlog
%%BeginSetup
%%EndSetup
gsave
/DeviceCMYK setcolorspace
10.200000 20.700000 translate
72.000000 36.000000 scale
<<
/ImageType 1
/Width 2 /Height 1
/BitsPerComponent 8
/Decode [0 1 0 1 0 1 0 1]
/ImageMatrix [2 0 0 -1 0 1]
/DataSource currentfile /ASCII85Decode filter
>>
image
zs8W-!~>
grestore
%%EOF
)");
}

TEST_F(Output, EveryEPSPageHasAFileAndATitleOfItsOwn) {
    mOptions.eps = 1;
    std::ofstream(mFolder.Path() / "chart_p02.eps") << "mine";
    ASSERT_EQ(Create("title", "chart.eps"), 0);
    for (int i = 0; i < 3; ++i)
        AddPage(Bytes(8, 0));
    ASSERT_EQ(Output_Close(mOutput), 0);
    EXPECT_EQ(mFolder.Names(),
              (Names{"chart.eps", "chart_p02.eps", "chart_p02_01.eps", "chart_p03.eps"}));
    EXPECT_EQ(mFolder.Read("chart_p02.eps"), "mine");
    EXPECT_EQ(LineOf(mFolder.Read("chart.eps"), "%%Title"), "%%Title: (chart)");
    // without the number that made the name unique
    EXPECT_EQ(LineOf(mFolder.Read("chart_p02_01.eps"), "%%Title"), "%%Title: (chart_p02)");
    EXPECT_EQ(LineOf(mFolder.Read("chart_p03.eps"), "%%Title"), "%%Title: (chart_p03)");
    for (const std::string name : {"chart.eps", "chart_p02_01.eps", "chart_p03.eps"}) {
        const std::string text = mFolder.Read(name);
        EXPECT_EQ(text.find("%%Pages"), std::string::npos);
        EXPECT_EQ(text.find("showpage"), std::string::npos);
        EXPECT_EQ(text.substr(text.size() - 15), "grestore\n%%EOF\n");
    }
}

TEST_F(Output, APageNumberOfThreeDigitsIsNotCut) {
    mOptions.eps = 1;
    ASSERT_EQ(Create("c"), 0);
    for (int i = 0; i < 100; ++i)
        AddPage(Bytes(8, 0));
    ASSERT_EQ(Output_Close(mOutput), 0);
    EXPECT_EQ(mFolder.Names().size(), 100U);
    EXPECT_FALSE(mFolder.Read("c_p99.eps").empty());
    EXPECT_FALSE(mFolder.Read("c_p100.eps").empty());
}

TEST_F(Output, TheBoundingBoxIsRoundedOutwards) {
    struct Case {
        double box[4];
        const char *line;
    };
    const Case cases[] = {
        {{10.2, 20.7, 300.1, 400.9}, "%%BoundingBox: 10 20 301 401"},
        {{0, 0, 595, 842}, "%%BoundingBox: 0 0 595 842"},
        {{-0.5, -10.1, 0.0001, 99.9999}, "%%BoundingBox: -1 -11 1 100"},
        {{-0.0, 0.0, -0.2, -1.7}, "%%BoundingBox: 0 0 0 -1"},
        {{1e9, -1e9, 3e9, 1e12}, "%%BoundingBox: 1000000000 -1000000000 3000000000 1000000000000"},
    };
    for (const Case &c : cases) {
        mOptions.llx = c.box[0];
        mOptions.lly = c.box[1];
        mOptions.urx = c.box[2];
        mOptions.ury = c.box[3];
        ASSERT_EQ(Create("box", "box.ps"), 0);
        AddPage(Bytes(8, 0));
        ASSERT_EQ(Output_Close(mOutput), 0);
        EXPECT_EQ(LineOf(mFolder.Read("box.ps"), "%%BoundingBox"), c.line);
    }
}

TEST_F(Output, ProcessColoursAreNamedForInksOnly) {
    const std::pair<int32_t, const char *> cases[] = {
        {kCMYKMode, "%%DocumentProcessColors: Cyan Magenta Yellow Black"},
        {kGrayMode, "%%DocumentProcessColors: Black"},
        {kRGBMode, ""}};
    for (const auto &[mode, line] : cases) {
        mOptions.colourMode = mode;
        ASSERT_EQ(Create("c", "c.ps"), 0);
        AddPage(Bytes(8, 0));
        ASSERT_EQ(Output_Close(mOutput), 0);
        EXPECT_EQ(LineOf(mFolder.Read("c.ps"), "%%DocumentProcessColors"), line);
    }
}

TEST_F(Output, RotationAndFlipsComeInThisOrder) {
    mOptions.rotate90 = mOptions.mirrorHorizontal = mOptions.mirrorVertical = 1;
    ASSERT_EQ(Create("all"), 0);
    AddPage(Bytes(8, 0));
    ASSERT_EQ(Output_Close(mOutput), 0);
    const std::string text = mFolder.Read("all.ps");
    const size_t start = text.find("10.2", text.find("setcolorspace"));
    EXPECT_EQ(text.substr(start, text.find("<<") - start), R"(10.200000 20.700000 translate
90 rotate
72.000000 36.000000 scale
0 -1 translate
-1 1 scale
-1 0 translate
1 -1 scale
0 -1 translate
)");
}

TEST_F(Output, RowsAreConvertedByModeAndFormat) {
    struct Case {
        int32_t mode;
        uint16_t format;
        Bytes row, samples; ///< of four pixels
    };
    const Case cases[] = {
        {kGrayMode, 8, {0, 255, 10, 128}, {255, 0, 245, 127}},
        {kGrayMode, 35, {0, 255, 10, 128}, {255, 0, 245, 127}},
        {kRGBMode,
         32,
         {9, 1, 2, 3, 9, 4, 5, 6, 9, 7, 8, 9, 9, 10, 11, 12},
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
        {kRGBMode,
         33,
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16},
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
        {kCMYKMode,
         33,
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16},
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}},
        {kCMYKMode,
         34,
         {1, 2, 3, 4, 0, 0, 0, 0, 5, 6, 7, 8, 0, 0, 0, 0,
          9, 1, 2, 3, 0, 0, 0, 0, 4, 5, 6, 7, 0, 0, 0, 0},
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 2, 3, 4, 5, 6, 7}},
        // four bytes a pixel are copied, but a row is as long as its three components
        {kRGBMode,
         34,
         {1, 2, 3, 4, 0, 0, 0, 0, 5, 6, 7, 8, 0, 0, 0, 0,
          9, 1, 2, 3, 0, 0, 0, 0, 4, 5, 6, 7, 0, 0, 0, 0},
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 2, 3}},
    };
    mGeometry.widthPixels = 4;
    for (const Case &c : cases) {
        mOptions.colourMode = c.mode;
        mOptions.pixelFormat = c.format;
        ASSERT_EQ(Create("rows", "rows.ps"), 0);
        AddPage(c.row);
        ASSERT_EQ(Output_Close(mOutput), 0);
        EXPECT_EQ(DecodeASCII85(ImageTexts(mFolder.Read("rows.ps")).at(0)), c.samples)
            << "mode " << c.mode << " format " << c.format;
    }
}

TEST_F(Output, XRGBRowsOfCMYKDocumentsAreSeparated) {
    mOptions.colourMode = kCMYKMode;
    mGeometry.widthPixels = 4;
    const Bytes row = {0, 255, 255, 255, 0, 0, 0, 0, 0, 200, 100, 50, 0, 1, 2, 3};
    Bytes expected(16);
    CMYKSeparation *separation = nullptr;
    ASSERT_EQ(GetCMYKSeparation(nullptr, nullptr, &separation), 0);
    PerformCMYKSeparation(separation, row.data(), 4, expected.data(), 1, 4);
    ReleaseCMYKSeparation(separation);
    for (const char *name : {"", "Standard"}) {
        const CFRef<CFStringRef> separationName = Str(name);
        mOptions.separationName = separationName.Get();
        ASSERT_EQ(Create("cmyk", "cmyk.ps"), 0);
        AddPage(row);
        ASSERT_EQ(Output_Close(mOutput), 0);
        EXPECT_EQ(DecodeASCII85(ImageTexts(mFolder.Read("cmyk.ps")).at(0)), expected);
    }
}

TEST_F(Output, AMissingSeparationFailsTheCreationAndLeavesNothing) {
    mOptions.colourMode = kCMYKMode;
    const CFRef<CFStringRef> name = Str("No such profile");
    mOptions.separationName = name.Get();
    for (uint8_t eps : {0, 1}) {
        mOptions.eps = eps;
        EXPECT_EQ(Create("x"), -43);
        EXPECT_TRUE(mFolder.Names().empty());
    }
}

TEST_F(Output, TheSeparationIsNotAskedForWhenRowsAreCMYKAlready) {
    mOptions.colourMode = kCMYKMode;
    mOptions.pixelFormat = kZELFormatCMYK32;
    const CFRef<CFStringRef> name = Str("No such profile");
    mOptions.separationName = name.Get();
    ASSERT_EQ(Create("x"), 0);
    AddPage(Bytes(8, 0));
    EXPECT_EQ(Output_Close(mOutput), 0);
}

TEST_F(Output, BlankRowsAreWhite) {
    const std::tuple<int32_t, uint16_t, Bytes> cases[] = {{kGrayMode, 8, Bytes(4, 255)},
                                                          {kRGBMode, 32, Bytes(12, 255)},
                                                          {kCMYKMode, 33, Bytes(16, 0)},
                                                          {kCMYKMode, 32, Bytes(16, 0)},
                                                          {kRGBMode, 35, Bytes(12, 255)}};
    mGeometry.widthPixels = 4;
    for (const auto &[mode, format, white] : cases) {
        mOptions.colourMode = mode;
        mOptions.pixelFormat = format;
        ASSERT_EQ(Create("blank", "blank.ps"), 0);
        ASSERT_EQ(Output_AddPage(mOutput), 0);
        ASSERT_EQ(Output_WriteBlankLine(mOutput), 0);
        ASSERT_EQ(Output_Close(mOutput), 0);
        EXPECT_EQ(DecodeASCII85(ImageTexts(mFolder.Read("blank.ps")).at(0)), white);
    }
}

TEST_F(Output, OtherPixelFormatsAreRefusedRowByRow) {
    for (int32_t mode : {kCMYKMode, kRGBMode}) {
        for (uint16_t format : {0, 8, 16, 35, 36, 64}) {
            mOptions.colourMode = mode;
            mOptions.pixelFormat = format;
            ASSERT_EQ(Create("x"), 0);
            ASSERT_EQ(Output_AddPage(mOutput), 0);
            const Bytes row(64);
            EXPECT_EQ(Output_WriteLine(mOutput, row.data()), -50) << format;
            Output_Kill(mOutput);
        }
    }
    EXPECT_TRUE(mFolder.Names().empty());
}

TEST_F(Output, ImageDataOfManyRowsIsTheReferenceEncoding) {
    for (int32_t width : {1, 2, 3, 5, 21, 22, 64, 333}) {
        mGeometry = {width, 13, 10, 10};
        Bytes row(static_cast<size_t>(width) * 4), samples;
        for (size_t i = 0; i < row.size(); ++i)
            row[i] = static_cast<uint8_t>(i * i * 7 + i / 3);
        for (int32_t y = 0; y < mGeometry.heightPixels; ++y)
            for (size_t i = 0; i < row.size(); ++i)
                if (i % 4 != 0) samples.push_back(row[i]);
        ASSERT_EQ(Create("data", "data.ps"), 0);
        AddPage(row);
        ASSERT_EQ(Output_Close(mOutput), 0);
        const std::string text = mFolder.Read("data.ps");
        const size_t start = text.find("\nimage\n") + 7;
        const std::string expected = ReferenceASCII85(samples) + "%%PageTrailer\n";
        EXPECT_EQ(text.substr(start, expected.size()), expected) << "width " << width;
    }
}

TEST_F(Output, LongTextsAreNeitherCutNorOverrun) {
    const std::string title(10000, 't'), code(100000, 'c');
    PostscriptDocument document;
    for (uint32_t section = 0; section < 6; ++section)
        document.AddCodeToSection("%" + code, section, 1);
    mOptions.document = &document;
    ASSERT_EQ(Create(title, "long.ps"), 0);
    AddPage(Bytes(8, 0));
    ASSERT_EQ(Output_Close(mOutput), 0);
    const std::string text = mFolder.Read("long.ps");
    EXPECT_EQ(LineOf(text, "%%Title"), "%%Title: (" + title + ")");
    size_t found = 0;
    for (size_t at = 0; (at = text.find("\n%" + code + "\n", at)) != std::string::npos; ++at)
        ++found;
    EXPECT_EQ(found, 6U);
    EXPECT_EQ(text.substr(text.size() - 6), "%%EOF\n");
}

TEST_F(Output, TheTitleIsWrittenAsItIs) {
    for (const std::string title :
         {"", "a) (b", "100% %d %s %n", "back\\slash", "Größe 日本語 \xF0\x9F\x96\xA8", "a\nb"}) {
        ASSERT_EQ(Create(title, "title.ps"), 0);
        AddPage(Bytes(8, 0));
        ASSERT_EQ(Output_Close(mOutput), 0);
        EXPECT_NE(mFolder.Read("title.ps").find("\n%%Title: (" + title + ")\n"), std::string::npos);
    }
}

TEST_F(Output, ATitleThatIsNoTextIsRefusedAndItsFileDeleted) {
    EXPECT_EQ(Output_Create(mFolder.URL(), CFSTR("x.ps"), HalfACharacter().Get(), &mGeometry,
                            &mOptions, &mOutput),
              -50);
    EXPECT_TRUE(mFolder.Names().empty());
}

TEST_F(Output, PercentSignsInSectionsAreWrittenAsTheyAre) {
    PostscriptDocument document;
    document.AddCodeToSection("%%BeginFeature: 100%s %n %%", PostscriptDocument::kSetup, 1);
    mOptions.document = &document;
    ASSERT_EQ(Create("x"), 0);
    AddPage(Bytes(8, 0));
    ASSERT_EQ(Output_Close(mOutput), 0);
    EXPECT_NE(mFolder.Read("x.ps").find("\n%%BeginFeature: 100%s %n %%\n"), std::string::npos);
}

TEST_F(Output, TheCallersDocumentMayGoAfterTheCreation) {
    {
        PostscriptDocument document;
        document.AddCodeToSection("(page) pop", PostscriptDocument::kPageSetup, 1);
        mOptions.document = &document;
        ASSERT_EQ(Create("x"), 0);
        mOptions.document = nullptr;
    }
    AddPage(Bytes(8, 0));
    ASSERT_EQ(Output_Close(mOutput), 0);
    EXPECT_NE(mFolder.Read("x.ps").find("(page) pop"), std::string::npos);
}

TEST_F(Output, APageOfNoPixelsIsAnEmptyImage) {
    mGeometry = {0, 0, 0, 0};
    ASSERT_EQ(Create("a"), 0);
    AddPage({});
    ASSERT_EQ(Output_Close(mOutput), 0);
    EXPECT_NE(mFolder.Read("a.ps").find("/Width 0 /Height 0\n"), std::string::npos);
    EXPECT_NE(mFolder.Read("a.ps").find("\nimage\n~>\n%%PageTrailer\n"), std::string::npos);
}
