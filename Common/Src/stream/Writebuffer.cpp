#include "Common/Src/stream/Writebuffer.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <platform/Platform.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void FreeBuffer(WBBuffer *buffer) {
    std::free(buffer->data);
    delete buffer;
}

/// The buffers are zeroed so that what is not yet written never shows old memory to a debugger or
/// a crash report, and so that their pages exist before the first row comes.
void MakeBuffers(Writebuffer *wb) {
    for (int32_t index = 1; index <= kWBufferCount; ++index) {
        auto *buffer = new (std::nothrow) WBBuffer{};
        if (buffer == nullptr) continue;
        buffer->index = index;
        buffer->data = static_cast<uint8_t *>(valloc(kWBufferCapacity));
        if (buffer->data == nullptr) {
            delete buffer;
            return;
        }
        std::memset(buffer->data, 0, kWBufferCapacity);
        QueuePush(&wb->freeQueue, buffer);
        ++wb->bufferCount;
    }
}

WBBuffer *TakeFreeBuffer(Writebuffer *wb) {
    auto *buffer = static_cast<WBBuffer *>(QueuePop(&wb->freeQueue));
    buffer->length = 0;
    return buffer;
}

/// Waits for `count` buffers to come back and frees them.
void FreeBuffers(Writebuffer *wb, int32_t count) {
    for (int32_t i = 0; i < count; ++i)
        FreeBuffer(static_cast<WBBuffer *>(QueuePop(&wb->freeQueue)));
}

/// Everything of NewWbuffer that can fail once the record exists. Returns whether it worked, and
/// if not, the error to report.
bool Start(Writebuffer *wb, int64_t sizeHint, int32_t fd, int &error) {
    error = 0;
    QueueInit(&wb->freeQueue);
    QueueInit(&wb->fullQueue);
    MakeBuffers(wb);
    if (wb->bufferCount == 0) return false;
    wb->capacity = kWBufferCapacity;
    wb->fd = fd;
    struct stat status;
    if (fstat(fd, &status) != 0) {
        error = errno;
        std::fprintf(stderr, "NewWBuffer, fstat returned %d\n", error);
        return false;
    }
    wb->position = wb->highWater = status.st_size;
    wb->sizeHint = sizeHint;
    PlatformDisableFileCache(fd);
    wb->current = TakeFreeBuffer(wb);
    error = pthread_create(&wb->thread, nullptr, WBWriterThread, wb);
    return error == 0;
}

/// Undoes a Start that failed. The thread is the last thing to be started, so there is none, and
/// nobody will bring `current` back to the free queue.
void CleanUp(Writebuffer *wb) {
    if (wb->current != nullptr) {
        FreeBuffer(wb->current);
        --wb->bufferCount;
    }
    FreeBuffers(wb, wb->bufferCount);
    QueueDestroy(&wb->freeQueue);
    QueueDestroy(&wb->fullQueue);
}

/// `write`, as often as a signal interrupts it. Returns 0 or the errno.
int32_t WriteOnce(int32_t fd, const WBBuffer &buffer) {
    for (;;) {
        if (write(fd, buffer.data, buffer.length) >= 0) return 0;
        if (errno != EINTR) return errno;
    }
}

void WriteBuffer(Writebuffer *wb, const WBBuffer &buffer) {
    const int32_t error = WriteOnce(wb->fd, buffer);
    wb->error.store(error, std::memory_order_relaxed);
    wb->position += static_cast<int64_t>(buffer.length);
    wb->highWater = std::max(wb->highWater, wb->position);
}

int16_t LatchedError(const Writebuffer *wb) {
    return static_cast<int16_t>(wb->error.load(std::memory_order_relaxed));
}

} // namespace

Writebuffer *NewWbuffer(uint64_t /*bufferSize*/, int64_t sizeHint, int32_t fd) {
    std::unique_ptr<Writebuffer> wb(new (std::nothrow) Writebuffer{});
    int error = 0;
    if (wb != nullptr) {
        if (Start(wb.get(), sizeHint, fd, error)) return wb.release();
        CleanUp(wb.get());
    }
    std::fprintf(stderr, "NewWbuffer: failed, cleaning up, err = %d\n", error);
    return nullptr;
}

void *WBWriterThread(void *argument) {
    auto *wb = static_cast<Writebuffer *>(argument);
    while (auto *buffer = static_cast<WBBuffer *>(QueuePop(&wb->fullQueue))) {
        // After an error buffers go round unwritten, so that the caller never waits for one.
        if (buffer->length != 0 && LatchedError(wb) == 0) WriteBuffer(wb, *buffer);
        QueuePush(&wb->freeQueue, buffer);
    }
    return nullptr;
}

int16_t WBFlushCurrent(Writebuffer *wb) {
    if (wb->current->length != 0) {
        QueuePush(&wb->fullQueue, wb->current);
        wb->current = nullptr;
    } else {
        QueuePush(&wb->freeQueue, wb->current);
    }
    return LatchedError(wb);
}

int16_t WBWrite(Writebuffer *wb, uint64_t *inOutCount, const void *bytes) {
    uint64_t remaining = *inOutCount;
    const auto *source = static_cast<const uint8_t *>(bytes);
    *inOutCount = 0;
    while (remaining > 0) {
        const uint64_t count = std::min(remaining, wb->capacity - wb->current->length);
        if (count == 0) {
            const int16_t error = WBFlushCurrent(wb);
            wb->current = TakeFreeBuffer(wb);
            if (error != 0) break;
            continue;
        }
        std::memcpy(wb->current->data + wb->current->length, source, count);
        wb->current->length += count;
        *inOutCount += count;
        source += count;
        remaining -= count;
    }
    return LatchedError(wb);
}

WBRoom WBFreeRoom(Writebuffer *wb) {
    return {wb->current->data + wb->current->length, wb->capacity - wb->current->length};
}

int16_t WBAccept(Writebuffer *wb, uint64_t count) {
    wb->current->length += count;
    return LatchedError(wb);
}

int16_t DisposeWbuffer(Writebuffer *wb, int64_t *position) {
    const std::unique_ptr<Writebuffer> owner(wb);
    (void)WBFlushCurrent(wb); // the error is read once the thread has ended
    QueuePush(&wb->fullQueue, nullptr);
    FreeBuffers(wb, wb->bufferCount);
    (void)pthread_join(wb->thread, nullptr);
    if (position != nullptr) *position = wb->position;
    QueueDestroy(&wb->freeQueue);
    QueueDestroy(&wb->fullQueue);
    return LatchedError(wb);
}
