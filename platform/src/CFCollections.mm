// Arrays and dictionaries. What Foundation refuses with an exception (null, an index out of range,
// a collection that cannot be changed) is answered with null or does nothing.
#include "CFBridge.h"

namespace {

NSArray *Array(CFTypeRef cf) { return As<NSArray>([NSArray class], cf); }

NSMutableArray *MutableArray(CFTypeRef cf) {
    return As<NSMutableArray>([NSMutableArray class], cf);
}

NSDictionary *Dictionary(CFTypeRef cf) { return As<NSDictionary>([NSDictionary class], cf); }

NSMutableDictionary *MutableDictionary(CFTypeRef cf) {
    return As<NSMutableDictionary>([NSMutableDictionary class], cf);
}

struct Comparator {
    CFComparatorFunction function;
    void *context;
};

NSComparisonResult CompareObjects(id a, id b, void *context) {
    const Comparator *comparator = (const Comparator *)context;
    return (NSComparisonResult)comparator->function(a, b, comparator->context);
}

} // namespace

extern "C" {

const CFArrayCallBacks kCFTypeArrayCallBacks = {0};
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {0};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0};

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex, const CFArrayCallBacks *) {
    return (CFMutableArrayRef)Create([] { return [NSMutableArray array]; });
}

CFIndex CFArrayGetCount(CFArrayRef theArray) { return (CFIndex)[Array(theArray) count]; }

const void *CFArrayGetValueAtIndex(CFArrayRef theArray, CFIndex idx) {
    NSArray *array = Array(theArray);
    if (idx < 0 || (NSUInteger)idx >= [array count]) return nullptr;
    return [array objectAtIndex:(NSUInteger)idx];
}

void CFArrayAppendValue(CFMutableArrayRef theArray, const void *value) {
    if (value) [MutableArray(theArray) addObject:Object(value)];
}

void CFArraySortValues(CFMutableArrayRef theArray, CFRange range, CFComparatorFunction comparator,
                       void *context) {
    @autoreleasepool {
        NSMutableArray *array = MutableArray(theArray);
        const CFIndex count = (CFIndex)[array count];
        if (range.location < 0 || range.length < 2 || range.location > count - range.length) return;
        Comparator call = {comparator, context};
        const NSRange part = NSMakeRange((NSUInteger)range.location, (NSUInteger)range.length);
        NSArray *sorted = [[array subarrayWithRange:part] sortedArrayUsingFunction:CompareObjects
                                                                           context:&call];
        [array replaceObjectsInRange:part withObjectsFromArray:sorted];
    }
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex,
                                                 const CFDictionaryKeyCallBacks *,
                                                 const CFDictionaryValueCallBacks *) {
    return (CFMutableDictionaryRef)Create([] { return [NSMutableDictionary dictionary]; });
}

CFIndex CFDictionaryGetCount(CFDictionaryRef theDict) {
    return (CFIndex)[Dictionary(theDict) count];
}

const void *CFDictionaryGetValue(CFDictionaryRef theDict, const void *key) {
    @autoreleasepool {
        return key ? [Dictionary(theDict) objectForKey:Object(key)] : nil;
    }
}

Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef theDict, const void *key,
                                      const void **value) {
    const void *found = CFDictionaryGetValue(theDict, key);
    if (found && value) *value = found;
    return found != nullptr;
}

void CFDictionaryAddValue(CFMutableDictionaryRef theDict, const void *key, const void *value) {
    if (!CFDictionaryGetValue(theDict, key)) CFDictionarySetValue(theDict, key, value);
}

void CFDictionarySetValue(CFMutableDictionaryRef theDict, const void *key, const void *value) {
    @autoreleasepool {
        if (key && value) [MutableDictionary(theDict) setObject:Object(value) forKey:Object(key)];
    }
}
}
