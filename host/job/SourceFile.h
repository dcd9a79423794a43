/// A file to print: what kind it is, and who reads it.
#pragma once

#include "host/readers/ImageFile.h"
#include "host/readers/SpooledInput.h"
#include "host/readers/pdf/PDFOptions.h"

/// Reads a plain TIFF file straight, has PDF files drawn by a renderer, and leaves everything else
/// to the image module, which is much more to load. Failures are HostErrors (Input) that name the
/// file.
class SourceFile {
public:
    /// Takes what comes from standard input ("-") or a pipe (see TakeInput), and checks that it, or
    /// the regular file `path`, is readable and of a known kind. `tolerant` goes on where it is cut
    /// off, if that is possible.
    explicit SourceFile(const std::string &path, PDFOptions options = {}, bool tolerant = false);

    /// What people call it.
    [[nodiscard]] const std::string &Path() const { return mInput.name; }
    /// What readers open.
    [[nodiscard]] const std::string &ReadablePath() const { return mInput.path; }
    [[nodiscard]] FileKind Kind() const { return mKind; }
    /// Whether even the first look at it takes the image module.
    [[nodiscard]] bool NeedsModule() const { return !mPlain && mKind != FileKind::PDF; }

    /// Begins what takes a moment and needs nobody: counting the pages of a PDF file. Throws
    /// HostError.
    void LookAhead() const;

    // See ImageFile.
    [[nodiscard]] int PageCount() const;
    [[nodiscard]] SourcePage Describe(int page) const;
    /// Always with rows; they do not outlive the file.
    [[nodiscard]] PageImage OpenPage(int page, const PageTarget &target) const;
    void Finish() const;

    [[nodiscard]] int FurtherFrames() const;

private:
    [[nodiscard]] ImageFile &Any() const;
    [[nodiscard]] ImageFile &Full() const;

    InputFile mInput;
    PDFOptions mOptions;
    bool mTolerant;
    FileKind mKind = FileKind::TIFF;
    std::unique_ptr<ImageFile> mPlain;
    mutable std::unique_ptr<ImageFile> mFull; ///< opened when first needed
};
