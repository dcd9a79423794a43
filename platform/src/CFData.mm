// Bytes.
#include "CFBridge.h"

static NSData *Data(CFDataRef data) { return As<NSData>([NSData class], data); }

extern "C" {

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8 *bytes, CFIndex length) {
    if ((!bytes && length != 0) || length < 0) return nullptr;
    return (CFDataRef)Create(
        [&] { return [NSData dataWithBytes:bytes length:(NSUInteger)length]; });
}

CFIndex CFDataGetLength(CFDataRef theData) { return (CFIndex)[Data(theData) length]; }

const UInt8 *CFDataGetBytePtr(CFDataRef theData) { return (const UInt8 *)[Data(theData) bytes]; }
}
