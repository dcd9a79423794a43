// File URLs. Paths go through UTF-8; GNUstep cannot hold a path that is not UTF-8.
//
// Paths are taken apart here and not by Foundation's path methods, which take ":" and "\" for
// separators, as other systems do: a file named "12:30" would become "30".
#include "CFBridge.h"
#include <cstring>

namespace {

NSURL *FileURL(NSString *path, bool isFolder) {
    return [NSURL fileURLWithPath:path isDirectory:isFolder];
}

/// Where the last component of the path begins; its length for "/".
NSUInteger LastComponent(NSString *path) {
    return NSMaxRange([path rangeOfString:@"/" options:NSBackwardsSearch | NSLiteralSearch]);
}

/// Where the extension begins, at its point; none in ".name", "name." and "..".
NSRange ExtensionPoint(NSString *path) {
    const NSRange none = NSMakeRange(NSNotFound, 0);
    const NSRange point = [path rangeOfString:@"." options:NSBackwardsSearch | NSLiteralSearch];
    if (point.length == 0 || NSMaxRange(point) == [path length]) return none;
    return point.location > LastComponent(path) ? point : none;
}

NSString *Appended(NSString *path, NSString *component) {
    NSString *separator = [path hasSuffix:@"/"] ? @"" : @"/";
    return [NSString stringWithFormat:@"%@%@%@", path, separator, component];
}

NSString *WithoutLastComponent(NSString *path) {
    const NSUInteger begin = LastComponent(path);
    return begin > 1 ? [path substringToIndex:begin - 1] : @"/";
}

} // namespace

extern "C" {

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef filePath, CFURLPathStyle,
                                       Boolean isDirectory) {
    // An empty path would be taken for the current folder.
    if (CFStringGetLength(filePath) == 0) return nullptr;
    return (CFURLRef)Create([&] { return FileURL(String(filePath), isDirectory != 0); });
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
        return FileURL(Appended([Url(url) path], String(pathComponent)), isDirectory != 0);
    });
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef, CFURLRef url) {
    if (!Url(url)) return nullptr;
    return (CFURLRef)Create([&] { return FileURL(WithoutLastComponent([Url(url) path]), true); });
}

CFURLRef CFURLCreateCopyDeletingPathExtension(CFAllocatorRef, CFURLRef url) {
    if (!Url(url)) return nullptr;
    return (CFURLRef)Create([&] {
        NSString *path = [Url(url) path];
        const NSRange point = ExtensionPoint(path);
        if (point.length != 0) path = [path substringToIndex:point.location];
        return FileURL(path, [[Url(url) absoluteString] hasSuffix:@"/"]);
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

CFStringRef CFURLCopyPathExtension(CFURLRef url) {
    return (CFStringRef)CreateCopy([&]() -> NSString * {
        NSString *path = [Url(url) path];
        const NSRange point = ExtensionPoint(path);
        return point.length != 0 ? [path substringFromIndex:NSMaxRange(point)] : nil;
    });
}
}
