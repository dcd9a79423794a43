#include "host/job/PageCache.h"

#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

constexpr uint64_t kMostBytes = uint64_t{4} << 30;
constexpr int kPieceBytes = 1 << 20;

uint64_t SizeOf(const Rows &rows) {
    return static_cast<uint64_t>(rows.rowBytes) * static_cast<uint64_t>(rows.count);
}

} // namespace

void PageCache::Begin(size_t page, const Placement &placement) {
    mNumber = page;
    mComing = {placement, mSize, 0, 0};
    mKeeps = true;
    if (mFile) return;
    try {
        mFile = std::make_unique<UnnamedFile>();
        mMost = std::min(kMostBytes, mFile->Room() / 2);
    } catch (const HostError &) {
        mKeeps = false; // it is made of the file again
    }
}

void PageCache::Add(const Rows &rows) {
    if (!mKeeps) return;
    const uint64_t at =
        mComing.at + static_cast<uint64_t>(mComing.rowBytes) * static_cast<uint64_t>(mComing.count);
    mKeeps = at + SizeOf(rows) <= mMost &&
             mFile->Write(rows.pixels, static_cast<size_t>(SizeOf(rows)), at);
    mComing.rowBytes = rows.rowBytes;
    mComing.count += rows.count;
    if (!mKeeps) mFile->Truncate(mSize);
}

void PageCache::End() {
    if (!mKeeps || mComing.count == 0) return;
    mKeeps = false;
    mSize =
        mComing.at + static_cast<uint64_t>(mComing.rowBytes) * static_cast<uint64_t>(mComing.count);
    mPages[mNumber] = mComing;
}

const Placement *PageCache::Find(size_t page) const {
    const auto found = mPages.find(page);
    return found == mPages.end() ? nullptr : &found->second.placement;
}

Rows PageCache::Read(size_t page, int top) {
    const Page &kept = mPages.at(page);
    const int count =
        std::min(kept.count - top, std::max(1, kPieceBytes / std::max(1, kept.rowBytes)));
    if (count <= 0) return {};
    const auto rowBytes = static_cast<size_t>(kept.rowBytes);
    mRows.resize(rowBytes * static_cast<size_t>(count));
    if (!mFile->Read(mRows.data(), mRows.size(), kept.at + rowBytes * static_cast<uint64_t>(top)))
        throw HostError(ExitStatus::Output, "the rows for a further copy cannot be read in " +
                                                mFile->Folder() + ": " + strerror(errno));
    return {mRows.data(), kept.rowBytes, count};
}
