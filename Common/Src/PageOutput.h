/// The page output session: bands of host pixels in, exactly one row a page line out, top to
/// bottom, to the PostScript writer.
#pragma once

#include "ZELOutput.h"

/// One open document of the page output layer. Opaque outside PageOutput.cpp and its tests.
struct PageOutputSession;

/// Opens a document. `sourceFormat` and `outputDepth` choose the scan-line functions: the host's
/// pixel depth comes first and the document's pixel format second. `fileName` and `folder` as in
/// Output_Create. On failure `*outSession` is null. Result codes as in ZELTypes.h.
int16_t OpenDocument(CFStringRef title, CFStringRef fileName, const OutputGeometry *geometry,
                     int16_t sourceFormat, int16_t outputDepth, const OutputOptions *options,
                     CFURLRef folder, PageOutputSession **outSession);

/// Begins a page; the two host arguments are not used.
int16_t OpenPage(PageOutputSession *self, const void *a, const void *b);

/// Prints a part of a band; see ZELPrPrintBitmap.
int16_t PrintBits(PageOutputSession *self, const ZELBand *band, const ZELRect *sourceRect,
                  const ZELRect *destRect);

/// Fills the rest of the page with white rows.
int16_t ClosePage(PageOutputSession *self);
void KillPage(PageOutputSession *self);

/// Ends the document and frees the session; `*length`, if asked for, becomes how long its files are
/// together when nothing was lost. Always 0: hosts find a failed file by looking at it.
int16_t CloseDocument(PageOutputSession *self, uint64_t *length = nullptr);

/// Throws the document away and frees the session.
void KillDocument(PageOutputSession *self);
