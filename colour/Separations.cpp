#include "colour/Separations.h"
#include "colour/EightColourLUT.h"
#include "colour/RGBToCMYK.h"

#include "ZELExtensions.h"
#include "platform/Platform.h"
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

/// Allocated zeroed, as one block.
struct CMYKSeparation {
    uint32_t kind;
    uint8_t blackGenerationTable[kBlackGenerationTableSize]; ///< kind kBlackGeneration only
    EightColourLUT *table;                                   ///< kind kEightColourTable only
};

namespace {

namespace fs = std::filesystem;

enum : uint32_t { kEightColourTable = 0, kBlackGeneration = 1 };

/// Empty when the user's folders cannot be told.
std::string ProfilesFolder() {
    const std::string support = PlatformApplicationSupportFolder();
    return support.empty() ? support : support + "/ZEL/Profiles/Postscript";
}

bool IsStandard(CFStringRef name) {
    return !name || CFStringGetLength(name) == 0 ||
           CFStringCompare(name, kStandardTableName, 0) == kCFCompareEqualTo;
}

std::string UTF8(CFStringRef string) {
    const CFIndex length = CFStringGetLength(string);
    std::string text(
        static_cast<size_t>(CFStringGetMaximumSizeForEncoding(length, kCFStringEncodingUTF8)) + 1,
        '\0');
    if (!CFStringGetCString(string, text.data(), static_cast<CFIndex>(text.size()),
                            kCFStringEncodingUTF8))
        return {};
    return text.substr(0, text.find(char{0}));
}

CFURLRef CreateFileURL(const std::string &path) {
    return CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                   reinterpret_cast<const UInt8 *>(path.data()),
                                                   static_cast<CFIndex>(path.size()), false);
}

/// The file of that name directly in the profiles folder; null when the name is none of a file, or
/// the folder cannot be told. The caller releases it.
CFURLRef CreateProfileURL(CFStringRef name) {
    const std::string folder = ProfilesFolder();
    const std::string file = UTF8(name);
    if (folder.empty() || file.empty() || file.find('/') != std::string::npos) return nullptr;
    return CreateFileURL(folder + "/" + file);
}

bool IsProfile(const fs::path &path) {
    const CFURLRef url = CreateFileURL(path.native());
    const bool result = url && IsEightColourLUT(url);
    if (url) CFRelease(url);
    return result;
}

void AppendName(CFMutableArrayRef names, const std::string &name) {
    const CFStringRef string =
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(name.data()),
                                static_cast<CFIndex>(name.size()), kCFStringEncodingUTF8, false);
    if (!string) return;
    CFArrayAppendValue(names, string);
    CFRelease(string);
}

/// Appends the names of the profiles in a folder and everywhere below it. What cannot be read is
/// passed over.
void AppendProfilesBelow(const fs::path &top, CFMutableArrayRef names) {
    std::vector<fs::path> folders{top};
    while (!folders.empty()) {
        std::error_code error;
        fs::directory_iterator item(folders.back(), error);
        folders.pop_back();
        for (; !error && item != fs::directory_iterator(); item.increment(error)) {
            std::error_code ignored;
            if (item->symlink_status(ignored).type() == fs::file_type::directory)
                folders.push_back(item->path());
            else if (IsProfile(item->path()))
                AppendName(names, item->path().filename().native());
        }
    }
}

CFComparisonResult CompareNames(const void *a, const void *b, void *) {
    return CFStringCompare(static_cast<CFStringRef>(a), static_cast<CFStringRef>(b),
                           kCFCompareNumerically);
}

int16_t LoadTable(CFStringRef name, CMYKSeparation &separation) {
    separation.kind = kEightColourTable;
    const CFURLRef url = CreateProfileURL(name);
    if (!url) return kZELFileNotFound;
    separation.table = LoadEightColourLUT(url);
    CFRelease(url);
    return separation.table ? kZELNoError : kZELFileNotFound;
}

} // namespace

Separations *ScanSeparationsFolder() {
    const std::string folder = ProfilesFolder();
    if (folder.empty()) return nullptr;
    auto *list = static_cast<Separations *>(std::calloc(1, sizeof(Separations)));
    if (!list) return nullptr;
    list->names = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    AppendProfilesBelow(folder, list->names);
    const CFIndex profiles = CFArrayGetCount(list->names);
    CFArraySortValues(list->names, CFRangeMake(0, profiles), CompareNames, nullptr);
    list->count = profiles + 1;
    return list;
}

void DeleteSeparationsList(Separations *list) {
    if (!list) return;
    if (list->names) CFRelease(list->names);
    std::free(list);
}

int32_t CountCMYKSeparation(const Separations *list) {
    return list ? static_cast<int32_t>(list->count) : 1;
}

CFStringRef GetCMYKSeparationName(const Separations *list, int32_t index) {
    if (!list || !list->names || index < 1 || index >= list->count) return kStandardTableName;
    return static_cast<CFStringRef>(CFArrayGetValueAtIndex(list->names, index - 1));
}

bool ValidateCMYKSeparation(const Separations * /*list*/, CFStringRef name) {
    if (IsStandard(name)) return true;
    const CFURLRef url = CreateProfileURL(name);
    const bool result = url && IsEightColourLUT(url);
    if (url) CFRelease(url);
    return result;
}

int16_t GetCMYKSeparation(const Separations * /*ignored*/, CFStringRef name,
                          CMYKSeparation **separation) {
    auto *record = static_cast<CMYKSeparation *>(std::calloc(1, sizeof(CMYKSeparation)));
    if (!record) return kZELOutOfMemory;
    *separation = record;
    if (!IsStandard(name)) return LoadTable(name, *record);
    record->kind = kBlackGeneration;
    zel_InitBG(record->blackGenerationTable, 2, 214, 1020, 0.2);
    return kZELNoError;
}

void PerformCMYKSeparation(const CMYKSeparation *separation, const uint8_t *src, int64_t count,
                           uint8_t *dst, int64_t planeStride, int64_t pixelStride) {
    if (count < 1) return;
    if (separation->kind == kBlackGeneration)
        CTRGBToCMYK(separation->blackGenerationTable, src, static_cast<uint64_t>(count), dst,
                    planeStride, pixelStride);
    else if (separation->table)
        EightColourLUTSeparate(separation->table, src + 1, 4, count, dst, 4, planeStride,
                               pixelStride);
}

void ReleaseCMYKSeparation(CMYKSeparation *separation) {
    std::free(separation);
}

CFArrayRef ZELPrCopySeparationNames(void) {
    Separations *list = ScanSeparationsFolder();
    if (!list) return nullptr;
    const CFMutableArrayRef names =
        CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    for (int32_t i = 0; i < CountCMYKSeparation(list); ++i)
        CFArrayAppendValue(names, GetCMYKSeparationName(list, i));
    DeleteSeparationsList(list);
    return names;
}
