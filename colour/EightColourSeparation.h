/// Separating pixels with an eight-colour table: the best form that the processor can run, the
/// plain one, and what the vector forms need.
#pragma once

#include "colour/EightColourTable.h"

/// Makes table->corners and table->planes from table->grid.
void BuildVectorTables(EightColourLUT *table);

/// EightColourLUTSeparate in its plain form; every faster form gives the same bytes.
void EightColourLUTSeparatePlain(const EightColourLUT *table, const uint8_t *src, int64_t srcStride,
                                 int64_t count, uint8_t *dst, int64_t planeStride,
                                 int64_t pixelStride);

/// Separates `count` pixels R, G, B at src, src + srcStride and so on. C, M, Y, K of a pixel go to
/// dst[0], dst[planeStride], dst[2*planeStride], dst[3*planeStride]; dst then advances by
/// pixelStride. Always four inks, whatever `channels` says.
void EightColourLUTSeparate(const EightColourLUT *table, const uint8_t *src, int64_t srcStride,
                            int64_t count, uint8_t *dst, int32_t channels, int64_t planeStride,
                            int64_t pixelStride);
