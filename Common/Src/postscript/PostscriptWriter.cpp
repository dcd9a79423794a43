#include "Common/Src/postscript/PostscriptWriter.h"

#include "Common/Src/postscript/OutputFiles.h"
#include "Common/Src/postscript/PrintQueue.h"
#include "Common/Src/stream/StreamEncoders.h"
#include "Common/Src/stream/Writebuffer.h"
#include "colour/Separations.h"
#include "support/CFText.h"
#include <cstring>
#include <new>
#include <unistd.h>
#include <utility>

namespace {

constexpr mode_t kFileMode = 0666;
constexpr int64_t kSizeHint = 5242880;
constexpr CFIndex kDateSize = 1024;

/// Runs `action`, whose failures are result codes, and turns what it throws into one.
template <typename Action>
int16_t Guarded(Action action) {
    try {
        return action();
    } catch (int16_t code) {
        return code;
    } catch (const std::bad_alloc &) {
        return kZELOutOfMemory;
    } catch (...) {
        return kZELUnexpectedFailure;
    }
}

/// Now, as the user's locale writes it; empty when it cannot be told in a line of sensible length.
std::string CreationDate() {
    const CFRef<CFLocaleRef> locale(CFLocaleCopyCurrent());
    const CFRef<CFDateFormatterRef> formatter(
        CFDateFormatterCreate(kCFAllocatorDefault, locale.Get(), kCFDateFormatterMediumStyle,
                              kCFDateFormatterMediumStyle));
    if (!formatter) return {};
    const CFRef<CFStringRef> date(CFDateFormatterCreateStringWithAbsoluteTime(
        kCFAllocatorDefault, formatter.Get(), CFAbsoluteTimeGetCurrent()));
    char bytes[kDateSize];
    if (!date || !CFStringGetCString(date.Get(), bytes, kDateSize, kCFStringEncodingUTF8))
        return {};
    return bytes;
}

DocumentLayout LayoutFrom(const OutputGeometry &geometry, const OutputOptions &options) {
    DocumentLayout layout;
    layout.widthPixels = geometry.widthPixels;
    layout.heightPixels = geometry.heightPixels;
    layout.widthMM = geometry.widthMM;
    layout.heightMM = geometry.heightMM;
    layout.colourMode = static_cast<ColourMode>(options.colourMode);
    layout.mirrorHorizontal = options.mirrorHorizontal != 0;
    layout.mirrorVertical = options.mirrorVertical != 0;
    layout.rotate90 = options.rotate90 != 0;
    layout.eps = options.eps != 0;
    layout.llx = options.llx;
    layout.lly = options.lly;
    layout.urx = options.urx;
    layout.ury = options.ury;
    if (options.document) layout.document = *options.document;
    return layout;
}

/// Hands the collected text to the Writebuffer, past the encoder.
int16_t WriteText(OutputPrivate &output) {
    uint64_t count = output.textBuffer.size();
    const int16_t error = WBWrite(output.writeBuffer, &count, output.textBuffer.data());
    output.textBuffer.clear();
    return error;
}

int16_t StartStream(OutputPrivate &output) {
    if (output.fd < 0) return kZELFileNotCreated;
    output.writeBuffer = NewWbuffer(kWBufferCapacity, kSizeHint, output.fd);
    if (!output.writeBuffer) return kZELOutOfMemory;
    output.encoder = std::make_unique<ASCII85StreamEncoder>(output.writeBuffer);
    return kZELNoError;
}

/// Ends the stream. A file whose data did not arrive stays open, for Output_Kill to delete.
int16_t CloseFile(OutputPrivate &output) {
    output.encoder.reset();
    int64_t end = 0;
    const int16_t error = DisposeWbuffer(std::exchange(output.writeBuffer, nullptr), &end);
    output.length += static_cast<uint64_t>(end);
    if (error != kZELNoError) return error;
    close(std::exchange(output.fd, -1));
    return kZELNoError;
}

int16_t WriteOpening(OutputPrivate &output, CFStringRef title) {
    const std::optional<std::string> titleText = UTF8Text(title);
    if (!titleText) return kZELBadParameter;
    AppendHeader(output.textBuffer, output.layout, *titleText, CreationDate());
    AppendProlog(output.textBuffer, output.layout);
    AppendSetup(output.textBuffer, output.layout);
    return WriteText(output);
}

/// Text after the image data of a page; an EPS file is complete with it.
int16_t EndPage(OutputPrivate &output) {
    if (!output.encoder) return kZELFileNotCreated;
    const int16_t error = output.encoder->Close();
    if (error != kZELNoError) return error;
    AppendPageEnd(output.textBuffer, output.layout);
    if (output.layout.eps) AppendDocumentEnd(output.textBuffer, output.layout, output.pageCount);
    const int16_t textError = WriteText(output);
    if (textError != kZELNoError || !output.layout.eps) return textError;
    return CloseFile(output);
}

int16_t EndDocument(OutputPrivate &output) {
    const int16_t pageError = EndPage(output);
    if (pageError != kZELNoError || output.layout.eps) return pageError;
    AppendDocumentEnd(output.textBuffer, output.layout, output.pageCount);
    const int16_t textError = WriteText(output);
    return textError != kZELNoError ? textError : CloseFile(output);
}

CFRef<CFStringRef> PageBaseName(const OutputPrivate &output) {
    if (output.pageCount == 1 || !output.baseName) return output.baseName;
    return CFRef(CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%@_p%02d"),
                                          output.baseName.Get(), output.pageCount));
}

int16_t OpenPageFile(OutputPrivate &output) {
    const CFRef<CFStringRef> name = PageBaseName(output);
    output.fd = CreateAndOpenUniqueFileInFolder(output.folderURL.Get(), name.Get(), CFSTR("eps"),
                                                kFileMode, output.fileURL);
    const int16_t error = StartStream(output);
    return error != kZELNoError ? error : WriteOpening(output, name.Get());
}

int16_t AddPage(OutputPrivate &output) {
    int16_t error = output.pageCount > 0 ? EndPage(output) : int16_t{kZELNoError};
    if (error != kZELNoError) return error;
    ++output.pageCount;
    if (output.layout.eps) error = OpenPageFile(output);
    if (error != kZELNoError) return error;
    AppendPageStart(output.textBuffer, output.layout, output.pageCount);
    return WriteText(output);
}

int16_t OpenDocumentFile(OutputPrivate &output, CFStringRef fileName) {
    CFURLRef folder = output.folderURL.Get();
    output.fd = fileName ? CreateFileInFolder(folder, fileName, kFileMode, output.fileURL)
                         : CreateAndOpenUniqueFileInFolder(folder, output.title.Get(), CFSTR("ps"),
                                                           kFileMode, output.fileURL);
    const int16_t error = StartStream(output);
    return error != kZELNoError ? error : WriteOpening(output, output.title.Get());
}

std::unique_ptr<uint8_t[]> NewRow(uint64_t size) {
    return std::unique_ptr<uint8_t[]>(new (std::nothrow) uint8_t[size]);
}

int16_t MakeRows(OutputPrivate &output, uint16_t pixelFormat) {
    const ColourMode mode = output.layout.colourMode;
    if (output.layout.widthPixels < 0) return kZELOutOfMemory;
    const auto width = static_cast<uint64_t>(output.layout.widthPixels);
    output.rowBytes = width * static_cast<uint64_t>(ComponentCount(mode));
    output.rowBuffer = NewRow(RowBufferSize(width));
    output.blankRow = NewRow(output.rowBytes);
    if (!output.rowBuffer || !output.blankRow) return kZELOutOfMemory;
    memset(output.blankRow.get(), mode == ColourMode::CMYK ? 0 : 255, output.rowBytes);
    output.convertRow = ChooseRowConversion(mode, pixelFormat);
    output.rowContext = {output.layout.widthPixels, nullptr, output.rowBuffer.get()};
    return kZELNoError;
}

int16_t MakeSeparation(OutputPrivate &output, const OutputOptions &options) {
    const bool isNeeded =
        output.layout.colourMode == ColourMode::CMYK && options.pixelFormat == kZELFormatXRGB32;
    if (!isNeeded) return kZELNoError;
    const int16_t error =
        GetCMYKSeparation(options.separations, options.separationName, &output.separation);
    output.rowContext.separation = output.separation;
    return error;
}

int16_t Prepare(OutputPrivate &output, CFStringRef fileName, const OutputOptions &options) {
    if (output.layout.eps) output.baseName = fileName ? CreateBaseName(fileName) : output.title;
    int16_t error = MakeRows(output, options.pixelFormat);
    if (error == kZELNoError) error = MakeSeparation(output, options);
    if (error != kZELNoError || output.layout.eps) return error;
    return OpenDocumentFile(output, fileName);
}

} // namespace

OutputPrivate::OutputPrivate() = default;

OutputPrivate::~OutputPrivate() {
    if (separation) ReleaseCMYKSeparation(separation);
}

uint32_t Output_FileType() {
    return 0x54455854; /* TEXT */
}

uint32_t Output_Creator() {
    return 0x50445332; /* PDS2 */
}

int16_t Output_Create(CFURLRef folder, CFStringRef fileName, CFStringRef title,
                      const OutputGeometry *geometry, const OutputOptions *options,
                      OutputPrivate **out) {
    if (!title || !geometry || !options || !out) return kZELBadParameter;
    *out = nullptr;
    OutputPrivate *output = new (std::nothrow) OutputPrivate;
    if (!output) return kZELOutOfMemory;
    const int16_t error = Guarded([&] {
        output->layout = LayoutFrom(*geometry, *options);
        output->sendToPrinter = options->sendToPrinter != 0;
        output->folderURL = CFRef<CFURLRef>::Retain(folder);
        output->title = CFRef<CFStringRef>::Retain(title);
        return Prepare(*output, fileName, *options);
    });
    if (error == kZELNoError)
        *out = output;
    else
        Output_Kill(output);
    return error;
}

int16_t Output_AddPage(OutputPrivate *output) {
    if (!output) return kZELBadParameter;
    return Guarded([&] { return AddPage(*output); });
}

int16_t Output_WriteLine(OutputPrivate *output, const uint8_t *row) {
    if (!output || !output->encoder) return kZELBadParameter;
    const uint8_t *samples = output->convertRow(output->rowContext, row);
    return samples ? output->encoder->Write(samples, output->rowBytes) : int16_t{kZELBadParameter};
}

int16_t Output_WriteBlankLine(OutputPrivate *output) {
    if (!output || !output->encoder) return kZELBadParameter;
    return output->encoder->Write(output->blankRow.get(), output->rowBytes);
}

int16_t Output_Close(OutputPrivate *output) {
    uint64_t length = 0;
    return Output_CloseAndMeasure(output, length);
}

int16_t Output_CloseAndMeasure(OutputPrivate *output, uint64_t &length) {
    length = 0;
    if (!output) return kZELBadParameter;
    if (output->pageCount < 1) {
        // Nothing was printed, so nothing is left behind; what was written only ends the stream.
        const int16_t error = output->encoder ? output->encoder->Close() : int16_t{kZELNoError};
        Output_Kill(output);
        return error;
    }
    int16_t error = Guarded([&] { return EndDocument(*output); });
    length = output->length;
    if (error != kZELNoError) {
        Output_Kill(output);
        return error;
    }
    if (output->sendToPrinter && output->fileURL)
        error = static_cast<int16_t>(CopyFileToPrinter(output->fileURL.Get()));
    delete output;
    return error;
}

void Output_Kill(OutputPrivate *output) {
    if (!output) return;
    output->encoder.reset();
    // The file goes, so whether its last bytes arrived does not matter.
    if (output->writeBuffer) (void)DisposeWbuffer(output->writeBuffer);
    if (output->fd >= 0) {
        close(output->fd);
        DeleteFileAtURL(output->fileURL.Get());
    }
    delete output;
}
