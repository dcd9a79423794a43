// Property lists as data.
#include "BinaryPropertyList.h"
#include "CFBridge.h"
#include "XMLNesting.h"
#include <cmath>

namespace {

bool IsList(id object, int depth);

bool AreLists(NSArray *objects, int depth) {
    for (id object in objects)
        if (!IsList(object, depth)) return false;
    return true;
}

bool AreText(NSArray *keys) {
    for (id key in keys)
        if (![key isKindOfClass:[NSString class]]) return false;
    return true;
}

bool IsList(id object, int depth) {
    if (depth > kMaximumListDepth) return false;
    if ([object isKindOfClass:[NSArray class]]) return AreLists(object, depth + 1);
    if ([object isKindOfClass:[NSDictionary class]])
        return AreText([object allKeys]) && AreLists([object allValues], depth + 1);
    // GNUstep's binary writer finds its objects by equality. A number that equals nothing, not even
    // itself, gets an index of 32 ones, and the table for it 16 GiB; infinity it writes as nothing.
    if ([object isKindOfClass:[NSNumber class]]) return std::isfinite([object doubleValue]);
    for (Class leaf : {[NSString class], [NSData class], [NSDate class]})
        if ([object isKindOfClass:leaf]) return true;
    return false;
}

CFPropertyListRef CreateFromXML(CFDataRef data, CFOptionFlags options) {
    const std::string_view text((const char *)CFDataGetBytePtr(data),
                                (size_t)CFDataGetLength(data));
    if (!IsShallowPropertyListXML(text, kMaximumListDepth)) return nullptr;
    return Create([&] {
        NSData *bytes = As<NSData>([NSData class], data);
        id list =
            [NSPropertyListSerialization propertyListWithData:bytes
                                                      options:(NSPropertyListReadOptions)options
                                                       format:NULL
                                                        error:NULL];
        return IsPropertyList(list) ? list : nil;
    });
}

NSData *WritePropertyList(id list, NSPropertyListFormat format) {
    if (!IsPropertyList(list)) return nil;
    return [NSPropertyListSerialization dataWithPropertyList:list
                                                      format:format
                                                     options:0
                                                       error:NULL];
}

} // namespace

bool IsPropertyList(id object) { return IsList(object, 0); }

extern "C" {

CFDataRef CFPropertyListCreateData(CFAllocatorRef, CFPropertyListRef propertyList,
                                   CFPropertyListFormat format, CFOptionFlags, CFErrorRef *error) {
    if (error) *error = nullptr;
    if (!propertyList) return nullptr;
    return (CFDataRef)CreateCopy(
        [&] { return WritePropertyList(Object(propertyList), (NSPropertyListFormat)format); });
}

CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef, CFDataRef data,
                                               CFOptionFlags options, CFPropertyListFormat *format,
                                               CFErrorRef *error) {
    if (error) *error = nullptr;
    const UInt8 *bytes = CFDataGetBytePtr(data);
    const size_t length = (size_t)CFDataGetLength(data);
    const bool isBinary = IsBinaryPropertyList(bytes, length);
    if (format)
        *format = isBinary ? kCFPropertyListBinaryFormat_v1_0 : kCFPropertyListXMLFormat_v1_0;
    return isBinary ? CreateFromBinaryPropertyList(bytes, length) : CreateFromXML(data, options);
}
}
