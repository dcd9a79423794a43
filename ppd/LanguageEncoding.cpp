#include "ppd/LanguageEncoding.h"

#include <array>
#include <optional>
#include <strings.h>

namespace PPD {
namespace {

struct NamedEncoding {
    const char *name;
    CFStringEncoding encoding;
};

/// The names of the PPD specification, and the one that CUPS has added.
constexpr std::array<NamedEncoding, 7> kEncodings = {{
    {"ISOLatin1", kCFStringEncodingISOLatin1},
    {"ISOLatin2", kCFStringEncodingISOLatin2},
    {"ISOLatin5", kCFStringEncodingISOLatin5},
    {"JIS83-RKSJ", kCFStringEncodingShiftJIS},
    {"MacStandard", kCFStringEncodingMacRoman},
    {"WindowsANSI", kCFStringEncodingWindowsLatin1},
    {"UTF-8", kCFStringEncodingUTF8},
}};

std::optional<CFStringEncoding> FindEncoding(const std::string &name) {
    for (const NamedEncoding &entry : kEncodings)
        if (strcasecmp(entry.name, name.c_str()) == 0) return entry.encoding;
    return std::nullopt;
}

CFRef<CFStringRef> Decode(const std::string &bytes, CFStringEncoding encoding) {
    return CFRef<CFStringRef>(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(bytes.data()),
                                static_cast<CFIndex>(bytes.size()), encoding, false));
}

} // namespace

CFRef<CFStringRef> DecodeText(const std::string &bytes, const std::string &languageEncoding) {
    if (const auto declared = FindEncoding(languageEncoding)) return Decode(bytes, *declared);
    CFRef<CFStringRef> text = Decode(bytes, kCFStringEncodingUTF8);
    return text ? text : Decode(bytes, kCFStringEncodingISOLatin1);
}

} // namespace PPD
