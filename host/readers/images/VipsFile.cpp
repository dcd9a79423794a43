#include "host/readers/images/VipsFile.h"

#include "host/readers/PictureKinds.h"
#include "host/readers/images/JPEGCheck.h"
#include "host/readers/images/PNGUnit.h"
#include "host/readers/images/PNMImage.h"
#include "host/readers/images/TIFFImage.h"
#include "host/readers/images/VipsPage.h"
#include "host/readers/images/VipsRows.h"
#include <algorithm>

namespace {

constexpr double kMMPerInch = 25.4;
constexpr double kPointsPerInch = 72;
constexpr const char *kBitsPerSample = "bits-per-sample"; // libvips has a name for it from 8.15 on
/// Pixels an inch of an SVG file, as CSS has them.
constexpr double kSVGDpi = 96;

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
    : mPath(std::move(path)), mName(std::move(name)), mKind(kind), mTolerant(tolerant) {
    if (kind == FileKind::TIFF) mTIFFPages = ListTIFFPages(mPath, mName);
}

const TIFFPage &VipsFile::TIFFPageAt(int page) const {
    const TIFFPage &found = mTIFFPages.at(static_cast<size_t>(page));
    if (!found.problem.empty()) ::ThrowUnreadable(mName, page, found.problem);
    return found;
}

/// One call of a libvips loader; `options` are its own.
template <typename... Options>
VipsImagePtr VipsFile::LoadWith(const char *loader, int page, bool sequential,
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

VipsImagePtr VipsFile::Load(int page, double scale, bool sequential) const {
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
int VipsFile::PrimaryPicture() const {
    const VipsImagePtr first = LoadWith("heifload", 0, true);
    int primary = 0;
    if (vips_image_get_typeof(first.get(), "heif-primary") == 0 ||
        vips_image_get_int(first.get(), "heif-primary", &primary) != 0)
        return 0;
    return std::max(0, primary);
}

/// libvips leaves samples of 9 to 15 bits as they are, at the dark end of 16.
VipsImagePtr VipsFile::AtFullDepth(VipsImagePtr image) const {
    int bits = 0;
    if (vips_image_get_format(image.get()) != VIPS_FORMAT_USHORT ||
        vips_image_get_typeof(image.get(), kBitsPerSample) == 0 ||
        vips_image_get_int(image.get(), kBitsPerSample, &bits) != 0 || bits < 9 || bits > 15)
        return image;
    VipsImage *shifted = nullptr;
    if (vips_lshift_const1(image.get(), &shifted, 16 - bits, nullptr) != 0) ThrowUnreadable(0);
    return VipsImagePtr(shifted);
}

int VipsFile::PageCount() {
    if (mPageCount == 0) CountPages(Load(0, 1.0, true).get());
    return mPageCount;
}

int VipsFile::FurtherFrames() {
    (void)PageCount();
    return mFrames - 1;
}

void VipsFile::CountPages(VipsImage *image) {
    // Those of JPEG 2000 are the same picture, smaller and smaller. libvips takes 10,000 pages of a
    // TIFF file and more for one.
    mFrames = mKind == FileKind::JPEG2000 ? 1
              : mKind == FileKind::TIFF   ? static_cast<int>(mTIFFPages.size())
                                          : std::max(1, vips_image_get_n_pages(image));
    mPageCount = MayHoldFrames(mKind) ? 1 : mFrames;
}

/// The size of an SVG file, more exactly than in whole pixels.
void VipsFile::MeasureDrawing(SourcePage &page) const {
    constexpr int kSmall = 2000;
    const double scale = std::max(page.size.width, page.size.height) < kSmall ? 8 : 1;
    const VipsImagePtr large = Load(0, scale, true);
    page.drawnWidth = vips_image_get_width(large.get()) / scale * kPointsPerInch / kSVGDpi;
    page.drawnHeight = vips_image_get_height(large.get()) / scale * kPointsPerInch / kSVGDpi;
    page.size.dpiX = page.size.dpiY = kSVGDpi;
    page.kind = PixelKind::RGB;
}

SourcePage VipsFile::Describe(int page) {
    const VipsImagePtr image = Load(page, 1.0, true);
    if (mPageCount == 0) CountPages(image.get());
    SourcePage result;
    result.kind = KindOfPixels(image.get());
    result.size.width = vips_image_get_width(image.get());
    result.size.height = vips_image_get_height(image.get());
    if (mKind == FileKind::SVG) {
        MeasureDrawing(result);
        return result;
    }
    // HEIF files are upright as they are read, whatever else is in them.
    if (mKind != FileKind::HEIF) result.orientation = vips_image_get_orientation(image.get());
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
    return {std::make_unique<VipsRows>(mName, page, std::move(opened.pixels),
                                       opened.placement.pixelByPixel, CheckOf(mKind, mPath)),
            opened.placement, false,
            mKind == FileKind::TIFF ? NoteOf(TIFFPageAt(page)) : std::string()};
}

void VipsFile::ThrowUnreadable(int page) const {
    ::ThrowUnreadable(mName, page, TakeVipsError());
}
