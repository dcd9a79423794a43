// Relocatable blocks as growable memory behind a master pointer.
#include <CoreServices/CoreServices.h>
#include <cstdlib>
#include <new>

namespace {

/// What a Handle points at: the master pointer must come first.
struct Block {
    Ptr data;
    Size size;
};

thread_local OSErr lastError = noErr;

Block *BlockOf(Handle h) {
    return reinterpret_cast<Block *>(h);
}

bool Known(Handle h) {
    lastError = h ? noErr : nilHandleErr;
    return h != nullptr;
}

Handle Allocate(Size byteCount) {
    Block *block = byteCount < 0 ? nullptr : new (std::nothrow) Block{};
    // One byte at least, so that *h is never null and a zero-sized block can be told from a
    // failure.
    Ptr data = block ? static_cast<Ptr>(std::calloc(1, byteCount > 0 ? byteCount : 1)) : nullptr;
    if (!data) {
        delete block;
        lastError = memFullErr;
        return nullptr;
    }
    *block = {data, byteCount};
    lastError = noErr;
    return &block->data;
}

} // namespace

extern "C" {

Handle NewHandle(Size byteCount) {
    return Allocate(byteCount);
}

Handle NewHandleClear(Size byteCount) {
    return Allocate(byteCount);
}

void DisposeHandle(Handle h) {
    if (!Known(h)) return;
    std::free(*h);
    delete BlockOf(h);
}

Size GetHandleSize(Handle h) {
    return Known(h) ? BlockOf(h)->size : 0;
}

void SetHandleSize(Handle h, Size newSize) {
    if (!Known(h)) return;
    Ptr data =
        newSize < 0 ? nullptr : static_cast<Ptr>(std::realloc(*h, newSize > 0 ? newSize : 1));
    if (!data) {
        lastError = memFullErr;
        return;
    }
    *BlockOf(h) = {data, newSize};
}

void HLock(Handle h) {
    (void)Known(h);
}

void HUnlock(Handle h) {
    (void)Known(h);
}

OSErr MemError(void) {
    return lastError;
}
}
