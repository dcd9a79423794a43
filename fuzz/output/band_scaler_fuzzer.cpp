// Bands with any rectangles: a band's memory has exactly the bytes that its record tells of, so
// that the address sanitizer sees every byte read beside them, and every row is compared with the
// pixel that the exact division finds.
#include "Common/Src/BandScaler.h"
#include "tests/Common/Src/ReferenceScan.h"
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>
#include <memory>

namespace {

constexpr int32_t kLargestSide = 64;

void Require(bool condition) {
    if (!condition) std::abort();
}

struct Sink {
    size_t rowSize = 0;
    std::vector<std::vector<uint8_t>> rows;

    static int16_t Take(void *self, const uint8_t *row) {
        auto *sink = static_cast<Sink *>(self);
        sink->rows.emplace_back(row, row + sink->rowSize);
        return 0;
    }
};

/// A coordinate that is near the page, or anything.
int32_t Coordinate(FuzzedDataProvider &data) {
    return data.ConsumeBool() ? data.ConsumeIntegralInRange<int32_t>(-kLargestSide, kLargestSide)
                              : data.ConsumeIntegral<int32_t>();
}

ZELRect Rect(FuzzedDataProvider &data) {
    return {Coordinate(data), Coordinate(data), Coordinate(data), Coordinate(data)};
}

struct OwnedBand {
    OwnedBand(FuzzedDataProvider &data, int64_t pixelSize) {
        const int32_t top = Coordinate(data) / 2, left = Coordinate(data) / 2;
        const auto rows = data.ConsumeIntegralInRange<int32_t>(0, kLargestSide);
        const auto columns = data.ConsumeIntegralInRange<int32_t>(0, kLargestSide);
        const auto rowBytes = data.ConsumeIntegralInRange<int32_t>(-2000, 2000);
        const int64_t last = rows > 1 ? int64_t{rows - 1} * rowBytes : 0;
        const auto size = static_cast<size_t>(std::abs(last) + columns * pixelSize);
        memory = std::make_unique<uint8_t[]>(size);
        for (size_t i = 0; i < size; ++i)
            memory[i] = static_cast<uint8_t>(i * 31 + i / 256);
        band = {memory.get() + (last < 0 ? -last : 0),
                {top, left, top + rows, left + columns},
                rowBytes,
                0};
        if (data.ConsumeIntegralInRange<int>(0, 15) == 0) band.baseAddress = nullptr;
    }

    std::unique_ptr<uint8_t[]> memory;
    ZELBand band = {};
};

/// The row of the page that the exact quotients give.
std::vector<uint8_t> ExactRow(const ZELBand &band, const ZELRect &source, const ZELRect &dest,
                              const ZELRect &clipped, int32_t y, const RowPipeline &pipeline,
                              const ScanFunction &function) {
    const auto scaled = [](int64_t offset, int64_t from, int64_t to) {
        return static_cast<int64_t>(static_cast<__int128>(offset) * from / to);
    };
    std::vector<uint8_t> line(static_cast<size_t>(pipeline.width * function.lineSize));
    pipeline.eraseLine(line.data(), pipeline.width);
    const int64_t row = int64_t{source.top} - band.bounds.top +
                        scaled(int64_t{y} - dest.top, int64_t{source.bottom} - source.top,
                               int64_t{dest.bottom} - dest.top);
    for (int32_t x = clipped.left; x < clipped.right; ++x) {
        const int64_t column = int64_t{source.left} - band.bounds.left +
                               scaled(int64_t{x} - dest.left, int64_t{source.right} - source.left,
                                      int64_t{dest.right} - dest.left);
        function.pixel(band.baseAddress + row * band.rowBytes + column * function.sourceSize,
                       line.data() + x * function.lineSize);
    }
    return line;
}

void Check(FuzzedDataProvider &data, const ScanFunction &function) {
    const OwnedBand owned(data, function.sourceSize);
    const ZELRect source = data.ConsumeBool() ? owned.band.bounds : Rect(data);
    const ZELRect dest = Rect(data);
    const auto width = data.ConsumeIntegralInRange<int32_t>(1, kLargestSide);
    ZELRect clipped = {};
    const bool isSeen = SectLongRects(dest, {0, 0, kLargestSide, width}, &clipped);
    std::vector<uint8_t> line(static_cast<size_t>(width * function.lineSize));
    Sink sink = {line.size(), {}};
    const bool copies =
        function.sourceSize == function.lineSize && function.scaleLine != ScaleLine_CMYKToRGB;
    const RowPipeline pipeline = {Sink::Take,
                                  &sink,
                                  function.scaleLine,
                                  function.lineSize == 1 ? EraseLine_8 : EraseLineRGB,
                                  line.data(),
                                  width,
                                  static_cast<int32_t>(function.sourceSize),
                                  copies && data.ConsumeBool()};
    const int16_t result = ZoomRect(owned.band, source, dest, clipped, pipeline);
    if (result != 0 || !isSeen || IsEmptyRect(source)) {
        Require(sink.rows.empty());
        Require(result == 0 || result == kZELBadParameter);
        return;
    }
    Require(sink.rows.size() == static_cast<size_t>(clipped.bottom - clipped.top));
    for (size_t i = 0; i < sink.rows.size(); ++i)
        Require(sink.rows[i] == ExactRow(owned.band, source, dest, clipped,
                                         clipped.top + static_cast<int32_t>(i), pipeline,
                                         function));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static const std::vector<ScanFunction> functions = AllScanFunctions();
    FuzzedDataProvider data(bytes, size);
    // Eight and twelve bytes a pixel step as four do.
    const int choice = data.ConsumeIntegralInRange<int>(0, 4);
    Check(data, functions[static_cast<size_t>(choice < 2 ? choice : choice + 2)]);
    return 0;
}
