/// A file to print: what kind it is, how many pages it has, what each page is like.
#ifndef ZEL_HOST_SOURCEFILE_H
#define ZEL_HOST_SOURCEFILE_H

#include "host/PageLayout.h"
#include "host/VipsSupport.h"
#include <string>

enum class FileKind { TIFF, PNG, JPEG, PNM, PDF };

enum class PixelKind { Gray, RGB, CMYK };

struct SourcePage {
    ImageSize size; ///< upright, as it is to be looked at
    PixelKind kind = PixelKind::RGB;
    int orientation = 1; ///< EXIF orientation that makes it upright
};

/// Failures are HostErrors (Input) that name the file.
class SourceFile {
public:
    /// Checks that `path` is a regular, readable file of a known kind. libvips is not needed yet.
    explicit SourceFile(std::string path);

    [[nodiscard]] const std::string &Path() const { return mPath; }
    [[nodiscard]] FileKind Kind() const { return mKind; }

    /// Number of pages, at least 1.
    [[nodiscard]] int PageCount() const;
    /// Page `page`, counted from 0.
    [[nodiscard]] SourcePage Describe(int page) const;
    /// Opens page `page` as it is in the file. `scale` enlarges a PDF page (1: 72 dpi) and is
    /// ignored for images. A `sequential` image can only be read once, from top to bottom.
    [[nodiscard]] VipsImagePtr Load(int page, double scale, bool sequential) const;

    /// A HostError that says that page `page` cannot be read, with what libvips has to say.
    [[noreturn]] void ThrowUnreadable(int page) const;

private:
    std::string mPath;
    FileKind mKind = FileKind::TIFF;
    mutable int mPageCount = 0;
};

#endif
