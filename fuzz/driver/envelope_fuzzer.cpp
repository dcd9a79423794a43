// A handle of any bytes as an envelope: what can be decoded is encoded to something that decodes to
// the same.
#include "Common/Src/record/PrintRecordEnvelope.h"

#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const CFRef<CFDataRef> prefix(
        CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>("ZEL"), 3));
    Handle handle = NewHandle(static_cast<Size>(size));
    std::memcpy(*handle, data, size);
    const CFRef<CFPropertyListRef> list = DecodeHPrint(prefix.Get(), handle);
    if (list && EncodeHPrint(handle, prefix.Get(), list.Get()) &&
        !DecodeHPrint(prefix.Get(), handle))
        std::abort();
    DisposeHandle(handle);
    return 0;
}
