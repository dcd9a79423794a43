/// Kernels for x86 processors with AVX2.
#pragma once

#include "colour/ColourKernels.h"

extern const ColourKernels kColourKernelsAVX2;
