#include "Common/Src/record/JobSettings.h"

#include "Common/Src/DriverContext.h"
#include "Common/Src/record/PrintRecord.h"
#include "support/DictionaryHelpers.h"

namespace {

CFRef<CFDataRef> BookmarkOfFolder(CFURLRef folder) {
    return CFRef<CFDataRef>(CFURLCreateBookmarkData(kCFAllocatorDefault, folder,
                                                    kCFURLBookmarkCreationSuitableForBookmarkFile,
                                                    nullptr, nullptr, nullptr));
}

/// Stores the low 16 bits of an integer number; anything else leaves the field alone.
void TakeNumber(CFDictionaryRef settings, CFStringRef key, int16_t &field_be) {
    const void *value = nullptr;
    if (!CFDictionaryGetValueIfPresent(settings, key, &value) ||
        CFGetTypeID(value) != CFNumberGetTypeID())
        return;
    auto number = static_cast<CFNumberRef>(value);
    int64_t integer = 0;
    if (CFNumberIsFloatType(number) || !CFNumberGetValue(number, kCFNumberSInt64Type, &integer))
        return;
    field_be = Int16ToBigEndian(static_cast<int16_t>(integer));
}

bool TakeOutputFolder(DriverContext *context, CFDictionaryRef settings) {
    const void *value = nullptr;
    if (!CFDictionaryGetValueIfPresent(settings, CFSTR("outputFolder"), &value) ||
        CFGetTypeID(value) != CFDataGetTypeID())
        return true;
    CFRef<CFURLRef> folder(CFURLCreateByResolvingBookmarkData(
        kCFAllocatorDefault, static_cast<CFDataRef>(value), kCFURLBookmarkResolutionWithoutUIMask,
        nullptr, nullptr, nullptr, nullptr));
    if (!folder) return false;
    context->hotFolder = folder;
    return true;
}

} // namespace

CFRef<CFMutableDictionaryRef> DoCopyJobSettings(const DriverContext *context, Handle handle) {
    RecordLock lock(handle);
    const PSHPrint *record = lock.Record();
    if (!record) return {};
    CFRef<CFMutableDictionaryRef> settings(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    PutSInt32InDictionary(settings.Get(), CFSTR("fromPage"),
                          Int16FromBigEndian(record->fromPage_be));
    PutSInt32InDictionary(settings.Get(), CFSTR("toPage"), Int16FromBigEndian(record->toPage_be));
    PutSInt32InDictionary(settings.Get(), CFSTR("copies"), Int16FromBigEndian(record->copies_be));
    if (!context->hotFolder) return settings;
    CFRef<CFDataRef> bookmark = BookmarkOfFolder(context->hotFolder.Get());
    if (bookmark) CFDictionaryAddValue(settings.Get(), CFSTR("outputFolder"), bookmark.Get());
    return settings;
}

bool DoSetJobSettings(DriverContext *context, Handle handle, CFTypeRef settings) {
    if (!settings || CFGetTypeID(settings) != CFDictionaryGetTypeID()) return false;
    auto dictionary = static_cast<CFDictionaryRef>(settings);
    RecordLock lock(handle);
    PSHPrint *record = lock.Record();
    if (!record) return false;
    TakeNumber(dictionary, CFSTR("fromPage"), record->fromPage_be);
    TakeNumber(dictionary, CFSTR("toPage"), record->toPage_be);
    TakeNumber(dictionary, CFSTR("copies"), record->copies_be);
    return TakeOutputFolder(context, dictionary);
}
