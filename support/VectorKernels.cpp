#include "support/VectorKernels.h"

bool ProcessorHas(Instructions needed) {
#if defined(__x86_64__)
    const auto hasVBMI = [] {
        return __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vbmi");
    };
    switch (needed) {
        case Instructions::SSSE3:
            return __builtin_cpu_supports("ssse3");
        case Instructions::SSE41:
            return __builtin_cpu_supports("sse4.1");
        case Instructions::AVX2:
            return __builtin_cpu_supports("avx2");
        case Instructions::AVX512VBMI:
            return hasVBMI();
        case Instructions::AVX512VBMI2:
            return hasVBMI() && __builtin_cpu_supports("avx512vbmi2") &&
                   __builtin_cpu_supports("bmi2");
    }
#endif
    return false;
}
