/// The kernels for x86 processors, by what the processor must have.
#pragma once

#include "colour/ColourKernels.h"

uint64_t BlackGenerationAVX2(const uint8_t *table, const uint8_t *src, uint64_t count,
                             uint8_t *dst);
uint64_t EightColoursAVX2(const EightColourLUT &table, const uint8_t *src, uint64_t count,
                          uint8_t *dst);
/// AVX-512 with BW and VBMI.
uint64_t BlackGenerationAVX512(const uint8_t *table, const uint8_t *src, uint64_t count,
                               uint8_t *dst);
uint64_t EightColoursAVX512(const EightColourLUT &table, const uint8_t *src, uint64_t count,
                            uint8_t *dst);
