#include "host/readers/pdf/PDFFile.h"

#include "host/readers/SpooledInput.h"
#include "host/readers/pdf/PDFPages.h"
#include "host/readers/pdf/PDFRenderer.h"
#include "host/terminal/Console.h"
#include <algorithm>
#include <atomic>
#include <cmath>

namespace {

constexpr double kPointsPerInch = 72;
constexpr double kMostPoints = 1e9;
constexpr size_t kPieceBytes = 1 << 20;

int WholePoints(double points) {
    return static_cast<int>(std::clamp(std::round(points), 1.0, kMostPoints));
}

class PDFRows : public PageRows {
public:
    PDFRows(std::shared_ptr<PDFRenderer> renderer, const PDFPageJob &page)
        : PageRows(renderer->Drawing().grid.width, renderer->Drawing().grid.height,
                   renderer->Bands()),
          mRenderer(std::move(renderer)), mPage(page) {}

    void Read(const Take &take) override {
        const size_t rowBytes = static_cast<size_t>(Width()) * static_cast<size_t>(Bands());
        const int most = std::max(1, static_cast<int>(kPieceBytes / rowBytes));
        const std::unique_ptr<uint8_t[]> rows(new uint8_t[static_cast<size_t>(most) * rowBytes]);
        const auto room = [&](int filled) {
            const bool wanted = filled == 0 || take(rows.get(), rowBytes, filled);
            return Space{wanted ? rows.get() : nullptr, most};
        };
        mRenderer->Draw(mPage, room, mStopped);
    }
    bool ReadInto(const MakeRoom &room) override {
        mRenderer->Draw(mPage, room, mStopped);
        return true;
    }
    void Stop() override { mStopped = true; }

private:
    std::shared_ptr<PDFRenderer> mRenderer;
    PDFPageJob mPage;
    std::atomic<bool> mStopped = false;
};

} // namespace

PDFFile::PDFFile(std::string path, PDFOptions options)
    : mPath(std::move(path)), mOptions(std::move(options)),
      mCount(std::make_unique<PDFPageCount>(mPath, mOptions)) {}

PDFFile::~PDFFile() = default;

const std::vector<PDFPage> &PDFFile::Pages() {
    if (mCount) {
        const std::unique_ptr<PDFPageCount> count = std::move(mCount);
        mPages = count->Finish();
    }
    return mPages;
}

SourcePage PDFFile::Describe(int page) {
    const PDFPage &source = Page(page);
    SourcePage result;
    result.size = {WholePoints(source.width), WholePoints(source.height), kPointsPerInch,
                   kPointsPerInch};
    result.isPicture = false;
    result.drawnWidth = source.width;
    result.drawnHeight = source.height;
    return result;
}

/// Once for a file: where ink does not stay ink.
void PDFFile::TellOfBlending(int page) {
    if (mBlendingIsTold || !Page(page).transparent) return;
    if (!mBlendedInRGB) mBlendedInRGB = ReadPagesBlendedInRGB(mPath, mOptions, Pages());
    const std::vector<int> &pages = *mBlendedInRGB;
    if (std::find(pages.begin(), pages.end(), page + 1) == pages.end()) return;
    mBlendingIsTold = true;
    std::string which = "page " + std::to_string(page + 1);
    if (pages.size() > 1) which += " (one of " + std::to_string(pages.size()) + " such pages)";
    Complain(NameOfInput(mPath) + ": " + which +
             " is blended in RGB, as the file demands of its transparency: its inks, black text "
             "too, are separated anew");
}

PageImage PDFFile::OpenPage(int page, const PageTarget &target) {
    const PDFDrawing drawing = {target.grid, target.pixels, target.inks};
    if (target.pixels == DocumentPixels::CMYK) TellOfBlending(page);
    if (!mRenderer || !mRenderer->IsUsable() || !(mRenderer->Drawing() == drawing))
        mRenderer = std::make_shared<PDFRenderer>(mPath, mOptions, drawing);
    const PDFPage &source = Page(page);
    const PDFPageJob job = {page + 1, source, MatrixOf(target.grid, source, target.placement)};
    PageImage image;
    image.rows = std::make_shared<PDFRows>(mRenderer, job);
    Placement &place = image.placement;
    place.width = place.scaledWidth = target.grid.width;
    place.height = place.scaledHeight = target.grid.height;
    return image;
}

void PDFFile::Finish() {
    if (mRenderer) mRenderer->Finish();
    mRenderer = nullptr;
}
