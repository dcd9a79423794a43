// Property lists as data.
#include "BinaryPropertyList.h"
#include "CFBridge.h"
#include "XMLNesting.h"

namespace {

constexpr int kMaximumDepth = 128;

CFPropertyListRef CreateFromXML(CFDataRef data, CFOptionFlags options) {
    const std::string_view text((const char *)CFDataGetBytePtr(data),
                                (size_t)CFDataGetLength(data));
    if (!IsShallowPropertyListXML(text, kMaximumDepth)) return nullptr;
    return Create([&] {
        return [NSPropertyListSerialization propertyListWithData:As<NSData>([NSData class], data)
                                                         options:(NSPropertyListReadOptions)options
                                                          format:NULL
                                                           error:NULL];
    });
}

NSData *WritePropertyList(id list, NSPropertyListFormat format) {
    // Objects that are no property list would be written as their descriptions.
    if (![NSPropertyListSerialization propertyList:list isValidForFormat:format]) return nil;
    return [NSPropertyListSerialization dataWithPropertyList:list
                                                      format:format
                                                     options:0
                                                       error:NULL];
}

} // namespace

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
