#include "Common/Src/postscript/RowConversion.h"
#include "Common/Src/postscript/PackRGB.h"

#include "ZELTypes.h"
#include "colour/Separations.h"
#include <cstring>

namespace {

/// Hosts deliver grey as darkness, while the image dictionary says that 0 is black.
const uint8_t *InvertGray(const RowContext &context, const uint8_t *row) {
    InvertBytes(row, context.width, context.rowBuffer);
    return context.rowBuffer;
}

const uint8_t *CopyFirstFourBytes(const RowContext &context, const uint8_t *row) {
    for (int64_t i = 0; i < context.width; ++i)
        memcpy(context.rowBuffer + i * 4, row + i * 8, 4);
    return context.rowBuffer;
}

const uint8_t *SendAsItIs(const RowContext &, const uint8_t *row) {
    return row;
}

const uint8_t *DropFirstByte(const RowContext &context, const uint8_t *row) {
    PackRGB(row, context.width, context.rowBuffer);
    return context.rowBuffer;
}

const uint8_t *Separate(const RowContext &context, const uint8_t *row) {
    PerformCMYKSeparation(context.separation, row, context.width, context.rowBuffer, 1, 4);
    return context.rowBuffer;
}

const uint8_t *Refuse(const RowContext &, const uint8_t *) {
    return nullptr;
}

} // namespace

ConvertRowProc ChooseRowConversion(ColourMode mode, uint16_t pixelFormat) {
    if (mode == ColourMode::Gray) return InvertGray;
    switch (pixelFormat) {
        case kZELFormat64:
            return CopyFirstFourBytes;
        case kZELFormatCMYK32:
            return SendAsItIs;
        case kZELFormatXRGB32:
            if (mode == ColourMode::RGB) return DropFirstByte;
            return mode == ColourMode::CMYK ? Separate : Refuse;
        default:
            return Refuse;
    }
}

int32_t BytesReadPerPixel(ColourMode mode, uint16_t pixelFormat) {
    if (mode == ColourMode::Gray) return 1;
    switch (pixelFormat) {
        case kZELFormat64:
            return 8;
        case kZELFormatCMYK32:
        case kZELFormatXRGB32:
            return 4;
        default:
            return 0;
    }
}

int32_t ComponentCount(ColourMode mode) {
    switch (mode) {
        case ColourMode::Gray:
            return 1;
        case ColourMode::RGB:
            return 3;
        default:
            return 4;
    }
}

void InvertBytes(const uint8_t *source, int64_t count, uint8_t *out) {
    for (int64_t i = 0; i < count; ++i)
        out[i] = static_cast<uint8_t>(255 - source[i]);
}
