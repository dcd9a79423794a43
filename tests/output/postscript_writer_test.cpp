#include "Common/Src/PostscriptDocument.h"
#include "ZELOutput.h"
#include "tests/output/TempFolder.h"

#include <gtest/gtest.h>
#include <regex>

namespace {

OutputGeometry SmallGeometry() {
    return {2, 1, 25.4, 12.7};
}

OutputOptions SmallOptions(int32_t colourMode, uint16_t pixelFormat) {
    OutputOptions options = {};
    options.colourMode = colourMode;
    options.pixelFormat = pixelFormat;
    options.llx = 10.2;
    options.lly = 20.7;
    options.urx = 300.1;
    options.ury = 400.9;
    return options;
}

/// The date line depends on the moment and on the locale.
std::string WithoutDate(const std::string &text) {
    static const std::regex date("%%CreationDate: \\([^\n]*[0-9][^\n]*\\)\n");
    return std::regex_replace(text, date, "%%CreationDate: (DATE)\n");
}

} // namespace

TEST(Output, FileTypeAndCreatorAreFixedCodes) {
    EXPECT_EQ(Output_FileType(), 0x54455854U);
    EXPECT_EQ(Output_Creator(), 0x50445332U);
}

TEST(Output, APostScriptDocumentOfOnePageIsExactlyThis) {
    const TempFolder folder;
    const OutputGeometry geometry = SmallGeometry();
    PostscriptDocument document;
    for (uint32_t section = 0; section < 6; ++section)
        document.AddCodeToSection("(code " + std::to_string(section) + ") pop", section, 1);
    OutputOptions options = SmallOptions(2, 32);
    options.document = &document;
    OutputPrivate *output = nullptr;
    ASSERT_EQ(
        Output_Create(folder.URL(), nullptr, Str("report").Get(), &geometry, &options, &output), 0);
    ASSERT_EQ(Output_AddPage(output), 0);
    const uint8_t row[] = {9, 0, 0, 0, 9, 0, 255, 255};
    ASSERT_EQ(Output_WriteLine(output, row), 0);
    ASSERT_EQ(Output_Close(output), 0);
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"report.ps"});
    EXPECT_EQ(WithoutDate(folder.Read("report.ps")), R"(%!PS-Adobe-3.0
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
