/// A file of images, read by libvips.
#ifndef ZEL_HOST_IMAGES_VIPSFILE_H
#define ZEL_HOST_IMAGES_VIPSFILE_H

#include "host/readers/ImageFile.h"
#include "host/readers/images/VipsSupport.h"

class VipsFile : public ImageFile {
public:
    VipsFile(std::string path, FileKind kind) : mPath(std::move(path)), mKind(kind) {}

    [[nodiscard]] int PageCount() override;
    [[nodiscard]] SourcePage Describe(int page) override;
    [[nodiscard]] PageImage OpenPage(int page, const PageTarget &target) override;

    /// Opens page `page` as it is in the file. A `sequential` image can only be read once, from top
    /// to bottom.
    [[nodiscard]] VipsImagePtr Load(int page, bool sequential) const;

    /// A HostError that says that page `page` cannot be read, with what libvips has to say.
    [[noreturn]] void ThrowUnreadable(int page) const;

private:
    std::string mPath;
    FileKind mKind;
    int mPageCount = 0;
};

#endif
