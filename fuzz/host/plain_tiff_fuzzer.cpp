// Any bytes as a TIFF file: the list of pages, and of a plain one every row, whole and cropped. A
// reader that does not complain gives as many rows as it has said.
#include "fuzz/MemoryFile.h"
#include "host/readers/PlainTIFF.h"
#include "host/readers/TIFFPages.h"
#include "host/terminal/ExitStatus.h"

#include <cstdint>
#include <numeric>

namespace {

constexpr int kMostPages = 4;
/// What can be looked at in no time; larger pages are described only.
constexpr int kMostSamples = 1 << 20;

void Require(bool condition) {
    if (!condition) std::abort();
}

/// A page with the image's own pixels, `hidden` columns and rows of which do not fit.
PageTarget TargetFor(const SourcePage &page, int hidden) {
    constexpr double kDpi = 72; // a pixel is a point
    PageTarget target;
    const ImageSize &size = page.size;
    target.grid = {std::max(1, size.width - hidden), std::max(1, size.height - hidden), kDpi, kDpi};
    target.placement.width = size.width;
    target.placement.height = size.height;
    target.placement.left = target.placement.top = -hidden / 2.0;
    target.pixels = page.kind == PixelKind::CMYK ? DocumentPixels::CMYK : DocumentPixels::XRGB;
    return target;
}

void ReadRows(PageRows &rows) {
    int got = 0;
    uint64_t sum = 0;
    rows.Read([&](const uint8_t *bytes, size_t rowBytes, int count) {
        const auto length = static_cast<size_t>(rows.Width()) * static_cast<size_t>(rows.Bands());
        for (int row = 0; row < count; ++row) // the sanitizer sees what is read beside them
            sum = std::accumulate(bytes + static_cast<size_t>(row) * rowBytes,
                                  bytes + static_cast<size_t>(row) * rowBytes + length, sum);
        got += count;
        return true;
    });
    Require(got == rows.Height());
}

void ReadPage(ImageFile &file, int number) {
    const SourcePage page = file.Describe(number);
    Require(page.size.width > 0 && page.size.height > 0);
    if (page.size.width > kMostSamples / 4 / page.size.height) return;
    for (const int hidden : {0, 2}) {
        const PageImage image = file.OpenPage(number, TargetFor(page, hidden));
        if (!image.rows) continue;
        Require(image.rows->Width() <= page.size.width);
        Require(image.rows->Height() <= page.size.height);
        ReadRows(*image.rows);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static MemoryFile file;
    file.Hold(data, size);
    try {
        Require(!ListTIFFPages(file.Path(), "fuzz").empty());
    } catch (const HostError &error) {
        Require(error.Status() == ExitStatus::Input);
    }
    const std::unique_ptr<ImageFile> tiff = OpenPlainTIFF(file.Path());
    if (!tiff) return 0;
    for (int page = 0; page < std::min(kMostPages, tiff->PageCount()); ++page)
        try {
            ReadPage(*tiff, page);
        } catch (const HostError &error) {
            Require(error.Status() == ExitStatus::Input);
        }
    return 0;
}
