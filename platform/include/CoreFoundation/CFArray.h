// Arrays (NSArray). They always retain their values.
#ifndef CF_ARRAY_H
#define CF_ARRAY_H

#include <CoreFoundation/CFBase.h>

/// Only the address of kCFTypeArrayCallBacks is used; other callbacks are not supported.
typedef struct {
    CFIndex version;
} CFArrayCallBacks;

CF_EXTERN_C_BEGIN

CF_EXPORT const CFArrayCallBacks kCFTypeArrayCallBacks;

CF_EXPORT CFTypeID CFArrayGetTypeID(void);
CF_EXPORT CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFArrayCallBacks *callBacks);
CF_EXPORT CFIndex CFArrayGetCount(CFArrayRef theArray);
/// Null when `idx` is not below the count.
CF_EXPORT const void *CFArrayGetValueAtIndex(CFArrayRef theArray, CFIndex idx);
CF_EXPORT void CFArrayAppendValue(CFMutableArrayRef theArray, const void *value);
/// Sorts the values of `range`; nothing happens when it is not inside the array.
CF_EXPORT void CFArraySortValues(CFMutableArrayRef theArray, CFRange range,
                                 CFComparatorFunction comparator, void *context);

CF_EXTERN_C_END

#endif
