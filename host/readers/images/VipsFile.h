/// A file of images, read by libvips.
#pragma once

#include "host/readers/ImageFile.h"
#include "host/readers/TIFFPages.h"
#include "host/readers/images/VipsSupport.h"

class VipsFile : public ImageFile {
public:
    /// People call the file `name`. `tolerant` goes on where a JPEG file has been cut off.
    VipsFile(std::string path, FileKind kind, std::string name, bool tolerant = false);
    VipsFile(const std::string &path, FileKind kind) : VipsFile(path, kind, path) {}

    [[nodiscard]] int PageCount() override;
    [[nodiscard]] int FurtherFrames() override;
    [[nodiscard]] SourcePage Describe(int page) override;
    [[nodiscard]] PageImage OpenPage(int page, const PageTarget &target) override;

    /// Opens page `page` as it is in the file. `scale` enlarges a drawing (1: 96 dots an
    /// inch) and is ignored for images. A `sequential` image can only be read once, from top to
    /// bottom.
    [[nodiscard]] VipsImagePtr Load(int page, double scale, bool sequential) const;

    /// A HostError that says that page `page` cannot be read, with what libvips has to say.
    [[noreturn]] void ThrowUnreadable(int page) const;

private:
    template <typename... Options>
    [[nodiscard]] VipsImagePtr LoadWith(const char *loader, int page, bool sequential,
                                        Options... options) const;
    [[nodiscard]] VipsImagePtr AtFullDepth(VipsImagePtr image) const;
    [[nodiscard]] int PrimaryPicture() const;
    void CountPages(VipsImage *image);
    void MeasureDrawing(SourcePage &page) const;

    [[nodiscard]] const TIFFPage &TIFFPageAt(int page) const;

    std::string mPath, mName;
    FileKind mKind;
    bool mTolerant;
    std::vector<TIFFPage> mTIFFPages; ///< of a TIFF file
    int mPageCount = 0;               ///< 0: not counted yet
    int mFrames = 0;
};
