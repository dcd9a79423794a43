#include "host/readers/PlainTIFF.h"

#include "host/readers/TIFFPages.h"
#include "host/separations/ProfileCheck.h"
#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <atomic>
#include <optional>

namespace {

constexpr double kMMPerInch = 25.4;
constexpr double kMMPerCentimetre = 10;
constexpr int kMostPixels = 1000000; // a side
/// Larger strips are left to a reader that need not hold one whole.
constexpr tmsize_t kLargestStrip = 8 << 20;

std::optional<PixelKind> KindOf(TIFF *tiff) {
    const auto photometric = TIFFFieldOr<uint16_t>(tiff, TIFFTAG_PHOTOMETRIC, UINT16_MAX);
    const auto samples = TIFFFieldOr<uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 0);
    if (photometric == PHOTOMETRIC_MINISBLACK && samples == 1) return PixelKind::Gray;
    if (photometric == PHOTOMETRIC_RGB && samples == 3) return PixelKind::RGB;
    if (photometric == PHOTOMETRIC_SEPARATED && samples == 4) return PixelKind::CMYK;
    return std::nullopt;
}

int BandsOf(PixelKind kind) {
    return kind == PixelKind::Gray ? 1 : kind == PixelKind::RGB ? 3 : 4;
}

bool IsPlainlyCoded(TIFF *tiff) {
    const auto compression = TIFFFieldOr<uint16_t>(tiff, TIFFTAG_COMPRESSION, 0);
    return (compression == COMPRESSION_NONE || compression == COMPRESSION_LZW ||
            compression == COMPRESSION_ADOBE_DEFLATE || compression == COMPRESSION_PACKBITS) &&
           TIFFFieldOr<uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE, 0) == 8 &&
           TIFFFieldOr<uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT, 0) == SAMPLEFORMAT_UINT &&
           TIFFFieldOr<uint16_t>(tiff, TIFFTAG_PLANARCONFIG, 0) == PLANARCONFIG_CONTIG &&
           TIFFFieldOr<uint16_t>(tiff, TIFFTAG_ORIENTATION, 0) == ORIENTATION_TOPLEFT &&
           TIFFFieldOr<uint16_t>(tiff, TIFFTAG_FILLORDER, 0) == FILLORDER_MSB2LSB &&
           !TIFFIsTiled(tiff);
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
    switch (TIFFFieldOr<uint16_t>(tiff, TIFFTAG_RESOLUTIONUNIT, 0)) {
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
    const auto width = TIFFFieldOr<uint32_t>(tiff, TIFFTAG_IMAGEWIDTH, 0);
    const auto height = TIFFFieldOr<uint32_t>(tiff, TIFFTAG_IMAGELENGTH, 0);
    if (!kind || !dpiX || !dpiY || !IsPlainlyCoded(tiff)) return std::nullopt;
    if (!DescribeTIFFPage(tiff).problem.empty()) return std::nullopt;
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

struct PlainPage {
    SourcePage source;
    uint64_t directory = 0; ///< where it lies in the file
};

class PlainRows : public PageRows {
public:
    PlainRows(std::string path, int page, const PlainPage &plain, const Placement &crop)
        : PageRows(crop.width, crop.height, BandsOf(plain.source.kind)), mPath(std::move(path)),
          mPage(page), mDirectory(plain.directory), mCrop(crop) {}

    void Read(const Take &take) override {
        TIFFComplaints complaints;
        const TIFFPtr tiff = OpenTIFF(mPath, complaints);
        if (!tiff) ThrowUnreadable(mPath, mPage, complaints.error);
        CheckUnchanged(tiff.get());
        const auto stripRows =
            std::min(TIFFFieldOr<uint32_t>(tiff.get(), TIFFTAG_ROWSPERSTRIP, UINT32_MAX),
                     TIFFFieldOr<uint32_t>(tiff.get(), TIFFTAG_IMAGELENGTH, 0));
        mStripRows = static_cast<int>(stripRows);
        mStrip.reset(new uint8_t[static_cast<size_t>(TIFFStripSize(tiff.get()))]);
        const int bottom = mCrop.cropTop + Height();
        for (int top = mCrop.cropTop / mStripRows * mStripRows; top < bottom; top += mStripRows) {
            ReadStrip(tiff.get(), top, complaints);
            const int first = std::max(top, mCrop.cropTop);
            const int last = std::min(top + mStripRows, bottom);
            if (mStopped || !Give(first - top, last - first, take)) return;
        }
    }

    void Stop() override { mStopped = true; }
    [[nodiscard]] Damage TellDamage() override { return mDamage; }

private:
    /// The file may have become another one since it was looked at.
    void CheckUnchanged(TIFF *tiff) {
        std::optional<SourcePage> page;
        if (TIFFSetSubDirectory(tiff, mDirectory)) page = DescribePlain(tiff);
        if (!page || BandsOf(page->kind) != Bands() ||
            page->size.width < mCrop.cropLeft + mCrop.width ||
            page->size.height < mCrop.cropTop + mCrop.height)
            ThrowUnreadable(mPath, mPage, "it has changed meanwhile");
        mRowBytes = static_cast<size_t>(page->size.width) * static_cast<size_t>(Bands());
        mImageHeight = page->size.height;
    }

    void ReadStrip(TIFF *tiff, int top, const TIFFComplaints &complaints) {
        const auto rows = static_cast<size_t>(std::min(mStripRows, mImageHeight - top));
        const auto bytes = static_cast<tmsize_t>(rows * mRowBytes);
        const auto strip = static_cast<uint32_t>(top / mStripRows);
        if (TIFFReadEncodedStrip(tiff, strip, mStrip.get(), bytes) != bytes)
            ThrowUnreadable(mPath, mPage,
                            complaints.error.empty() ? "its samples end early" : complaints.error);
        mDamage.what = complaints.damage;
        mDamage.isInvented = !complaints.damage.empty();
    }

    [[nodiscard]] bool Give(int first, int count, const Take &take) const {
        const size_t offset = static_cast<size_t>(first) * mRowBytes +
                              static_cast<size_t>(mCrop.cropLeft) * static_cast<size_t>(Bands());
        return take(mStrip.get() + offset, mRowBytes, count);
    }

    std::string mPath;
    int mPage;
    uint64_t mDirectory;
    Placement mCrop;
    Damage mDamage;
    size_t mRowBytes = 0;
    int mImageHeight = 0;
    int mStripRows = 1;
    std::unique_ptr<uint8_t[]> mStrip;
    std::atomic<bool> mStopped = false;
};

class PlainTIFF : public ImageFile {
public:
    PlainTIFF(std::string path, std::vector<PlainPage> pages)
        : mPath(std::move(path)), mPages(std::move(pages)) {}

    [[nodiscard]] int PageCount() override { return static_cast<int>(mPages.size()); }
    [[nodiscard]] SourcePage Describe(int page) override {
        return mPages.at(static_cast<size_t>(page)).source;
    }

    [[nodiscard]] PageImage OpenPage(int page, const PageTarget &target) override {
        const SourcePage source = Describe(page);
        const Placement placement = LayOut(target.grid, source.size, target.placement);
        // Light that is to be ink is separated by who takes the rows.
        const bool ownColours =
            source.kind != PixelKind::CMYK || target.pixels == DocumentPixels::CMYK;
        if (target.placement.turned || !ownColours || !placement.pixelByPixel) return {};
        const PlainPage &plain = mPages.at(static_cast<size_t>(page));
        return {std::make_unique<PlainRows>(mPath, page, plain, placement), placement, true};
    }

private:
    std::string mPath;
    std::vector<PlainPage> mPages;
};

} // namespace

std::unique_ptr<ImageFile> OpenPlainTIFF(const std::string &path) {
    TIFFComplaints complaints;
    const TIFFPtr tiff = OpenTIFF(path, complaints);
    if (!tiff) return nullptr;
    std::vector<PlainPage> pages;
    do {
        // A file of nothing but smaller versions is left to the other reader.
        if (IsSubordinate(tiff.get())) continue;
        const std::optional<SourcePage> page = DescribePlain(tiff.get());
        if (!page || !NeedsNoProfile(tiff.get(), page->kind)) return nullptr;
        pages.push_back({*page, TIFFCurrentDirOffset(tiff.get())});
    } while (TIFFReadDirectory(tiff.get()));
    if (pages.empty() || !complaints.error.empty()) return nullptr;
    return std::make_unique<PlainTIFF>(path, std::move(pages));
}
