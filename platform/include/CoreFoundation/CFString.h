// Strings (NSString).
#ifndef CF_STRING_H
#define CF_STRING_H

#include <CoreFoundation/CFBase.h>

typedef UInt32 CFStringEncoding;
enum {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingUTF16 = 0x0100,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingISOLatin2 = 0x0202,
    kCFStringEncodingISOLatin5 = 0x0209,
    kCFStringEncodingWindowsLatin1 = 0x0500,
    kCFStringEncodingShiftJIS = 0x0A01,
    kCFStringEncodingUTF8 = 0x08000100
};

typedef CFOptionFlags CFStringCompareFlags;
enum { kCFCompareCaseInsensitive = 1UL, kCFCompareNumerically = 64UL };

CF_EXTERN_C_BEGIN

CF_EXPORT CFStringRef __CFStringMakeConstantString(const char *cStr);
/// An immortal string made of a literal in UTF-8.
#define CFSTR(cStr) __CFStringMakeConstantString("" cStr "")

CF_EXPORT CFTypeID CFStringGetTypeID(void);

/// The creating functions answer null for bytes that are not text in `encoding`.
CF_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef alloc, const char *cStr,
                                                CFStringEncoding encoding);
CF_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef alloc, const UInt8 *bytes,
                                              CFIndex numBytes, CFStringEncoding encoding,
                                              Boolean isExternalRepresentation);
CF_EXPORT CFStringRef CFStringCreateWithPascalString(CFAllocatorRef alloc, ConstStr255Param pStr,
                                                     CFStringEncoding encoding);
/// A range that is not inside the string gives null.
CF_EXPORT CFStringRef CFStringCreateWithSubstring(CFAllocatorRef alloc, CFStringRef str,
                                                  CFRange range);
CF_EXPORT CFStringRef CFStringCreateWithFormat(CFAllocatorRef alloc, CFDictionaryRef formatOptions,
                                               CFStringRef format, ...);

/// Length in UTF-16 units.
CF_EXPORT CFIndex CFStringGetLength(CFStringRef theString);
/// Both: false, with the buffer untouched, when the text does not fit or has no form in `encoding`.
CF_EXPORT Boolean CFStringGetCString(CFStringRef theString, char *buffer, CFIndex bufferSize,
                                     CFStringEncoding encoding);
CF_EXPORT Boolean CFStringGetPascalString(CFStringRef theString, StringPtr buffer,
                                          CFIndex bufferSize, CFStringEncoding encoding);
CF_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);

/// By code unit, whatever the locale; runs of digits by value with kCFCompareNumerically.
CF_EXPORT CFComparisonResult CFStringCompare(CFStringRef theString1, CFStringRef theString2,
                                             CFStringCompareFlags compareOptions);

CF_EXTERN_C_END

#endif
