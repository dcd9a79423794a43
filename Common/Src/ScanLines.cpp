#include "Common/Src/ScanLines.h"

#include <bit>
#include <cstddef>
#include <cstring>

namespace {

template <size_t Size>
struct CopyPixel {
    static constexpr size_t kSourceSize = Size, kLineSize = Size;
    static constexpr bool kCopies = true;
    static void Convert(const uint8_t *source, uint8_t *out) { memcpy(out, source, Size); }
};

struct RGBToDarkness {
    static constexpr size_t kSourceSize = 4, kLineSize = 1;
    static constexpr bool kCopies = false;
    static void Convert(const uint8_t *source, uint8_t *out) {
        out[0] = static_cast<uint8_t>(255 - source[2]);
    }
};

/// Inks with the black that is printed over them, ink * (255 - black) / 255 + black, for one or two
/// inks at a time, each in 16 bits of its own. Every product of two bytes fits there, and
/// the division is exact for it.
uint32_t InksWithBlack(uint32_t inks, uint32_t black) {
    const uint32_t products = inks * (255 - black);
    const uint32_t sums = products + 0x00010001 + (products >> 8 & 0x00FF00FF);
    return (sums >> 8 & 0x00FF00FF) + black * 0x00010001;
}

/// Four bytes, lowest first. One store is what the compiler makes vectors of.
void StoreFour(uint32_t bytes, uint8_t *out) {
    if constexpr (std::endian::native == std::endian::little)
        memcpy(out, &bytes, sizeof bytes);
    else
        for (int i = 0; i < 4; ++i)
            out[i] = static_cast<uint8_t>(bytes >> 8 * i);
}

struct CMYKToDarkness {
    static constexpr size_t kSourceSize = 4, kLineSize = 1;
    static constexpr bool kCopies = false;
    static void Convert(const uint8_t *source, uint8_t *out) {
        const uint32_t cy = InksWithBlack(source[0] | uint32_t{source[2]} << 16, source[3]);
        const uint32_t m = InksWithBlack(source[1], source[3]) & 0xFFFF;
        out[0] = static_cast<uint8_t>((5 * (cy & 0xFFFF) + 9 * m + 2 * (cy >> 16)) >> 4);
    }
};

struct CMYKToXRGB {
    static constexpr size_t kSourceSize = 4, kLineSize = 4;
    static constexpr bool kCopies = false;
    static void Convert(const uint8_t *source, uint8_t *out) {
        const uint32_t cy = InksWithBlack(source[0] | uint32_t{source[2]} << 16, source[3]);
        const uint32_t m = InksWithBlack(source[1], source[3]) & 0xFFFF;
        StoreFour(~(m << 16 | (cy & 0xFF) << 8 | (cy >> 16) << 24), out);
    }
};

template <typename Pixel>
void StepThroughRow(const uint8_t *source, int64_t error, ScanStep step, int64_t destWidth,
                    int64_t count, uint8_t *out) {
    const ptrdiff_t whole = static_cast<ptrdiff_t>(step.whole) * Pixel::kSourceSize;
    // The position is moved before a pixel, not after it, so that none past the row is formed.
    Pixel::Convert(source, out);
    for (int64_t i = 1; i < count; ++i) {
        error += step.remainder;
        const bool carry = error >= 0;
        error -= carry ? destWidth : 0;
        source += whole + (carry ? static_cast<ptrdiff_t>(Pixel::kSourceSize) : 0);
        out += Pixel::kLineSize;
        Pixel::Convert(source, out);
    }
}

template <typename Pixel>
void ConvertRow(const uint8_t *source, int64_t count, uint8_t *out) {
    if constexpr (Pixel::kCopies)
        memcpy(out, source, static_cast<size_t>(count) * Pixel::kSourceSize);
    else
        for (int64_t i = 0; i < count; ++i)
            Pixel::Convert(source + i * Pixel::kSourceSize, out + i * Pixel::kLineSize);
}

template <typename Pixel>
int16_t ScaleLine(const uint8_t *source, ScanStart start, ScanStep step, int64_t destWidth,
                  int64_t outOffset, int64_t count, uint8_t *line) {
    if (count < 1) return kZELNoError;
    source += start.pixel * static_cast<int64_t>(Pixel::kSourceSize);
    line += outOffset * static_cast<int64_t>(Pixel::kLineSize);
    const bool isUnscaled = step.whole == 1 && step.remainder == 0 && start.error < destWidth;
    if (isUnscaled)
        ConvertRow<Pixel>(source, count, line);
    else
        StepThroughRow<Pixel>(source, start.error - destWidth, step, destWidth, count, line);
    return kZELNoError;
}

void Fill(uint8_t *line, int value, int64_t width, size_t pixelSize) {
    if (width > 0) memset(line, value, static_cast<size_t>(width) * pixelSize);
}

} // namespace

int16_t ScaleLine_8(const uint8_t *source, ScanStart start, ScanStep step, int64_t destWidth,
                    int64_t outOffset, int64_t count, uint8_t *line) {
    return ScaleLine<CopyPixel<1>>(source, start, step, destWidth, outOffset, count, line);
}

int16_t ScaleLine_32(const uint8_t *source, ScanStart start, ScanStep step, int64_t destWidth,
                     int64_t outOffset, int64_t count, uint8_t *line) {
    return ScaleLine<CopyPixel<4>>(source, start, step, destWidth, outOffset, count, line);
}

int16_t ScaleLine_64(const uint8_t *source, ScanStart start, ScanStep step, int64_t destWidth,
                     int64_t outOffset, int64_t count, uint8_t *line) {
    return ScaleLine<CopyPixel<8>>(source, start, step, destWidth, outOffset, count, line);
}

int16_t ScaleLine_96(const uint8_t *source, ScanStart start, ScanStep step, int64_t destWidth,
                     int64_t outOffset, int64_t count, uint8_t *line) {
    return ScaleLine<CopyPixel<12>>(source, start, step, destWidth, outOffset, count, line);
}

int16_t ScaleLine_Grey(const uint8_t *source, ScanStart start, ScanStep step, int64_t destWidth,
                       int64_t outOffset, int64_t count, uint8_t *line) {
    return ScaleLine<RGBToDarkness>(source, start, step, destWidth, outOffset, count, line);
}

int16_t ScaleLine_CMYKToGrey(const uint8_t *source, ScanStart start, ScanStep step,
                             int64_t destWidth, int64_t outOffset, int64_t count, uint8_t *line) {
    return ScaleLine<CMYKToDarkness>(source, start, step, destWidth, outOffset, count, line);
}

int16_t ScaleLine_CMYKToRGB(const uint8_t *source, ScanStart start, ScanStep step,
                            int64_t destWidth, int64_t outOffset, int64_t count, uint8_t *line) {
    return ScaleLine<CMYKToXRGB>(source, start, step, destWidth, outOffset, count, line);
}

void EraseLine_8(uint8_t *line, int64_t width) {
    Fill(line, 0, width, 1);
}
void EraseLine_32(uint8_t *line, int64_t width) {
    Fill(line, 0, width, 4);
}
void EraseLine_64(uint8_t *line, int64_t width) {
    Fill(line, 0, width, 8);
}
void EraseLineRGB(uint8_t *line, int64_t width) {
    Fill(line, 255, width, 4);
}
void EraseLineCMYK96(uint8_t *line, int64_t width) {
    Fill(line, 0, width, 12);
}

void EraseLineRGB96(uint8_t *line, int64_t width) {
    for (int64_t i = 0; i < width; ++i) {
        memset(line + i * 12, 255, 4);
        memset(line + i * 12 + 4, 0, 8);
    }
}

int32_t PixelSizeFromFormat(int32_t format) {
    switch (format) {
        case kZELFormatGray8:
            return 1;
        case kZELFormatXRGB32:
        case kZELFormatCMYK32:
            return 4;
        case kZELFormat64:
            return 8;
        case kZELFormatRGB96:
        case kZELFormatCMYK96:
            return 12;
        default:
            return 0;
    }
}
