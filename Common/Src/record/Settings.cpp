#include "Common/Src/record/Settings.h"

#include "Common/Src/DriverContext.h"
#include "Common/Src/record/PrintRecord.h"
#include "support/DictionaryHelpers.h"

namespace {

constexpr int32_t kFirstUnit = 2;
constexpr int32_t kLastUnit = 4;
constexpr int32_t kDefaultUnit = 3;

CFRef<CFURLRef> URLOfPath(CFStringRef path) {
    return CFRef<CFURLRef>(
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, kCFURLPOSIXPathStyle, false));
}

CFRef<CFDataRef> BookmarkOfPath(CFStringRef path) {
    const CFRef<CFURLRef> url = URLOfPath(path);
    if (!url) return {};
    return CFRef<CFDataRef>(CFURLCreateBookmarkData(kCFAllocatorDefault, url.Get(),
                                                    kCFURLBookmarkCreationSuitableForBookmarkFile,
                                                    nullptr, nullptr, nullptr));
}

CFRef<CFDataRef> BookmarkOfLegacyValue(CFPropertyListRef value) {
    if (CFGetTypeID(value) == CFStringGetTypeID())
        return BookmarkOfPath(static_cast<CFStringRef>(value));
    if (CFGetTypeID(value) == CFDataGetTypeID())
        return CFRef<CFDataRef>(CFURLCreateBookmarkDataFromAliasRecord(
            kCFAllocatorDefault, static_cast<CFDataRef>(value)));
    return {};
}

CFRef<CFURLRef> SavedLocation(CFStringRef applicationID, CFStringRef bookmarkKey,
                              CFStringRef legacyKey) {
    const CFRef<CFPropertyListRef> bookmark(CFPreferencesCopyAppValue(bookmarkKey, applicationID));
    const CFRef<CFPropertyListRef> legacy(CFPreferencesCopyAppValue(legacyKey, applicationID));
    if (!bookmark && legacy && CFGetTypeID(legacy.Get()) == CFStringGetTypeID())
        return URLOfPath(static_cast<CFStringRef>(legacy.Get()));
    return ResolvedBookmark(
        CopyFileLocationPreference(applicationID, bookmarkKey, legacyKey).Get());
}

void SetNumber(CFStringRef applicationID, CFStringRef key, int32_t value) {
    CFRef<CFNumberRef> number(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &value));
    CFPreferencesSetAppValue(key, number.Get(), applicationID);
}

CFRef<CFMutableDictionaryRef> PageOptions(const PSHPrint &record) {
    CFRef<CFMutableDictionaryRef> options(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    PutBooleanInDictionary(options.Get(), CFSTR("FlipH"), record.mFlipH_be != 0);
    PutBooleanInDictionary(options.Get(), CFSTR("FlipV"), record.mFlipV_be != 0);
    PutBooleanInDictionary(options.Get(), CFSTR("Rotate"), record.mRotated_be != 0);
    PutStr255InDictionary(options.Get(), CFSTR("Separation"), record.cmykSeparationName);
    return options;
}

} // namespace

CFRef<CFDataRef> CopyFileLocationPreference(CFStringRef applicationID, CFStringRef bookmarkKey,
                                            CFStringRef legacyKey) {
    CFRef<CFPropertyListRef> bookmark(CFPreferencesCopyAppValue(bookmarkKey, applicationID));
    if (bookmark) {
        if (CFGetTypeID(bookmark.Get()) != CFDataGetTypeID()) return {};
        return CFRef<CFDataRef>::Retain(static_cast<CFDataRef>(bookmark.Get()));
    }
    CFRef<CFPropertyListRef> legacy(CFPreferencesCopyAppValue(legacyKey, applicationID));
    return legacy ? BookmarkOfLegacyValue(legacy.Get()) : CFRef<CFDataRef>();
}

void SetFileLocationPreference(CFStringRef applicationID, CFStringRef key, CFDataRef bookmark) {
    if (bookmark) CFPreferencesSetAppValue(key, bookmark, applicationID);
}

CFRef<CFDataRef> CopyPPDFileLocation(CFStringRef applicationID) {
    return CopyFileLocationPreference(applicationID, CFSTR("PPDBookmark"), CFSTR("PPDFile"));
}

void SavePPDFileLocation(CFStringRef applicationID, CFDataRef bookmark) {
    SetFileLocationPreference(applicationID, CFSTR("PPDBookmark"), bookmark);
}

CFRef<CFPropertyListRef> CopySavedPPDFile(CFStringRef applicationID) {
    return CFRef<CFPropertyListRef>(CFPreferencesCopyAppValue(CFSTR("PPDBookmark"), applicationID));
}

void RestoreSavedPPDFile(CFStringRef applicationID, CFPropertyListRef value) {
    CFPreferencesSetAppValue(CFSTR("PPDBookmark"), value, applicationID);
}

CFRef<CFURLRef> ResolvedBookmark(CFDataRef bookmark) {
    if (!bookmark) return {};
    return CFRef<CFURLRef>(CFURLCreateByResolvingBookmarkData(kCFAllocatorDefault, bookmark,
                                                              kCFURLBookmarkResolutionWithoutUIMask,
                                                              nullptr, nullptr, nullptr, nullptr));
}

CFRef<CFURLRef> CopySavedPPD(CFStringRef applicationID) {
    return SavedLocation(applicationID, CFSTR("PPDBookmark"), CFSTR("PPDFile"));
}

CFRef<CFURLRef> CopySavedHotFolder(CFStringRef applicationID) {
    return SavedLocation(applicationID, CFSTR("HotFolderBookmark"), CFSTR("HotFolder"));
}

CFRef<CFURLRef> CopyFoundHotFolder(CFStringRef applicationID) {
    return ResolvedBookmark(
        CopyFileLocationPreference(applicationID, CFSTR("HotFolderBookmark"), CFSTR("HotFolder"))
            .Get());
}

void SaveHotFolder(CFStringRef applicationID, CFURLRef folder) {
    const CFRef<CFDataRef> bookmark(CFURLCreateBookmarkData(
        kCFAllocatorDefault, folder, kCFURLBookmarkCreationSuitableForBookmarkFile, nullptr,
        nullptr, nullptr));
    SetFileLocationPreference(applicationID, CFSTR("HotFolderBookmark"), bookmark.Get());
    CFPreferencesAppSynchronize(applicationID);
}

int32_t GetMeasurementUnits(CFStringRef applicationID) {
    Boolean valid = false;
    CFIndex units =
        CFPreferencesGetAppIntegerValue(CFSTR("MeasurementsUnit"), applicationID, &valid);
    return valid && units >= kFirstUnit && units <= kLastUnit ? static_cast<int32_t>(units)
                                                              : kDefaultUnit;
}

void SaveMeasurementUnits(CFStringRef applicationID, int32_t units) {
    SetNumber(applicationID, CFSTR("MeasurementsUnit"), units);
}

bool GetSendToDefaultPrintQueue(CFStringRef applicationID) {
    return CFPreferencesGetAppBooleanValue(CFSTR("SendToDefaultPrintQueue"), applicationID,
                                           nullptr) != 0;
}

void SaveDefaults(const DriverContext *context, Handle handle) {
    CFStringRef applicationID = context->bundleIdentifier.Get();
    const PSHPrint record = CopyRecord(handle);
    CFPreferencesSetAppValue(CFSTR("PageOptions"), PageOptions(record).Get(), applicationID);
    CFPreferencesSetAppValue(CFSTR("FileFormat"), record.mEPSFormat_be ? CFSTR("eps") : CFSTR("ps"),
                             applicationID);
    SetNumber(applicationID, CFSTR("PSColourSpace"),
              static_cast<int32_t>(SwapBigEndian(record.mColourSpace_be)));
    CFPreferencesAppSynchronize(applicationID);
}
