// Dates and locales.
#include "CFBridge.h"
#include <cmath>

extern "C" {

CFDateRef CFDateCreate(CFAllocatorRef, CFAbsoluteTime at) {
    if (std::isnan(at)) return nullptr; // GNUstep raises, and leaks the date
    return (CFDateRef)Create([&] { return [NSDate dateWithTimeIntervalSinceReferenceDate:at]; });
}

CFAbsoluteTime CFAbsoluteTimeGetCurrent(void) { return [NSDate timeIntervalSinceReferenceDate]; }

CFLocaleRef CFLocaleCopyCurrent(void) {
    return (CFLocaleRef)Create([] { return [NSLocale currentLocale]; });
}

CFDateFormatterRef CFDateFormatterCreate(CFAllocatorRef, CFLocaleRef locale,
                                         CFDateFormatterStyle dateStyle,
                                         CFDateFormatterStyle timeStyle) {
    return (CFDateFormatterRef)Create([&] {
        NSLocale *given = As<NSLocale>([NSLocale class], locale);
        NSDateFormatter *formatter = [[NSDateFormatter new] autorelease];
        [formatter setLocale:given ? given : [NSLocale currentLocale]];
        [formatter setDateStyle:(NSDateFormatterStyle)dateStyle];
        [formatter setTimeStyle:(NSDateFormatterStyle)timeStyle];
        return formatter;
    });
}

CFStringRef CFDateFormatterCreateStringWithAbsoluteTime(CFAllocatorRef,
                                                        CFDateFormatterRef formatter,
                                                        CFAbsoluteTime at) {
    return (CFStringRef)CreateCopy([&] {
        NSDateFormatter *object = As<NSDateFormatter>([NSDateFormatter class], formatter);
        return [object stringFromDate:[NSDate dateWithTimeIntervalSinceReferenceDate:at]];
    });
}
}
