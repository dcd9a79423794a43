/// What the tests of the CoreFoundation facade share.
#pragma once

#include "support/CFRef.h"
#include "tests/TempFolder.h"
#include <CoreFoundation/CoreFoundation.h>
#include <filesystem>
#include <string>

/// The string in UTF-8, or a text that no test expects.
inline std::string Text(CFStringRef string) {
    char buffer[4096];
    if (!string) return "(null)";
    const Boolean fits = CFStringGetCString(string, buffer, sizeof buffer, kCFStringEncodingUTF8);
    return fits ? buffer : "(does not fit)";
}
inline std::string Text(const CFRef<CFStringRef> &string) {
    return Text(string.Get());
}

inline CFRef<CFNumberRef> Number(SInt64 value) {
    return CFRef(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value));
}
inline CFRef<CFNumberRef> Real(double value) {
    return CFRef(CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &value));
}

inline SInt64 Integer(CFTypeRef value) {
    SInt64 result = -999999;
    CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &result);
    return result;
}

inline CFRef<CFDataRef> Data(const std::string &bytes) {
    return CFRef(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(bytes.data()),
                              CFIndex(bytes.size())));
}
inline std::string Bytes(CFDataRef data) {
    return data ? std::string(reinterpret_cast<const char *>(CFDataGetBytePtr(data)),
                              size_t(CFDataGetLength(data)))
                : "(null)";
}

inline CFRef<CFMutableDictionaryRef> Dictionary() {
    return CFRef(CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                           &kCFTypeDictionaryValueCallBacks));
}
inline CFRef<CFMutableArrayRef> Array() {
    return CFRef(CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
}

inline CFRef<CFURLRef> FileURL(const std::filesystem::path &path, bool isFolder = false) {
    const std::string name = path.string();
    return CFRef(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(name.data()), CFIndex(name.size()),
        isFolder));
}

inline std::string Path(CFURLRef url) {
    UInt8 buffer[4096];
    const Boolean fits = url && CFURLGetFileSystemRepresentation(url, true, buffer, sizeof buffer);
    return fits ? reinterpret_cast<const char *>(buffer) : "(none)";
}
inline std::string Path(const CFRef<CFURLRef> &url) {
    return Path(url.Get());
}
