// The assertions belong to the release build too: there is no session to report a failure through.
#undef NDEBUG
#include "Common/Src/PageOutput.h"

#include "Common/Src/BandScaler.h"
#include "Common/Src/postscript/PostscriptWriter.h"
#include "Common/Src/postscript/RowConversion.h"
#include <cassert>
#include <cstdio>
#include <memory>
#include <new>
#include <utility>

/// Room for the widest pixel of all formats.
constexpr uint64_t kWidestPixel = 12;
/// 22 metres at 10000 dpi. A damaged record could ask for 24 GiB, which some systems would hand
/// out, and the writer's rows are as long.
constexpr uint64_t kLongestLine = uint64_t{100} << 20;

struct PageOutputSession {
    ~PageOutputSession() { Output_Kill(output); }

    int16_t sourceFormat = 0; ///< pixel format of the host's bands
    std::unique_ptr<uint8_t[]> lineBuffer;
    ZELRect remaining = {}; ///< part of the page that is not written yet
    int32_t pageWidth = 0, pageHeight = 0;
    RowPipeline pipeline = {};
    OutputPrivate *output = nullptr;
};

namespace {

struct ScanLinePair {
    ScaleLineProc scaleLine;
    EraseLineProc eraseLine;
    bool copies; ///< pixels reach the line buffer unchanged
};

ScanLinePair PairForCMYK(int16_t outputDepth) {
    switch (outputDepth) {
        case 8:
            return {ScaleLine_CMYKToGrey, EraseLine_8, false};
        case 32:
            return {ScaleLine_CMYKToRGB, EraseLineRGB, false};
        default:
            return {ScaleLine_32, EraseLine_32, true};
    }
}

/// No functions for a format that is not known.
ScanLinePair ChooseScanLinePair(int16_t sourceFormat, int16_t outputDepth) {
    switch (sourceFormat) {
        case kZELFormatXRGB32:
            return outputDepth == 8 ? ScanLinePair{ScaleLine_Grey, EraseLine_8, false}
                                    : ScanLinePair{ScaleLine_32, EraseLineRGB, true};
        case kZELFormatCMYK32:
            return PairForCMYK(outputDepth);
        case kZELFormat64:
        case kZELFormat64Plain:
            return {ScaleLine_64, EraseLine_64, true};
        case kZELFormatRGB96:
            return {ScaleLine_96, EraseLineRGB96, true};
        case kZELFormatCMYK96:
            return {ScaleLine_96, EraseLineCMYK96, true};
        case kZELFormatGray8:
            return {ScaleLine_8, EraseLine_8, true};
        default:
            return {};
    }
}

int32_t SourcePixelSize(int16_t format) {
    return PixelSizeFromFormat(format == kZELFormat64Plain ? kZELFormat64 : format);
}

int16_t WriteRow(void *argument, const uint8_t *row) {
    return Output_WriteLine(static_cast<PageOutputSession *>(argument)->output, row);
}

int16_t WriteBlankRows(PageOutputSession &self, int64_t count) {
    int16_t error = kZELNoError;
    for (; count > 0 && error == kZELNoError; --count)
        error = Output_WriteBlankLine(self.output);
    return error;
}

int16_t Reported(const char *where, int16_t error) {
    if (error != kZELNoError) fprintf(stderr, "%s returned: %d\n", where, error);
    return error;
}

int16_t MakePipeline(PageOutputSession &self, int16_t outputDepth, const OutputOptions &options) {
    if (self.pageWidth < 0) return kZELOutOfMemory;
    const uint64_t size = static_cast<uint64_t>(self.pageWidth) * kWidestPixel;
    if (size > kLongestLine) return kZELOutOfMemory;
    self.lineBuffer.reset(new (std::nothrow) uint8_t[size]());
    if (!self.lineBuffer) return kZELOutOfMemory;
    const ScanLinePair pair = ChooseScanLinePair(self.sourceFormat, outputDepth);
    if (!pair.scaleLine) return kZELBadParameter;
    const int32_t pixelSize = SourcePixelSize(self.sourceFormat);
    // A narrower host pixel than the writer reads would make it read past the host's row.
    const bool isWideEnough =
        pixelSize >=
        BytesReadPerPixel(static_cast<ColourMode>(options.colourMode), options.pixelFormat);
    self.pipeline = {WriteRow,
                     &self,
                     pair.scaleLine,
                     pair.eraseLine,
                     self.lineBuffer.get(),
                     self.pageWidth,
                     pixelSize,
                     pair.copies && isWideEnough};
    return kZELNoError;
}

int16_t DrawBand(PageOutputSession &self, const ZELBand &band, const ZELRect &sourceRect,
                 const ZELRect &destRect) {
    if (band.pixelFormat != self.sourceFormat) return kZELPixelFormatDiffers;
    ZELRect clipped = {};
    if (!SectLongRects(destRect, self.remaining, &clipped) || IsEmptyRect(sourceRect))
        return kZELNoError;
    int16_t error = WriteBlankRows(self, int64_t{clipped.top} - self.remaining.top);
    if (error == kZELNoError) error = ZoomRect(band, sourceRect, destRect, clipped, self.pipeline);
    self.remaining.top = clipped.bottom;
    return error;
}

} // namespace

int16_t OpenDocument(CFStringRef title, CFStringRef fileName, const OutputGeometry *geometry,
                     int16_t sourceFormat, int16_t outputDepth, const OutputOptions *options,
                     CFURLRef folder, PageOutputSession **outSession) {
    if (!geometry || !options || !outSession) return kZELBadParameter;
    *outSession = nullptr;
    auto *self = new (std::nothrow) PageOutputSession;
    assert(self != 0); // NOLINT(modernize-use-nullptr): reported text
    std::unique_ptr<PageOutputSession> session(self);
    self->pageWidth = geometry->widthPixels;
    self->pageHeight = geometry->heightPixels;
    self->sourceFormat = sourceFormat;
    int16_t error = MakePipeline(*self, outputDepth, *options);
    if (error != kZELNoError) return error;
    error = Output_Create(folder, fileName, title, geometry, options, &self->output);
    if (error == kZELNoError) *outSession = session.release();
    return Reported("PrinterDriver Output_Create", error);
}

int16_t OpenPage(PageOutputSession *self, const void *, const void *) {
    assert(self != 0); // NOLINT(modernize-use-nullptr): reported text
    self->remaining = {0, 0, self->pageHeight, self->pageWidth};
    return Reported("PrinterDriver OpenPage", Output_AddPage(self->output));
}

int16_t PrintBits(PageOutputSession *self, const ZELBand *band, const ZELRect *sourceRect,
                  const ZELRect *destRect) {
    const bool isComplete = self && band && sourceRect && destRect;
    return Reported("PrinterDriver PrintBits", isComplete
                                                   ? DrawBand(*self, *band, *sourceRect, *destRect)
                                                   : int16_t{kZELBadParameter});
}

int16_t ClosePage(PageOutputSession *self) {
    const int64_t missing = int64_t{self->pageHeight} - self->remaining.top;
    const int16_t error = WriteBlankRows(*self, missing);
    if (error == kZELNoError && missing > 0) self->remaining.top = self->pageHeight;
    return Reported("ClosePage", error);
}

void KillPage(PageOutputSession *) {}

int16_t CloseDocument(PageOutputSession *self, uint64_t *length) {
    // Hosts judge a finished file by looking at it, so there is nobody to tell the result.
    uint64_t made = 0;
    (void)Output_CloseAndMeasure(std::exchange(self->output, nullptr), made);
    if (length) *length = made;
    delete self;
    return kZELNoError;
}

void KillDocument(PageOutputSession *self) {
    delete self;
}
