#include "colour/TableCache.h"
#include "support/RegularFile.h"

#include <algorithm>
#include <platform/Platform.h>
#include <sys/stat.h>

namespace {

bool Same(const timespec &a, const timespec &b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

std::chrono::nanoseconds SinceEpoch(const timespec &time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

FileStamp StampOf(const std::string &path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) return {};
    const FileTimes times = PlatformTimesOf(info);
    return {info.st_dev, info.st_ino, info.st_size, times.modified, times.changed};
}

} // namespace

bool FileStamp::operator==(const FileStamp &other) const {
    return device == other.device && inode == other.inode && size == other.size &&
           Same(modified, other.modified) && Same(changed, other.changed);
}

bool TableCache::HasSettled(const FileStamp &stamp) const {
    timespec now{};
    (void)clock_gettime(CLOCK_REALTIME, &now);
    return SinceEpoch(now) - SinceEpoch(stamp.changed) >= mSettling;
}

EightColourLUT *TableCache::Acquire(CFURLRef url) {
    const std::lock_guard lock(mMutex);
    const std::string path = PathOfURL(url);
    const FileStamp stamp = StampOf(path);
    const auto found = std::find_if(mEntries.begin(), mEntries.end(), [&](const Entry &entry) {
        return entry.reusable && entry.stamp == stamp;
    });
    if (found == mEntries.end()) return Load(url, path, stamp);
    mEntries.splice(mEntries.begin(), mEntries, found);
    ++found->users;
    return found->table.get();
}

EightColourLUT *TableCache::Load(CFURLRef url, const std::string &path, const FileStamp &stamp) {
    bool sampled = false;
    EightColourLUT *table = LoadEightColourLUT(url, &sampled);
    if (!table) return nullptr;
    const bool reusable = sampled && HasSettled(stamp) && StampOf(path) == stamp;
    mEntries.push_front({decltype(Entry::table)(table), stamp, reusable, 1});
    DropUnused();
    return table;
}

void TableCache::Release(const EightColourLUT *table) {
    const std::lock_guard lock(mMutex);
    const auto found = std::find_if(mEntries.begin(), mEntries.end(), [table](const Entry &entry) {
        return entry.table.get() == table;
    });
    if (found == mEntries.end()) return;
    --found->users;
    DropUnused();
}

void TableCache::DropUnused() {
    mEntries.remove_if([](const Entry &entry) { return entry.users == 0 && !entry.reusable; });
    size_t kept = 0;
    mEntries.remove_if(
        [&kept](const Entry &entry) { return entry.users == 0 && ++kept > kCapacity; });
}

size_t TableCache::Size() const {
    const std::lock_guard lock(mMutex);
    return mEntries.size();
}
