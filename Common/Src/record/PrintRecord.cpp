#include "Common/Src/record/PrintRecord.h"

#include "Common/Src/record/Preferences.h"
#include "colour/Separations.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "support/CFRef.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>

namespace {

constexpr char kMagic[] = {'P', 'O', 'S', 'T'};
constexpr Size kRecordSize = sizeof(PSHPrint);
constexpr double kSameSize = 0.001; // points

struct SeparationsDeleter {
    void operator()(Separations *list) const { DeleteSeparationsList(list); }
};
using SeparationsOwner = std::unique_ptr<Separations, SeparationsDeleter>;

int32_t TruncatedPixels(double pixels) {
    if (std::isnan(pixels)) return 0;
    constexpr double lowest = std::numeric_limits<int32_t>::min();
    constexpr double highest = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::clamp(pixels, lowest, highest));
}

bool CustomPageIsBad(const PostscriptPages &pages, const PSHPrint &record) {
    if (!pages.HasCustomPageSetup()) return true;
    double minWidth = 0;
    double maxWidth = 0;
    double minHeight = 0;
    double maxHeight = 0;
    pages.GetCustomPageLimits(minWidth, maxWidth, minHeight, maxHeight);
    if (record.mRotated_be) {
        std::swap(minWidth, minHeight);
        std::swap(maxWidth, maxHeight);
    }
    double width = DoubleFromBigEndian(record.mPageWidth_be);
    double height = DoubleFromBigEndian(record.mPageHeight_be);
    return width < minWidth || width > maxWidth || height < minHeight || height > maxHeight;
}

/// A page whose width is right passes whatever its height, and so does one that is wrong both ways:
/// records of hosts that know a page by its paper size instead of its imageable area rely on it.
bool NamedPageIsBad(const PostscriptPages &pages, const PSHPrint &record) {
    int32_t index = pages.FindPageByName(RecordName(record.mPageName));
    if (index < 0) return true;
    const PostscriptPage &page = pages.GetPage(index);
    double width = page.Geturx() - page.Getllx();
    double height = page.Getury() - page.Getlly();
    if (record.mRotated_be) std::swap(width, height);
    bool sameWidth = std::fabs(DoubleFromBigEndian(record.mPageWidth_be) - width) < kSameSize;
    bool sameHeight = std::fabs(DoubleFromBigEndian(record.mPageHeight_be) - height) < kSameSize;
    return !sameWidth && sameHeight;
}

bool ResolutionIsBad(uint64_t dpi_be) {
    double dpi = DoubleFromBigEndian(dpi_be);
    return !(dpi >= double{kZELMinimumDpi} && dpi <= double{kZELMaximumDpi});
}

bool SeparationIsBad(const PSHPrint &record) {
    SeparationsOwner list(ScanSeparationsFolder());
    CFRef<CFStringRef> name(CFStringCreateWithPascalString(
        kCFAllocatorDefault, record.cmykSeparationName, kCFStringEncodingUTF8));
    return !name || !ValidateCMYKSeparation(list.get(), name.Get());
}

bool FieldsAreBad(const PostscriptPrinterInfo &printer, const PSHPrint &record) {
    if (!HasMagic(record)) return true;
    bool bad = !printer.HasPostscriptLevel2();
    uint32_t colourSpace = SwapBigEndian(record.mColourSpace_be);
    if (!printer.HasColour()) bad = bad || colourSpace != kZELColourSpaceGray;
    bad = (record.mPageIsCustom_be ? CustomPageIsBad(printer.Pages(), record)
                                   : NamedPageIsBad(printer.Pages(), record)) ||
          bad;
    if (printer.Resolutions().FindResolutionByName(RecordName(record.mResolutionName)) < 0)
        return true;
    return ResolutionIsBad(record.mXDpi_be) || ResolutionIsBad(record.mYDpi_be) || bad;
}

void SetDefaultPage(const PostscriptPages &pages, PSHPrint &record) {
    if (pages.NumPages() == 0) return;
    const PostscriptPage &page = pages.GetPage(pages.DefaultPageIndex());
    record.mPageWidth_be = DoubleToBigEndian(page.Geturx() - page.Getllx());
    record.mPageHeight_be = DoubleToBigEndian(page.Getury() - page.Getlly());
    SetRecordName(record.mPageName, page.GetName());
}

void SetDefaultResolution(const PostscriptResolutions &resolutions, PSHPrint &record) {
    if (resolutions.NumResolutions() == 0) return;
    const PostscriptResolution &resolution =
        resolutions.GetResolution(resolutions.DefaultResolutionIndex());
    record.mXDpi_be = DoubleToBigEndian(resolution.GetXDpi());
    record.mYDpi_be = DoubleToBigEndian(resolution.GetYDpi());
    SetRecordName(record.mResolutionName, resolution.GetName());
}

/// A printer without colour gets CMYK although only Gray is good for it. ZELPrValidate then reports
/// a change every time, until the host makes the record Gray: hosts take it as the sign to look at
/// the record again.
PSHPrint DefaultRecord(const PostscriptPrinterInfo &printer, CFStringRef applicationID) {
    PSHPrint record = {};
    std::memcpy(record.mMagic_be, kMagic, sizeof kMagic);
    SetDefaultPage(printer.Pages(), record);
    SetDefaultResolution(printer.Resolutions(), record);
    if (printer.HasColour()) record.mColourSpace_be = SwapBigEndian(GetColourSpace(applicationID));
    ReadDefaults(applicationID, record);
    record.copies_be = Int16ToBigEndian(1);
    record.fromPage_be = Int16ToBigEndian(1);
    record.toPage_be = Int16ToBigEndian(999);
    return record;
}

} // namespace

PSHPrint *RecordLock::Record() const {
    return GetHandleSize(mHandle) < kRecordSize ? nullptr : reinterpret_cast<PSHPrint *>(*mHandle);
}

PSHPrint CopyRecord(Handle handle) {
    RecordLock lock(handle);
    PSHPrint record = {};
    Size size = std::min(GetHandleSize(handle), kRecordSize);
    if (size > 0) std::memcpy(&record, *handle, static_cast<size_t>(size));
    return record;
}

bool HasMagic(const PSHPrint &record) {
    return std::memcmp(record.mMagic_be, kMagic, sizeof kMagic) == 0;
}

std::string RecordName(const char (&field)[41]) {
    return {field, strnlen(field, sizeof field)};
}

void SetRecordName(char (&field)[41], const std::string &name) {
    std::memset(field, 0, sizeof field);
    std::memcpy(field, name.data(), std::min(name.size(), sizeof field - 1));
}

OutputGeometry RecordGeometry(const PSHPrint &record) {
    double width = DoubleFromBigEndian(record.mPageWidth_be);
    double height = DoubleFromBigEndian(record.mPageHeight_be);
    return {TruncatedPixels(width * DoubleFromBigEndian(record.mXDpi_be) / 72),
            TruncatedPixels(height * DoubleFromBigEndian(record.mYDpi_be) / 72), width * 25.4 / 72,
            height * 25.4 / 72};
}

int32_t RecordProblem(const PostscriptPrinterInfo &printer, const PSHPrint &record) {
    try {
        if (FieldsAreBad(printer, record)) return kZELBadParameter;
        const bool separates = SwapBigEndian(record.mColourSpace_be) == kZELColourSpaceCMYK;
        return separates && SeparationIsBad(record) ? kZELFileNotFound : kZELNoError;
    } catch (...) {
        return kZELBadParameter;
    }
}

bool HPrintIsBad(const PostscriptPrinterInfo &printer, Handle handle) {
    RecordLock lock(handle);
    const PSHPrint *record = lock.Record();
    return !record || RecordProblem(printer, *record) != kZELNoError;
}

void SetDefaults(const PostscriptPrinterInfo &printer, CFStringRef applicationID, Handle handle) {
    CFPreferencesAppSynchronize(applicationID);
    if (GetHandleSize(handle) != kRecordSize) {
        SetHandleSize(handle, kRecordSize);
        if (MemError() != noErr)
            std::fputs("ZEL PostScript Printer Driver: SethandleSize_compat failed!\n", stderr);
    }
    RecordLock lock(handle);
    PSHPrint record = DefaultRecord(printer, applicationID);
    // A handle that could not be resized takes as much as it holds.
    Size size = std::min(GetHandleSize(handle), kRecordSize);
    if (size > 0) std::memcpy(*handle, &record, static_cast<size_t>(size));
}
