#include "host/RowReader.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

namespace {

constexpr int kPieces = 3;
constexpr int kPieceBytes = 1 << 20;
/// No band is larger, however many rows are asked for.
constexpr int kLargestBand = 64 << 20;

/// Rows that are read, or a free buffer for them.
struct Piece {
    std::unique_ptr<uint8_t[]> rows;
    int count = 0;
};

} // namespace

class RowReader::Reader {
public:
    Reader(PageRows &source, DocumentPixels format, int bandHeight);
    ~Reader();
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;
    Rows Next();

private:
    void Run();
    [[nodiscard]] bool Take(const uint8_t *rows, size_t rowBytes, int count);
    [[nodiscard]] bool HandOver();

    PageRows &mSource;
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

RowReader::Reader::Reader(PageRows &source, DocumentPixels format, int bandHeight)
    : mSource(source), mFormat(format), mRowBytes(source.Width() * PixelSize(format)) {
    const int height = source.Height();
    const int most = std::max(1, std::min(height, kLargestBand / mRowBytes));
    const int usual = std::clamp(kPieceBytes / mRowBytes, 1, most);
    mBandHeight = bandHeight > 0 ? std::min(bandHeight, most) : usual;
    mPieceHeight = std::max(1, usual / mBandHeight) * mBandHeight;
    for (Piece &piece : mPieces)
        piece.rows.reset(
            new uint8_t[static_cast<size_t>(mPieceHeight) * static_cast<size_t>(mRowBytes)]);
    mThread = std::thread([this] { Run(); });
}

RowReader::Reader::~Reader() {
    {
        const std::lock_guard lock(mMutex);
        mStopped = true;
    }
    mChanged.notify_all();
    mSource.Stop();
    mThread.join();
}

void RowReader::Reader::Run() {
    std::exception_ptr failure;
    try {
        mSource.Read([this](const uint8_t *rows, size_t rowBytes, int count) {
            return Take(rows, rowBytes, count);
        });
        if (mPieces[mFilled % kPieces].count > 0) (void)HandOver();
    } catch (...) {
        failure = std::current_exception();
    }
    const std::lock_guard lock(mMutex);
    mFailure = failure;
    mDone = true;
    mChanged.notify_all();
}

/// Packs rows; false when nobody wants more.
bool RowReader::Reader::Take(const uint8_t *rows, size_t rowBytes, int count) {
    for (int row = 0; row < count; ++row) {
        Piece &piece = mPieces[mFilled % kPieces];
        PackPixels(
            rows + static_cast<size_t>(row) * rowBytes, mSource.Bands(), mSource.Width(), mFormat,
            piece.rows.get() + static_cast<size_t>(piece.count) * static_cast<size_t>(mRowBytes));
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
        piece.rows.get() + static_cast<size_t>(mTop) * static_cast<size_t>(mRowBytes);
    mTop += count;
    return {pixels, mRowBytes, count};
}

RowReader::RowReader(PageRows &source, DocumentPixels format, int bandHeight)
    : mReader(new Reader(source, format, bandHeight)) {}

RowReader::~RowReader() = default;

Rows RowReader::Next() {
    return mReader->Next();
}
