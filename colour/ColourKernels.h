/// The inner loops of the row conversions in the vector form that suits this processor.
///
/// A kernel converts pixels of four bytes into interleaved C, M, Y, K, and gives exactly the bytes
/// of the plain form. It takes as many whole blocks as it can and returns how many pixels that
/// were; the rest is the caller's. It reads and writes nothing outside the `count` pixels.
#pragma once

#include <cstdint>

struct ColourKernels {
    /// Black generation with a table of 512 bytes, from x, R, G, B.
    uint64_t (*blackGeneration)(const uint8_t *table, const uint8_t *src, uint64_t count,
                                uint8_t *dst);
    /// Eight-colour table with the corners that BuildCorners makes, from R, G, B, x, where the last
    /// pixel has no fourth byte.
    uint64_t (*tetrahedra)(const uint8_t *corners, const uint8_t *src, uint64_t count,
                           uint8_t *dst);
};

/// The kernels for this processor, or null when it has to do with the plain form.
const ColourKernels *VectorKernels();
