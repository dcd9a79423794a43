/// A file of images, read by libvips.
#pragma once

#include "host/readers/ImageFile.h"
#include "host/readers/images/VipsLoader.h"

class VipsFile : public ImageFile {
public:
    /// People call the file `name`. `tolerant` goes on where a JPEG file has been cut off.
    VipsFile(std::string path, FileKind kind, std::string name, bool tolerant = false);
    VipsFile(const std::string &path, FileKind kind) : VipsFile(path, kind, path) {}

    [[nodiscard]] int PageCount() override;
    [[nodiscard]] int FurtherFrames() override;
    [[nodiscard]] SourcePage Describe(int page) override;
    [[nodiscard]] PageImage OpenPage(int page, const PageTarget &target) override;

private:
    void CountPages(VipsImage *image);
    void MeasureDrawing(SourcePage &page) const;

    VipsLoader mLoader;
    int mPageCount = 0; ///< 0: not counted yet
    int mFrames = 0;
};
