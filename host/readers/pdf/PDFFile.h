/// A PDF file, drawn by Ghostscript beside zelprint.
#pragma once

#include "host/readers/ImageFile.h"
#include "host/readers/pdf/PDFOptions.h"
#include "host/readers/pdf/PDFPlacement.h"
#include <vector>

class PDFPageCount;
class PDFRenderer;

class PDFFile : public ImageFile {
public:
    /// Begins to count and measure the pages. Throws HostError.
    PDFFile(std::string path, PDFOptions options);
    ~PDFFile() override;

    [[nodiscard]] int PageCount() override { return static_cast<int>(Pages().size()); }
    [[nodiscard]] SourcePage Describe(int page) override;
    [[nodiscard]] PageImage OpenPage(int page, const PageTarget &target) override;
    void Finish() override;

private:
    [[nodiscard]] const std::vector<PDFPage> &Pages();
    [[nodiscard]] const PDFPage &Page(int page) { return Pages().at(static_cast<size_t>(page)); }
    void TellOfBlending(int page);

    std::string mPath;
    PDFOptions mOptions;
    std::unique_ptr<PDFPageCount> mCount; ///< until the pages are known
    std::vector<PDFPage> mPages;
    bool mBlendingIsTold = false;
    std::optional<std::vector<int>> mBlendedInRGB; ///< numbers of pages; read when first asked for
    std::shared_ptr<PDFRenderer> mRenderer;        ///< started with the first page
};
