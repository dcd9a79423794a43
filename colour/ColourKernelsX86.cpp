#include "colour/ColourKernelsAVX2.h"

const ColourKernels *VectorKernels() {
    static const bool hasAVX2 = __builtin_cpu_supports("avx2");
    return hasAVX2 ? &kColourKernelsAVX2 : nullptr;
}
