#include "colour/ColourKernelsX86.h"

namespace {

std::vector<ColourKernels> Find() {
    std::vector<ColourKernels> kernels;
    if (!__builtin_cpu_supports("avx2")) return kernels;
    kernels.push_back({"AVX2", BlackGenerationAVX2, EightColoursAVX2});
    if (__builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vbmi"))
        kernels.insert(kernels.begin(),
                       {"AVX-512 VBMI", BlackGenerationAVX512, EightColoursAVX512});
    return kernels;
}

} // namespace

const std::vector<ColourKernels> &VectorKernels() {
    static const std::vector<ColourKernels> kernels = Find();
    return kernels;
}
