#include "colour/ColourKernelsX86.h"

namespace {

KernelList<ColourKernels> FindKernels() {
    KernelList<ColourKernels> list;
    list.Add(Instructions::AVX2, "AVX2", {BlackGenerationAVX2, EightColoursAVX2});
    list.Add(Instructions::AVX512VBMI, "AVX-512 VBMI", {BlackGenerationAVX512, EightColoursAVX512});
    return list;
}

} // namespace

std::span<const NamedKernel<ColourKernels>> VectorKernels() {
    static const KernelList<ColourKernels> list = FindKernels();
    return list.All();
}
