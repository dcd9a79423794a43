#include "colour/Separations.h"
#include "colour/EightColourSeparation.h"
#include "colour/ProfilesFolder.h"
#include "colour/RGBToCMYK.h"
#include "colour/TableCache.h"

#include "ZELExtensions.h"
#include <cstdlib>

/// Allocated zeroed, as one block.
struct CMYKSeparation {
    uint32_t kind;
    uint8_t blackGenerationTable[kBlackGenerationTableSize]; ///< kBlackGeneration only
    EightColourLUT *table;                                   ///< kEightColourTable only
};

namespace {

enum : uint32_t { kEightColourTable = 0, kBlackGeneration = 1 };

TableCache &Tables() {
    static TableCache cache;
    return cache;
}

bool IsStandard(CFStringRef name) {
    return !name || CFStringGetLength(name) == 0 ||
           CFStringCompare(name, kStandardTableName, 0) == kCFCompareEqualTo;
}

/// Runs of digits by their value, everything else literally.
CFComparisonResult CompareNames(const void *a, const void *b, void * /*context*/) {
    return CFStringCompare(static_cast<CFStringRef>(a), static_cast<CFStringRef>(b),
                           kCFCompareNumerically);
}

int16_t LoadTable(CFStringRef name, CMYKSeparation &separation) {
    separation.kind = kEightColourTable;
    const CFRef<CFURLRef> url = ProfileURL(name);
    if (url) separation.table = Tables().Acquire(url.Get());
    return separation.table ? kZELNoError : kZELFileNotFound;
}

} // namespace

Separations *ScanSeparationsFolder() {
    const std::string folder = ProfilesFolder();
    if (folder.empty()) return nullptr;
    auto *list = static_cast<Separations *>(std::calloc(1, sizeof(Separations)));
    if (!list) return nullptr;
    list->names = ProfileNames(folder).Detach();
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
    const CFRef<CFURLRef> url = ProfileURL(name);
    return url && IsEightColourLUT(url.Get());
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
    if (!separation) return;
    // The record alone is freed: the cache owns the table, for the next document.
    Tables().Release(separation->table);
    std::free(separation);
}

CFArrayRef ZELPrCopySeparationNames(void) {
    Separations *list = ScanSeparationsFolder();
    if (!list) return nullptr;
    CFRef names(CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
    for (int32_t i = 0; i < CountCMYKSeparation(list); ++i)
        CFArrayAppendValue(names.Get(), GetCMYKSeparationName(list, i));
    DeleteSeparationsList(list);
    return names.Detach();
}

CFURLRef ZELPrCopySeparationsFolder(void) {
    const std::string folder = ProfilesFolder();
    if (folder.empty()) return nullptr;
    return CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                   reinterpret_cast<const UInt8 *>(folder.data()),
                                                   static_cast<CFIndex>(folder.size()), true);
}

int32_t ZELPrCreateSeparation(CFStringRef name, ZELSeparation **separation) {
    *separation = nullptr;
    CMYKSeparation *built = nullptr;
    const int16_t code = GetCMYKSeparation(nullptr, name, &built);
    if (code == kZELNoError)
        *separation = reinterpret_cast<ZELSeparation *>(built);
    else
        ReleaseCMYKSeparation(built);
    return code;
}

void ZELPrSeparate(const ZELSeparation *separation, const uint8_t *src, uint64_t count,
                   uint8_t *dst) {
    PerformCMYKSeparation(reinterpret_cast<const CMYKSeparation *>(separation), src,
                          static_cast<int64_t>(count), dst, 1, 4);
}

void ZELPrReleaseSeparation(ZELSeparation *separation) {
    ReleaseCMYKSeparation(reinterpret_cast<CMYKSeparation *>(separation));
}
