// Dates and the user's way of writing them (NSDateFormatter).
#ifndef CF_DATE_FORMATTER_H
#define CF_DATE_FORMATTER_H

#include <CoreFoundation/CFBase.h>

typedef double CFTimeInterval;
typedef CFTimeInterval CFAbsoluteTime; ///< seconds since 2001-01-01 00:00:00 UTC

typedef CFIndex CFDateFormatterStyle;
enum {
    kCFDateFormatterNoStyle = 0,
    kCFDateFormatterShortStyle = 1,
    kCFDateFormatterMediumStyle = 2,
    kCFDateFormatterLongStyle = 3,
    kCFDateFormatterFullStyle = 4
};

CF_EXTERN_C_BEGIN

CF_EXPORT CFTypeID CFDateGetTypeID(void);
CF_EXPORT CFDateRef CFDateCreate(CFAllocatorRef allocator, CFAbsoluteTime at);
CF_EXPORT CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);
CF_EXPORT CFLocaleRef CFLocaleCopyCurrent(void);
CF_EXPORT CFDateFormatterRef CFDateFormatterCreate(CFAllocatorRef allocator, CFLocaleRef locale,
                                                   CFDateFormatterStyle dateStyle,
                                                   CFDateFormatterStyle timeStyle);
CF_EXPORT CFStringRef CFDateFormatterCreateStringWithAbsoluteTime(CFAllocatorRef allocator,
                                                                  CFDateFormatterRef formatter,
                                                                  CFAbsoluteTime at);

CF_EXTERN_C_END

#endif
