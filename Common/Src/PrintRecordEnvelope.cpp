#include "Common/Src/PrintRecordEnvelope.h"

#include "Common/Src/PrintRecord.h"

#include <cstring>

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
    RecordLock lock(handle);
    std::memcpy(*handle, CFDataGetBytePtr(prefix), static_cast<size_t>(prefixLength));
    std::memcpy(*handle + prefixLength, CFDataGetBytePtr(bytes.Get()),
                static_cast<size_t>(listLength));
    return true;
}

CFRef<CFPropertyListRef> DecodeHPrint(CFDataRef prefix, Handle handle) {
    RecordLock lock(handle);
    const CFIndex prefixLength = CFDataGetLength(prefix);
    const CFIndex listLength = GetHandleSize(handle) - prefixLength;
    if (listLength <= 0 ||
        std::memcmp(*handle, CFDataGetBytePtr(prefix), static_cast<size_t>(prefixLength)) != 0)
        return {};
    CFRef<CFDataRef> bytes(CFDataCreate(
        kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(*handle + prefixLength), listLength));
    if (!bytes) return {};
    return CFRef<CFPropertyListRef>(CFPropertyListCreateWithData(
        kCFAllocatorDefault, bytes.Get(), kCFPropertyListMutableContainers, nullptr, nullptr));
}
