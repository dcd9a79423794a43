/// The worked example of docs/output-format.md is what the writer writes.
#include "Common/Src/postscript/PostscriptDocument.h"
#include "tests/Common/Src/postscript/WriterFixture.h"

namespace {

using DocumentedExample = WriterTest;

std::string ExampleFrom(const std::string &page) {
    const std::string fence = "```postscript\n";
    const size_t start = page.find(fence) + fence.size();
    return page.substr(start, page.find("```\n", start) - start);
}

} // namespace

TEST_F(DocumentedExample, IsWhatTheWriterWrites) {
    const std::filesystem::path docs = ZEL_DOCS;
    PostscriptDocument document;
    document.AddCodeToSection("<</PageSize [595 842]>> setpagedevice", PostscriptDocument::kSetup,
                              30);
    document.AddCodeToSection("<</HWResolution [300 300]>> setpagedevice",
                              PostscriptDocument::kSetup, 10);
    mGeometry = {3, 2, 25.4, 12.7};
    mOptions.document = &document;
    mOptions.llx = 10.5;
    mOptions.lly = 20.25;
    mOptions.urx = 586.5;
    mOptions.ury = 822.75;
    ASSERT_EQ(Create("Flags"), 0);
    ASSERT_EQ(Output_AddPage(mOutput), 0);
    const std::vector<uint8_t> white(12, 255);
    const std::vector<uint8_t> colours = {0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255};
    ASSERT_EQ(Output_WriteLine(mOutput, white.data()), 0);
    ASSERT_EQ(Output_WriteLine(mOutput, colours.data()), 0);
    ASSERT_EQ(Output_Close(mOutput), 0);
    EXPECT_EQ(WithoutDate(mFolder.Read("Flags.ps")),
              WithoutDate(ExampleFrom(ReadFile(docs / "output-format.md"))));
}
