#include "Common/Src/record/RecordSettings.h"

#include "Common/Src/record/PrintRecord.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

namespace {

constexpr uint32_t kFirstSize = 400;    // of the structure when it was new
constexpr uint32_t kLargestSize = 4096; // a larger one was never written by the host
constexpr int32_t kLastPage = 999;

static_assert(offsetof(ZELRecordSettings, separationName) == 144,
              "hosts know the places of fields");
static_assert(sizeof(ZELRecordSettings) >= kFirstSize, "fields are only added");

bool IsSize(uint32_t size) {
    return size >= kFirstSize && size <= kLargestSize;
}

uint32_t KnownPart(uint32_t size) {
    return std::min<uint32_t>(size, sizeof(ZELRecordSettings));
}

/// The text of a field that need not end in a zero.
template <size_t N>
std::string TextOf(const char (&field)[N]) {
    return {field, strnlen(field, N)};
}

/// A name without its zero fills the field and ends behind it.
void TellName(const char (&field)[41], char (&name)[42]) {
    std::memcpy(name, field, strnlen(field, sizeof field));
}

ZELRecordSettings SettingsOf(const PSHPrint &record) {
    ZELRecordSettings settings = {};
    settings.size = sizeof settings;
    settings.colourSpace = SwapBigEndian(record.mColourSpace_be);
    settings.pageWidth = DoubleFromBigEndian(record.mPageWidth_be);
    settings.pageHeight = DoubleFromBigEndian(record.mPageHeight_be);
    settings.xDpi = DoubleFromBigEndian(record.mXDpi_be);
    settings.yDpi = DoubleFromBigEndian(record.mYDpi_be);
    settings.copies = Int16FromBigEndian(record.copies_be);
    settings.firstPage = Int16FromBigEndian(record.fromPage_be);
    settings.lastPage = Int16FromBigEndian(record.toPage_be);
    settings.pageIsCustom = record.mPageIsCustom_be != 0;
    settings.mirrorHorizontal = record.mFlipH_be != 0;
    settings.mirrorVertical = record.mFlipV_be != 0;
    settings.rotated = record.mRotated_be != 0;
    settings.eps = record.mEPSFormat_be != 0;
    TellName(record.mPageName, settings.pageName);
    TellName(record.mResolutionName, settings.resolutionName);
    std::memcpy(settings.separationName, record.cmykSeparationName + 1,
                record.cmykSeparationName[0]);
    return settings;
}

// What a record says already is left alone: a flag may be any bits, and behind a name anything may
// stand.

void TakeFlag(uint8_t flag, uint32_t &field_be) {
    if ((flag != 0) != (field_be != 0)) field_be = SwapBigEndian(uint32_t{flag != 0});
}

bool TakeName(const char (&name)[42], char (&field)[41]) {
    const std::string text = TextOf(name);
    if (text == RecordName(field)) return true;
    if (text.size() >= sizeof field) return false;
    SetRecordName(field, text);
    return true;
}

bool TakeSeparation(const ZELRecordSettings &settings, const ZELRecordSettings &before,
                    PSHPrint &record) {
    const std::string text = TextOf(settings.separationName);
    if (text == TextOf(before.separationName)) return true;
    if (text.size() >= sizeof settings.separationName) return false;
    std::memset(record.cmykSeparationName, 0, sizeof record.cmykSeparationName);
    record.cmykSeparationName[0] = static_cast<uint8_t>(text.size());
    std::memcpy(record.cmykSeparationName + 1, text.data(), text.size());
    return true;
}

bool TakeNumber(int32_t number, int16_t &field_be) {
    if (number != static_cast<int16_t>(number)) return false;
    field_be = Int16ToBigEndian(static_cast<int16_t>(number));
    return true;
}

/// False when the record has no room for something.
bool TakeSettings(const ZELRecordSettings &settings, PSHPrint &record) {
    const ZELRecordSettings before = SettingsOf(record);
    record.mColourSpace_be = SwapBigEndian(settings.colourSpace);
    record.mPageWidth_be = DoubleToBigEndian(settings.pageWidth);
    record.mPageHeight_be = DoubleToBigEndian(settings.pageHeight);
    record.mXDpi_be = DoubleToBigEndian(settings.xDpi);
    record.mYDpi_be = DoubleToBigEndian(settings.yDpi);
    TakeFlag(settings.pageIsCustom, record.mPageIsCustom_be);
    TakeFlag(settings.mirrorHorizontal, record.mFlipH_be);
    TakeFlag(settings.mirrorVertical, record.mFlipV_be);
    TakeFlag(settings.rotated, record.mRotated_be);
    TakeFlag(settings.eps, record.mEPSFormat_be);
    return TakeNumber(settings.copies, record.copies_be) &&
           TakeNumber(settings.firstPage, record.fromPage_be) &&
           TakeNumber(settings.lastPage, record.toPage_be) &&
           TakeName(settings.pageName, record.mPageName) &&
           TakeName(settings.resolutionName, record.mResolutionName) &&
           TakeSeparation(settings, before, record);
}

bool IsLength(double points) {
    return std::isfinite(points) && points > 0;
}

/// Is all within the ranges of ZELRecordSettings? Printers are asked about the rest.
bool IsWithinRanges(const ZELRecordSettings &settings) {
    return settings.colourSpace <= kZELColourSpaceRGB && IsLength(settings.pageWidth) &&
           IsLength(settings.pageHeight) && settings.copies >= 1 && settings.copies <= kLastPage &&
           settings.firstPage >= 1 && settings.firstPage <= settings.lastPage &&
           settings.lastPage <= kLastPage;
}

/// Fields that a version to come has added, and that say something.
bool AsksForMore(const ZELRecordSettings &settings) {
    const auto *bytes = reinterpret_cast<const uint8_t *>(&settings);
    const auto isSet = [](uint8_t byte) { return byte != 0; };
    return std::any_of(std::begin(settings.reserved), std::end(settings.reserved), isSet) ||
           std::any_of(bytes + KnownPart(settings.size), bytes + settings.size, isSet);
}

} // namespace

int32_t GetRecordSettings(Handle handle, ZELRecordSettings *settings) {
    RecordLock lock(handle);
    const PSHPrint *record = lock.Record();
    if (!record || !HasMagic(*record) || !settings || !IsSize(settings->size))
        return kZELBadParameter;
    const uint32_t size = settings->size;
    const ZELRecordSettings known = SettingsOf(*record);
    std::memset(settings, 0, size);
    std::memcpy(settings, &known, KnownPart(size));
    settings->size = size;
    return kZELNoError;
}

int32_t SetRecordSettings(const PostscriptPrinterInfo *printer, Handle handle,
                          const ZELRecordSettings *settings) {
    RecordLock lock(handle);
    PSHPrint *record = lock.Record();
    if (!record || !HasMagic(*record) || !settings || !IsSize(settings->size) ||
        AsksForMore(*settings))
        return kZELBadParameter;
    // A host of an older version leaves the fields alone that it does not know.
    ZELRecordSettings wanted = SettingsOf(*record);
    std::memcpy(&wanted, settings, KnownPart(settings->size));
    PSHPrint changed = *record;
    if (!TakeSettings(wanted, changed)) return kZELBadParameter;
    if (printer) {
        if (!IsWithinRanges(wanted)) return kZELBadParameter;
        if (const int32_t problem = RecordProblem(*printer, changed)) return problem;
    }
    *record = changed;
    return kZELNoError;
}
