// The lock under which preferences are written.
#pragma once
#include <string>

/// Keeps other processes from writing preferences, ours and those that use GNUstep's classes. It
/// never blocks for long: who cannot have it within a second goes on without.
class PreferencesLock {
public:
    /// Locks the preferences in `folder`. A thread that has the lock may take it again.
    explicit PreferencesLock(const std::string &folder);
    ~PreferencesLock();
    PreferencesLock(const PreferencesLock &) = delete;
    PreferencesLock &operator=(const PreferencesLock &) = delete;

    /// Has a living process of ours kept the lock all the time? Writing could lose what it writes.
    [[nodiscard]] bool IsRefused() const { return mRefused; }
    /// Has GNUstep's lock been there all the time? Its maker may be dead.
    [[nodiscard]] bool IsDoubtful() const { return mDoubtful; }

private:
    void LockFile();
    void MakeFolder();
    [[nodiscard]] bool RemoveAbandoned() const;
    [[nodiscard]] std::string Mark() const { return mLockFolder + "/zel"; }

    std::string mLockFolder;
    int mFile = -1;
    bool mNested, mLocked = false, mMade = false, mRefused = false, mDoubtful = false;
};
