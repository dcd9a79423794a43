#include "host/readers/images/VipsLoader.h"

#include "host/readers/images/PNMImage.h"
#include "host/readers/images/TIFFImage.h"
#include <algorithm>
#include <utility>

namespace {

constexpr const char *kBitsPerSample = "bits-per-sample"; // libvips has a name for it from 8.15 on

} // namespace

VipsLoader::VipsLoader(std::string path, FileKind kind, std::string name, bool tolerant)
    : mPath(std::move(path)), mName(std::move(name)), mKind(kind), mTolerant(tolerant) {
    if (kind == FileKind::TIFF) mTIFFPages = ListTIFFPages(mPath, mName);
}

const TIFFPage &VipsLoader::TIFFPageAt(int page) const {
    const TIFFPage &found = mTIFFPages.at(static_cast<size_t>(page));
    if (!found.problem.empty()) ::ThrowUnreadable(mName, page, found.problem);
    return found;
}

/// One call of a libvips loader; `options` are its own.
template <typename... Options>
VipsImagePtr VipsLoader::LoadWith(const char *loader, int page, bool sequential,
                                  Options... options) const {
    VipsImage *image = nullptr;
    const VipsAccess access = sequential ? VIPS_ACCESS_SEQUENTIAL : VIPS_ACCESS_RANDOM;
    const int result =
        vips_call(loader, mPath.c_str(), &image, "access", access, "fail_on",
                  mTolerant ? VIPS_FAIL_ON_NONE : VIPS_FAIL_ON_ERROR, options..., nullptr);
    VipsImagePtr loaded(image);
    if (result != 0) ThrowUnreadable(page);
    return loaded;
}

VipsImagePtr VipsLoader::Load(int page, double scale, bool sequential) const {
    switch (mKind) {
        case FileKind::PNG:
            return LoadWith("pngload", page, sequential);
        case FileKind::JPEG:
            return LoadWith("jpegload", page, sequential);
        case FileKind::WebP:
            return LoadWith("webpload", page, sequential);
        case FileKind::GIF:
            return LoadWith("gifload", page, sequential);
        case FileKind::JPEG2000:
            return AtFullDepth(LoadWith("jp2kload", page, sequential));
        case FileKind::HEIF:
            return LoadWith("heifload", page, sequential, "page", PrimaryPicture());
        case FileKind::SVG:
            return LoadWith("svgload", page, sequential, "dpi", kSVGDpi, "scale", scale);
        case FileKind::TIFF:
        case FileKind::PNM:
        case FileKind::PDF: // not an image
            break;
    }
    VipsImage *image = nullptr;
    const VipsAccess access = sequential ? VIPS_ACCESS_SEQUENTIAL : VIPS_ACCESS_RANDOM;
    const int result = mKind == FileKind::TIFF
                           ? LoadTIFF(mPath.c_str(), TIFFPageAt(page), access, &image)
                           : LoadPNM(mPath.c_str(), access, &image);
    VipsImagePtr loaded(image);
    if (result != 0) ThrowUnreadable(page);
    return loaded;
}

/// Which picture of a HEIF file stands for all of it.
int VipsLoader::PrimaryPicture() const {
    const VipsImagePtr first = LoadWith("heifload", 0, true);
    int primary = 0;
    if (vips_image_get_typeof(first.get(), "heif-primary") == 0 ||
        vips_image_get_int(first.get(), "heif-primary", &primary) != 0)
        return 0;
    return std::max(0, primary);
}

/// libvips leaves samples of 9 to 15 bits as they are, at the dark end of 16.
VipsImagePtr VipsLoader::AtFullDepth(VipsImagePtr image) const {
    int bits = 0;
    if (vips_image_get_format(image.get()) != VIPS_FORMAT_USHORT ||
        vips_image_get_typeof(image.get(), kBitsPerSample) == 0 ||
        vips_image_get_int(image.get(), kBitsPerSample, &bits) != 0 || bits < 9 || bits > 15)
        return image;
    VipsImage *shifted = nullptr;
    if (vips_lshift_const1(image.get(), &shifted, 16 - bits, nullptr) != 0) ThrowUnreadable(0);
    return VipsImagePtr(shifted);
}

void VipsLoader::ThrowUnreadable(int page) const {
    ::ThrowUnreadable(mName, page, TakeVipsError());
}
