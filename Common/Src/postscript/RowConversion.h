/// From the rows that the writer is given to the samples of the image data.
#pragma once

#include "Common/Src/postscript/PostscriptText.h"

struct CMYKSeparation;

/// What a row conversion works with.
struct RowContext {
    int64_t width;                    ///< pixels in a row
    const CMYKSeparation *separation; ///< for XRGB rows of CMYK documents
    uint8_t *rowBuffer;               ///< room for RowBufferSize bytes
};

/// Converts a row; the samples are in the row itself or in the row buffer. Null when the document
/// cannot take rows of this pixel format.
using ConvertRowProc = const uint8_t *(*)(const RowContext &context, const uint8_t *row);

/// The conversion of a document, to be chosen once.
ConvertRowProc ChooseRowConversion(ColourMode mode, uint16_t pixelFormat);

/// Bytes of every pixel of a row that the conversion reads; a row has to hold as many.
int32_t BytesReadPerPixel(ColourMode mode, uint16_t pixelFormat);

/// Samples in a pixel of the image data.
int32_t ComponentCount(ColourMode mode);

/// Bytes that a row buffer needs for rows of `width` pixels: formats of four samples fill four
/// bytes a pixel even where fewer are sent.
inline uint64_t RowBufferSize(uint64_t width) {
    return width * 4;
}

/// 255 - value, byte by byte.
void InvertBytes(const uint8_t *source, int64_t count, uint8_t *out);
