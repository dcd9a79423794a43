/// The PostScript writer: pages of rows in, one Level 2 document (DSC 3.0) or one EPS file a page
/// out. The entry points of ZELPrint.h sit on top of it; a program that already has device rows
/// can use it directly.
///
/// Calling order: Output_Create; for each page Output_AddPage and exactly `heightPixels` calls of
/// Output_WriteLine or Output_WriteBlankLine, top to bottom; Output_Close, or Output_Kill at any
/// point. All calls come from one thread at a time. Results are the codes of ZELTypes.h or errno
/// values; a thread of its own writes, so that a failed write is reported by a later call, and the
/// failure of the last one by none.
#ifndef ZEL_OUTPUT_H
#define ZEL_OUTPUT_H

#include "ZELTypes.h"

struct PostscriptDocument; ///< printer feature code by section; only the driver makes one
struct Separations;        ///< list of separation choices; only the driver makes one

/// One open document. Opaque.
typedef struct OutputPrivate OutputPrivate;

typedef struct OutputGeometry {
    int32_t widthPixels, heightPixels; ///< size of every page image
    double widthMM, heightMM;          ///< its size on paper, millimetres
} OutputGeometry;

typedef struct OutputOptions {
    uint8_t mirrorHorizontal, mirrorVertical, rotate90;
    int32_t colourMode;    ///< 0 CMYK, 1 Gray, 2 RGB
    uint8_t eps;           ///< one EPS file a page
    uint8_t sendToPrinter; ///< hand the finished file to the default print queue
    const struct PostscriptDocument *document; ///< copied; null: no feature code
    double llx, lly, urx, ury;                 ///< bounding box in points
    const struct Separations *separations;     ///< not consulted; may be null
    CFStringRef separationName;                ///< null or empty: "Standard"
    uint16_t pixelFormat; ///< of the rows given to Output_WriteLine: 8, 32, 33 or 34
} OutputOptions;

/// The four-character codes "TEXT" and "PDS2" of the files written.
ZEL_EXPORT uint32_t Output_FileType(void);
ZEL_EXPORT uint32_t Output_Creator(void);

/// Creates a document in `folder`. `fileName` may be null: the file is then named after `title`,
/// with a number when the name is taken; a given name is overwritten. On success `*out` is the new
/// document; on failure it must not be used and nothing is left in the folder: kZELBadParameter for
/// a null pointer, kZELFileNotCreated, kZELFileNotFound for a separation that cannot be loaded,
/// kZELOutOfMemory or kZELUnexpectedFailure. `folder` and the strings are retained.
ZEL_EXPORT int16_t Output_Create(CFURLRef folder, CFStringRef fileName, CFStringRef title,
                                 const OutputGeometry *geometry, const OutputOptions *options,
                                 OutputPrivate **out);

/// Ends the page before, if any, and begins the next one.
ZEL_EXPORT int16_t Output_AddPage(OutputPrivate *output);

/// Converts and writes one row of `widthPixels` pixels in the document's pixel format; the row is
/// only read during the call.
ZEL_EXPORT int16_t Output_WriteLine(OutputPrivate *output, const uint8_t *row);

/// Writes one white row.
ZEL_EXPORT int16_t Output_WriteBlankLine(OutputPrivate *output);

/// Ends the document, closes its file and frees it, and hands the file to the print queue if the
/// options say so. On failure the open file is deleted; EPS pages that were finished stay. A
/// document without pages leaves no file.
ZEL_EXPORT int16_t Output_Close(OutputPrivate *output);

/// Abandons the document: deletes the open file and frees everything.
ZEL_EXPORT void Output_Kill(OutputPrivate *output);

#endif
