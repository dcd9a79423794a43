// Strings: creation, reading out, comparison.
#include "CFBridge.h"
#include <cstring>
#include <mutex>
#include <string_view>

namespace {

constexpr unichar kByteOrderMark = 0xfeff;

NSStringEncoding FoundationEncoding(CFStringEncoding encoding) {
    switch (encoding) {
        case kCFStringEncodingMacRoman:
            return NSMacOSRomanStringEncoding;
        case kCFStringEncodingISOLatin1:
            return NSISOLatin1StringEncoding;
        case kCFStringEncodingISOLatin2:
            return NSISOLatin2StringEncoding;
        case kCFStringEncodingISOLatin5:
            return NSISOLatin5StringEncoding;
        case kCFStringEncodingWindowsLatin1:
            return NSWindowsCP1252StringEncoding;
        case kCFStringEncodingShiftJIS:
            return NSShiftJISStringEncoding;
        case kCFStringEncodingUTF16:
            return NSUnicodeStringEncoding;
        default:
            return NSUTF8StringEncoding;
    }
}

/// Nil when the bytes are not text. Byte-order marks at the beginning, even several, get lost.
NSString *Decoded(std::string_view text, CFStringEncoding encoding) {
    return [[[NSString alloc] initWithBytes:text.data()
                                     length:text.size()
                                   encoding:FoundationEncoding(encoding)] autorelease];
}

/// The byte-order mark as it stands in text that has not come from outside: a character like any
/// other. Latin 1 has none.
std::string_view ByteOrderMark(CFStringEncoding encoding) {
    static const unichar mark = kByteOrderMark;
    switch (FoundationEncoding(encoding)) {
        case NSUTF8StringEncoding:
            return "\xef\xbb\xbf";
        case NSUnicodeStringEncoding:
            return {(const char *)&mark, sizeof mark};
        default:
            return {};
    }
}

/// The same with all byte-order marks.
NSString *DecodedWithMarks(std::string_view text, CFStringEncoding encoding) {
    const std::string_view mark = ByteOrderMark(encoding);
    int count = 0;
    for (; !mark.empty() && text.substr(0, mark.size()) == mark; ++count)
        text.remove_prefix(mark.size());
    NSString *rest = Decoded(text, encoding);
    if (count == 0 || rest == nil) return rest;
    NSMutableString *whole = [NSMutableString string];
    for (int i = 0; i < count; ++i)
        [whole appendFormat:@"%C", kByteOrderMark];
    [whole appendString:rest];
    return whole;
}

NSData *Encoded(CFStringRef string, CFStringEncoding encoding) {
    return [String(string) dataUsingEncoding:FoundationEncoding(encoding) allowLossyConversion:NO];
}

} // namespace

extern "C" {

CFStringRef __CFStringMakeConstantString(const char *cStr) {
    static std::mutex lock;
    static NSMapTable *strings; // address of the literal -> immortal string
    @autoreleasepool {
        std::lock_guard<std::mutex> guard(lock);
        if (strings == nil)
            strings = NSCreateMapTable(NSNonOwnedPointerMapKeyCallBacks,
                                       NSNonOwnedPointerMapValueCallBacks, 64);
        NSString *string = (NSString *)NSMapGet(strings, cStr);
        if (string == nil) {
            string = [[NSString alloc] initWithUTF8String:cStr];
            NSMapInsert(strings, cStr, string);
        }
        return (CFStringRef)string;
    }
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8 *bytes, CFIndex numBytes,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation) {
    if ((!bytes && numBytes != 0) || numBytes < 0) return nullptr;
    std::string_view text((const char *)bytes, (size_t)numBytes);
    if (isExternalRepresentation)
        return (CFStringRef)Create([&] { return Decoded(text, encoding); });
    return (CFStringRef)CreateCopy([&] { return DecodedWithMarks(text, encoding); });
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef alloc, const char *cStr,
                                      CFStringEncoding encoding) {
    if (!cStr) return nullptr;
    return CFStringCreateWithBytes(alloc, (const UInt8 *)cStr, (CFIndex)std::strlen(cStr), encoding,
                                   0);
}

CFStringRef CFStringCreateWithPascalString(CFAllocatorRef alloc, ConstStr255Param pStr,
                                           CFStringEncoding encoding) {
    if (!pStr) return nullptr;
    return CFStringCreateWithBytes(alloc, pStr + 1, pStr[0], encoding, 0);
}

CFStringRef CFStringCreateWithSubstring(CFAllocatorRef, CFStringRef str, CFRange range) {
    const CFIndex length = CFStringGetLength(str);
    if (range.location < 0 || range.length < 0 || range.location > length ||
        range.length > length - range.location)
        return nullptr;
    return (CFStringRef)CreateCopy([&] {
        return [String(str)
            substringWithRange:NSMakeRange((NSUInteger)range.location, (NSUInteger)range.length)];
    });
}

CFStringRef CFStringCreateWithFormat(CFAllocatorRef, CFDictionaryRef, CFStringRef format, ...) {
    if (String(format) == nil) return nullptr;
    va_list arguments;
    va_start(arguments, format);
    CFTypeRef result = nullptr;
    @autoreleasepool {
        result = [[NSString alloc] initWithFormat:String(format) arguments:arguments];
    }
    va_end(arguments);
    return (CFStringRef)result;
}

CFIndex CFStringGetLength(CFStringRef theString) { return (CFIndex)[String(theString) length]; }

Boolean CFStringGetCString(CFStringRef theString, char *buffer, CFIndex bufferSize,
                           CFStringEncoding encoding) {
    @autoreleasepool {
        NSData *bytes = Encoded(theString, encoding);
        if (bytes == nil || bufferSize < (CFIndex)[bytes length] + 1) return 0;
        std::memcpy(buffer, [bytes bytes], [bytes length]);
        buffer[[bytes length]] = 0;
        return 1;
    }
}

Boolean CFStringGetPascalString(CFStringRef theString, StringPtr buffer, CFIndex bufferSize,
                                CFStringEncoding encoding) {
    @autoreleasepool {
        NSData *bytes = Encoded(theString, encoding);
        const NSUInteger length = [bytes length];
        if (bytes == nil || length > 255 || bufferSize < (CFIndex)length + 1) return 0;
        buffer[0] = (unsigned char)length;
        std::memcpy(buffer + 1, [bytes bytes], length);
        return 1;
    }
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
    switch (encoding) {
        case kCFStringEncodingUTF8:
            return length * 3; // a surrogate pair has four bytes, not six
        case kCFStringEncodingUTF16:
        case kCFStringEncodingShiftJIS:
            return length * 2;
        default:
            return length;
    }
}
}
