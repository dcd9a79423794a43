// Dictionaries (NSDictionary). They always retain their values and copy their keys.
#ifndef CF_DICTIONARY_H
#define CF_DICTIONARY_H

#include <CoreFoundation/CFBase.h>

/// Only the addresses of the kCFType... constants are used; other callbacks are not supported.
typedef struct {
    CFIndex version;
} CFDictionaryKeyCallBacks;
typedef struct {
    CFIndex version;
} CFDictionaryValueCallBacks;

CF_EXTERN_C_BEGIN

CF_EXPORT const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
CF_EXPORT const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

CF_EXPORT CFTypeID CFDictionaryGetTypeID(void);
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutable(
    CFAllocatorRef allocator, CFIndex capacity, const CFDictionaryKeyCallBacks *keyCallBacks,
    const CFDictionaryValueCallBacks *valueCallBacks);
CF_EXPORT CFIndex CFDictionaryGetCount(CFDictionaryRef theDict);
CF_EXPORT const void *CFDictionaryGetValue(CFDictionaryRef theDict, const void *key);
CF_EXPORT Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef theDict, const void *key,
                                                const void **value);
/// Adds the pair unless the key is there already.
CF_EXPORT void CFDictionaryAddValue(CFMutableDictionaryRef theDict, const void *key,
                                    const void *value);
/// Adds the pair or replaces the value.
CF_EXPORT void CFDictionarySetValue(CFMutableDictionaryRef theDict, const void *key,
                                    const void *value);

CF_EXTERN_C_END

#endif
