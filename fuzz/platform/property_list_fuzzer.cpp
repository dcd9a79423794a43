// Property lists of any origin, in both formats; what has been read is looked at and written again.
#include "support/CFRef.h"
#include <CoreFoundation/CoreFoundation.h>
#include <cstdlib>

/// Whatever was read can be written, and reads as the same again. XML cannot hold all of it:
/// control characters, and text beyond 16 bits.
static void CheckRoundTrip(CFPropertyListRef list) {
    const CFRef data(
        CFPropertyListCreateData(nullptr, list, kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
    if (!data) std::abort();
    const CFRef again(CFPropertyListCreateWithData(nullptr, data.Get(), 0, nullptr, nullptr));
    if (!again || CFGetTypeID(again.Get()) != CFGetTypeID(list)) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    const CFRef data(CFDataCreate(nullptr, bytes, CFIndex(size)));
    CFPropertyListFormat format = 0;
    const CFRef list(CFPropertyListCreateWithData(
        nullptr, data.Get(), kCFPropertyListMutableContainers, &format, nullptr));
    if (list && format == kCFPropertyListBinaryFormat_v1_0) CheckRoundTrip(list.Get());
    return 0;
}
