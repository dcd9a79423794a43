#include "Common/Src/record/JobSettings.h"

#include "Common/Src/record/PrintRecord.h"
#include "support/Bookmark.h"
#include "support/DictionaryHelpers.h"

namespace {

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

bool TakeOutputFolder(CFDictionaryRef settings, CFRef<CFURLRef> &hotFolder) {
    const void *value = nullptr;
    if (!CFDictionaryGetValueIfPresent(settings, CFSTR("outputFolder"), &value) ||
        CFGetTypeID(value) != CFDataGetTypeID())
        return true;
    const CFRef<CFURLRef> folder = ResolvedBookmark(static_cast<CFDataRef>(value));
    if (!folder) return false;
    hotFolder = folder;
    return true;
}

} // namespace

CFRef<CFMutableDictionaryRef> DoCopyJobSettings(Handle handle, CFURLRef hotFolder) {
    RecordLock lock(handle);
    const PSHPrint *record = lock.Record();
    if (!record) return {};
    CFRef<CFMutableDictionaryRef> settings(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    PutSInt32InDictionary(settings.Get(), CFSTR("fromPage"),
                          Int16FromBigEndian(record->fromPage_be));
    PutSInt32InDictionary(settings.Get(), CFSTR("toPage"), Int16FromBigEndian(record->toPage_be));
    PutSInt32InDictionary(settings.Get(), CFSTR("copies"), Int16FromBigEndian(record->copies_be));
    const CFRef<CFDataRef> bookmark = BookmarkOf(hotFolder);
    if (bookmark) CFDictionaryAddValue(settings.Get(), CFSTR("outputFolder"), bookmark.Get());
    return settings;
}

bool DoSetJobSettings(Handle handle, CFTypeRef settings, CFRef<CFURLRef> &hotFolder) {
    if (!settings || CFGetTypeID(settings) != CFDictionaryGetTypeID()) return false;
    auto dictionary = static_cast<CFDictionaryRef>(settings);
    RecordLock lock(handle);
    PSHPrint *record = lock.Record();
    if (!record) return false;
    TakeNumber(dictionary, CFSTR("fromPage"), record->fromPage_be);
    TakeNumber(dictionary, CFSTR("toPage"), record->toPage_be);
    TakeNumber(dictionary, CFSTR("copies"), record->copies_be);
    return TakeOutputFolder(dictionary, hotFolder);
}
