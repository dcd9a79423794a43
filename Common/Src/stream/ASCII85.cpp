#include "Common/Src/stream/ASCII85.h"
#include "Common/Src/stream/ASCII85X86.h"
#include <array>
#include <cstring>

namespace {

/// The five digits of a group, plus 33, most significant first.
std::array<char, 5> Digits(uint32_t group) {
    const uint32_t high = group / 7225;
    const uint32_t low = group % 7225;
    const uint32_t first = high / 7225;
    const uint32_t middle = high % 7225;
    return {static_cast<char>(first + 33), static_cast<char>(middle / 85 + 33),
            static_cast<char>(middle % 85 + 33), static_cast<char>(low / 85 + 33),
            static_cast<char>(low % 85 + 33)};
}

uint32_t BigEndian(const uint8_t *bytes) {
    return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
           static_cast<uint32_t>(bytes[2]) << 8 | static_cast<uint32_t>(bytes[3]);
}

} // namespace

size_t ASCII85EncodeGroup(const uint8_t *bytes, char *text) {
    const uint32_t group = BigEndian(bytes);
    if (group == 0) {
        *text = 'z';
        return 1;
    }
    const std::array<char, 5> digits = Digits(group);
    std::memcpy(text, digits.data(), digits.size());
    return digits.size();
}

size_t ASCII85EncodeFinalGroup(const uint8_t *bytes, size_t count, char *text) {
    uint8_t padded[4] = {};
    std::memcpy(padded, bytes, count);
    const std::array<char, 5> digits = Digits(BigEndian(padded));
    std::memcpy(text, digits.data() + 4 - count, count);
    return count;
}

size_t ASCII85EncodePlain(const uint8_t *data, size_t blocks, char *text) {
    char *const start = text;
    for (const uint8_t *end = data + blocks * kASCII85BlockBytes; data != end; data += 4) {
        text += ASCII85EncodeGroup(data, text);
    }
    return static_cast<size_t>(text - start);
}

namespace {

KernelList<ASCII85Kernel> FindKernels() {
    KernelList<ASCII85Kernel> list(ASCII85EncodePlain);
#if defined(__x86_64__)
    list.Add(Instructions::SSE41, "SSE4.1", ASCII85EncodeSSE41);
    list.Add(Instructions::AVX2, "AVX2", ASCII85EncodeAVX2);
    list.Add(Instructions::AVX512VBMI2, "AVX-512 VBMI2", ASCII85EncodeAVX512);
#endif
    return list;
}

} // namespace

std::span<const ASCII85NamedKernel> ASCII85Kernels() {
    static const KernelList<ASCII85Kernel> list = FindKernels();
    return list.All();
}

ASCII85Kernel ASCII85FastestKernel() {
    return ASCII85Kernels().back().kernel;
}
