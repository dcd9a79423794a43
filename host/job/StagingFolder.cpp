// A lock on a file in the folder tells that its process lives: the system gives it back, however
// the process ends.
#include "host/job/StagingFolder.h"

#include "host/job/FolderListing.h"
#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

const char kPrefix[] = ".zelprint-";
const char kLockName[] = ".lock";
/// Others of the user who remove what is abandoned may come between making and locking.
constexpr int kTries = 100;

std::string InFolder(const std::string &folder, const std::string &name) {
    return (folder == "/" ? "" : folder) + "/" + name;
}

std::string LockOf(const std::string &staging) {
    return InFolder(staging, kLockName);
}

void RemoveWithContents(const std::string &folder) {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

/// Can files be given a name in the other folder? Not where another volume, or the same one a
/// second time, is mounted. The system looks at that before it looks for the file.
bool CanMove(const std::string &from, const std::string &to) {
    const std::string name = from.substr(from.rfind('/') + 1) + ".none";
    return rename(InFolder(from, name).c_str(), InFolder(to, name).c_str()) == 0 || errno != EXDEV;
}

std::vector<std::string> StagingFoldersIn(const std::string &parent) {
    std::vector<std::string> folders;
    for (const std::string &name : NamesIn(parent).value_or(std::vector<std::string>()))
        if (name.rfind(kPrefix, 0) == 0) folders.push_back(InFolder(parent, name));
    return folders;
}

void RemoveIfAbandoned(const std::string &folder) {
    struct stat info {};
    if (lstat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode) || info.st_uid != geteuid())
        return;
    const int lock = open(LockOf(folder).c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    // It may just be being made: then it is empty, and is made again.
    if (lock < 0 && errno == ENOENT) (void)rmdir(folder.c_str());
    if (lock < 0) return;
    if (flock(lock, LOCK_EX | LOCK_NB) == 0) RemoveWithContents(folder);
    (void)close(lock);
}

} // namespace

std::unique_ptr<StagingFolder> StagingFolder::Make(const std::string &parent,
                                                   const std::string &destination,
                                                   RightsFunction inheritRights) {
    for (int tries = 0; tries < kTries; ++tries) {
        std::unique_ptr<StagingFolder> staging(new StagingFolder(parent));
        if (!staging->Create() || !staging->Lock()) {
            if (staging->mIsMade && errno == ENOENT) continue;
            return nullptr;
        }
        const std::string &path = staging->Path();
        if (parent == destination) return staging; // which hands on its rights by itself
        const int code = inheritRights ? inheritRights(destination.c_str(), path.c_str()) : 0;
        if (code == 0 && CanMove(path, destination)) return staging;
        errno = code != 0 ? code : EXDEV;
        return nullptr;
    }
    errno = EAGAIN;
    return nullptr;
}

/// Not every file system has locks: there nothing is ever taken for abandoned. False with errno
/// set, ENOENT when the folder is gone.
bool StagingFolder::Lock() {
    const std::string name = LockOf(mPath);
    mLock = open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (mLock < 0) return false;
    if (flock(mLock, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        errno = ENOENT; // who has it is about to remove the folder
        return false;
    }
    struct stat info {};
    return stat(name.c_str(), &info) == 0;
}

StagingFolder::StagingFolder(const std::string &parent)
    : mPath(InFolder(parent, std::string(kPrefix) + "XXXXXX")),
      mUnfinished([](void *self) noexcept { static_cast<StagingFolder *>(self)->Remove(); }, this) {
}

/// False with errno set, ENOENT when the folder has been made and is gone.
bool StagingFolder::Create() {
    mIsMade = mkdtemp(mPath.data()) != nullptr;
    mListing = mIsMade ? opendir(mPath.c_str()) : nullptr;
    return mListing;
}

void StagingFolder::Remove() const noexcept {
    // What is removed may hide others from a listing that has begun.
    for (bool again = mListing; again;) {
        again = false;
        rewinddir(mListing);
        while (const dirent *entry = readdir(mListing))
            again = unlinkat(dirfd(mListing), entry->d_name, 0) == 0 || again;
    }
    if (mIsMade) (void)rmdir(mPath.c_str());
}

StagingFolder::~StagingFolder() {
    const int code = errno;
    Remove();
    mIsMade = false;
    if (DIR *listing = std::exchange(mListing, nullptr)) (void)closedir(listing);
    if (mLock >= 0) (void)close(mLock);
    errno = code;
}

bool StagingFolder::IsOwn(const std::string &name) {
    return name == kLockName;
}

void StagingFolder::RemoveAbandoned(const std::string &parent) {
    for (const std::string &folder : StagingFoldersIn(parent))
        RemoveIfAbandoned(folder);
}
