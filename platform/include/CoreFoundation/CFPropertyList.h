// Property lists as data (NSPropertyListSerialization).
#ifndef CF_PROPERTY_LIST_H
#define CF_PROPERTY_LIST_H

#include <CoreFoundation/CFBase.h>

typedef CFIndex CFPropertyListFormat;
enum { kCFPropertyListXMLFormat_v1_0 = 100, kCFPropertyListBinaryFormat_v1_0 = 200 };
enum {
    kCFPropertyListImmutable = 0,
    kCFPropertyListMutableContainers = 1,
    kCFPropertyListMutableContainersAndLeaves = 2
};

CF_EXTERN_C_BEGIN

/// Both: null on failure; `*error` is always set to null. Data may come from anywhere: lists that
/// are damaged, or nested more than 128 deep, are refused.
CF_EXPORT CFDataRef CFPropertyListCreateData(CFAllocatorRef allocator,
                                             CFPropertyListRef propertyList,
                                             CFPropertyListFormat format, CFOptionFlags options,
                                             CFErrorRef *error);
CF_EXPORT CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef allocator, CFDataRef data,
                                                         CFOptionFlags options,
                                                         CFPropertyListFormat *format,
                                                         CFErrorRef *error);

CF_EXTERN_C_END

#endif
