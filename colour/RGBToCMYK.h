/// Grey-component replacement, inside the driver: the exported functions are in ZELColour.h.
#pragma once

#include "ZELColour.h"
#include "colour/InkLayout.h"
#include <cstddef>
#include <cstdint>

/// Sizes of a black-generation table: black K[g], then under-colour removal U[g].
constexpr size_t kBlackEntries = 256;
constexpr size_t kBlackGenerationTableSize = 2 * kBlackEntries;

/// The plain form of the conversion, in any layout; every faster form gives the same bytes.
void RGBToCMYKPlain(const uint8_t *table, const uint8_t *src, uint64_t count, uint8_t *dst,
                    InkLayout layout);
