// The Memory Manager's relocatable blocks, under Apple's names, for systems that lack them.
#ifndef CORE_SERVICES_H
#define CORE_SERVICES_H

#include <CoreFoundation/CoreFoundation.h>

typedef char *Ptr;
typedef Ptr *Handle;
typedef long Size;
enum { noErr = 0, memFullErr = -108, nilHandleErr = -109 };

CF_EXTERN_C_BEGIN

/// A new block of `byteCount` bytes of undefined content; null (and MemError) when memory is short.
CF_EXPORT Handle NewHandle(Size byteCount);
/// The same, filled with zeros.
CF_EXPORT Handle NewHandleClear(Size byteCount);
CF_EXPORT void DisposeHandle(Handle h);
CF_EXPORT Size GetHandleSize(Handle h);
/// Grows or shrinks the block; its address (`*h`) may change. Look at MemError afterwards.
CF_EXPORT void SetHandleSize(Handle h, Size newSize);
/// Blocks never move on their own here; the pair marks where code relies on a fixed address.
CF_EXPORT void HLock(Handle h);
CF_EXPORT void HUnlock(Handle h);
/// Result of this thread's last Memory Manager call: noErr, memFullErr or nilHandleErr.
CF_EXPORT OSErr MemError(void);

CF_EXTERN_C_END

#endif
