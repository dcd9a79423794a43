// The Memory Manager's relocatable blocks, under Apple's names, for systems that lack them.
#pragma once
#include <CoreFoundation/CoreFoundation.h>

typedef char *Ptr;
typedef Ptr *Handle;
typedef long Size;
enum { noErr = 0, memFullErr = -108, nilHandleErr = -109 };

#pragma GCC visibility push(default)
extern "C" {
/// A new block of `byteCount` bytes of undefined content; null (and MemError) when memory is short.
Handle NewHandle(Size byteCount);
/// The same, filled with zeros.
Handle NewHandleClear(Size byteCount);
void DisposeHandle(Handle h);
Size GetHandleSize(Handle h);
/// Grows or shrinks the block; its address (`*h`) may change. Look at MemError afterwards.
void SetHandleSize(Handle h, Size newSize);
/// Blocks never move on their own here; the pair marks where code relies on a fixed address.
void HLock(Handle h);
void HUnlock(Handle h);
/// Result of this thread's last Memory Manager call: noErr, memFullErr or nilHandleErr.
OSErr MemError(void);
}
#pragma GCC visibility pop
