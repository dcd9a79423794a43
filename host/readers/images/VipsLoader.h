/// The pages of a file as libvips gives them.
#pragma once

#include "host/readers/ImageFile.h"
#include "host/readers/TIFFPages.h"
#include "host/readers/images/VipsSupport.h"

/// Pixels an inch of an SVG file, as CSS has them.
inline constexpr double kSVGDpi = 96;

class VipsLoader {
public:
    /// People call the file `name`. `tolerant` goes on where a JPEG file has been cut off.
    VipsLoader(std::string path, FileKind kind, std::string name, bool tolerant);

    [[nodiscard]] const std::string &Path() const { return mPath; }
    [[nodiscard]] const std::string &Name() const { return mName; }
    [[nodiscard]] FileKind Kind() const { return mKind; }

    /// Of a TIFF file.
    [[nodiscard]] int TIFFPageCount() const { return static_cast<int>(mTIFFPages.size()); }
    [[nodiscard]] const TIFFPage &TIFFPageAt(int page) const;

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

    std::string mPath, mName;
    FileKind mKind;
    bool mTolerant;
    std::vector<TIFFPage> mTIFFPages; ///< of a TIFF file
};
