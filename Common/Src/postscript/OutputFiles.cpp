#include "Common/Src/postscript/OutputFiles.h"

#include "support/CFText.h"
#include <algorithm>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int kUniqueNames = 100;
constexpr CFIndex kLongestName = 128;

using Path = char[kOutputPathSize];

bool GetPath(CFURLRef url, Path &path) {
    return url && CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8 *>(path),
                                                   kOutputPathSize);
}

CFRef<CFStringRef> Joined(CFStringRef format, CFStringRef a, CFStringRef b) {
    return CFRef(CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, format, a, b));
}

/// The URL of folder/name. Goes by the path: a name may hold any character that a file system
/// takes, and a URL library need not see it that way ("a:b", "a\\b").
CFRef<CFURLRef> FileURL(CFURLRef folder, CFStringRef name) {
    if (!folder || !name) return {};
    const CFRef<CFStringRef> folderPath(CFURLCopyFileSystemPath(folder, kCFURLPOSIXPathStyle));
    if (!folderPath) return {};
    const CFRef<CFStringRef> path = Joined(CFSTR("%@/%@"), folderPath.Get(), name);
    if (!path) return {};
    return CFRef(CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path.Get(),
                                               kCFURLPOSIXPathStyle, false));
}

/// The descriptor, or -1; `fileURL` is set only with a descriptor.
int OpenAndKeepURL(CFRef<CFURLRef> url, int flags, mode_t mode, CFRef<CFURLRef> &fileURL) {
    int fd = -1;
    fileURL = {};
    if (OpenFileAtURL(url.Get(), flags, mode, &fd) == 0) fileURL = std::move(url);
    return fd;
}

CFRef<CFStringRef> UniqueName(CFStringRef base, CFStringRef extension, int index) {
    if (!base) return {};
    if (index == 0) return Joined(CFSTR("%@.%@"), base, extension);
    return CFRef(CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%@_%02d.%@"), base,
                                          index, extension));
}

CFRef<CFStringRef> TimeStamp() {
    const time_t now = time(nullptr);
    tm local = {};
    localtime_r(&now, &local);
    return CFRef(CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("(%02d_%02d_%02d)"),
                                          local.tm_hour, local.tm_min, local.tm_sec));
}

CFRef<CFStringRef> FirstUnits(CFStringRef string, CFIndex count) {
    return CFRef(CFStringCreateWithSubstring(kCFAllocatorDefault, string, CFRangeMake(0, count)));
}

} // namespace

int OpenFileAtURL(CFURLRef url, int flags, mode_t mode, int *outFd) {
    Path path;
    *outFd = -1;
    if (!GetPath(url, path)) return -1;
    *outFd = open(path, flags | O_CLOEXEC, mode);
    return *outFd < 0 ? errno : 0;
}

int CreateFileInFolder(CFURLRef folder, CFStringRef name, mode_t mode, CFRef<CFURLRef> &fileURL) {
    return OpenAndKeepURL(FileURL(folder, name), O_RDWR | O_CREAT | O_TRUNC, mode, fileURL);
}

int CreateAndOpenUniqueFileInFolder(CFURLRef folder, CFStringRef base, CFStringRef extension,
                                    mode_t mode, CFRef<CFURLRef> &fileURL) {
    int fd = -1;
    for (int index = 0; fd < 0 && index < kUniqueNames; ++index) {
        const CFRef<CFStringRef> name = UniqueName(base, extension, index);
        fd = OpenAndKeepURL(FileURL(folder, name.Get()), O_RDWR | O_CREAT | O_EXCL, mode, fileURL);
    }
    return fd;
}

CFRef<CFStringRef> CreatePSFilename(CFStringRef base, CFStringRef extension) {
    const CFRef<CFStringRef> stamp = TimeStamp();
    const CFIndex length = CFStringGetLength(base);
    const CFIndex total = length + CFStringGetLength(stamp.Get()) + CFStringGetLength(extension);
    const CFIndex kept = std::max<CFIndex>(0, std::min(length, length - total + kLongestName));
    CFRef<CFStringRef> cut = FirstUnits(base, kept);
    // Half a surrogate pair has no place in a file name.
    if (kept > 0 && kept < length && !UTF8Text(cut.Get())) cut = FirstUnits(base, kept - 1);
    return CFRef(CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%@%@%@"), cut.Get(),
                                          stamp.Get(), extension));
}

int DeleteFileAtURL(CFURLRef url) {
    Path path;
    return GetPath(url, path) ? unlink(path) : 2;
}

CFRef<CFStringRef> CreateBaseName(CFStringRef name) {
    const std::optional<std::string> text = UTF8Text(name);
    if (!text) return {};
    std::string base = *text;
    const size_t slash = base.find_last_of('/');
    if (slash != std::string::npos) base.erase(0, slash + 1);
    const size_t point = base.find_last_of('.');
    if (point != std::string::npos && point > 0) base.erase(point);
    return CFRef(
        CFStringCreateWithCString(kCFAllocatorDefault, base.c_str(), kCFStringEncodingUTF8));
}
