#include "host/readers/images/VipsFile.h"

#include "host/readers/images/PNGUnit.h"
#include "host/readers/images/PNMImage.h"
#include "host/readers/images/VipsPage.h"
#include "host/readers/images/VipsRows.h"
#include <algorithm>

namespace {

constexpr double kMMPerInch = 25.4;

PixelKind KindOfPixels(VipsImage *image) {
    switch (vips_image_guess_interpretation(image)) {
        case VIPS_INTERPRETATION_CMYK:
            return PixelKind::CMYK;
        case VIPS_INTERPRETATION_B_W:
        case VIPS_INTERPRETATION_GREY16:
            return PixelKind::Gray;
        default:
            return vips_image_get_bands(image) < 3 ? PixelKind::Gray : PixelKind::RGB;
    }
}

/// libvips gives every image a resolution, and tells by the unit whether the file has one; of PNG
/// files it tells no unit.
bool HasResolution(VipsImage *image, FileKind kind, const std::string &path) {
    return vips_image_get_typeof(image, VIPS_META_RESOLUTION_UNIT) != 0 ||
           (kind == FileKind::PNG && TellsPixelsPerMetre(path));
}

/// Without a unit, the numbers tell the shape of a pixel. Not those of JPEG files, of which some
/// come upside down.
void TakeShape(VipsImage *image, ImageSize &size) {
    constexpr double kLongestPixel = 10; // nothing that scans or faxes makes longer ones
    const double shape = vips_image_get_yres(image) / vips_image_get_xres(image);
    if (!(shape >= 1 / kLongestPixel && shape <= kLongestPixel)) return;
    size.dpiX = 72;
    size.dpiY = 72 * shape;
    size.onlyShape = true;
}

} // namespace

VipsImagePtr VipsFile::Load(int page, bool sequential) const {
    const VipsAccess access = sequential ? VIPS_ACCESS_SEQUENTIAL : VIPS_ACCESS_RANDOM;
    const VipsFailOn failOn = VIPS_FAIL_ON_ERROR;
    const char *path = mPath.c_str();
    VipsImage *image = nullptr;
    int result = -1;
    switch (mKind) {
        case FileKind::TIFF:
            result = vips_tiffload(path, &image, "page", page, "access", access, "fail_on", failOn,
                                   nullptr);
            break;
        case FileKind::PNG:
            result = vips_pngload(path, &image, "access", access, "fail_on", failOn, nullptr);
            break;
        case FileKind::JPEG:
            result = vips_jpegload(path, &image, "access", access, "fail_on", failOn, nullptr);
            break;
        case FileKind::PNM:
            result = LoadPNM(path, access, &image);
            break;
        case FileKind::PDF: // not an image
            break;
    }
    VipsImagePtr loaded(image);
    if (result != 0) ThrowUnreadable(page);
    return loaded;
}

int VipsFile::PageCount() {
    if (mPageCount == 0) {
        const VipsImagePtr image = Load(0, true);
        mPageCount = std::max(1, vips_image_get_n_pages(image.get()));
    }
    return mPageCount;
}

SourcePage VipsFile::Describe(int page) {
    const VipsImagePtr image = Load(page, true);
    if (mPageCount == 0) mPageCount = std::max(1, vips_image_get_n_pages(image.get()));
    SourcePage result;
    result.kind = KindOfPixels(image.get());
    result.orientation = vips_image_get_orientation(image.get());
    result.size.width = vips_image_get_width(image.get());
    result.size.height = vips_image_get_height(image.get());
    if (HasResolution(image.get(), mKind, mPath)) {
        result.size.dpiX = vips_image_get_xres(image.get()) * kMMPerInch;
        result.size.dpiY = vips_image_get_yres(image.get()) * kMMPerInch;
    } else if (mKind != FileKind::JPEG) {
        TakeShape(image.get(), result.size);
    }
    if (result.orientation >= 5) {
        std::swap(result.size.width, result.size.height);
        std::swap(result.size.dpiX, result.size.dpiY);
    }
    return result;
}

PageImage VipsFile::OpenPage(int page, const PageTarget &target) {
    VipsPage opened = OpenVipsPage(*this, page, Describe(page), target);
    return {std::make_unique<VipsRows>(mPath, page, std::move(opened.pixels),
                                       opened.placement.pixelByPixel),
            opened.placement};
}

void VipsFile::ThrowUnreadable(int page) const {
    ::ThrowUnreadable(mPath, page, TakeVipsError());
}
