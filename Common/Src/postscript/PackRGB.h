/// Dropping the first byte of every pixel of a row: plain, and in vector versions of the same
/// result. One is chosen at run time.
#pragma once

#include "support/VectorKernels.h"
#include <cstdint>

/// x, R, G, B to R, G, B for `count` pixels; the rows do not overlap. Nothing is read past the
/// source's 4 bytes or written past the output's 3 bytes a pixel.
using PackRGBKernel = void (*)(const uint8_t *source, int64_t count, uint8_t *out);

void PackRGBPlain(const uint8_t *source, int64_t count, uint8_t *out);

using PackRGBNamedKernel = NamedKernel<PackRGBKernel>;

/// The kernels that this processor runs, the plain one first and the fastest one last.
std::span<const PackRGBNamedKernel> PackRGBKernels();

/// With the fastest kernel.
void PackRGB(const uint8_t *source, int64_t count, uint8_t *out);
