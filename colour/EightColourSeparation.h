/// Separating pixels with an eight-colour table: the plain form, and what the vector form needs.
#pragma once

#include "colour/EightColourLUT.h"

/// Makes table->corners and table->planes from table->grid.
void BuildVectorTables(EightColourLUT *table);

/// EightColourLUTSeparate in its plain form; every faster form gives the same bytes.
void EightColourLUTSeparatePlain(const EightColourLUT *table, const uint8_t *src, int64_t srcStride,
                                 int64_t count, uint8_t *dst, int64_t planeStride,
                                 int64_t pixelStride);
