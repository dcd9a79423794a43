/// System calls and allocations that fail on demand. Linked in with the linker's --wrap, see
/// zel_add_fault_test in CMakeLists.txt.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

/// What the next `write` to the watched descriptor does.
struct WriteAction {
    int error = 0;     ///< fails with this errno when it is not 0
    long shortTo = -1; ///< writes only so many bytes, when it is not negative
};

/// The faults of the running test; a new object means none. Only one exists at a time.
class Faults {
public:
    Faults();
    ~Faults();
    Faults(const Faults &) = delete;
    Faults &operator=(const Faults &) = delete;

    int watchedFd = -1;                ///< `write` to other descriptors goes through unseen
    int fstatError = 0;                ///< errno of every fstat
    int threadError = 0;               ///< result of every pthread_create
    int vallocsThatWork = -1;          ///< valloc fails after so many; negative: never
    int failingNothrowNew = -1;        ///< the so many-th `new (nothrow)` from now fails, 0 first
    std::vector<int> cacheDisabledFor; ///< descriptors given to PlatformDisableFileCache

    int LiveVallocs() const; ///< blocks of valloc that were not freed
    int ThreadsStarted() const;
    int ThreadsJoined() const;
    size_t Allocations() const; ///< by `new`, so far

    void AddWriteActions(std::initializer_list<WriteAction> actions);
    std::vector<size_t> WriteLengths() const; ///< of all calls to the watched descriptor
    void HoldWrites();                        ///< from now on writes wait
    void ReleaseWrites();                     ///< until this

    long OnWrite(int fd, const void *bytes, size_t length); ///< for the wrapper only

private:
    mutable std::mutex mMutex;
    std::condition_variable mReleased;
    bool mHeld = false;
    std::deque<WriteAction> mActions;
    std::vector<size_t> mLengths;
};
