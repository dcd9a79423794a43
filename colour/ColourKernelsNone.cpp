#include "colour/ColourKernels.h"

const ColourKernels *VectorKernels() {
    return nullptr;
}
