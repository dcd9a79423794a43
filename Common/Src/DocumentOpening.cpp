#include "Common/Src/DocumentOpening.h"

#include "Common/Src/DriverContext.h"
#include "Common/Src/PageOutput.h"
#include "Common/Src/postscript/PostscriptDocument.h"
#include "Common/Src/record/Preferences.h"
#include "Common/Src/record/PrintRecord.h"
#include "ppd/ParserError.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "support/Alerts.h"

#include <utility>

namespace {

/// The area that the document's image may cover, in points.
struct Box {
    double llx = 0, lly = 0, urx = 0, ury = 0;
};

[[noreturn]] void Fail(const std::string &message) {
    DisplayError(message.c_str());
    throw int16_t{kZELBadParameter};
}

uint16_t PixelFormat(int32_t colourSpace, uint16_t hostDepth) {
    if (colourSpace == kZELColourSpaceGray) return kZELFormatGray8;
    if (colourSpace == kZELColourSpaceRGB) return kZELFormatXRGB32;
    return hostDepth == kZELFormatXRGB32 ? kZELFormatXRGB32 : kZELFormatCMYK32;
}

/// Within the section: the resolution before the page.
double PriorityOf(FeatureKind kind) {
    return kind == FeatureKind::Resolution ? 10.0 : 30.0;
}

void AddFeature(const FeatureCode &code, PostscriptDocument &document) {
    document.AddCodeToSection(code.text, PostscriptDocument::kSetup, PriorityOf(code.kind));
}

void AddResolution(const PostscriptResolutions &resolutions, const PSHPrint &record,
                   PostscriptDocument &document) {
    const std::string name = RecordName(record.mResolutionName);
    int32_t index = resolutions.FindResolutionByName(name);
    if (index < 0) Fail("Printer does not have a resolution called: " + name);
    AddFeature(resolutions.GetResolution(index).Code(), document);
}

PostscriptPage NamedPage(const PostscriptPages &pages, const PSHPrint &record) {
    const std::string name = RecordName(record.mPageName);
    int32_t index = pages.FindPageByName(name);
    if (index < 0) Fail("Printer does not have a page called: " + name);
    return pages.GetPage(index);
}

PostscriptPage CustomPage(const PostscriptPages &pages, const PSHPrint &record) {
    if (!pages.HasCustomPageSetup()) Fail("Printer does not support variable page sizes");
    double width = DoubleFromBigEndian(record.mPageWidth_be);
    double height = DoubleFromBigEndian(record.mPageHeight_be);
    if (record.mRotated_be) std::swap(width, height);
    return pages.GetCustomPage(width, height);
}

/// Adds the code that selects the page; returns the page's area.
Box AddPage(const PostscriptPages &pages, const PSHPrint &record, PostscriptDocument &document) {
    const PostscriptPage page =
        record.mPageIsCustom_be ? CustomPage(pages, record) : NamedPage(pages, record);
    AddFeature(page.Code(), document);
    return {page.Getllx(), page.Getlly(), page.Geturx(), page.Getury()};
}

/// An EPS file is placed by others: it selects nothing on the printer and has its own size.
Box FillDocument(const PostscriptPrinterInfo &printer, const PSHPrint &record,
                 PostscriptDocument &document) {
    if (record.mEPSFormat_be)
        return {0, 0, DoubleFromBigEndian(record.mPageWidth_be),
                DoubleFromBigEndian(record.mPageHeight_be)};
    AddResolution(printer.Resolutions(), record, document);
    return AddPage(printer.Pages(), record, document);
}

OutputOptions OptionsOf(const DriverContext *context, const PSHPrint &record) {
    OutputOptions options = {};
    options.mirrorHorizontal = record.mFlipH_be != 0;
    options.mirrorVertical = record.mFlipV_be != 0;
    options.rotate90 = record.mRotated_be != 0;
    options.colourMode = static_cast<int32_t>(SwapBigEndian(record.mColourSpace_be));
    options.eps = record.mEPSFormat_be != 0;
    options.sendToPrinter = context->sendToPrintQueue.value_or(
        GetSendToDefaultPrintQueue(context->bundleIdentifier.Get()));
    options.separations = context->separations;
    return options;
}

int16_t OpenFromRecord(DriverContext *context, const PSHPrint &record) {
    PostscriptDocument document;
    OutputGeometry geometry = RecordGeometry(record);
    OutputOptions options = OptionsOf(context, record);
    CFRef<CFStringRef> separation(CFStringCreateWithPascalString(
        kCFAllocatorDefault, record.cmykSeparationName, kCFStringEncodingUTF8));
    options.separationName = separation.Get();
    const uint16_t depth = context->pageInfo.depth;
    if (depth != kZELFormatXRGB32 && depth != kZELFormatCMYK32 && depth != kZELFormatGray8)
        throw int16_t{kZELBadParameter};
    options.pixelFormat = PixelFormat(options.colourMode, depth);
    const bool separates =
        options.colourMode == kZELColourSpaceCMYK && options.pixelFormat == kZELFormatXRGB32;
    const Box box = FillDocument(*context->printerInfo, record, document);
    options.document = &document;
    options.llx = box.llx;
    options.lly = box.lly;
    options.urx = box.urx;
    options.ury = box.ury;
    // A name that is no text names no profile. The writer would take no name for "Standard".
    if (separates && !separation) throw int16_t{kZELFileNotFound};
    return OpenDocument(context->jobName.Get(), context->outputFileName.Get(), &geometry,
                        static_cast<int16_t>(depth), static_cast<int16_t>(options.pixelFormat),
                        &options, context->hotFolder.Get(), &context->mPageOutputSession);
}

} // namespace

int16_t DoOpenDocument(DriverContext *context) {
    if (GetHandleSize(context->record) < static_cast<Size>(sizeof(PSHPrint)))
        return kZELBadParameter;
    try {
        return OpenFromRecord(context, CopyRecord(context->record));
    } catch (int16_t code) {
        return code;
    } catch (...) {
        return kZELBadParameter;
    }
}
