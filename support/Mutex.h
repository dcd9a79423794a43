/// A mutex that clang's thread-safety analysis understands (libstdc++'s std::mutex is not
/// annotated), with the macros that say which lock guards what.
#pragma once

#include <pthread.h>

#if defined(__clang__)
#define ZEL_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define ZEL_THREAD_ATTRIBUTE(x)
#endif
#define ZEL_CAPABILITY(name) ZEL_THREAD_ATTRIBUTE(capability(name))
#define ZEL_SCOPED_CAPABILITY ZEL_THREAD_ATTRIBUTE(scoped_lockable)
#define ZEL_GUARDED_BY(mutex) ZEL_THREAD_ATTRIBUTE(guarded_by(mutex))
#define ZEL_REQUIRES(mutex) ZEL_THREAD_ATTRIBUTE(requires_capability(mutex))
#define ZEL_ACQUIRE(...) ZEL_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define ZEL_RELEASE(...) ZEL_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))

/// Not recursive. The pthread calls cannot fail for a mutex that is initialised and used in order.
class ZEL_CAPABILITY("mutex") Mutex {
public:
    Mutex() { (void)pthread_mutex_init(&mMutex, nullptr); }
    ~Mutex() { (void)pthread_mutex_destroy(&mMutex); }
    Mutex(const Mutex &) = delete;
    Mutex &operator=(const Mutex &) = delete;

    void Lock() ZEL_ACQUIRE() { (void)pthread_mutex_lock(&mMutex); }
    void Unlock() ZEL_RELEASE() { (void)pthread_mutex_unlock(&mMutex); }

private:
    friend class Condition;
    pthread_mutex_t mMutex;
};

/// Holds a mutex for the length of a block.
class ZEL_SCOPED_CAPABILITY MutexLock {
public:
    explicit MutexLock(Mutex &mutex) ZEL_ACQUIRE(mutex) : mMutex(mutex) { mMutex.Lock(); }
    ~MutexLock() ZEL_RELEASE() { mMutex.Unlock(); }
    MutexLock(const MutexLock &) = delete;
    MutexLock &operator=(const MutexLock &) = delete;

private:
    Mutex &mMutex;
};

class Condition {
public:
    Condition() { (void)pthread_cond_init(&mCondition, nullptr); }
    ~Condition() { (void)pthread_cond_destroy(&mCondition); }
    Condition(const Condition &) = delete;
    Condition &operator=(const Condition &) = delete;

    /// Releases `mutex`, waits, takes it again. Wakes up for no reason at times.
    void Wait(Mutex &mutex) ZEL_REQUIRES(mutex) {
        (void)pthread_cond_wait(&mCondition, &mutex.mMutex);
    }
    void SignalOne() { (void)pthread_cond_signal(&mCondition); }

private:
    pthread_cond_t mCondition;
};
