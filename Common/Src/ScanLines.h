/// Row functions of the page output session: sampling a row of a host band by nearest neighbour,
/// and filling a row with white. A session picks one of each for its whole document.
#pragma once

#include "ZELTypes.h"

/// Where the sampling of a row begins.
struct ScanStart {
    int64_t pixel; ///< index of the first source pixel
    int64_t error; ///< numerator of the error at this pixel
};

/// How far one output pixel moves the source: `whole` pixels and `remainder`/destWidth of one more.
struct ScanStep {
    int64_t whole, remainder;
};

/// Samples `count` pixels of the row at `source` into `line`, from pixel index `outOffset` on. The
/// error starts at start.error - destWidth; every output pixel adds step.remainder to it, and when
/// it is then not negative the source moves one pixel further and destWidth is taken off again.
/// Does nothing when `count` is below 1. Always 0.
using ScaleLineProc = int16_t (*)(const uint8_t *source, ScanStart start, ScanStep step,
                                  int64_t destWidth, int64_t outOffset, int64_t count,
                                  uint8_t *line);

/// Copy 1, 4, 8 and 12 bytes a pixel.
int16_t ScaleLine_8(const uint8_t *source, ScanStart start, ScanStep step, int64_t destWidth,
                    int64_t outOffset, int64_t count, uint8_t *line);
int16_t ScaleLine_32(const uint8_t *source, ScanStart start, ScanStep step, int64_t destWidth,
                     int64_t outOffset, int64_t count, uint8_t *line);
int16_t ScaleLine_64(const uint8_t *source, ScanStart start, ScanStep step, int64_t destWidth,
                     int64_t outOffset, int64_t count, uint8_t *line);
int16_t ScaleLine_96(const uint8_t *source, ScanStart start, ScanStep step, int64_t destWidth,
                     int64_t outOffset, int64_t count, uint8_t *line);

/// x, R, G, B to one byte of darkness, 255 - G: green alone stands for the brightness.
int16_t ScaleLine_Grey(const uint8_t *source, ScanStart start, ScanStep step, int64_t destWidth,
                       int64_t outOffset, int64_t count, uint8_t *line);

/// C, M, Y, K to one byte of darkness: with c' = C * (255 - K) / 255 + K and m', y' likewise,
/// (5c' + 9m' + 2y') / 16 in integers.
int16_t ScaleLine_CMYKToGrey(const uint8_t *source, ScanStart start, ScanStep step,
                             int64_t destWidth, int64_t outOffset, int64_t count, uint8_t *line);

/// C, M, Y, K to 255, 255 - c', 255 - m', 255 - y'.
int16_t ScaleLine_CMYKToRGB(const uint8_t *source, ScanStart start, ScanStep step,
                            int64_t destWidth, int64_t outOffset, int64_t count, uint8_t *line);

/// Fills `width` pixels with the white of a format; nothing when `width` is below 1.
using EraseLineProc = void (*)(uint8_t *line, int64_t width);

void EraseLine_8(uint8_t *line, int64_t width);     ///< 1 byte of 0
void EraseLine_32(uint8_t *line, int64_t width);    ///< 4 bytes of 0
void EraseLine_64(uint8_t *line, int64_t width);    ///< 8 bytes of 0
void EraseLineRGB(uint8_t *line, int64_t width);    ///< 4 bytes of 255
void EraseLineRGB96(uint8_t *line, int64_t width);  ///< 4 bytes of 255, 8 bytes of 0
void EraseLineCMYK96(uint8_t *line, int64_t width); ///< 12 bytes of 0

/// Bytes a pixel of a host format; 0 for one that is not known, which kZELFormat64Plain is not.
int32_t PixelSizeFromFormat(int32_t format);
