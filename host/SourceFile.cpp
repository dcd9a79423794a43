#include "host/SourceFile.h"

#include "host/ExitStatus.h"
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr double kMMPerInch = 25.4;

[[noreturn]] void Refuse(const std::string &path, const std::string &why) {
    throw HostError(ExitStatus::Input, path + ": " + why);
}

/// The first bytes of a regular file.
std::string ReadHead(const std::string &path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0)
        Refuse(path, std::string(strerror(errno)) + "; check the name of the file to print");
    // Anything else could block, or end only when the power does.
    if (!S_ISREG(info.st_mode)) Refuse(path, "not a regular file; name an image or a PDF");
    if (info.st_size == 0) Refuse(path, "the file is empty");
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) Refuse(path, std::string(strerror(errno)) + "; check its permissions");
    char head[16];
    const ssize_t count = read(fd, head, sizeof head);
    (void)close(fd);
    if (count < 0) Refuse(path, strerror(errno));
    return std::string(head, static_cast<size_t>(count));
}

/// Byte order, then 42 (or 43: BigTIFF) in it.
bool IsTIFF(const std::string &head) {
    if (head.size() < 4) return false;
    const bool little = head[0] == 'I' && head[1] == 'I';
    const bool big = head[0] == 'M' && head[1] == 'M';
    const char version = little ? head[2] : head[3];
    const char zero = little ? head[3] : head[2];
    return (little || big) && zero == 0 && (version == 42 || version == 43);
}

bool IsPNM(const std::string &head) {
    return head.size() > 2 && head[0] == 'P' && strchr("123456fF", head[1]) &&
           strchr(" \t\r\n#", head[2]);
}

std::optional<FileKind> KindOf(const std::string &head) {
    const auto starts = [&head](const char *magic, size_t size) {
        return head.compare(0, size, magic, size) == 0;
    };
    if (IsTIFF(head)) return FileKind::TIFF;
    if (starts("\x89PNG\r\n\x1a\n", 8)) return FileKind::PNG;
    if (starts("\xff\xd8\xff", 3)) return FileKind::JPEG;
    if (starts("%PDF", 4)) return FileKind::PDF;
    if (IsPNM(head)) return FileKind::PNM;
    return std::nullopt;
}

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

/// libvips says 1 pixel a millimetre, without a unit, for a file that does not tell.
bool HasResolution(VipsImage *image) {
    return vips_image_get_typeof(image, VIPS_META_RESOLUTION_UNIT) != 0 ||
           std::abs(vips_image_get_xres(image) - 1.0) > 1e-6 ||
           std::abs(vips_image_get_yres(image) - 1.0) > 1e-6;
}

} // namespace

SourceFile::SourceFile(std::string path) : mPath(std::move(path)) {
    const std::optional<FileKind> kind = KindOf(ReadHead(mPath));
    if (!kind) Refuse(mPath, "not a TIFF, PNG, JPEG, PNM or PDF file; convert it to one of these");
    mKind = *kind;
}

VipsImagePtr SourceFile::Load(int page, double scale, bool sequential) const {
    NeedVips();
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
            result = vips_ppmload(path, &image, "access", access, "fail_on", failOn, nullptr);
            break;
        case FileKind::PDF:
            result = vips_pdfload(path, &image, "page", page, "scale", scale, "access", access,
                                  "fail_on", failOn, nullptr);
            break;
    }
    VipsImagePtr loaded(image);
    if (result != 0) ThrowUnreadable(page);
    return loaded;
}

int SourceFile::PageCount() const {
    if (mPageCount == 0) {
        const VipsImagePtr image = Load(0, 1.0, true);
        mPageCount = std::max(1, vips_image_get_n_pages(image.get()));
    }
    return mPageCount;
}

SourcePage SourceFile::Describe(int page) const {
    const VipsImagePtr image = Load(page, 1.0, true);
    if (mPageCount == 0) mPageCount = std::max(1, vips_image_get_n_pages(image.get()));
    SourcePage result;
    result.kind = mKind == FileKind::PDF ? PixelKind::RGB : KindOfPixels(image.get());
    result.orientation = mKind == FileKind::PDF ? 1 : vips_image_get_orientation(image.get());
    result.size.width = vips_image_get_width(image.get());
    result.size.height = vips_image_get_height(image.get());
    if (mKind == FileKind::PDF) {
        result.size.dpiX = result.size.dpiY = 72;
    } else if (HasResolution(image.get())) {
        result.size.dpiX = vips_image_get_xres(image.get()) * kMMPerInch;
        result.size.dpiY = vips_image_get_yres(image.get()) * kMMPerInch;
    }
    if (result.orientation >= 5) {
        std::swap(result.size.width, result.size.height);
        std::swap(result.size.dpiX, result.size.dpiY);
    }
    return result;
}

void SourceFile::ThrowUnreadable(int page) const {
    Refuse(mPath, "page " + std::to_string(page + 1) + " cannot be read (" + TakeVipsError() +
                      "); the file is damaged or not supported");
}
