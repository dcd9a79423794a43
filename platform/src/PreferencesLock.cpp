// Two locks. GNUstep's is a folder, which stays when its maker is killed; the makers of ours would
// wait for one another for nothing. So ours is a locked file, which the system unlocks, and
// GNUstep's folder is made under it: with a mark inside, so that who has the file knows a folder
// that a killed process of ours has left.
#include "PreferencesLock.h"
#include <cerrno>
#include <chrono>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

/// Writing takes milliseconds, but there may be many who write.
constexpr std::chrono::seconds kPatienceWithOurs{5};
constexpr std::chrono::seconds kPatienceWithGNUstep{1};
constexpr std::chrono::milliseconds kPause{5};
/// A folder as old as that is broken by GNUstep itself.
constexpr time_t kOldest = 20;

thread_local bool hasLock = false;

bool Exists(const std::string &path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

class Deadline {
public:
    explicit Deadline(Clock::duration patience) : mEnd(Clock::now() + patience) {}
    /// Waits a little; false when there is no time left.
    [[nodiscard]] bool Wait() const {
        if (Clock::now() >= mEnd) return false;
        std::this_thread::sleep_for(kPause);
        return true;
    }

private:
    Clock::time_point mEnd;
};

} // namespace

PreferencesLock::PreferencesLock(const std::string &folder)
    : mLockFolder(folder + "/.lck/.GNUstepDefaults.lck"), mNested(hasLock) {
    if (mNested) return;
    hasLock = true;
    const std::string parent = folder + "/.lck";
    (void)mkdir(parent.c_str(), 0755);
    mFile = open((parent + "/zel.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    LockFile();
    if (!mRefused) MakeFolder();
}

PreferencesLock::~PreferencesLock() {
    if (mNested) return;
    // A folder without our mark is another's: ours was broken for being old.
    if (mMade && unlink(Mark().c_str()) == 0) (void)rmdir(mLockFolder.c_str());
    if (mFile >= 0) (void)close(mFile);
    hasLock = false;
}

void PreferencesLock::LockFile() {
    if (mFile < 0) return;
    const Deadline deadline(kPatienceWithOurs);
    do {
        mLocked = flock(mFile, LOCK_EX | LOCK_NB) == 0;
        // Not every file system has locks.
        if (mLocked || (errno != EWOULDBLOCK && errno != EINTR)) return;
    } while (deadline.Wait());
    mRefused = true;
}

void PreferencesLock::MakeFolder() {
    const Deadline deadline(kPatienceWithGNUstep);
    do {
        if (mkdir(mLockFolder.c_str(), 0755) == 0) {
            mMade = symlink("owner", Mark().c_str()) == 0;
            // Unmarked, it would hold others up if this process were killed.
            if (!mMade) (void)rmdir(mLockFolder.c_str());
            return;
        }
        // A full disk, or a folder that nobody may write in.
        if (errno != EEXIST) return;
    } while (RemoveAbandoned() || deadline.Wait());
    mDoubtful = true;
}

bool PreferencesLock::RemoveAbandoned() const {
    struct stat info {};
    if (lstat(mLockFolder.c_str(), &info) != 0) return false;
    const bool isDead = mLocked && Exists(Mark());
    if (!isDead && info.st_mtime + kOldest >= std::time(nullptr)) return false;
    (void)unlink(Mark().c_str());
    return rmdir(mLockFolder.c_str()) == 0;
}
