/// A file to print: what kind it is, and who reads it.
#ifndef ZEL_HOST_SOURCEFILE_H
#define ZEL_HOST_SOURCEFILE_H

#include "host/readers/ImageFile.h"
#include "host/readers/pdf/PDFOptions.h"

/// Reads a plain TIFF file straight, has PDF files drawn by a renderer, and leaves everything else
/// to the image module, which is much more to load. Failures are HostErrors (Input) that name the
/// file.
class SourceFile {
public:
    /// Checks that `path` is a regular, readable file of a known kind.
    explicit SourceFile(std::string path, PDFOptions options = {});

    [[nodiscard]] const std::string &Path() const { return mPath; }
    [[nodiscard]] FileKind Kind() const { return mKind; }
    /// Whether even the first look at it takes the image module.
    [[nodiscard]] bool NeedsModule() const { return !mPlain && mKind != FileKind::PDF; }

    // See ImageFile.
    [[nodiscard]] int PageCount() const;
    [[nodiscard]] SourcePage Describe(int page) const;
    /// Always with rows; they do not outlive the file.
    [[nodiscard]] PageImage OpenPage(int page, const PageTarget &target) const;
    void Finish() const;

private:
    [[nodiscard]] ImageFile &Any() const;
    [[nodiscard]] ImageFile &Full() const;

    std::string mPath;
    PDFOptions mOptions;
    FileKind mKind = FileKind::TIFF;
    std::unique_ptr<ImageFile> mPlain;
    mutable std::unique_ptr<ImageFile> mFull; ///< opened when first needed
};

#endif
