#include "Common/Src/record/PageSetup.h"

#include "Common/Src/record/PageFitting.h"
#include "Common/Src/record/PageSizes.h"
#include "Common/Src/record/Preferences.h"
#include "Common/Src/record/PrintRecord.h"
#include "Common/Src/record/PrinterLoading.h"
#include "colour/Separations.h"
#include "ppd/LanguageEncoding.h"
#include "ppd/MiniParser.h"
#include "ppd/ParserError.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "support/Bookmark.h"
#include "support/CFText.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <sys/stat.h>
#include <utility>

namespace {

/// Sizes of EPS files, which no printer limits.
constexpr NumberRange kEPSLimits = {0.01, 1000000.0};

uint32_t Flag(bool flag) {
    return SwapBigEndian(uint32_t{flag});
}

} // namespace

std::vector<std::string> TitlesOrError(const std::function<std::vector<std::string>()> &list,
                                       std::string *error) {
    try {
        return list();
    } catch (const PPD::ParserError &e) {
        *error = "PPD Error: " + e.ErrorMessage();
    } catch (...) {
        *error = "PPD Error: unexpected failure";
    }
    return {};
}

void PageSetup::Use(const PSHPrint &record, const PageSetupSources *sources) {
    mRecord = record;
    mSources = sources;
    mSheets.reset();
}

const std::string &PageSetup::PrinterName() const {
    return Printer().GetName();
}
std::string PageSetup::PrinterPath() const {
    const CFRef<CFStringRef> path(
        Printer().URL() ? CFURLCopyFileSystemPath(Printer().URL(), kCFURLPOSIXPathStyle) : nullptr);
    return UTF8Text(path.Get()).value_or("");
}
bool PageSetup::PrinterHasColour() const {
    return Printer().HasColour();
}

double PageSetup::PaperWidth() const {
    return DoubleFromBigEndian(mRecord.mPageWidth_be);
}
double PageSetup::PaperHeight() const {
    return DoubleFromBigEndian(mRecord.mPageHeight_be);
}
double PageSetup::XDpi() const {
    return DoubleFromBigEndian(mRecord.mXDpi_be);
}
double PageSetup::YDpi() const {
    return DoubleFromBigEndian(mRecord.mYDpi_be);
}

void PageSetup::SetPaperSize(double width, double height) {
    mRecord.mPageWidth_be = DoubleToBigEndian(width);
    mRecord.mPageHeight_be = DoubleToBigEndian(height);
}

const PPD::SheetSizes &PageSetup::Sheets() const {
    if (!mSheets) {
        mSheets.emplace();
        try {
            *mSheets = PPD::SheetSizesOf(Printer().URL());
        } catch (...) {
            // The file has gone since the printer was read: a picture without its sheets.
        }
    }
    return *mSheets;
}

/// The sheet of a page whose area is in place. Where the printer's file does not tell it, the other
/// two margins are taken to be as wide.
void PageSetup::PlaceSheet(const std::string &page, PagePlace &place) const {
    const auto sheet = Sheets().find(page);
    const bool isTold = sheet != Sheets().end();
    place.sheetWidth = isTold ? sheet->second.width : place.width + 2 * place.left;
    place.sheetHeight = isTold ? sheet->second.height : place.height + 2 * place.bottom;
    // An area may reach over its sheet's edges by what its numbers are rounded.
    place.sheetWidth = std::max(place.sheetWidth, place.left + place.width);
    place.sheetHeight = std::max(place.sheetHeight, place.bottom + place.height);
}

PagePlace PageSetup::PlaceOnSheet() const {
    PagePlace place;
    place.width = place.sheetWidth = PaperWidth();
    place.height = place.sheetHeight = PaperHeight();
    if (IsRotated()) {
        std::swap(place.width, place.height);
        std::swap(place.sheetWidth, place.sheetHeight);
    }
    const PostscriptPages &pages = Printer().Pages();
    const std::string name = RecordName(mRecord.mPageName);
    const int index = pages.FindPageByName(name);
    // An EPS file is cut to what is printed: there is no sheet around it.
    if (IsCustomPaper() || IsEPS() || index < 0) return place;
    place.left = std::max(0.0, pages.GetPage(index).Getllx());
    place.bottom = std::max(0.0, pages.GetPage(index).Getlly());
    PlaceSheet(name, place);
    return place;
}

int PageSetup::ColourSpace() const {
    return static_cast<int>(SwapBigEndian(mRecord.mColourSpace_be));
}
void PageSetup::SetColourSpace(int colourSpace) {
    mRecord.mColourSpace_be = SwapBigEndian(static_cast<uint32_t>(colourSpace));
}
void PageSetup::SetRotated(bool flag) {
    mRecord.mRotated_be = Flag(flag);
}
void PageSetup::SetFlippedHorizontally(bool flag) {
    mRecord.mFlipH_be = Flag(flag);
}
void PageSetup::SetFlippedVertically(bool flag) {
    mRecord.mFlipV_be = Flag(flag);
}
void PageSetup::SetEPS(bool flag) {
    mRecord.mEPSFormat_be = Flag(flag);
}

bool PageSetup::CanUseCustomPageSizes() const {
    return IsEPS() || Printer().Pages().HasCustomPageSetup();
}

CustomDimensions PageSetup::CustomLimits() const {
    const CustomDimensions unlimited = {kEPSLimits, kEPSLimits};
    if (IsEPS()) return unlimited;
    return LimitsInRecord(Printer().Pages(), IsRotated()).value_or(unlimited);
}

void PageSetup::UsePage(int index) {
    const PostscriptPage &page = Printer().Pages().GetPage(index);
    const PageSize size = SizeInRecord(page, IsRotated());
    SetRecordName(mRecord.mPageName, page.GetName());
    mRecord.mPageIsCustom_be = Flag(false);
    SetPaperSize(size.width, size.height);
}

void PageSetup::UseCustomSize(double width, double height) {
    const CustomDimensions limits = CustomLimits();
    mRecord.mPageIsCustom_be = Flag(true);
    SetPaperSize(Clamped(width, limits.width), Clamped(height, limits.height));
}

int PageSetup::SyncPage() {
    if (CanUseCustomPageSizes() && IsCustomPaper()) {
        UseCustomSize(PaperWidth(), PaperHeight());
        return kCustomPageTag;
    }
    const PostscriptPages &pages = Printer().Pages();
    if (pages.NumPages() == 0) return kNoPageTag;
    int index = pages.FindPageByName(RecordName(mRecord.mPageName));
    if (index < 0) index = pages.DefaultPageIndex();
    UsePage(index);
    return index;
}

int PageSetup::SyncResolution() {
    const PostscriptResolutions &resolutions = Printer().Resolutions();
    if (resolutions.NumResolutions() == 0) return -1;
    int index = resolutions.FindResolutionByName(RecordName(mRecord.mResolutionName));
    if (index >= 0) return index;
    // What the pop-up shows is what is printed: a name that this printer lacks would fail the job.
    index = resolutions.DefaultResolutionIndex();
    ChooseResolution(index);
    return index;
}

void PageSetup::ChooseCustomPage() {
    UseCustomSize(PaperWidth(), PaperHeight());
}

void PageSetup::ChoosePage(int index) {
    const PostscriptPages &pages = Printer().Pages();
    if (index < 0 || index >= pages.NumPages()) return;
    UsePage(index);
}

void PageSetup::ChooseResolution(int index) {
    const PostscriptResolutions &resolutions = Printer().Resolutions();
    if (index < 0 || index >= resolutions.NumResolutions()) return;
    SetRecordName(mRecord.mResolutionName, resolutions.GetResolution(index).GetName());
}

bool PageSetup::HasDocumentSize() const {
    const PageInfo_tag &page = mSources->document;
    return page.widthPixels >= 1 && page.heightPixels >= 1 && page.widthMM > 0 && page.heightMM > 0;
}

bool PageSetup::DocumentFitsOnCustomPaper() const {
    return PageFitsOnCustomPaper(&Printer(), &mSources->document, &mRecord);
}

void PageSetup::SetSizeFromDocument() {
    if (!HasDocumentSize()) return;
    try {
        SetBestHardwareResolution(&Printer(), &mSources->document, &mRecord);
        SetBestPageSize(&Printer(), &mSources->document, &mRecord);
    } catch (...) {
        return; // the record keeps what was written, as when a record is validated
    }
}

int PageSetup::PageWithSizeText(const std::string &width, const std::string &height, int unit,
                                double widthPoints, double heightPoints) const {
    // Equal texts mean sizes less than two units apart: the rest need not be formatted, which would
    // take longer than a key press with hundreds of pages.
    const double nearX = PointsFromDisplayed(2, unit, XDpi());
    const double nearY = PointsFromDisplayed(2, unit, YDpi());
    const PostscriptPages &pages = Printer().Pages();
    for (int32_t i = 0; i < pages.NumPages(); ++i) {
        const PageSize size = SizeInRecord(pages.GetPage(i), IsRotated());
        if (std::fabs(size.width - widthPoints) > nearX) continue;
        if (std::fabs(size.height - heightPoints) > nearY) continue;
        if (FormatPoints(size.width, unit, XDpi()) == width &&
            FormatPoints(size.height, unit, YDpi()) == height)
            return i;
    }
    return -1;
}

bool PageSetup::TypeSize(const std::string &width, const std::string &height, int unit, int *tag) {
    const CustomDimensions limits = CustomLimits();
    double widthPoints = 0;
    double heightPoints = 0;
    if (!ReadDimension(width, unit, XDpi(), limits.width, widthPoints)) return false;
    if (!ReadDimension(height, unit, YDpi(), limits.height, heightPoints)) return false;
    const int page = PageWithSizeText(width, height, unit, widthPoints, heightPoints);
    *tag = page >= 0 ? page : kCustomPageTag;
    if (page >= 0) {
        // With the page's own size: with the rounded one that was typed, validation can refuse it.
        UsePage(page);
    } else {
        mRecord.mPageIsCustom_be = Flag(true);
        SetRecordName(mRecord.mPageName, "");
        SetPaperSize(widthPoints, heightPoints);
    }
    return true;
}

NumberRange PageSetup::ResolutionLimits() const {
    return {double{kZELMinimumDpi}, double{kZELMaximumDpi}};
}

bool PageSetup::TypeResolution(const std::string &text) {
    double dpi = 0;
    if (FetchDoubleFromText(text, dpi, ResolutionLimits()) != kFetchNumber) return false;
    mRecord.mXDpi_be = DoubleToBigEndian(dpi);
    mRecord.mYDpi_be = DoubleToBigEndian(dpi);
    return true;
}

std::string PageSetup::Title(const std::string &uiName) const {
    const CFRef<CFStringRef> text = PPD::DecodeText(uiName, Printer().GetLanguageEncoding());
    return UTF8Text(text.Get()).value_or("PPD Error");
}

std::vector<std::string> PageSetup::PageTitles(std::string *error) const {
    const PostscriptPages &pages = Printer().Pages();
    return TitlesOrError(
        [this, &pages] {
            std::vector<std::string> titles;
            titles.reserve(static_cast<size_t>(pages.NumPages()));
            for (int32_t i = 0; i < pages.NumPages(); ++i)
                titles.push_back(Title(pages.GetPage(i).GetUIName()));
            return titles;
        },
        error);
}

std::vector<std::string> PageSetup::ResolutionTitles(std::string *error) const {
    const PostscriptResolutions &resolutions = Printer().Resolutions();
    return TitlesOrError(
        [this, &resolutions] {
            std::vector<std::string> titles;
            titles.reserve(static_cast<size_t>(resolutions.NumResolutions()));
            for (int32_t i = 0; i < resolutions.NumResolutions(); ++i)
                titles.push_back(Title(resolutions.GetResolution(i).GetUIName()));
            return titles;
        },
        error);
}

CFRef<CFStringRef> PageSetup::SeparationName() {
    CFRef<CFStringRef> name(CFStringCreateWithPascalString(
        kCFAllocatorDefault, mRecord.cmykSeparationName, kCFStringEncodingUTF8));
    if (name) return name;
    SetSeparationName(CFSTR(""));
    return CFRef<CFStringRef>::Retain(CFSTR(""));
}

void PageSetup::SetSeparationName(CFStringRef name) {
    uint8_t pascal[256] = {};
    if (!CFStringGetPascalString(name, pascal, sizeof pascal, kCFStringEncodingUTF8)) return;
    // Nothing of an earlier, longer name stays behind.
    std::fill(pascal + pascal[0] + 1, pascal + sizeof pascal, uint8_t{0});
    std::memcpy(mRecord.cmykSeparationName, pascal, sizeof pascal);
}

int PageSetup::SeparationCount() const {
    return mSources->separations ? CountCMYKSeparation(mSources->separations) : 1;
}

CFStringRef PageSetup::SeparationNameAt(int index) const {
    return mSources->separations ? GetCMYKSeparationName(mSources->separations, index)
                                 : CFSTR("Standard");
}

int PageSetup::SeparationIndex(CFStringRef name) const {
    for (int i = 0; i < SeparationCount(); ++i)
        if (CFEqual(SeparationNameAt(i), name)) return i;
    return 0;
}

bool PageSetup::IsGoodSeparation(CFStringRef name) const {
    try {
        return ValidateCMYKSeparation(mSources->separations, name);
    } catch (...) {
        return false;
    }
}

void PageSetup::LoadPrinter(CFURLRef ppd) {
    PostscriptPrinterInfo *loaded = LoadPrinterInfo(ppd).release();
    delete *mSources->printer;
    *mSources->printer = loaded;
    mSheets.reset();
    if (!mSavedPrinterIsReplaced) mSavedPrinter = CopySavedPPDFile(mSources->preferencesDomain);
    mSavedPrinterIsReplaced = true;
    SavePPDFileLocation(mSources->preferencesDomain, BookmarkOf(ppd).Get());
}

void PageSetup::RestoreSavedPrinter() {
    if (mSavedPrinterIsReplaced)
        RestoreSavedPPDFile(mSources->preferencesDomain, mSavedPrinter.Get());
}

int PageSetup::SavedUnit() const {
    return GetDialogUnit(mSources->preferencesDomain);
}
bool PageSetup::SendsToPrintQueue() const {
    return mSources->sendToPrintQueue.value_or(
        GetSendToDefaultPrintQueue(mSources->preferencesDomain));
}
void PageSetup::SavePreferences(int unit, bool sendToPrintQueue) {
    SaveDialogUnit(mSources->preferencesDomain, unit);
    SaveSendToDefaultPrintQueue(mSources->preferencesDomain, sendToPrintQueue);
}

bool PageSetup::IsPPDFile(const std::string &path) const {
    // The panel asks about everything in a folder: nothing but a regular file may be opened.
    struct stat status;
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    try {
        const CFRef<CFURLRef> url(CFURLCreateFromFileSystemRepresentation(
            kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(path.data()),
            static_cast<CFIndex>(path.size()), 0));
        if (!url) return false;
        const PPD::MiniParser parser(url.Get());
        return true;
    } catch (...) {
        return false;
    }
}
