#include "colour/TableCache.h"
#include "support/RegularFile.h"

#include <algorithm>
#include <sys/stat.h>

namespace {

bool Same(const timespec &a, const timespec &b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

std::chrono::nanoseconds SinceEpoch(const timespec &time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

FileIdentity Identify(const std::string &path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) return {};
    return {info.st_dev, info.st_ino, info.st_size, info.st_mtim, info.st_ctim};
}

} // namespace

bool FileIdentity::operator==(const FileIdentity &other) const {
    return device == other.device && inode == other.inode && size == other.size &&
           Same(modified, other.modified) && Same(changed, other.changed);
}

bool TableCache::HasSettled(const FileIdentity &identity) const {
    timespec now{};
    (void)clock_gettime(CLOCK_REALTIME, &now);
    return SinceEpoch(now) - SinceEpoch(identity.changed) >= mSettling;
}

EightColourLUT *TableCache::Acquire(CFURLRef url) {
    const std::lock_guard lock(mMutex);
    const std::string path = PathOfURL(url);
    const FileIdentity identity = Identify(path);
    const auto found = std::find_if(mEntries.begin(), mEntries.end(), [&](const Entry &entry) {
        return entry.reusable && entry.identity == identity;
    });
    if (found == mEntries.end()) return Load(url, path, identity);
    mEntries.splice(mEntries.begin(), mEntries, found);
    ++found->users;
    return found->table.get();
}

EightColourLUT *TableCache::Load(CFURLRef url, const std::string &path,
                                 const FileIdentity &identity) {
    bool sampled = false;
    EightColourLUT *table = LoadEightColourLUT(url, &sampled);
    if (!table) return nullptr;
    const bool reusable = sampled && HasSettled(identity) && Identify(path) == identity;
    mEntries.push_front({decltype(Entry::table)(table), identity, reusable, 1});
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
