#include "host/driver/CFOwner.h"

#include <climits>
#include <vector>

CFOwner<CFStringRef> MakeCFString(const std::string &utf8) {
    return CFOwner<CFStringRef>(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(utf8.data()),
                                static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false));
}

std::string TextOfCFString(CFStringRef string) {
    if (!string) return {};
    const CFIndex size =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
    std::vector<char> buffer(static_cast<size_t>(size));
    if (!CFStringGetCString(string, buffer.data(), size, kCFStringEncodingUTF8)) return {};
    return buffer.data();
}

CFOwner<CFURLRef> MakeFileURL(const std::string &path, bool isFolder) {
    return CFOwner<CFURLRef>(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(path.data()),
        static_cast<CFIndex>(path.size()), isFolder));
}

std::string PathOfURL(CFURLRef url) {
    char path[PATH_MAX];
    if (!url ||
        !CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8 *>(path), sizeof path))
        return {};
    return path;
}

CFDictionaryRef AsDictionary(CFTypeRef value) {
    if (!value || CFGetTypeID(value) != CFDictionaryGetTypeID()) return nullptr;
    return static_cast<CFDictionaryRef>(value);
}
