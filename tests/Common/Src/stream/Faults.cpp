#include "tests/Common/Src/stream/Faults.h"
#include <array>
#include <atomic>
#include <cerrno>
#include <new>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Plain arrays and counters: `free` and `new` must not allocate on their own account.
std::atomic<Faults *> gFaults{nullptr};
std::array<std::atomic<void *>, 256> gVallocs{};
std::atomic<int> gThreadsStarted{0};
std::atomic<int> gThreadsJoined{0};
std::atomic<size_t> gAllocations{0};

} // namespace

Faults::Faults() {
    gThreadsStarted = gThreadsJoined = 0;
    gFaults = this;
}
Faults::~Faults() {
    gFaults = nullptr;
}

int Faults::LiveVallocs() const {
    int count = 0;
    for (const auto &block : gVallocs)
        count += block.load() != nullptr ? 1 : 0;
    return count;
}
int Faults::ThreadsStarted() const {
    return gThreadsStarted;
}
int Faults::ThreadsJoined() const {
    return gThreadsJoined;
}
size_t Faults::Allocations() const {
    return gAllocations;
}

void Faults::AddWriteActions(std::initializer_list<WriteAction> actions) {
    const std::lock_guard lock(mMutex);
    mActions.insert(mActions.end(), actions);
}

std::vector<size_t> Faults::WriteLengths() const {
    const std::lock_guard lock(mMutex);
    return mLengths;
}

void Faults::HoldWrites() {
    const std::lock_guard lock(mMutex);
    mHeld = true;
}

void Faults::ReleaseWrites() {
    const std::lock_guard lock(mMutex);
    mHeld = false;
    mReleased.notify_all();
}

extern "C" ssize_t __real_write(int fd, const void *bytes, size_t length);
extern "C" int __real_fstat(int fd, struct stat *status);
extern "C" void *__real_valloc(size_t size);
extern "C" void __real_free(void *block);
extern "C" int __real_pthread_create(pthread_t *thread, const pthread_attr_t *attributes,
                                     void *(*body)(void *), void *argument);
extern "C" int __real_pthread_join(pthread_t thread, void **result);
extern "C" void *__real__ZnwmRKSt9nothrow_t(size_t size, const std::nothrow_t &tag);
extern "C" void *__real__Znwm(size_t size);
extern "C" void __real__Z24PlatformDisableFileCachei(int fd);

long Faults::OnWrite(int fd, const void *bytes, size_t length) {
    WriteAction action;
    {
        std::unique_lock lock(mMutex);
        while (mHeld)
            mReleased.wait(lock);
        mLengths.push_back(length);
        if (!mActions.empty()) {
            action = mActions.front();
            mActions.pop_front();
        }
    }
    if (action.error != 0) {
        errno = action.error;
        return -1;
    }
    return __real_write(fd, bytes,
                        action.shortTo >= 0 ? static_cast<size_t>(action.shortTo) : length);
}

extern "C" ssize_t __wrap_write(int fd, const void *bytes, size_t length) {
    Faults *faults = gFaults;
    if (faults == nullptr || fd != faults->watchedFd) return __real_write(fd, bytes, length);
    return faults->OnWrite(fd, bytes, length);
}

extern "C" int __wrap_fstat(int fd, struct stat *status) {
    const Faults *faults = gFaults;
    if (faults == nullptr || faults->fstatError == 0) return __real_fstat(fd, status);
    errno = faults->fstatError;
    return -1;
}

extern "C" void *__wrap_valloc(size_t size) {
    Faults *faults = gFaults;
    if (faults != nullptr && faults->vallocsThatWork >= 0 && faults->vallocsThatWork-- == 0) {
        faults->vallocsThatWork = 0;
        return nullptr;
    }
    void *block = __real_valloc(size);
    for (auto &slot : gVallocs) {
        void *none = nullptr;
        if (slot.compare_exchange_strong(none, block)) break;
    }
    return block;
}

extern "C" void __wrap_free(void *block) {
    if (block != nullptr) {
        for (auto &slot : gVallocs) {
            void *same = block;
            if (slot.compare_exchange_strong(same, nullptr)) break;
        }
    }
    __real_free(block);
}

extern "C" int __wrap_pthread_create(pthread_t *thread, const pthread_attr_t *attributes,
                                     void *(*body)(void *), void *argument) {
    const Faults *faults = gFaults;
    if (faults != nullptr && faults->threadError != 0) return faults->threadError;
    ++gThreadsStarted;
    return __real_pthread_create(thread, attributes, body, argument);
}

extern "C" int __wrap_pthread_join(pthread_t thread, void **result) {
    ++gThreadsJoined;
    return __real_pthread_join(thread, result);
}

extern "C" void *__wrap__ZnwmRKSt9nothrow_t(size_t size, const std::nothrow_t &tag) {
    ++gAllocations;
    Faults *faults = gFaults;
    if (faults != nullptr && faults->failingNothrowNew >= 0 && faults->failingNothrowNew-- == 0) {
        return nullptr;
    }
    return __real__ZnwmRKSt9nothrow_t(size, tag);
}

extern "C" void *__wrap__Znwm(size_t size) {
    ++gAllocations;
    return __real__Znwm(size);
}

extern "C" void __wrap__Z24PlatformDisableFileCachei(int fd) {
    if (Faults *faults = gFaults) faults->cacheDisabledFor.push_back(fd);
    __real__Z24PlatformDisableFileCachei(fd);
}
