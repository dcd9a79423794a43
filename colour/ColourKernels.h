/// The inner loops of the row conversions in the vector forms that this processor can run.
///
/// A kernel converts pixels of four bytes into interleaved C, M, Y, K, and gives exactly the bytes
/// of the plain form. It takes as many whole blocks (of at most 64 pixels) as it can and returns
/// how many pixels that were; the rest is the caller's. It reads and writes nothing outside the
/// `count` pixels.
#pragma once

#include "support/VectorKernels.h"
#include <cstdint>

struct EightColourLUT;

struct ColourKernels {
    /// Black generation with a table of 512 bytes, from x, R, G, B.
    uint64_t (*blackGeneration)(const uint8_t *table, const uint8_t *src, uint64_t count,
                                uint8_t *dst);
    /// Eight-colour table, from R, G, B, x, where the last pixel has no fourth byte.
    uint64_t (*eightColours)(const EightColourLUT &table, const uint8_t *src, uint64_t count,
                             uint8_t *dst);
};

/// The fastest ones last; empty when the processor has to do with the plain form.
std::span<const NamedKernel<ColourKernels>> VectorKernels();
