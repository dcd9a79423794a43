#include "host/readers/PlainTIFF.h"

#include "host/command/ExitStatus.h"
#include "host/separations/ProfileCheck.h"
#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <optional>
#include <tiffio.h>
#include <vector>

namespace {

constexpr double kMMPerInch = 25.4;
constexpr double kMMPerCentimetre = 10;
constexpr int kMostPixels = 1000000; // a side
/// Larger strips are left to a reader that need not hold one whole.
constexpr tmsize_t kLargestStrip = 8 << 20;

struct CloseTIFF {
    void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};
using TIFFPtr = std::unique_ptr<TIFF, CloseTIFF>;

int KeepFirstError(TIFF *, void *error, const char *, const char *format, va_list arguments) {
    auto &text = *static_cast<std::string *>(error);
    char line[256];
    (void)vsnprintf(line, sizeof line, format, arguments);
    if (text.empty()) text = line;
    return 1;
}

int DropWarning(TIFF *, void *, const char *, const char *, va_list) {
    return 1;
}

/// Opens a file; `error` keeps what libtiff complains about first, as long as the file is open.
TIFFPtr Open(const std::string &path, std::string &error) {
    TIFFOpenOptions *options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options, KeepFirstError, &error);
    TIFFOpenOptionsSetWarningHandlerExtR(options, DropWarning, nullptr);
    // Not mapped into memory: a file that somebody cuts short meanwhile would end the process.
    TIFFPtr tiff(TIFFOpenExt(path.c_str(), "rm", options));
    TIFFOpenOptionsFree(options);
    return tiff;
}

template <typename T>
T Field(TIFF *tiff, uint32_t tag, T absent) {
    T value = absent;
    return TIFFGetFieldDefaulted(tiff, tag, &value) ? value : absent;
}

std::optional<PixelKind> KindOf(TIFF *tiff) {
    const auto photometric = Field<uint16_t>(tiff, TIFFTAG_PHOTOMETRIC, UINT16_MAX);
    const auto samples = Field<uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 0);
    if (photometric == PHOTOMETRIC_MINISBLACK && samples == 1) return PixelKind::Gray;
    if (photometric == PHOTOMETRIC_RGB && samples == 3) return PixelKind::RGB;
    if (photometric == PHOTOMETRIC_SEPARATED && samples == 4) return PixelKind::CMYK;
    return std::nullopt;
}

int BandsOf(PixelKind kind) {
    return kind == PixelKind::Gray ? 1 : kind == PixelKind::RGB ? 3 : 4;
}

bool IsPlainlyCoded(TIFF *tiff) {
    const auto compression = Field<uint16_t>(tiff, TIFFTAG_COMPRESSION, 0);
    return (compression == COMPRESSION_NONE || compression == COMPRESSION_LZW ||
            compression == COMPRESSION_ADOBE_DEFLATE || compression == COMPRESSION_PACKBITS) &&
           Field<uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE, 0) == 8 &&
           Field<uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT, 0) == SAMPLEFORMAT_UINT &&
           Field<uint16_t>(tiff, TIFFTAG_PLANARCONFIG, 0) == PLANARCONFIG_CONTIG &&
           Field<uint16_t>(tiff, TIFFTAG_ORIENTATION, 0) == ORIENTATION_TOPLEFT &&
           Field<uint16_t>(tiff, TIFFTAG_FILLORDER, 0) == FILLORDER_MSB2LSB && !TIFFIsTiled(tiff);
}

/// Whether the samples mean the same colours with the embedded profile as without. Ink stays as it
/// is in any case.
bool NeedsNoProfile(TIFF *tiff, PixelKind kind) {
    uint32_t size = 0;
    const void *profile = nullptr;
    if (kind == PixelKind::CMYK || !TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &size, &profile))
        return true;
    return kind == PixelKind::RGB && IsNearlySRGB(profile, size);
}

/// Pixels an inch; nothing when the file does not tell plainly.
std::optional<double> Resolution(TIFF *tiff, uint32_t tag) {
    float value = 0;
    if (!TIFFGetField(tiff, tag, &value) || !(value > 0)) return std::nullopt;
    // Through pixels a millimetre in single precision, as every other file comes.
    switch (Field<uint16_t>(tiff, TIFFTAG_RESOLUTIONUNIT, 0)) {
        case RESUNIT_INCH:
            return static_cast<float>(value / kMMPerInch) * kMMPerInch;
        case RESUNIT_CENTIMETER:
            return static_cast<float>(value / kMMPerCentimetre) * kMMPerInch;
        default:
            return std::nullopt;
    }
}

/// What the page that libtiff is at looks like; nothing when it is not plain.
std::optional<SourcePage> DescribePlain(TIFF *tiff) {
    const std::optional<PixelKind> kind = KindOf(tiff);
    const std::optional<double> dpiX = Resolution(tiff, TIFFTAG_XRESOLUTION);
    const std::optional<double> dpiY = Resolution(tiff, TIFFTAG_YRESOLUTION);
    const auto width = Field<uint32_t>(tiff, TIFFTAG_IMAGEWIDTH, 0);
    const auto height = Field<uint32_t>(tiff, TIFFTAG_IMAGELENGTH, 0);
    if (!kind || !dpiX || !dpiY || !IsPlainlyCoded(tiff)) return std::nullopt;
    const bool sensible = width > 0 && width <= kMostPixels && height > 0 && height <= kMostPixels;
    if (!sensible || TIFFScanlineSize(tiff) != static_cast<tmsize_t>(width) * BandsOf(*kind))
        return std::nullopt;
    if (const tmsize_t strip = TIFFStripSize(tiff); strip <= 0 || strip > kLargestStrip)
        return std::nullopt;
    SourcePage page;
    page.size = {static_cast<int>(width), static_cast<int>(height), *dpiX, *dpiY};
    page.kind = *kind;
    return page;
}

class PlainRows : public PageRows {
public:
    PlainRows(std::string path, int page, const Placement &crop, PixelKind kind)
        : PageRows(crop.width, crop.height, BandsOf(kind)), mPath(std::move(path)), mPage(page),
          mCrop(crop) {}

    void Read(const Take &take) override {
        std::string error;
        const TIFFPtr tiff = Open(mPath, error);
        if (!tiff || !TIFFSetDirectory(tiff.get(), static_cast<tdir_t>(mPage)))
            ThrowUnreadable(mPath, mPage, error);
        CheckUnchanged(tiff.get());
        const auto stripRows =
            std::min(Field<uint32_t>(tiff.get(), TIFFTAG_ROWSPERSTRIP, UINT32_MAX),
                     Field<uint32_t>(tiff.get(), TIFFTAG_IMAGELENGTH, 0));
        mStripRows = static_cast<int>(stripRows);
        mStrip.reset(new uint8_t[static_cast<size_t>(TIFFStripSize(tiff.get()))]);
        const int bottom = mCrop.cropTop + Height();
        for (int top = mCrop.cropTop / mStripRows * mStripRows; top < bottom; top += mStripRows) {
            ReadStrip(tiff.get(), top, error);
            const int first = std::max(top, mCrop.cropTop);
            const int last = std::min(top + mStripRows, bottom);
            if (mStopped || !Give(first - top, last - first, take)) return;
        }
    }

    void Stop() override { mStopped = true; }

private:
    /// The file may have become another one since it was looked at.
    void CheckUnchanged(TIFF *tiff) {
        const std::optional<SourcePage> page = DescribePlain(tiff);
        if (!page || BandsOf(page->kind) != Bands() ||
            page->size.width < mCrop.cropLeft + mCrop.width ||
            page->size.height < mCrop.cropTop + mCrop.height)
            ThrowUnreadable(mPath, mPage, "it has changed meanwhile");
        mRowBytes = static_cast<size_t>(page->size.width) * static_cast<size_t>(Bands());
        mImageHeight = page->size.height;
    }

    void ReadStrip(TIFF *tiff, int top, std::string &error) {
        const auto rows = static_cast<size_t>(std::min(mStripRows, mImageHeight - top));
        const auto bytes = static_cast<tmsize_t>(rows * mRowBytes);
        const auto strip = static_cast<uint32_t>(top / mStripRows);
        if (TIFFReadEncodedStrip(tiff, strip, mStrip.get(), bytes) != bytes)
            ThrowUnreadable(mPath, mPage, error.empty() ? "its samples end early" : error);
    }

    [[nodiscard]] bool Give(int first, int count, const Take &take) const {
        const size_t offset = static_cast<size_t>(first) * mRowBytes +
                              static_cast<size_t>(mCrop.cropLeft) * static_cast<size_t>(Bands());
        return take(mStrip.get() + offset, mRowBytes, count);
    }

    std::string mPath;
    int mPage;
    Placement mCrop;
    size_t mRowBytes = 0;
    int mImageHeight = 0;
    int mStripRows = 1;
    std::unique_ptr<uint8_t[]> mStrip;
    std::atomic<bool> mStopped = false;
};

class PlainTIFF : public ImageFile {
public:
    PlainTIFF(std::string path, std::vector<SourcePage> pages)
        : mPath(std::move(path)), mPages(std::move(pages)) {}

    [[nodiscard]] int PageCount() override { return static_cast<int>(mPages.size()); }
    [[nodiscard]] SourcePage Describe(int page) override {
        return mPages.at(static_cast<size_t>(page));
    }

    [[nodiscard]] PageImage OpenPage(int page, const PageTarget &target) override {
        const SourcePage source = Describe(page);
        const Placement placement = LayOut(target.grid, source.size, target.placement);
        const bool ownColours =
            (source.kind == PixelKind::CMYK) == (target.pixels == DocumentPixels::CMYK);
        if (target.placement.turned || !ownColours || !placement.pixelByPixel) return {};
        return {std::make_unique<PlainRows>(mPath, page, placement, source.kind), placement, true};
    }

private:
    std::string mPath;
    std::vector<SourcePage> mPages;
};

} // namespace

std::unique_ptr<ImageFile> OpenPlainTIFF(const std::string &path) {
    std::string error;
    const TIFFPtr tiff = Open(path, error);
    if (!tiff) return nullptr;
    std::vector<SourcePage> pages;
    do {
        const std::optional<SourcePage> page = DescribePlain(tiff.get());
        if (!page || !NeedsNoProfile(tiff.get(), page->kind)) return nullptr;
        pages.push_back(*page);
    } while (TIFFReadDirectory(tiff.get()));
    if (!error.empty()) return nullptr;
    return std::make_unique<PlainTIFF>(path, std::move(pages));
}
