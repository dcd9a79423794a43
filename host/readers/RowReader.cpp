#include "host/readers/RowReader.h"

#include "host/terminal/LastResort.h"
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <vector>

namespace {

constexpr int kPieces = 3;
constexpr int kPieceBytes = 1 << 20;
/// No band is larger, however many rows are asked for.
constexpr int kLargestBand = 64 << 20;
/// How long a source may take to stop.
constexpr std::chrono::seconds kPatience{1};

std::atomic<bool> hasLeftOne{false};

/// Rows that are read, or a free buffer for them.
struct Piece {
    std::unique_ptr<uint8_t[]> rows;
    int count = 0;
};

} // namespace

class RowReader::Reader {
public:
    Reader(std::shared_ptr<PageRows> source, DocumentPixels format, int bandHeight,
           SeparateColours separate);
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;
    /// What the thread does.
    void Run();
    /// Makes Run end soon; whether it has ended.
    [[nodiscard]] bool Stop();
    [[nodiscard]] bool Wait(std::chrono::milliseconds longest);
    Rows Next();

private:
    /// Whether Next finds what it is to return. To be asked with the mutex locked.
    [[nodiscard]] bool IsReady() const { return mFilled > mUsed || mDone; }
    [[nodiscard]] bool Take(const uint8_t *rows, size_t rowBytes, int count);
    void PackRow(const uint8_t *row, uint8_t *out);
    void ReadSource();
    /// Whether rows are printed as they come.
    [[nodiscard]] bool IsPacked() const {
        return mFormat == DocumentPixels::CMYK && mSource->Bands() == 4;
    }
    [[nodiscard]] PageRows::Space MakeRoom(int filled);
    [[nodiscard]] uint8_t *FreeRow(const Piece &piece) const {
        return piece.rows.get() + static_cast<size_t>(piece.count) * static_cast<size_t>(mRowBytes);
    }
    [[nodiscard]] bool HandOver();
    void GiveBack();

    std::shared_ptr<PageRows> mSource;
    DocumentPixels mFormat;
    int mRowBytes, mBandHeight, mPieceHeight;
    SeparateColours mSeparate;
    std::vector<uint8_t> mLight; ///< a row on its way to ink
    Piece mPieces[kPieces];

    // The reading thread fills piece mFilled % kPieces, the caller uses piece mUsed % kPieces.
    std::mutex mMutex;
    std::condition_variable mChanged;
    int mFilled = 0, mUsed = 0;
    bool mDone = false, mStopped = false;
    std::exception_ptr mFailure;

    int mTop = 0; ///< rows of the current piece that the caller has had
};

RowReader::Reader::Reader(std::shared_ptr<PageRows> source, DocumentPixels format, int bandHeight,
                          SeparateColours separate)
    : mSource(std::move(source)), mFormat(format), mRowBytes(mSource->Width() * PixelSize(format)),
      mSeparate(std::move(separate)) {
    if (format == DocumentPixels::CMYK && mSource->Bands() != 4)
        mLight.resize(static_cast<size_t>(mRowBytes));
    const int height = mSource->Height();
    const int most = std::max(1, std::min(height, kLargestBand / mRowBytes));
    const int usual = std::clamp(kPieceBytes / mRowBytes, 1, most);
    mBandHeight = bandHeight > 0 ? std::min(bandHeight, most) : usual;
    mPieceHeight = std::max(1, usual / mBandHeight) * mBandHeight;
    for (Piece &piece : mPieces)
        piece.rows.reset(
            new uint8_t[static_cast<size_t>(mPieceHeight) * static_cast<size_t>(mRowBytes)]);
}

bool RowReader::Reader::Stop() {
    {
        const std::lock_guard lock(mMutex);
        mStopped = true;
    }
    mChanged.notify_all();
    mSource->Stop();
    std::unique_lock lock(mMutex);
    return mChanged.wait_for(lock, kPatience, [this] { return mDone; });
}

void RowReader::Reader::Run() {
    const StackForTheEnd stack;
    std::exception_ptr failure;
    try {
        ReadSource();
        if (mPieces[mFilled % kPieces].count > 0) (void)HandOver();
    } catch (...) {
        failure = std::current_exception();
    }
    const std::lock_guard lock(mMutex);
    mFailure = failure;
    mDone = true;
    mChanged.notify_all();
}

void RowReader::Reader::ReadSource() {
    if (IsPacked() && mSource->ReadInto([this](int filled) { return MakeRoom(filled); })) return;
    mSource->Read([this](const uint8_t *rows, size_t rowBytes, int count) {
        return Take(rows, rowBytes, count);
    });
}

PageRows::Space RowReader::Reader::MakeRoom(int filled) {
    Piece &piece = mPieces[mFilled % kPieces];
    piece.count += filled;
    if (piece.count == mPieceHeight && !HandOver()) return {};
    const Piece &next = mPieces[mFilled % kPieces];
    return {FreeRow(next), mPieceHeight - next.count};
}

void RowReader::Reader::PackRow(const uint8_t *row, uint8_t *out) {
    const int width = mSource->Width();
    if (mLight.empty()) {
        PackPixels(row, mSource->Bands(), width, mFormat, out);
        return;
    }
    PackPixels(row, mSource->Bands(), width, DocumentPixels::XRGB, mLight.data());
    mSeparate(mLight.data(), static_cast<size_t>(width), out);
}

/// Packs rows; false when nobody wants more.
bool RowReader::Reader::Take(const uint8_t *rows, size_t rowBytes, int count) {
    for (int row = 0; row < count; ++row) {
        Piece &piece = mPieces[mFilled % kPieces];
        PackRow(rows + static_cast<size_t>(row) * rowBytes, FreeRow(piece));
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

/// Gives a piece back that the caller has had all of.
void RowReader::Reader::GiveBack() {
    if (mFilled == mUsed || mTop < mPieces[mUsed % kPieces].count) return;
    mTop = 0;
    ++mUsed;
    mChanged.notify_all();
}

bool RowReader::Reader::Wait(std::chrono::milliseconds longest) {
    std::unique_lock lock(mMutex);
    GiveBack();
    return mChanged.wait_for(lock, longest, [this] { return IsReady(); });
}

Rows RowReader::Reader::Next() {
    std::unique_lock lock(mMutex);
    GiveBack();
    mChanged.wait(lock, [this] { return IsReady(); });
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

RowReader::RowReader(std::shared_ptr<PageRows> source, DocumentPixels format, int bandHeight,
                     SeparateColours separate)
    : mReader(std::make_shared<Reader>(std::move(source), format, bandHeight, std::move(separate))),
      mThread([reader = mReader] { reader->Run(); }) {}

RowReader::~RowReader() {
    if (mReader->Stop()) {
        mThread.join();
        return;
    }
    hasLeftOne = true;
    mThread.detach();
}

bool RowReader::Wait(std::chrono::milliseconds longest) {
    return mReader->Wait(longest);
}

bool RowReader::HasLeftOne() {
    return hasLeftOne;
}

Rows RowReader::Next() {
    return mReader->Next();
}
