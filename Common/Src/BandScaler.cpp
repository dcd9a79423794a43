#include "Common/Src/BandScaler.h"

#include <algorithm>
#include <cstdlib>

namespace {

// Differences of 32-bit coordinates need 33 bits.
int64_t Width(const ZELRect &rect) {
    return int64_t{rect.right} - rect.left;
}
int64_t Height(const ZELRect &rect) {
    return int64_t{rect.bottom} - rect.top;
}

bool Contains(const ZELRect &outer, const ZELRect &inner) {
    return inner.top >= outer.top && inner.left >= outer.left && inner.bottom <= outer.bottom &&
           inner.right <= outer.right;
}

/// Can all pixels of `sourceRect` be read? Rows may lie upside down in memory (negative rowBytes),
/// but a row must not reach into the next one: the last one would reach past the memory.
bool HoldsPixels(const ZELBand &band, const ZELRect &sourceRect, int32_t pixelSize) {
    if (!band.baseAddress || !Contains(band.bounds, sourceRect)) return false;
    const int64_t rowSize = Width(band.bounds) * pixelSize;
    if (Height(band.bounds) > 1 && std::llabs(band.rowBytes) < rowSize) return false;
    int64_t lastRow = 0;
    return !__builtin_mul_overflow(Height(band.bounds), int64_t{band.rowBytes}, &lastRow);
}

/// The way through the band's pixels, in whole source pixels and fractions of the destination.
struct Walk {
    const uint8_t *row; ///< the first source row
    int64_t rowBytes;
    ScanStart columns;
    ScanStep columnStep;
    int64_t destWidth;
    int64_t rowError; ///< negative; a source row is gained when it reaches 0
    ScanStep rowStep;
    int64_t destHeight;
};

Walk PlanWalk(const ZELBand &band, const ZELRect &source, const ZELRect &dest,
              const ZELRect &clipped) {
    const int64_t sourceWidth = Width(source), sourceHeight = Height(source);
    const int64_t destWidth = Width(dest), destHeight = Height(dest);
    const auto [column, columnError] =
        Scale(int64_t{clipped.left} - dest.left, sourceWidth, destWidth);
    const auto [row, rowError] = Scale(int64_t{clipped.top} - dest.top, sourceHeight, destHeight);
    Walk walk = {};
    walk.rowBytes = band.rowBytes;
    walk.row = band.baseAddress + (int64_t{source.top} - band.bounds.top + row) * walk.rowBytes;
    walk.columns = {int64_t{source.left} - band.bounds.left + column, columnError};
    walk.columnStep = {sourceWidth / destWidth, sourceWidth % destWidth};
    walk.destWidth = destWidth;
    walk.rowError = rowError - destHeight;
    walk.rowStep = {sourceHeight / destHeight, sourceHeight % destHeight};
    walk.destHeight = destHeight;
    return walk;
}

/// Moves on by one page row; returns the number of source rows passed.
int64_t NextRow(Walk &walk) {
    int64_t rows = walk.rowStep.whole;
    walk.rowError += walk.rowStep.remainder;
    if (walk.rowError >= 0) {
        ++rows;
        walk.rowError -= walk.destHeight;
    }
    walk.row += rows * walk.rowBytes;
    return rows;
}

int16_t PassRows(Walk &walk, int64_t count, const RowPipeline &pipeline) {
    const int64_t offset = walk.columns.pixel * pipeline.sourcePixelSize;
    for (;;) {
        const int16_t error = pipeline.rowSink(pipeline.sinkArgument, walk.row + offset);
        if (error != kZELNoError || --count == 0) return error;
        NextRow(walk);
    }
}

int16_t ScaleRows(Walk &walk, const ZELRect &clipped, const RowPipeline &pipeline) {
    pipeline.eraseLine(pipeline.lineBuffer, pipeline.width);
    int64_t count = Height(clipped);
    for (bool isNewRow = true;;) {
        // An enlarged row stands in the line buffer already.
        if (isNewRow)
            pipeline.scaleLine(walk.row, walk.columns, walk.columnStep, walk.destWidth,
                               clipped.left, Width(clipped), pipeline.lineBuffer);
        const int16_t error = pipeline.rowSink(pipeline.sinkArgument, pipeline.lineBuffer);
        if (error != kZELNoError || --count == 0) return error;
        isNewRow = NextRow(walk) != 0;
    }
}

} // namespace

bool IsEmptyRect(const ZELRect &rect) {
    return rect.bottom <= rect.top || rect.right <= rect.left;
}

bool SectLongRects(const ZELRect &a, const ZELRect &b, ZELRect *out) {
    *out = {std::max(a.top, b.top), std::max(a.left, b.left), std::min(a.bottom, b.bottom),
            std::min(a.right, b.right)};
    if (!IsEmptyRect(*out)) return true;
    *out = {};
    return false;
}

QuotientAndRemainder Scale(int64_t a, int64_t b, int64_t c) {
    const __int128 product = static_cast<__int128>(a) * b;
    return {static_cast<int64_t>(product / c), static_cast<int64_t>(product % c)};
}

int16_t ZoomRect(const ZELBand &band, const ZELRect &sourceRect, const ZELRect &destRect,
                 const ZELRect &clipped, const RowPipeline &pipeline) {
    if (IsEmptyRect(sourceRect) || IsEmptyRect(destRect) || IsEmptyRect(clipped))
        return kZELNoError;
    if (!HoldsPixels(band, sourceRect, pipeline.sourcePixelSize)) return kZELBadParameter;
    Walk walk = PlanWalk(band, sourceRect, destRect, clipped);
    const bool fillsRow = clipped.left == 0 && clipped.right == pipeline.width;
    if (pipeline.rowsPassAsTheyAre && fillsRow && Width(sourceRect) == Width(destRect))
        return PassRows(walk, Height(clipped), pipeline);
    return ScaleRows(walk, clipped, pipeline);
}
