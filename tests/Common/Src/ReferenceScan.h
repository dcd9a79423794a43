/// The scan-line functions in their plainest form, step for step: the truth for the fast ones.
#pragma once

#include "Common/Src/ScanLines.h"
#include <functional>
#include <vector>

using ReferencePixel = std::function<void(const uint8_t *source, uint8_t *out)>;

inline void ReferenceScaleLine(const uint8_t *source, ScanStart start, ScanStep step,
                               int64_t destWidth, int64_t outOffset, int64_t count, uint8_t *line,
                               int64_t sourceSize, int64_t lineSize, const ReferencePixel &pixel) {
    int64_t error = start.error - destWidth;
    int64_t index = start.pixel;
    for (int64_t i = 0; i < count; ++i) {
        pixel(source + index * sourceSize, line + (outOffset + i) * lineSize);
        error += step.remainder;
        if (error >= 0) {
            index += step.whole + 1;
            error -= destWidth;
        } else {
            index += step.whole;
        }
    }
}

/// One function with what it is to do with a pixel.
struct ScanFunction {
    const char *name;
    ScaleLineProc scaleLine;
    int64_t sourceSize, lineSize;
    ReferencePixel pixel;
};

inline ReferencePixel CopyOf(size_t size) {
    return [size](const uint8_t *source, uint8_t *out) {
        for (size_t i = 0; i < size; ++i)
            out[i] = source[i];
    };
}

inline int WithBlack(int ink, int black) {
    return ink * (255 - black) / 255 + black;
}

inline std::vector<ScanFunction> AllScanFunctions() {
    return {
        {"ScaleLine_8", ScaleLine_8, 1, 1, CopyOf(1)},
        {"ScaleLine_32", ScaleLine_32, 4, 4, CopyOf(4)},
        {"ScaleLine_64", ScaleLine_64, 8, 8, CopyOf(8)},
        {"ScaleLine_96", ScaleLine_96, 12, 12, CopyOf(12)},
        {"ScaleLine_Grey", ScaleLine_Grey, 4, 1,
         [](const uint8_t *s, uint8_t *out) { out[0] = static_cast<uint8_t>(255 - s[2]); }},
        {"ScaleLine_CMYKToGrey", ScaleLine_CMYKToGrey, 4, 1,
         [](const uint8_t *s, uint8_t *out) {
             const int c = WithBlack(s[0], s[3]), m = WithBlack(s[1], s[3]);
             const int y = WithBlack(s[2], s[3]);
             out[0] = static_cast<uint8_t>((5 * c + 9 * m + 2 * y) / 16);
         }},
        {"ScaleLine_CMYKToRGB", ScaleLine_CMYKToRGB, 4, 4,
         [](const uint8_t *s, uint8_t *out) {
             out[0] = 255;
             for (int i = 0; i < 3; ++i)
                 out[i + 1] = static_cast<uint8_t>(255 - WithBlack(s[i], s[3]));
         }},
    };
}
