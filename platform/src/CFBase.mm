// Reference counting, equality and types.
#include "CFBridge.h"
#include <cstdio>

namespace {

// The values are of no consequence, as long as they differ.
enum TypeID : CFTypeID {
    kOther = 1,
    kString = 7,
    kDictionary = 18,
    kArray = 19,
    kData = 20,
    kBoolean = 21,
    kNumber = 22,
    kURL = 29,
    kBundle = 34,
    kDate = 42
};

/// Booleans are numbers of a class of their own, also when they come out of a property list.
Class BooleanClass() {
    static Class booleanClass = [[NSNumber numberWithBool:YES] class];
    return booleanClass;
}

struct ClassType {
    Class objcClass;
    CFTypeID type;
};

} // namespace

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFTypeRef CFRetain(CFTypeRef cf) { return [Object(cf) retain]; }

void CFRelease(CFTypeRef cf) {
    @autoreleasepool {
        [Object(cf) release];
    }
}

CFIndex CFGetRetainCount(CFTypeRef cf) { return (CFIndex)[Object(cf) retainCount]; }

Boolean CFEqual(CFTypeRef cf1, CFTypeRef cf2) {
    @autoreleasepool {
        return [Object(cf1) isEqual:Object(cf2)] ? 1 : 0;
    }
}

CFTypeID CFGetTypeID(CFTypeRef cf) {
    @autoreleasepool {
        // Booleans before numbers: they are both.
        static const ClassType types[] = {
            {[NSString class], kString}, {BooleanClass(), kBoolean},
            {[NSNumber class], kNumber}, {[NSData class], kData},
            {[NSArray class], kArray},   {[NSDictionary class], kDictionary},
            {[NSURL class], kURL},       {[NSDate class], kDate},
            {[NSBundle class], kBundle}};
        for (const ClassType &entry : types)
            if ([Object(cf) isKindOfClass:entry.objcClass]) return entry.type;
        return kOther;
    }
}

CFTypeID CFStringGetTypeID(void) { return kString; }

CFTypeID CFDataGetTypeID(void) { return kData; }

CFTypeID CFNumberGetTypeID(void) { return kNumber; }

CFTypeID CFBooleanGetTypeID(void) { return kBoolean; }

CFTypeID CFArrayGetTypeID(void) { return kArray; }

CFTypeID CFDictionaryGetTypeID(void) { return kDictionary; }

CFTypeID CFDateGetTypeID(void) { return kDate; }

void CFShow(CFTypeRef obj) {
    @autoreleasepool {
        const char *text = [[Object(obj) description] UTF8String];
        std::fprintf(stderr, "%s\n", text ? text : "(null)");
    }
}
}
