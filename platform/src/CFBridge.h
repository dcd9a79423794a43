// What the Objective-C++ files of the CoreFoundation facade share.
//
// Rules for these files: no C++ exception is caught in them (with the GCC runtime an Objective-C++
// handler never sees one); no NSException leaves them; every function that makes temporaries has an
// autorelease pool of its own, since a plain C++ thread has none.
#pragma once
#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

static inline id Object(CFTypeRef cf) { return (id)(void *)cf; }

/// The object, or nil when it is not of class `c`: callers pass what a file contained.
template <class T> static inline T *As(Class c, CFTypeRef cf) {
    return [Object(cf) isKindOfClass:c] ? (T *)Object(cf) : nil;
}

static inline NSString *String(CFTypeRef cf) { return As<NSString>([NSString class], cf); }

static inline NSURL *Url(CFTypeRef cf) { return As<NSURL>([NSURL class], cf); }

/// The object that `make` answers, owned by the caller; null when `make` raises.
template <class F> static inline CFTypeRef Create(F make) {
    @autoreleasepool {
        @try {
            return (CFTypeRef)[make() retain];
        } @catch (NSException *exception) {
            return nullptr;
        }
    }
}

/// A copy of the object that `make` answers (so never a mutable one), owned by the caller; null
/// when `make` raises.
template <class F> static inline CFTypeRef CreateCopy(F make) {
    @autoreleasepool {
        @try {
            return (CFTypeRef)[make() copy];
        } @catch (NSException *exception) {
            return nullptr;
        }
    }
}

/// Is the number a floating-point one?
bool IsFloat(NSNumber *number);
/// The number as an integer, the nearest one when it does not fit; `*exact` tells whether it did.
int64_t IntegerValue(NSNumber *number, bool *exact);
/// Can a file hold the object: data, text, a finite number, a date, or a collection of such, with
/// text for keys and no deeper than kMaximumListDepth? Foundation's own test says yes to
/// everything.
bool IsPropertyList(id object);
constexpr int kMaximumListDepth = 128;
