#include "Common/Src/record/PrintRecordEnvelope.h"

#include "Common/Src/record/PrintRecord.h"

#include <algorithm>

bool EncodeHPrint(Handle handle, CFDataRef prefix, CFPropertyListRef list) {
    CFRef<CFDataRef> bytes;
    if (list)
        bytes = CFRef<CFDataRef>(CFPropertyListCreateData(
            kCFAllocatorDefault, list, kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
    if (!bytes) return false;
    const CFIndex prefixLength = CFDataGetLength(prefix);
    const CFIndex listLength = CFDataGetLength(bytes.Get());
    SetHandleSize(handle, prefixLength + listLength);
    if (MemError() != noErr) return false;
    const RecordLock lock(handle);
    // Not memcpy: an empty prefix may have no address.
    std::copy_n(CFDataGetBytePtr(prefix), prefixLength, *handle);
    std::copy_n(CFDataGetBytePtr(bytes.Get()), listLength, *handle + prefixLength);
    return true;
}

CFRef<CFPropertyListRef> DecodeHPrint(CFDataRef prefix, Handle handle) {
    RecordLock lock(handle);
    const CFIndex prefixLength = CFDataGetLength(prefix);
    const CFIndex listLength = GetHandleSize(handle) - prefixLength;
    if (listLength <= 0) return {};
    auto content = reinterpret_cast<const UInt8 *>(*handle);
    const UInt8 *wanted = CFDataGetBytePtr(prefix);
    if (!std::equal(wanted, wanted + prefixLength, content)) return {};
    CFRef<CFDataRef> bytes(CFDataCreate(kCFAllocatorDefault, content + prefixLength, listLength));
    if (!bytes) return {};
    return CFRef<CFPropertyListRef>(CFPropertyListCreateWithData(
        kCFAllocatorDefault, bytes.Get(), kCFPropertyListMutableContainers, nullptr, nullptr));
}
