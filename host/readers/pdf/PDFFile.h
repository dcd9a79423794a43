/// A PDF file, drawn by Ghostscript beside zelprint.
#ifndef ZEL_HOST_PDF_PDFFILE_H
#define ZEL_HOST_PDF_PDFFILE_H

#include "host/readers/ImageFile.h"
#include "host/readers/pdf/PDFOptions.h"
#include "host/readers/pdf/PDFPlacement.h"
#include <vector>

class PDFRenderer;

class PDFFile : public ImageFile {
public:
    /// Counts and measures the pages. Throws HostError.
    PDFFile(std::string path, PDFOptions options);
    ~PDFFile() override;

    [[nodiscard]] int PageCount() override { return static_cast<int>(mPages.size()); }
    [[nodiscard]] SourcePage Describe(int page) override;
    [[nodiscard]] PageImage OpenPage(int page, const PageTarget &target) override;
    void Finish() override;

private:
    void TellOfBlending(int page);

    std::string mPath;
    PDFOptions mOptions;
    std::vector<PDFPage> mPages;
    bool mBlendingIsTold = false;
    std::optional<std::vector<int>> mBlendedInRGB; ///< numbers of pages; read when first asked for
    std::shared_ptr<PDFRenderer> mRenderer;        ///< started with the first page
};

#endif
