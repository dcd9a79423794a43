/// An asynchronous file writer: the caller copies bytes into 64 KiB buffers, one thread of its own
/// writes them out in order.
///
/// Errors of `write` are latched: the first one stops all further writing and is what every later
/// call returns (as int16, the driver's result codes). A short write counts as success, and its
/// rest is not written: hosts judge a finished file by looking at it.
///
/// One thread fills a Writebuffer. No memory is allocated after NewWbuffer.
#pragma once

#include "Common/Src/stream/Queue.h"
#include <atomic>
#include <cstdint>
#include <pthread.h>

/// Bytes in a buffer, and the number of buffers: how far the caller may run ahead of the disk.
constexpr uint64_t kWBufferCapacity = 65536;
constexpr int32_t kWBufferCount = 32;

/// One memory buffer. At any moment it is in exactly one place: `current`, one of the two queues,
/// or the writer thread's hands.
struct WBBuffer {
    uint64_t length; ///< valid bytes in `data`
    int32_t index;   ///< 1 to 32, in order of creation; for whoever debugs
    uint8_t *data;   ///< page-aligned block of kWBufferCapacity bytes, owned
};

/// One open output file. Its fields are for the functions below and their tests.
struct Writebuffer {
    uint64_t capacity;          ///< bytes in a buffer
    int64_t sizeHint;           ///< as given; not consulted
    int64_t position;           ///< file position after the last buffer given to `write`
    int64_t highWater;          ///< greatest `position` so far
    int32_t fd;                 ///< not owned: never closed here
    int32_t bufferCount;        ///< buffers made
    WBBuffer *current;          ///< being filled
    Queue freeQueue;            ///< empty buffers, on their way to the caller
    Queue fullQueue;            ///< filled buffers, on their way to the writer thread
    pthread_t thread;           ///< the writer thread
    std::atomic<int32_t> error; ///< 0, or the `errno` of the first write that failed
};

/// Makes a Writebuffer for the open descriptor `fd` and starts its thread. `bufferSize` is ignored
/// and `sizeHint` only kept. Returns null, with a line on standard error, when not one buffer can
/// be had, `fd` is not open, or no thread can be started; fewer than 32 buffers are enough.
[[nodiscard]] Writebuffer *NewWbuffer(uint64_t bufferSize, int64_t sizeHint, int32_t fd);

/// Takes `*inOutCount` bytes and sets `*inOutCount` to the number accepted: all of them, unless an
/// error showed while buffers were handed over. Blocks while all buffers wait for the disk. A
/// buffer that is just full is handed over with the next byte. Returns the latched error.
[[nodiscard]] int16_t WBWrite(Writebuffer *wb, uint64_t *inOutCount, const void *bytes);

/// The free part of the current buffer, for a caller that makes its bytes in place, and its size,
/// which may be 0.
struct WBRoom {
    uint8_t *data;
    uint64_t size;
};
[[nodiscard]] WBRoom WBFreeRoom(Writebuffer *wb);

/// Counts `count` bytes made at the start of WBFreeRoom as written. Returns the latched error.
[[nodiscard]] int16_t WBAccept(Writebuffer *wb, uint64_t count);

/// Hands the current buffer to the writer thread, if it holds anything. Afterwards the caller must
/// take another one from `freeQueue`. Returns the latched error.
[[nodiscard]] int16_t WBFlushCurrent(Writebuffer *wb);

/// Writes what is left, ends the thread and frees everything but the descriptor. `*position`, if
/// asked for, becomes where the file ends when no write was short. Returns the latched error.
[[nodiscard]] int16_t DisposeWbuffer(Writebuffer *wb, int64_t *position = nullptr);

/// The body of the writer thread; `argument` is the Writebuffer. Ends at a null item.
void *WBWriterThread(void *argument);
