#include "colour/ColourKernels.h"

std::span<const NamedKernel<ColourKernels>> VectorKernels() {
    return {};
}
