/// Memory that ends where the data end: a read or write past either side is a crash.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <sys/mman.h>
#include <unistd.h>

/// `size` bytes directly before a page that cannot be touched, or directly after one.
class GuardedBytes {
public:
    enum Side { kGuardAfter, kGuardBefore };

    explicit GuardedBytes(size_t size, Side side = kGuardAfter) {
        const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t pages = (size + page - 1) / page * page;
        mSize = pages + 2 * page;
        mMapping = mmap(nullptr, mSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (mMapping == MAP_FAILED) throw std::bad_alloc();
        auto *first = static_cast<uint8_t *>(mMapping);
        mprotect(first, page, PROT_NONE);
        mprotect(first + page + pages, page, PROT_NONE);
        mBytes = first + page + (side == kGuardAfter ? pages - size : 0);
    }
    GuardedBytes(const GuardedBytes &) = delete;
    GuardedBytes &operator=(const GuardedBytes &) = delete;
    ~GuardedBytes() { munmap(mMapping, mSize); }

    uint8_t *Get() const { return mBytes; }

private:
    void *mMapping;
    size_t mSize;
    uint8_t *mBytes;
};
