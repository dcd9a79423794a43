#include "host/job/SettingsFile.h"

#include "PSHPrint.h"
#include "host/job/OutputStaging.h"
#include "host/terminal/Cancellation.h"
#include "host/terminal/ExitStatus.h"
#include "host/terminal/LastResort.h"
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr size_t kRecordSize = sizeof(PSHPrint);
constexpr size_t kLargestFile = 1 << 20;

using MutableDictionary = CFOwner<CFMutableDictionaryRef>;

MutableDictionary MakeDictionary() {
    return MutableDictionary(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
}

CFOwner<CFDataRef> BookmarkOf(const std::string &folder) {
    return CFOwner<CFDataRef>(CFURLCreateBookmarkData(
        kCFAllocatorDefault, MakeFileURL(folder, true).Get(),
        kCFURLBookmarkCreationSuitableForBookmarkFile, nullptr, nullptr, nullptr));
}

/// All of a file that is not too large to be a settings file; nothing of what is no file, which
/// could block.
std::vector<uint8_t> ReadWhole(const std::string &path) {
    struct stat info {};
    const bool found = stat(path.c_str(), &info) == 0;
    if (found && !S_ISREG(info.st_mode)) return {};
    std::ifstream file(path, std::ios::binary);
    if (!found || !file)
        throw HostError(ExitStatus::Input, kAboutSettings,
                        path + ": " + strerror(errno) + "; check the name of the settings file");
    std::vector<uint8_t> bytes;
    for (std::istreambuf_iterator<char> c(file), end; c != end && bytes.size() <= kLargestFile; ++c)
        bytes.push_back(static_cast<uint8_t>(*c));
    return bytes;
}

void RemoveFile(void *path) noexcept {
    if (path) (void)unlink(static_cast<const char *>(path));
}

void WriteWhole(const std::string &path, const std::vector<uint8_t> &bytes) {
    const Cancellation cancellation; // the draft goes, whatever comes
    CheckReplaceable(path);
    std::string draft = path + ".zelprint-" + std::to_string(getpid());
    FILE *file = fopen(draft.c_str(), "wbx");
    const Unfinished unfinished(RemoveFile, file ? draft.data() : nullptr);
    bool good = file && fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    int code = errno;
    if (file && fclose(file) != 0 && good) {
        good = false;
        code = errno;
    }
    if (good && rename(draft.c_str(), path.c_str()) == 0) return;
    if (good) code = errno;
    if (file) (void)unlink(draft.c_str());
    throw HostError(ExitStatus::Output,
                    "cannot save the settings as " + path + ": " + strerror(code));
}

} // namespace

SavedSettings ReadSettings(const std::string &path) {
    SavedSettings settings;
    const std::vector<uint8_t> bytes = ReadWhole(path);
    const auto refuse = [&path] {
        return HostError(ExitStatus::Input, kAboutSettings,
                         path + ": not a settings file; make one with --save-settings");
    };
    if (bytes.size() <= kRecordSize || bytes.size() > kLargestFile ||
        memcmp(bytes.data(), "POST", 4) != 0)
        throw refuse();
    settings.record.assign(bytes.begin(), bytes.begin() + kRecordSize);
    const CFOwner<CFDataRef> data(CFDataCreate(kCFAllocatorDefault, bytes.data() + kRecordSize,
                                               static_cast<CFIndex>(bytes.size() - kRecordSize)));
    CFTypeRef plist = CFPropertyListCreateWithData(
        kCFAllocatorDefault, data.Get(), kCFPropertyListMutableContainers, nullptr, nullptr);
    settings.jobSettings = CFOwner<CFDictionaryRef>(AsDictionary(plist));
    if (!settings.jobSettings) {
        if (plist) CFRelease(plist);
        throw refuse();
    }
    const auto value = [&settings](const char *key) {
        return CFDictionaryGetValue(settings.jobSettings.Get(), MakeCFString(key).Get());
    };
    if (const void *ppd = value("ppd"); ppd && CFGetTypeID(ppd) == CFStringGetTypeID())
        settings.ppd = TextOfCFString(static_cast<CFStringRef>(ppd));
    if (const void *queue = value("queue"); queue && CFGetTypeID(queue) == CFBooleanGetTypeID())
        settings.queue = CFBooleanGetValue(static_cast<CFBooleanRef>(queue));
    return settings;
}

void WriteSettings(const std::string &path, Handle record, CFDictionaryRef jobSettings,
                   const std::optional<std::string> &ppd, std::optional<bool> queue) {
    const MutableDictionary all = MakeDictionary();
    for (const char *key : {"fromPage", "toPage", "copies", "outputFolder"}) {
        const CFOwner<CFStringRef> name = MakeCFString(key);
        const void *value = jobSettings ? CFDictionaryGetValue(jobSettings, name.Get()) : nullptr;
        if (value) CFDictionarySetValue(all.Get(), name.Get(), value);
    }
    if (ppd) CFDictionarySetValue(all.Get(), MakeCFString("ppd").Get(), MakeCFString(*ppd).Get());
    if (queue)
        CFDictionarySetValue(all.Get(), MakeCFString("queue").Get(),
                             *queue ? kCFBooleanTrue : kCFBooleanFalse);
    const CFOwner<CFDataRef> plist(CFPropertyListCreateData(
        kCFAllocatorDefault, all.Get(), kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
    if (!plist) throw HostError(ExitStatus::Output, "the settings cannot be saved as " + path);
    const auto *bytes = reinterpret_cast<const uint8_t *>(*record);
    std::vector<uint8_t> file(bytes, bytes + kRecordSize);
    const UInt8 *tail = CFDataGetBytePtr(plist.Get());
    file.insert(file.end(), tail, tail + CFDataGetLength(plist.Get()));
    WriteWhole(path, file);
}

std::string OutputFolderOf(CFDictionaryRef jobSettings) {
    if (!jobSettings) return {};
    const void *data = CFDictionaryGetValue(jobSettings, CFSTR("outputFolder"));
    if (!data || CFGetTypeID(data) != CFDataGetTypeID()) return {};
    Boolean stale = false;
    const CFOwner<CFURLRef> url(CFURLCreateByResolvingBookmarkData(
        kCFAllocatorDefault, static_cast<CFDataRef>(data), kCFURLBookmarkResolutionWithoutUIMask,
        nullptr, nullptr, &stale, nullptr));
    return PathOfURL(url.Get());
}

void SetOutputFolder(const DriverSession &session, Handle record, const std::string &folder) {
    const MutableDictionary settings = MakeDictionary();
    const CFOwner<CFDataRef> bookmark = BookmarkOf(folder);
    if (bookmark) CFDictionarySetValue(settings.Get(), CFSTR("outputFolder"), bookmark.Get());
    if (!bookmark ||
        !ZEL_CALL(session.Bundle(), ZELPrSetJobSettings)(session.Context(), record, settings.Get()))
        throw HostError(ExitStatus::Driver, "the driver does not accept the folder " + folder);
}
