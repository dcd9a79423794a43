#include "Common/Src/postscript/PackRGB.h"
#include <cstddef>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

void PackRGBPlain(const uint8_t *source, int64_t count, uint8_t *out) {
    for (int64_t i = 0; i < count; ++i) {
        out[i * 3] = source[i * 4 + 1];
        out[i * 3 + 1] = source[i * 4 + 2];
        out[i * 3 + 2] = source[i * 4 + 3];
    }
}

namespace {

#if defined(__x86_64__)
// A store takes more bytes than the pixels give: the next one overwrites them, and the last pixels
// are left to the plain loop.

__attribute__((target("ssse3"))) void PackRGBSSSE3(const uint8_t *source, int64_t count,
                                                   uint8_t *out) {
    const __m128i place = _mm_setr_epi8(1, 2, 3, 5, 6, 7, 9, 10, 11, 13, 14, 15, -1, -1, -1, -1);
    int64_t i = 0;
    for (; i + 6 <= count; i += 4) {
        const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i *>(source + i * 4));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + i * 3), _mm_shuffle_epi8(pixels, place));
    }
    PackRGBPlain(source + i * 4, count - i, out + i * 3);
}

__attribute__((target("avx2"))) void PackRGBAVX2(const uint8_t *source, int64_t count,
                                                 uint8_t *out) {
    const __m256i place = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(1, 2, 3, 5, 6, 7, 9, 10, 11, 13, 14, 15, -1, -1, -1, -1));
    const __m256i together = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
    int64_t i = 0;
    for (; i + 11 <= count; i += 8) {
        const __m256i pixels =
            _mm256_loadu_si256(reinterpret_cast<const __m256i *>(source + i * 4));
        const __m256i packed =
            _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(pixels, place), together);
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + i * 3), packed);
    }
    PackRGBPlain(source + i * 4, count - i, out + i * 3);
}
#endif

KernelList<PackRGBKernel> FindKernels() {
    KernelList<PackRGBKernel> list(PackRGBPlain);
#if defined(__x86_64__)
    list.Add(Instructions::SSSE3, "SSSE3", PackRGBSSSE3);
    list.Add(Instructions::AVX2, "AVX2", PackRGBAVX2);
#endif
    return list;
}

} // namespace

std::span<const PackRGBNamedKernel> PackRGBKernels() {
    static const KernelList<PackRGBKernel> list = FindKernels();
    return list.All();
}

void PackRGB(const uint8_t *source, int64_t count, uint8_t *out) {
    static const PackRGBKernel kernel = PackRGBKernels().back().kernel;
    kernel(source, count, out);
}
