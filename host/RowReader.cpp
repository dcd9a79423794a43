#include "host/RowReader.h"

#include "host/ExitStatus.h"
#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace {

constexpr int kPieces = 3;
constexpr int kPieceBytes = 1 << 20;
/// No band is larger, however many rows are asked for.
constexpr int kLargestBand = 64 << 20;
/// Rows read at once: what is packed next is still in the processor's cache.
constexpr int kStripRows = 32;

/// Rows that are read, or a free buffer for them.
struct Piece {
    std::vector<uint8_t> rows;
    int count = 0;
};

struct RegionUnref {
    void operator()(VipsRegion *region) const { g_object_unref(region); }
};
using RegionPtr = std::unique_ptr<VipsRegion, RegionUnref>;

} // namespace

class RowReader::Reader {
public:
    Reader(const PageImage &image, const PageReference &source, DocumentPixels format,
           int bandHeight);
    ~Reader();
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;
    Rows Next();

private:
    void Run();
    [[nodiscard]] bool ReadStraight();
    [[nodiscard]] bool ReadScaled();
    [[nodiscard]] bool Take(VipsRegion *region, const VipsRect &area);
    static int TakeFromSink(VipsRegion *region, VipsRect *area, void *reader);
    [[nodiscard]] bool HandOver();
    [[nodiscard]] bool Finish();

    VipsImage *mImage;
    bool mStraight;
    PageReference mSource;
    DocumentPixels mFormat;
    int mRowBytes, mBandHeight, mPieceHeight;
    Piece mPieces[kPieces];

    // The reading thread fills piece mFilled % kPieces, the caller uses piece mUsed % kPieces.
    std::mutex mMutex;
    std::condition_variable mChanged;
    int mFilled = 0, mUsed = 0;
    bool mDone = false, mStopped = false;
    std::exception_ptr mFailure;

    int mTop = 0; ///< rows of the current piece that the caller has had
    std::thread mThread;
};

RowReader::Reader::Reader(const PageImage &image, const PageReference &source,
                          DocumentPixels format, int bandHeight)
    : mImage(image.pixels.get()), mStraight(image.placement.IsPixelByPixel()), mSource(source),
      mFormat(format), mRowBytes(vips_image_get_width(mImage) * PixelSize(format)) {
    const int height = vips_image_get_height(mImage);
    const int most = std::max(1, std::min(height, kLargestBand / mRowBytes));
    const int usual = std::clamp(kPieceBytes / mRowBytes, 1, most);
    mBandHeight = bandHeight > 0 ? std::min(bandHeight, most) : usual;
    mPieceHeight = std::max(1, usual / mBandHeight) * mBandHeight;
    for (Piece &piece : mPieces)
        piece.rows.resize(static_cast<size_t>(mPieceHeight) * static_cast<size_t>(mRowBytes));
    mThread = std::thread([this] { Run(); });
}

RowReader::Reader::~Reader() {
    {
        const std::lock_guard lock(mMutex);
        mStopped = true;
    }
    mChanged.notify_all();
    vips_image_set_kill(mImage, TRUE);
    mThread.join();
}

void RowReader::Reader::Run() {
    std::exception_ptr failure;
    if (!(mStraight ? ReadStraight() : ReadScaled())) {
        try {
            mSource.file->ThrowUnreadable(mSource.page);
        } catch (...) {
            failure = std::current_exception();
        }
    }
    vips_thread_shutdown();
    const std::lock_guard lock(mMutex);
    mFailure = failure;
    mDone = true;
    mChanged.notify_all();
}

bool RowReader::Reader::ReadStraight() {
    const RegionPtr region(vips_region_new(mImage));
    const int width = vips_image_get_width(mImage);
    const int height = vips_image_get_height(mImage);
    for (int top = 0; top < height; top += kStripRows) {
        const VipsRect area = {0, top, width, std::min(kStripRows, height - top)};
        if (vips_region_prepare(region.get(), &area) != 0) {
            const std::lock_guard lock(mMutex);
            return mStopped;
        }
        if (!Take(region.get(), area)) return true;
    }
    return Finish();
}

/// Hands over what is left at the end of the image.
bool RowReader::Reader::Finish() {
    if (mPieces[mFilled % kPieces].count > 0) (void)HandOver();
    return true;
}

/// libvips computes the strips with all processors, and gives them in their order.
bool RowReader::Reader::ReadScaled() {
    if (vips_sink_disc(mImage, TakeFromSink, this) == 0) return Finish();
    const std::lock_guard lock(mMutex);
    return mStopped;
}

int RowReader::Reader::TakeFromSink(VipsRegion *region, VipsRect *area, void *reader) {
    return static_cast<Reader *>(reader)->Take(region, *area) ? 0 : -1;
}

/// Packs rows; false when nobody wants more.
bool RowReader::Reader::Take(VipsRegion *region, const VipsRect &area) {
    const int bands = vips_image_get_bands(mImage);
    for (int row = 0; row < area.height; ++row) {
        Piece &piece = mPieces[mFilled % kPieces];
        PackPixels(VIPS_REGION_ADDR(region, 0, area.top + row), bands, area.width, mFormat,
                   piece.rows.data() +
                       static_cast<size_t>(piece.count) * static_cast<size_t>(mRowBytes));
        if (++piece.count == mPieceHeight && !HandOver()) return false;
    }
    return true;
}

/// Gives the filled piece to the caller and waits for a free one.
bool RowReader::Reader::HandOver() {
    std::unique_lock lock(mMutex);
    ++mFilled;
    mChanged.notify_all();
    mChanged.wait(lock, [this] { return mStopped || mFilled - mUsed < kPieces; });
    mPieces[mFilled % kPieces].count = 0;
    return !mStopped;
}

Rows RowReader::Reader::Next() {
    std::unique_lock lock(mMutex);
    if (mFilled > mUsed && mTop >= mPieces[mUsed % kPieces].count) {
        mTop = 0;
        ++mUsed;
        mChanged.notify_all();
    }
    mChanged.wait(lock, [this] { return mFilled > mUsed || mDone; });
    if (mFilled == mUsed) {
        if (mFailure) std::rethrow_exception(mFailure);
        return {};
    }
    const Piece &piece = mPieces[mUsed % kPieces];
    const int count = std::min(mBandHeight, piece.count - mTop);
    const uint8_t *pixels =
        piece.rows.data() + static_cast<size_t>(mTop) * static_cast<size_t>(mRowBytes);
    mTop += count;
    return {pixels, mRowBytes, count};
}

RowReader::RowReader(const PageImage &image, const PageReference &source, DocumentPixels format,
                     int bandHeight)
    : mReader(new Reader(image, source, format, bandHeight)) {}

RowReader::~RowReader() = default;

Rows RowReader::Next() {
    return mReader->Next();
}
