#include "colour/ColourKernels.h"

const std::vector<ColourKernels> &VectorKernels() {
    static const std::vector<ColourKernels> none;
    return none;
}
