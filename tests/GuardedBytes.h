/// Memory that ends the test when it is read or written past its ends.
#pragma once

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

/// `size` bytes with an inaccessible page right behind them (kEnd) or right before them (kStart).
class GuardedBytes {
public:
    enum Edge { kEnd, kStart };

    explicit GuardedBytes(size_t size, Edge edge = kEnd) : mSize(size) {
        const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t body = (size + page - 1) / page * page;
        mLength = body + 2 * page;
        mMemory = mmap(nullptr, mLength, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (mMemory == MAP_FAILED) throw std::runtime_error("mmap");
        uint8_t *start = static_cast<uint8_t *>(mMemory) + page;
        if (body > 0 && mprotect(start, body, PROT_READ | PROT_WRITE) != 0)
            throw std::runtime_error("mprotect");
        mData = edge == kEnd ? start + body - size : start;
    }
    ~GuardedBytes() { munmap(mMemory, mLength); }
    GuardedBytes(const GuardedBytes &) = delete;
    GuardedBytes &operator=(const GuardedBytes &) = delete;

    uint8_t *Data() const { return mData; }
    size_t Size() const { return mSize; }

private:
    size_t mSize, mLength = 0;
    void *mMemory = nullptr;
    uint8_t *mData = nullptr;
};
