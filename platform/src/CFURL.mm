// File URLs. Paths go through UTF-8; GNUstep cannot hold a path that is not UTF-8.
#include "CFBridge.h"
#include <cstring>

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
    if (!String(pathComponent)) return nullptr;
    return (CFURLRef)Create([&] {
        return [Url(url) URLByAppendingPathComponent:String(pathComponent)
                                         isDirectory:isDirectory != 0];
    });
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef, CFURLRef url) {
    return (CFURLRef)Create([&] { return [Url(url) URLByDeletingLastPathComponent]; });
}

CFURLRef CFURLCreateCopyDeletingPathExtension(CFAllocatorRef, CFURLRef url) {
    return (CFURLRef)Create([&] { return [Url(url) URLByDeletingPathExtension]; });
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
    return (CFStringRef)CreateCopy([&] { return [Url(url) lastPathComponent]; });
}

CFStringRef CFURLCopyPathExtension(CFURLRef url) {
    return (CFStringRef)CreateCopy([&]() -> NSString * {
        NSString *extension = [Url(url) pathExtension];
        return [extension length] ? extension : nil;
    });
}
}
