#include "Common/Src/BandScaler.h"

#include "tests/Common/Src/ReferenceScan.h"
#include "tests/GuardedBytes.h"

#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <random>

using Bytes = std::vector<uint8_t>;

static bool operator==(const ZELRect &a, const ZELRect &b) {
    return a.top == b.top && a.left == b.left && a.bottom == b.bottom && a.right == b.right;
}

static void PrintTo(const ZELRect &r, std::ostream *out) {
    *out << '{' << r.top << ", " << r.left << ", " << r.bottom << ", " << r.right << '}';
}

namespace {

constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr int32_t kMax = std::numeric_limits<int32_t>::max();

/// Collects the rows; fails from row `failAt` on.
struct Sink {
    size_t rowSize = 0;
    std::vector<Bytes> rows;
    size_t failAt = SIZE_MAX;

    static int16_t Take(void *self, const uint8_t *row) {
        auto *sink = static_cast<Sink *>(self);
        if (sink->rows.size() >= sink->failAt) return 28;
        sink->rows.emplace_back(row, row + sink->rowSize);
        return 0;
    }
};

/// A pipeline to a sink for pages of `width` pixels.
struct Page {
    explicit Page(int32_t width, const ScanFunction &function, bool passes)
        : line(static_cast<size_t>(width * function.lineSize)) {
        sink.rowSize = line.size();
        const EraseLineProc erase = function.lineSize == 1    ? EraseLine_8
                                    : function.lineSize == 8  ? EraseLine_64
                                    : function.lineSize == 12 ? EraseLineRGB96
                                                              : EraseLineRGB;
        pipeline = {Sink::Take,
                    &sink,
                    function.scaleLine,
                    erase,
                    line.data(),
                    width,
                    static_cast<int32_t>(function.sourceSize),
                    passes};
    }
    Page(const Page &) = delete;
    Page &operator=(const Page &) = delete;

    Bytes line;
    Sink sink;
    RowPipeline pipeline = {};
};

ScanFunction Copy8() {
    return AllScanFunctions()[0];
}

/// Every row of the destination, literally as the rules for the stepping say.
std::vector<Bytes> ReferenceZoom(const ZELBand &band, const ZELRect &source, const ZELRect &dest,
                                 const ZELRect &clipped, const RowPipeline &pipeline,
                                 const ScanFunction &function) {
    const int64_t srcW = source.right - source.left, srcH = source.bottom - source.top;
    const int64_t dstW = dest.right - dest.left, dstH = dest.bottom - dest.top;
    const int64_t x = (clipped.left - dest.left) * srcW, y = (clipped.top - dest.top) * srcH;
    Bytes line(static_cast<size_t>(pipeline.width * function.lineSize));
    pipeline.eraseLine(line.data(), pipeline.width);
    int64_t row = source.top - band.bounds.top + y / dstH, error = y % dstH - dstH;
    std::vector<Bytes> rows;
    for (int32_t i = clipped.top; i < clipped.bottom; ++i) {
        ReferenceScaleLine(band.baseAddress + row * band.rowBytes,
                           {source.left - band.bounds.left + x / dstW, x % dstW},
                           {srcW / dstW, srcW % dstW}, dstW, clipped.left,
                           clipped.right - clipped.left, line.data(), function.sourceSize,
                           function.lineSize, function.pixel);
        rows.push_back(line);
        error += srcH % dstH;
        row += srcH / dstH;
        if (error >= 0) {
            ++row;
            error -= dstH;
        }
    }
    return rows;
}

/// A band in guarded memory, with pixels that are all different enough.
struct GuardedBand {
    GuardedBand(std::mt19937 &random, const ZELRect &bounds, int32_t pixelSize, bool isUpsideDown,
                GuardedBytes::Edge edge)
        : memory(Size(bounds, pixelSize), edge) {
        for (size_t i = 0; i < memory.Size(); ++i)
            memory.Data()[i] = static_cast<uint8_t>(random());
        const int32_t rowBytes = (bounds.right - bounds.left) * pixelSize;
        const int32_t rows = bounds.bottom - bounds.top;
        band = {memory.Data(), bounds, rowBytes, 0};
        if (isUpsideDown) {
            band.baseAddress += int64_t{rows - 1} * rowBytes;
            band.rowBytes = -rowBytes;
        }
    }
    static size_t Size(const ZELRect &b, int32_t pixelSize) {
        return static_cast<size_t>(b.bottom - b.top) * static_cast<size_t>(b.right - b.left) *
               static_cast<size_t>(pixelSize);
    }

    GuardedBytes memory;
    ZELBand band = {};
};

int32_t Between(std::mt19937 &random, int32_t low, int32_t high) {
    return std::uniform_int_distribution<int32_t>(low, high)(random);
}

ZELRect RectIn(std::mt19937 &random, const ZELRect &outer) {
    const int32_t top = Between(random, outer.top, outer.bottom - 1);
    const int32_t left = Between(random, outer.left, outer.right - 1);
    return {top, left, Between(random, top + 1, outer.bottom),
            Between(random, left + 1, outer.right)};
}

void CompareRandomGeometry(std::mt19937 &random, const ScanFunction &function, int round) {
    const int32_t top = Between(random, -20, 20), left = Between(random, -20, 20);
    const ZELRect bounds = {top, left, top + Between(random, 1, 12), left + Between(random, 1, 30)};
    const GuardedBand guarded(random, bounds, static_cast<int32_t>(function.sourceSize),
                              round % 4 == 0,
                              round % 2 ? GuardedBytes::kEnd : GuardedBytes::kStart);
    const ZELRect source = round % 3 ? RectIn(random, bounds) : bounds;
    const int32_t pageWidth = round % 6 ? Between(random, 1, 40) : source.right - source.left;
    ZELRect dest = RectIn(random, {-30, -30, 60, 60});
    if (round % 6 == 0) dest = {dest.top, 0, dest.bottom, pageWidth};
    ZELRect clipped = {};
    if (!SectLongRects(dest, {Between(random, 0, 9), 0, 50, pageWidth}, &clipped)) return;
    // Only rows that are copied may pass as they are.
    const bool copies =
        function.sourceSize == function.lineSize && function.scaleLine != ScaleLine_CMYKToRGB;
    Page page(pageWidth, function, copies && round % 2 == 0);
    EXPECT_EQ(ZoomRect(guarded.band, source, dest, clipped, page.pipeline), 0);
    const std::vector<Bytes> expected =
        ReferenceZoom(guarded.band, source, dest, clipped, page.pipeline, function);
    EXPECT_TRUE(page.sink.rows == expected) << function.name << " round " << round;
}

/// A band of 4 x 3 pixels of one byte, bounds from (10, 20) on.
struct SmallBand {
    SmallBand() {
        for (size_t i = 0; i < memory.Size(); ++i)
            memory.Data()[i] = static_cast<uint8_t>(i + 1);
        band = {memory.Data(), {10, 20, 13, 24}, 4, 8};
    }
    GuardedBytes memory{12};
    ZELBand band = {};
};

} // namespace

TEST(SectLongRects, IsTheCommonPart) {
    ZELRect out = {};
    EXPECT_TRUE(SectLongRects({0, 0, 10, 20}, {5, -5, 15, 8}, &out));
    EXPECT_EQ(out, (ZELRect{5, 0, 10, 8}));
    EXPECT_TRUE(SectLongRects({kMin, kMin, kMax, kMax}, {1, 2, 3, 4}, &out));
    EXPECT_EQ(out, (ZELRect{1, 2, 3, 4}));
}

TEST(SectLongRects, IsAllZerosWithoutRowsOrColumns) {
    const ZELRect page = {0, 0, 10, 10};
    const ZELRect others[] = {{10, 0, 20, 10}, {0, 10, 10, 20}, {5, 5, 5, 8},  {5, 5, 8, 5},
                              {8, 2, 4, 6},    {2, 8, 6, 4},    {-9, 0, 0, 9}, {kMax, 0, kMin, 9}};
    for (const ZELRect &other : others) {
        ZELRect out = {1, 2, 3, 4};
        EXPECT_FALSE(SectLongRects(page, other, &out));
        EXPECT_EQ(out, ZELRect{}) << testing::PrintToString(other);
    }
}

TEST(Scale, IsQuotientAndRemainderOfTheExactProduct) {
    const auto [quotient, remainder] = Scale(7, 5, 3);
    EXPECT_EQ(quotient, 11);
    EXPECT_EQ(remainder, 2);
    const int64_t wide = int64_t{kMax} - kMin;
    const auto [wideQuotient, wideRemainder] = Scale(wide - 1, wide, wide);
    EXPECT_EQ(wideQuotient, wide - 1);
    EXPECT_EQ(wideRemainder, 0);
}

TEST(ZoomRect, RandomGeometriesGiveTheRowsOfTheReference) {
    std::mt19937 random(7);
    for (const ScanFunction &function : AllScanFunctions())
        for (int round = 0; round < 4000; ++round)
            CompareRandomGeometry(random, function, round);
}

TEST(ZoomRect, SameSizeCopiesThePixels) {
    const SmallBand small;
    Page page(4, Copy8(), false);
    EXPECT_EQ(ZoomRect(small.band, {10, 20, 13, 24}, {0, 0, 3, 4}, {0, 0, 3, 4}, page.pipeline), 0);
    EXPECT_EQ(page.sink.rows, (std::vector<Bytes>{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}}));
}

TEST(ZoomRect, ColumnsBesideTheDestinationAreWhite) {
    const SmallBand small;
    Page page(6, Copy8(), true);
    EXPECT_EQ(ZoomRect(small.band, {11, 21, 12, 23}, {5, 3, 6, 5}, {5, 3, 6, 5}, page.pipeline), 0);
    EXPECT_EQ(page.sink.rows, (std::vector<Bytes>{{0, 0, 0, 6, 7, 0}}));
}

TEST(ZoomRect, TwiceTheSizeRepeatsRowsAndColumns) {
    const SmallBand small;
    Page page(4, Copy8(), true);
    EXPECT_EQ(ZoomRect(small.band, {10, 20, 12, 22}, {0, 0, 4, 4}, {0, 0, 4, 4}, page.pipeline), 0);
    EXPECT_EQ(page.sink.rows,
              (std::vector<Bytes>{{1, 1, 2, 2}, {1, 1, 2, 2}, {5, 5, 6, 6}, {5, 5, 6, 6}}));
}

TEST(ZoomRect, HalfTheSizeTakesEverySecondRowAndColumnFromTheFirstOn) {
    const SmallBand small;
    Page page(2, Copy8(), true);
    EXPECT_EQ(ZoomRect(small.band, {10, 20, 12, 24}, {0, 0, 1, 2}, {0, 0, 1, 2}, page.pipeline), 0);
    EXPECT_EQ(page.sink.rows, (std::vector<Bytes>{{1, 3}}));
}

TEST(ZoomRect, AClippedDestinationIsSampledAsIfItWereDrawnWhole) {
    const SmallBand small;
    Page page(2, Copy8(), true);
    // 4 columns to 8, of which the page shows 3 and 4 only
    EXPECT_EQ(ZoomRect(small.band, {10, 20, 13, 24}, {-1, -3, 2, 5}, {0, 0, 2, 2}, page.pipeline),
              0);
    EXPECT_EQ(page.sink.rows, (std::vector<Bytes>{{6, 7}, {10, 11}}));
}

TEST(ZoomRect, AnEmptyRectangleDrawsNothingAndReadsNothing) {
    Page page(4, Copy8(), true);
    const ZELBand band = {nullptr, {10, 20, 13, 24}, 4, 8};
    const ZELRect whole = {10, 20, 13, 24}, dest = {0, 0, 3, 4};
    const ZELRect empties[] = {{11, 21, 11, 22},
                               {11, 21, 12, 21},
                               {12, 20, 10, 24},
                               {10, 24, 13, 20},
                               {kMax, kMax, kMin, kMin}};
    for (const ZELRect &empty : empties) {
        EXPECT_EQ(ZoomRect(band, empty, dest, dest, page.pipeline), 0);
        EXPECT_EQ(ZoomRect(band, whole, empty, dest, page.pipeline), 0);
        EXPECT_EQ(ZoomRect(band, whole, dest, empty, page.pipeline), 0);
    }
    EXPECT_TRUE(page.sink.rows.empty());
}

TEST(ZoomRect, ASourceOutsideTheBoundsIsRefused) {
    const SmallBand small;
    Page page(4, Copy8(), true);
    const ZELRect dest = {0, 0, 3, 4};
    const ZELRect outside[] = {
        {9, 20, 13, 24}, {10, 19, 13, 24},   {10, 20, 14, 24},     {10, 20, 13, 25},
        {0, 0, 3, 4},    {kMin, 20, 13, 24}, {10, kMin, 13, kMax}, {kMin, kMin, kMax, kMax}};
    for (const ZELRect &source : outside)
        EXPECT_EQ(ZoomRect(small.band, source, dest, dest, page.pipeline), -50)
            << testing::PrintToString(source);
    EXPECT_TRUE(page.sink.rows.empty());
}

TEST(ZoomRect, ABandThatCannotHoldItsBoundsIsRefused) {
    const SmallBand small;
    Page page(4, Copy8(), true);
    const ZELRect dest = {0, 0, 3, 4};
    const auto zoom = [&](const ZELBand &band) {
        return ZoomRect(band, {10, 20, 13, 24}, dest, dest, page.pipeline);
    };
    EXPECT_EQ(zoom({nullptr, {10, 20, 13, 24}, 4, 8}), -50);
    for (int32_t rowBytes : {3, 0, -3})
        EXPECT_EQ(zoom({small.memory.Data(), {10, 20, 13, 24}, rowBytes, 8}), -50) << rowBytes;
    EXPECT_EQ(zoom({small.memory.Data(), {kMin, kMin, kMax, kMax}, kMax, 8}), -50);
    EXPECT_EQ(zoom({small.memory.Data(), {13, 24, 10, 20}, 4, 8}), -50);
    EXPECT_TRUE(page.sink.rows.empty());
}

TEST(ZoomRect, TheOnlyRowOfABandNeedsNoBytesPerRow) {
    const GuardedBytes memory(4);
    memcpy(memory.Data(), "abcd", 4);
    for (int32_t rowBytes : {0, 4, -4, kMin}) {
        Page page(4, Copy8(), false);
        const ZELBand band = {memory.Data(), {0, 0, 1, 4}, rowBytes, 8};
        EXPECT_EQ(ZoomRect(band, {0, 0, 1, 4}, {0, 0, 2, 4}, {0, 0, 2, 4}, page.pipeline), 0);
        EXPECT_EQ(page.sink.rows, std::vector<Bytes>(2, {'a', 'b', 'c', 'd'}));
    }
}

TEST(ZoomRect, RowsMayLieUpsideDownInMemory) {
    const SmallBand small;
    Page page(4, Copy8(), true);
    const ZELBand band = {small.memory.Data() + 8, {10, 20, 13, 24}, -4, 8};
    EXPECT_EQ(ZoomRect(band, {10, 20, 13, 24}, {0, 0, 3, 4}, {0, 0, 3, 4}, page.pipeline), 0);
    EXPECT_EQ(page.sink.rows, (std::vector<Bytes>{{9, 10, 11, 12}, {5, 6, 7, 8}, {1, 2, 3, 4}}));
}

TEST(ZoomRect, TheWidestDestinationIsSteppedWithoutOverflow) {
    const SmallBand small;
    Page page(3, Copy8(), true);
    EXPECT_EQ(ZoomRect(small.band, {10, 20, 13, 24}, {kMin, kMin, kMax, kMax}, {0, 0, 2, 3},
                       page.pipeline),
              0);
    // the middle of the source: column 2, row 1
    EXPECT_EQ(page.sink.rows, std::vector<Bytes>(2, Bytes(3, 7)));
}

TEST(ZoomRect, TheFirstFailureOfTheSinkEndsIt) {
    const SmallBand small;
    for (bool passes : {false, true}) {
        Page page(4, Copy8(), passes);
        page.sink.failAt = 1;
        EXPECT_EQ(ZoomRect(small.band, {10, 20, 13, 24}, {0, 0, 3, 4}, {0, 0, 3, 4}, page.pipeline),
                  28);
        EXPECT_EQ(page.sink.rows.size(), 1U);
    }
}
