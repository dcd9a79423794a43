/// What lies behind the OutputPrivate of ZELOutput.h.
#pragma once

#include "Common/Src/postscript/PostscriptText.h"
#include "Common/Src/postscript/RowConversion.h"
#include "ZELOutput.h"
#include "support/CFRef.h"
#include <memory>

class OutputStreamEncoder;
struct Writebuffer;

/// One document. Destroying it frees what it holds, but neither ends a Writebuffer nor closes a
/// descriptor: Output_Close and Output_Kill do.
struct OutputPrivate {
    OutputPrivate();
    ~OutputPrivate();
    OutputPrivate(const OutputPrivate &) = delete;
    OutputPrivate &operator=(const OutputPrivate &) = delete;

    CFRef<CFURLRef> fileURL; ///< the file that is open, or was closed last
    int32_t fd = -1;
    int32_t pageCount = 0; ///< pages begun
    DocumentLayout layout;
    bool sendToPrinter = false;
    uint64_t rowBytes = 0; ///< bytes of image data in a row
    uint64_t length = 0;   ///< bytes of the files that were closed
    Writebuffer *writeBuffer = nullptr;
    std::unique_ptr<OutputStreamEncoder> encoder;
    std::string textBuffer; ///< text on its way to the Writebuffer; grows as needed
    std::unique_ptr<uint8_t[]> rowBuffer;
    std::unique_ptr<uint8_t[]> blankRow; ///< a white row of `rowBytes`
    RowContext rowContext = {};
    ConvertRowProc convertRow = nullptr;
    CMYKSeparation *separation = nullptr;
    CFRef<CFURLRef> folderURL;
    CFRef<CFStringRef> baseName; ///< of the EPS files
    CFRef<CFStringRef> title;
};

/// Output_Close that tells how long the files of the document, closed or failed, are together when
/// no write was short.
[[nodiscard]] int16_t Output_CloseAndMeasure(OutputPrivate *output, uint64_t &length);
