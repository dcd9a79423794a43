// Base types of CoreFoundation's C API (Linux only; on macOS the SDK's own headers are used).
//
// The reference types are the opaque struct pointers of the real API, in C, C++ and Objective-C++
// alike, so that mangled names agree; every object is a Foundation object, and a .mm file casts.
// No function raises. A null object is treated as an empty one.
#ifndef CF_BASE_H
#define CF_BASE_H

#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define CF_EXTERN_C_BEGIN extern "C" {
#define CF_EXTERN_C_END }
#else
#define CF_EXTERN_C_BEGIN
#define CF_EXTERN_C_END
#endif
#define CF_EXPORT extern __attribute__((visibility("default")))

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef int8_t SInt8;
typedef uint16_t UInt16;
typedef int16_t SInt16;
typedef unsigned int UInt32;
typedef signed int SInt32;
typedef uint64_t UInt64;
typedef int64_t SInt64;
typedef UInt16 UniChar;
typedef SInt16 OSErr;
typedef SInt32 OSStatus;
typedef UInt32 FourCharCode;
typedef FourCharCode OSType;
typedef unsigned char Str255[256];
typedef unsigned char *StringPtr;
typedef const unsigned char *ConstStringPtr;
typedef const unsigned char *ConstStr255Param;

typedef signed long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef unsigned long CFHashCode;
typedef const void *CFTypeRef;
typedef CFTypeRef CFPropertyListRef;

typedef struct {
    CFIndex location, length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex loc, CFIndex len) {
    CFRange range;
    range.location = loc;
    range.length = len;
    return range;
}

typedef CFIndex CFComparisonResult;
enum { kCFCompareLessThan = -1L, kCFCompareEqualTo = 0, kCFCompareGreaterThan = 1 };
typedef CFComparisonResult (*CFComparatorFunction)(const void *val1, const void *val2,
                                                   void *context);

typedef const struct __CFAllocator *CFAllocatorRef;
typedef const struct __CFArray *CFArrayRef;
typedef struct __CFArray *CFMutableArrayRef;
typedef const struct __CFBoolean *CFBooleanRef;
typedef struct __CFBundle *CFBundleRef; // NSBundle here; not toll-free bridged on macOS
typedef const struct __CFData *CFDataRef;
typedef const struct __CFDate *CFDateRef;
typedef struct __CFDateFormatter *CFDateFormatterRef; // NSDateFormatter here; not bridged on macOS
typedef const struct __CFDictionary *CFDictionaryRef;
typedef struct __CFDictionary *CFMutableDictionaryRef;
typedef struct __CFError *CFErrorRef;
typedef const struct __CFLocale *CFLocaleRef;
typedef const struct __CFNumber *CFNumberRef;
typedef const struct __CFString *CFStringRef;
typedef const struct __CFURL *CFURLRef;

CF_EXTERN_C_BEGIN

/// The only allocator; allocator arguments are ignored.
CF_EXPORT const CFAllocatorRef kCFAllocatorDefault;

CF_EXPORT CFTypeRef CFRetain(CFTypeRef cf);
CF_EXPORT void CFRelease(CFTypeRef cf);
CF_EXPORT CFIndex CFGetRetainCount(CFTypeRef cf);
CF_EXPORT Boolean CFEqual(CFTypeRef cf1, CFTypeRef cf2);
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef cf);
/// Writes the object's description and a newline to standard error.
CF_EXPORT void CFShow(CFTypeRef obj);

CF_EXTERN_C_END

#endif
