/// Forms of an inner loop: a plain one, which says what the result is, and vector forms of the same
/// result, of which those are used that this processor can run.
#pragma once

#include <span>
#include <vector>

/// What a vector form needs of the processor.
enum class Instructions {
    SSSE3,
    SSE41,
    AVX2,
    AVX512VBMI,  ///< with BW
    AVX512VBMI2, ///< with VBMI, BW and BMI2
};

/// False for a processor of another family, too.
[[nodiscard]] bool ProcessorHas(Instructions needed);

/// A form and the name of what it needs of the processor.
template <typename Kernel>
struct NamedKernel {
    const char *name;
    Kernel kernel;
};

/// The forms that this processor can run, the fastest one last. To be made once and kept.
template <typename Kernel>
class KernelList {
public:
    KernelList() = default;
    explicit KernelList(Kernel plain) { mKernels.push_back({"plain", plain}); }

    /// Adds a form that is faster than those before it, if the processor has what it needs.
    void Add(Instructions needed, const char *name, Kernel kernel) {
        if (ProcessorHas(needed)) mKernels.push_back({name, kernel});
    }

    [[nodiscard]] std::span<const NamedKernel<Kernel>> All() const { return mKernels; }

private:
    std::vector<NamedKernel<Kernel>> mKernels;
};
