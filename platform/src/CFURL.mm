// File URLs. Paths go through UTF-8; GNUstep cannot hold a path that is not UTF-8.
//
// Paths are taken apart here and not by Foundation's path methods, which take ":" and "\" for
// separators, as other systems do: a file named "12:30" would become "30".
#include "CFBridge.h"
#include <cstring>

namespace {

/// Where the last component of the path begins; its length for "/".
NSUInteger LastComponent(NSString *path) {
    return NSMaxRange([path rangeOfString:@"/" options:NSBackwardsSearch | NSLiteralSearch]);
}

} // namespace

extern "C" {

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef filePath, CFURLPathStyle,
                                       Boolean isDirectory) {
    // An empty path would be taken for the current folder.
    if (CFStringGetLength(filePath) == 0) return nullptr;
    return (CFURLRef)Create(
        [&] { return [NSURL fileURLWithPath:String(filePath) isDirectory:isDirectory != 0]; });
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8 *buffer,
                                                 CFIndex bufLen, Boolean isDirectory) {
    CFStringRef path = CFStringCreateWithBytes(allocator, buffer, bufLen, kCFStringEncodingUTF8, 0);
    if (!path) return nullptr;
    CFURLRef url =
        CFURLCreateWithFileSystemPath(allocator, path, kCFURLPOSIXPathStyle, isDirectory);
    CFRelease(path);
    return url;
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef, CFURLRef url,
                                               CFStringRef pathComponent, Boolean isDirectory) {
    if (!Url(url) || !String(pathComponent)) return nullptr;
    return (CFURLRef)Create([&] {
        NSString *folder = [Url(url) path];
        NSString *separator = [folder hasSuffix:@"/"] ? @"" : @"/";
        NSString *path =
            [NSString stringWithFormat:@"%@%@%@", folder, separator, String(pathComponent)];
        return [NSURL fileURLWithPath:path isDirectory:isDirectory != 0];
    });
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef anURL, CFURLPathStyle) {
    return (CFStringRef)CreateCopy([&] { return [Url(anURL) path]; });
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean, UInt8 *buffer, CFIndex maxBufLen) {
    @autoreleasepool {
        const char *path = [[Url(url) path] UTF8String];
        if (!path || (CFIndex)std::strlen(path) + 1 > maxBufLen) return 0;
        std::memcpy(buffer, path, std::strlen(path) + 1);
        return 1;
    }
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
    return (CFStringRef)CreateCopy([&]() -> NSString * {
        NSString *path = [Url(url) path];
        return [path isEqual:@"/"] ? path : [path substringFromIndex:LastComponent(path)];
    });
}
}
