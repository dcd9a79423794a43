#include "FileState.h"
#include <ctime>

namespace {

/// Clocks of file systems tick in up to two seconds: a file as young as that may be written again
/// and bear the same time.
constexpr time_t kCoarsestTick = 2;

bool IsSame(const timespec &a, const timespec &b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

} // namespace

FileStates::State FileStates::Look(const std::string &path) {
    State state = {};
    if (stat(path.c_str(), &state) != 0) state = {};
    return state;
}

void FileStates::Remember(const std::string &path, const State &state) {
    if (state.st_ctim.tv_sec + kCoarsestTick < std::time(nullptr))
        mStates[path] = state;
    else
        Forget(path);
}

void FileStates::Forget(const std::string &path) {
    mStates.erase(path);
}

bool FileStates::IsUnchanged(const std::string &path) const {
    const auto found = mStates.find(path);
    if (found == mStates.end()) return false;
    const State &then = found->second;
    const State now = Look(path);
    return now.st_ino == then.st_ino && now.st_dev == then.st_dev && now.st_size == then.st_size &&
           IsSame(now.st_mtim, then.st_mtim) && IsSame(now.st_ctim, then.st_ctim);
}
