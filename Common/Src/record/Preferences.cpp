#include "Common/Src/record/Preferences.h"

#include "support/BigEndian.h"
#include "support/Bookmark.h"
#include "support/DictionaryHelpers.h"
#include "support/Units.h"

namespace {

constexpr int32_t kFirstUnit = 2;
constexpr int32_t kLastUnit = 4;
constexpr int32_t kDefaultUnit = 3;

CFRef<CFURLRef> URLOfPath(CFStringRef path) {
    return CFRef<CFURLRef>(
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, kCFURLPOSIXPathStyle, false));
}

CFRef<CFDataRef> BookmarkOfLegacyValue(CFPropertyListRef value) {
    if (CFGetTypeID(value) == CFStringGetTypeID())
        return BookmarkOf(URLOfPath(static_cast<CFStringRef>(value)).Get());
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

void SetPreferredPageOptions(CFStringRef applicationID, PSHPrint &record) {
    CFRef<CFPropertyListRef> value(CFPreferencesCopyAppValue(CFSTR("PageOptions"), applicationID));
    if (!value || CFGetTypeID(value.Get()) != CFDictionaryGetTypeID()) return;
    auto options = static_cast<CFDictionaryRef>(value.Get());
    auto flag = [options](CFStringRef key) {
        return SwapBigEndian(uint32_t{GetBooleanFromDictionary(options, key, false)});
    };
    record.mFlipH_be = flag(CFSTR("FlipH"));
    record.mFlipV_be = flag(CFSTR("FlipV"));
    record.mRotated_be = flag(CFSTR("Rotate"));
    const Str255 empty = {};
    GetStr255FromDictionary(options, CFSTR("Separation"), empty, record.cmykSeparationName);
}

bool EPSIsPreferred(CFStringRef applicationID) {
    CFRef<CFPropertyListRef> value(CFPreferencesCopyAppValue(CFSTR("FileFormat"), applicationID));
    return value && CFGetTypeID(value.Get()) == CFStringGetTypeID() &&
           CFStringCompare(static_cast<CFStringRef>(value.Get()), CFSTR("eps"),
                           kCFCompareCaseInsensitive) == kCFCompareEqualTo;
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

bool HasSavedPPD(CFStringRef applicationID) {
    for (CFStringRef key : {CFSTR("PPDBookmark"), CFSTR("PPDFile")})
        if (CFRef<CFPropertyListRef>(CFPreferencesCopyAppValue(key, applicationID))) return true;
    return false;
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
    SetFileLocationPreference(applicationID, CFSTR("HotFolderBookmark"), BookmarkOf(folder).Get());
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

void SaveSendToDefaultPrintQueue(CFStringRef applicationID, bool send) {
    CFPreferencesSetAppValue(CFSTR("SendToDefaultPrintQueue"),
                             send ? kCFBooleanTrue : kCFBooleanFalse, applicationID);
}

int GetDialogUnit(CFStringRef applicationID) {
    Boolean valid = false;
    const CFIndex unit =
        CFPreferencesGetAppIntegerValue(CFSTR("MeasurementUnit"), applicationID, &valid);
    return valid && unit >= kPixels && unit <= kInches ? static_cast<int>(unit) : kMillimetres;
}

void SaveDialogUnit(CFStringRef applicationID, int unit) {
    SetNumber(applicationID, CFSTR("MeasurementUnit"), unit);
}

uint32_t GetColourSpace(CFStringRef applicationID) {
    CFRef<CFPropertyListRef> value(
        CFPreferencesCopyAppValue(CFSTR("PSColourSpace"), applicationID));
    int32_t colourSpace = kZELColourSpaceCMYK;
    if (!value || CFGetTypeID(value.Get()) != CFNumberGetTypeID() ||
        !CFNumberGetValue(static_cast<CFNumberRef>(value.Get()), kCFNumberSInt32Type, &colourSpace))
        return kZELColourSpaceCMYK;
    return static_cast<uint32_t>(colourSpace);
}

void ReadDefaults(CFStringRef applicationID, PSHPrint &record) {
    SetPreferredPageOptions(applicationID, record);
    record.mEPSFormat_be = SwapBigEndian(uint32_t{EPSIsPreferred(applicationID)});
}

void SaveDefaults(CFStringRef applicationID, const PSHPrint &record) {
    CFPreferencesSetAppValue(CFSTR("PageOptions"), PageOptions(record).Get(), applicationID);
    CFPreferencesSetAppValue(CFSTR("FileFormat"), record.mEPSFormat_be ? CFSTR("eps") : CFSTR("ps"),
                             applicationID);
    SetNumber(applicationID, CFSTR("PSColourSpace"),
              static_cast<int32_t>(SwapBigEndian(record.mColourSpace_be)));
    CFPreferencesAppSynchronize(applicationID);
}
