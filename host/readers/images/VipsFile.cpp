#include "host/readers/images/VipsFile.h"

#include "host/readers/PictureKinds.h"
#include "host/readers/images/JPEGCheck.h"
#include "host/readers/images/PNGUnit.h"
#include "host/readers/images/VipsPage.h"
#include "host/readers/images/VipsRows.h"
#include <algorithm>

namespace {

constexpr double kMMPerInch = 25.4;
constexpr double kPointsPerInch = 72;

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

/// The check that takes reading the whole file; none for files whose reader hears everything.
FileCheck CheckOf(FileKind kind, const std::string &path) {
    if (kind != FileKind::JPEG) return nullptr;
    return [path](const std::atomic<bool> &stopped) { return CheckJPEG(path, stopped); };
}

std::string NoteOf(const TIFFPage &page) {
    const int count = page.LeftOut();
    if (count == 0) return {};
    return (count == 1 ? std::string("a sample") : std::to_string(count) + " samples") +
           " of each pixel that the file does not call colour or transparency, such as a spot "
           "ink, " +
           (count == 1 ? "is" : "are") + " left out";
}

} // namespace

VipsFile::VipsFile(std::string path, FileKind kind, std::string name, bool tolerant)
    : mLoader(std::move(path), kind, std::move(name), tolerant) {}

int VipsFile::PageCount() {
    if (mPageCount == 0) CountPages(mLoader.Load(0, 1.0, true).get());
    return mPageCount;
}

int VipsFile::FurtherFrames() {
    (void)PageCount();
    return mFrames - 1;
}

void VipsFile::CountPages(VipsImage *image) {
    // Those of JPEG 2000 are the same picture, smaller and smaller. libvips takes 10,000 pages of a
    // TIFF file and more for one.
    mFrames = mLoader.Kind() == FileKind::JPEG2000 ? 1
              : mLoader.Kind() == FileKind::TIFF   ? mLoader.TIFFPageCount()
                                                   : std::max(1, vips_image_get_n_pages(image));
    mPageCount = MayHoldFrames(mLoader.Kind()) ? 1 : mFrames;
}

/// The size of an SVG file, more exactly than in whole pixels.
void VipsFile::MeasureDrawing(SourcePage &page) const {
    constexpr int kSmall = 2000;
    const double scale = std::max(page.size.width, page.size.height) < kSmall ? 8 : 1;
    const VipsImagePtr large = mLoader.Load(0, scale, true);
    page.drawnWidth = vips_image_get_width(large.get()) / scale * kPointsPerInch / kSVGDpi;
    page.drawnHeight = vips_image_get_height(large.get()) / scale * kPointsPerInch / kSVGDpi;
    page.size.dpiX = page.size.dpiY = kSVGDpi;
    page.kind = PixelKind::RGB;
}

SourcePage VipsFile::Describe(int page) {
    const VipsImagePtr image = mLoader.Load(page, 1.0, true);
    if (mPageCount == 0) CountPages(image.get());
    SourcePage result;
    result.kind = KindOfPixels(image.get());
    result.size.width = vips_image_get_width(image.get());
    result.size.height = vips_image_get_height(image.get());
    if (mLoader.Kind() == FileKind::SVG) {
        MeasureDrawing(result);
        return result;
    }
    // HEIF files are upright as they are read, whatever else is in them.
    if (mLoader.Kind() != FileKind::HEIF)
        result.orientation = vips_image_get_orientation(image.get());
    if (HasResolution(image.get(), mLoader.Kind(), mLoader.Path())) {
        result.size.dpiX = vips_image_get_xres(image.get()) * kMMPerInch;
        result.size.dpiY = vips_image_get_yres(image.get()) * kMMPerInch;
    } else if (mLoader.Kind() != FileKind::JPEG) {
        TakeShape(image.get(), result.size);
    }
    if (result.orientation >= 5) {
        std::swap(result.size.width, result.size.height);
        std::swap(result.size.dpiX, result.size.dpiY);
    }
    return result;
}

PageImage VipsFile::OpenPage(int page, const PageTarget &target) {
    VipsPage opened = OpenVipsPage(mLoader, page, Describe(page), target);
    return {std::make_unique<VipsRows>(mLoader.Name(), page, std::move(opened.pixels),
                                       opened.placement.pixelByPixel,
                                       CheckOf(mLoader.Kind(), mLoader.Path())),
            opened.placement, false,
            mLoader.Kind() == FileKind::TIFF ? NoteOf(mLoader.TIFFPageAt(page)) : std::string()};
}
