#include "Common/Src/record/PageFitting.h"

#include "Common/Src/record/PageSizes.h"
#include "Common/Src/record/PrintRecord.h"
#include "ppd/PostscriptPrinterInfo.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

double PointsFromMM(double millimetres) {
    return millimetres * 72 / 25.4;
}

double DpiOf(int32_t pixels, double millimetres) {
    return pixels * 25.4 / millimetres;
}

int32_t ClosestResolution(const PostscriptResolutions &resolutions, double dpiX, double dpiY,
                          bool rotated) {
    int32_t best = -1;
    double bestDistance = 0;
    for (int32_t i = 0; i < resolutions.NumResolutions(); ++i) {
        double x = resolutions.GetResolution(i).GetXDpi();
        double y = resolutions.GetResolution(i).GetYDpi();
        if (rotated) std::swap(x, y);
        if (!(x >= dpiX && y >= dpiY)) continue;
        double distance = (y - dpiY) * (y - dpiY) + (x - dpiX) * (x - dpiX);
        if (best >= 0 && !(distance < bestDistance)) continue;
        best = i;
        bestDistance = distance;
    }
    return best >= 0 ? best : resolutions.DefaultResolutionIndex();
}

int32_t SmallestFittingPage(const PostscriptPages &pages, double wantedWidth, double wantedHeight,
                            bool rotated) {
    int32_t best = -1;
    double bestScore = 0;
    for (int32_t i = 0; i < pages.NumPages(); ++i) {
        const PostscriptPage &page = pages.GetPage(i);
        const PageSize size = SizeInRecord(page, rotated);
        if (!(size.width >= wantedWidth && size.height >= wantedHeight)) continue;
        double score = size.width * size.height / (wantedWidth * wantedHeight);
        if (best >= 0 && !(score < bestScore)) continue;
        best = i;
        bestScore = score;
    }
    return best >= 0 ? best : pages.DefaultPageIndex();
}

void SetCustomPage(const PostscriptPages &pages, double wantedWidth, double wantedHeight,
                   PSHPrint *record) {
    const auto limits = LimitsInRecord(pages, record->mRotated_be != 0);
    if (!limits) return;
    record->mPageIsCustom_be = SwapBigEndian(uint32_t{1});
    record->mPageName[0] = 0;
    record->mPageWidth_be = DoubleToBigEndian(Clamped(wantedWidth, limits->width));
    record->mPageHeight_be = DoubleToBigEndian(Clamped(wantedHeight, limits->height));
}

void SetNamedPage(const PostscriptPages &pages, double wantedWidth, double wantedHeight,
                  PSHPrint *record) {
    if (pages.NumPages() == 0) return;
    const PostscriptPage &page = pages.GetPage(
        SmallestFittingPage(pages, wantedWidth, wantedHeight, record->mRotated_be != 0));
    record->mPageWidth_be = DoubleToBigEndian(page.Geturx() - page.Getllx());
    record->mPageHeight_be = DoubleToBigEndian(page.Getury() - page.Getlly());
    SetRecordName(record->mPageName, page.GetName());
    record->mPageIsCustom_be = 0;
}

} // namespace

void SetBestHardwareResolution(const PostscriptPrinterInfo *printer, const PageInfo_tag *page,
                               PSHPrint *record) {
    double dpiX = DpiOf(page->widthPixels, page->widthMM);
    double dpiY = DpiOf(page->heightPixels, page->heightMM);
    uint64_t dpi_be = DoubleToBigEndian(std::max(std::round(dpiX), std::round(dpiY)));
    record->mXDpi_be = dpi_be;
    record->mYDpi_be = dpi_be;
    const PostscriptResolutions &resolutions = printer->Resolutions();
    if (resolutions.NumResolutions() == 0) return;
    int32_t index = ClosestResolution(resolutions, dpiX, dpiY, record->mRotated_be != 0);
    SetRecordName(record->mResolutionName, resolutions.GetResolution(index).GetName());
}

void SetBestPageSize(const PostscriptPrinterInfo *printer, const PageInfo_tag *page,
                     PSHPrint *record) {
    double wantedWidth = PointsFromMM(page->widthMM);
    double wantedHeight = PointsFromMM(page->heightMM);
    const PostscriptPages &pages = printer->Pages();
    if (pages.HasCustomPageSetup())
        SetCustomPage(pages, wantedWidth, wantedHeight, record);
    else
        SetNamedPage(pages, wantedWidth, wantedHeight, record);
}

bool PageFitsOnCustomPaper(const PostscriptPrinterInfo *printer, const PageInfo_tag *page,
                           const PSHPrint *record) {
    const PostscriptPages &pages = printer->Pages();
    if (!pages.HasCustomPageSetup()) return true;
    const auto limits = LimitsInRecord(pages, record->mRotated_be != 0);
    return !limits || (PointsFromMM(page->widthMM) <= limits->width.high &&
                       PointsFromMM(page->heightMM) <= limits->height.high);
}

void SetSuggestions(const PostscriptPrinterInfo *printer, Handle handle, const PageInfo_tag *page) {
    if (page->widthPixels < 1 || page->heightPixels < 1) return;
    RecordLock lock(handle);
    PSHPrint *record = lock.Record();
    if (!record) return;
    try {
        SetBestHardwareResolution(printer, page, record);
        SetBestPageSize(printer, page, record);
    } catch (...) {
        return; // the record keeps what was written so far
    }
}
