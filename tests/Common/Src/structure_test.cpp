/// Programs that read the structuring comments find the pages, the box and the title.
#include "tests/Common/Src/RenderFixture.h"

#include <libspectre/spectre.h>
#include <memory>

namespace {

struct SpectreDeleter {
    void operator()(SpectreDocument *document) const { spectre_document_free(document); }
    void operator()(SpectrePage *page) const { spectre_page_free(page); }
    void operator()(SpectreRenderContext *context) const { spectre_render_context_free(context); }
};
using Document = std::unique_ptr<SpectreDocument, SpectreDeleter>;
using Page = std::unique_ptr<SpectrePage, SpectreDeleter>;

class Structure : public RenderTest {
protected:
    Document Load(const std::string &name) {
        Document document(spectre_document_new());
        spectre_document_load(document.get(), (mFolder.Path() / name).c_str());
        EXPECT_EQ(spectre_document_status(document.get()), SPECTRE_STATUS_SUCCESS);
        return document;
    }

    /// The filter of CUPS that counts, orders and picks pages by their comments. Its options are
    /// those of lp.
    void RunPstops(const std::string &file, const std::string &options) {
        ASSERT_EQ(Run("env -u PPD /usr/lib/cups/filter/pstops 1 user title 1 '" + options + "' '" +
                      file + "' >filtered.ps 2>errors && true"),
                  0)
            << mFolder.Read("errors");
    }
};

size_t Count(const std::string &text, const std::string &part) {
    size_t count = 0;
    for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at)
        ++count;
    return count;
}

} // namespace

TEST_F(Structure, LibspectreReadsADocumentOfThreePages) {
    Print("three.ps", 32, 3);
    const Document document = Load("three.ps");
    EXPECT_EQ(spectre_document_get_n_pages(document.get()), 3U);
    EXPECT_FALSE(spectre_document_is_eps(document.get()));
    EXPECT_EQ(spectre_document_get_language_level(document.get()), 2U);
    EXPECT_STREQ(spectre_document_get_title(document.get()), "A picture");
    EXPECT_STREQ(spectre_document_get_creator(document.get()), "ZEL Postscript Printer Driver");
    EXPECT_NE(spectre_document_get_creation_date(document.get()), nullptr);
    EXPECT_EQ(spectre_document_get_orientation(document.get()), SPECTRE_ORIENTATION_PORTRAIT);
    for (unsigned int i = 0; i < 3; ++i) {
        const Page page(spectre_document_get_page(document.get(), i));
        EXPECT_EQ(std::to_string(i + 1), spectre_page_get_label(page.get()));
        int width = 0, height = 0;
        spectre_page_get_size(page.get(), &width, &height);
        EXPECT_EQ(width, 64);
        EXPECT_EQ(height, 48);
    }
}

TEST_F(Structure, LibspectreRendersASinglePageOutOfTheMiddle) {
    Print("three.ps", 32, 3);
    const Document document = Load("three.ps");
    const Page page(spectre_document_get_page(document.get(), 1));
    unsigned char *pixels = nullptr;
    int rowLength = 0;
    const std::unique_ptr<SpectreRenderContext, SpectreDeleter> context(
        spectre_render_context_new());
    spectre_page_render(page.get(), context.get(), &pixels, &rowLength);
    EXPECT_EQ(spectre_page_status(page.get()), SPECTRE_STATUS_SUCCESS);
    ASSERT_NE(pixels, nullptr);
    // 32 bits a pixel: blue, green, red in memory
    for (int32_t y = 0; y < 48; ++y)
        for (int32_t x = 0; x < 64; ++x)
            for (int i = 0; i < 3; ++i)
                ASSERT_EQ(pixels[y * rowLength + x * 4 + 2 - i], mPicture.At(x, y)[i]);
    free(pixels);
}

TEST_F(Structure, LibspectreReadsAnEPSFile) {
    mOptions.eps = 1;
    Print("e.eps", 32);
    const Document document = Load("e.eps");
    EXPECT_TRUE(spectre_document_is_eps(document.get()));
    EXPECT_STREQ(spectre_document_get_title(document.get()), "e");
    int width = 0, height = 0;
    spectre_document_get_page_size(document.get(), &width, &height);
    EXPECT_EQ(width, 64);
    EXPECT_EQ(height, 48);
}

TEST_F(Structure, ADocumentOfEveryColourModeIsRead) {
    for (const int32_t mode : {kCMYKMode, kGrayMode, kRGBMode}) {
        mOptions.colourMode = mode;
        mOptions.pixelFormat = mode == kGrayMode ? kZELFormatGray8 : kZELFormatXRGB32;
        Print("mode.ps", mode == kGrayMode ? 8 : 32, 2);
        EXPECT_EQ(spectre_document_get_n_pages(Load("mode.ps").get()), 2U);
    }
}

TEST_F(Structure, CUPSFindsEveryPage) {
    Print("three.ps", 32, 3);
    RunPstops("three.ps", "");
    const std::string filtered = mFolder.Read("filtered.ps");
    EXPECT_EQ(Count(filtered, "\n%%Page: "), 3U);
    EXPECT_EQ(mFolder.Read("errors").find("ERROR"), std::string::npos) << mFolder.Read("errors");
    EXPECT_EQ(mFolder.Read("errors").find("WARN"), std::string::npos) << mFolder.Read("errors");
}

TEST_F(Structure, CUPSPicksASinglePage) {
    Print("three.ps", 32, 3);
    RunPstops("three.ps", "page-ranges=2");
    const std::string filtered = mFolder.Read("filtered.ps");
    EXPECT_EQ(Count(filtered, "\n%%Page: "), 1U);
    EXPECT_EQ(Count(filtered, "\nimage\n"), 1U);
}
