/// From a band of host pixels to page rows: clipping, nearest-neighbour stepping, row by row.
#pragma once

#include "Common/Src/ScanLines.h"

/// Writes the common part of two rectangles into `out`. Returns false, and all zeros, when it has
/// no rows or no columns.
bool SectLongRects(const ZELRect &a, const ZELRect &b, ZELRect *out);

struct QuotientAndRemainder {
    int64_t quotient, remainder;
};

/// a * b / c, exact for every product; c is not 0.
QuotientAndRemainder Scale(int64_t a, int64_t b, int64_t c);

/// Where the rows of a document go, and how they are made; chosen once per document.
struct RowPipeline {
    int16_t (*rowSink)(void *argument, const uint8_t *row); ///< takes one page row
    void *sinkArgument;
    ScaleLineProc scaleLine;
    EraseLineProc eraseLine;
    uint8_t *lineBuffer;     ///< one page row
    int64_t width;           ///< of the page, in pixels
    int32_t sourcePixelSize; ///< bytes a pixel of the host's bands
    bool rowsPassAsTheyAre;  ///< a host row that fills the page unscaled is what the sink expects
};

/// Draws `sourceRect` of the band, scaled to `destRect`, as far as `clipped` (a part of destRect,
/// inside the page's width) shows it: one row a row of `clipped` goes to the sink. Columns outside
/// `clipped` are white. Returns the sink's first failure, or kZELBadParameter when the band does
/// not hold the source rectangle. Nothing is read, and no row made, when one of the rectangles is
/// empty.
int16_t ZoomRect(const ZELBand &band, const ZELRect &sourceRect, const ZELRect &destRect,
                 const ZELRect &clipped, const RowPipeline &pipeline);

/// No rows or no columns, reversed rectangles included.
bool IsEmptyRect(const ZELRect &rect);
