#include "support/CFText.h"

#include <cstring>

std::optional<std::string> UTF8Text(CFStringRef string) {
    if (!string) return std::nullopt;
    const CFIndex size =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
    std::string text(static_cast<size_t>(size), '\0');
    if (!CFStringGetCString(string, text.data(), size, kCFStringEncodingUTF8)) return std::nullopt;
    text.resize(strlen(text.c_str()));
    return text;
}

CFRef<CFStringRef> TextOfUnknownEncoding(const std::string &bytes) {
    const auto *data = reinterpret_cast<const UInt8 *>(bytes.data());
    const auto length = static_cast<CFIndex>(bytes.size());
    CFRef<CFStringRef> text(
        CFStringCreateWithBytes(kCFAllocatorDefault, data, length, kCFStringEncodingUTF8, false));
    if (text) return text;
    return CFRef<CFStringRef>(CFStringCreateWithBytes(kCFAllocatorDefault, data, length,
                                                      kCFStringEncodingISOLatin1, false));
}
