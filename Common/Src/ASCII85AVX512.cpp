#include "Common/Src/ASCII85X86.h"

#if defined(__x86_64__)
#include <array>
#include <immintrin.h>

#define ZEL_TARGET __attribute__((target("avx512f,avx512bw,avx512vbmi,avx2")))

namespace {

/// Where each character of a block comes from: bytes 0 to 63 of the digits d3, d4, d1, d2 of the
/// sixteen groups, or 64 plus the byte of d0. The first 64 entries make one vector, the other 16 of
/// the 80 a second one.
constexpr std::array<int8_t, 128> MakePlaces() {
    std::array<int8_t, 128> places{};
    size_t at = 0;
    for (int group = 0; group < 16; ++group) {
        const int digits[5] = {64 + 4 * group, 4 * group + 2, 4 * group + 3, 4 * group,
                               4 * group + 1};
        for (const int digit : digits)
            places.at(at++) = static_cast<int8_t>(digit);
    }
    return places;
}

alignas(64) constexpr std::array<int8_t, 128> kPlaces = MakePlaces();

ZEL_TARGET inline __m512i DivideBy7225(__m512i v) {
    const __m512i factor = _mm512_set1_epi64(kReciprocal7225);
    const __m512i even = _mm512_srli_epi64(_mm512_mul_epu32(v, factor), 44);
    const __m512i odd = _mm512_srli_epi64(_mm512_mul_epu32(_mm512_srli_epi64(v, 32), factor), 12);
    return _mm512_mask_blend_epi32(0xAAAA, even, odd);
}

/// Stores the 80 characters of sixteen groups; those of zero groups start with "z".
ZEL_TARGET inline void StoreDigits(__m512i bytes, __mmask16 zeroGroups, char *text) {
    const __m512i swap =
        _mm512_broadcast_i32x4(_mm_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12));
    const __m512i v = _mm512_shuffle_epi8(bytes, swap);
    const __m512i q = DivideBy7225(v);
    const __m512i d0 = _mm512_cvttps_epi32(
        _mm512_mul_ps(_mm512_cvtepi32_ps(q), _mm512_set1_ps(kFloatReciprocal7225)));
    const __m512i quotients = _mm512_mask_blend_epi16(0xAAAAAAAA, q, _mm512_slli_epi32(d0, 16));
    const __m512i values = _mm512_mask_blend_epi16(0xAAAAAAAA, v, _mm512_slli_epi32(q, 16));
    const __m512i remainders =
        _mm512_sub_epi16(values, _mm512_mullo_epi16(quotients, _mm512_set1_epi16(7225)));
    const __m512i d31 =
        _mm512_srli_epi16(_mm512_mulhi_epu16(remainders, _mm512_set1_epi16(kReciprocal85)), 6);
    const __m512i d42 =
        _mm512_sub_epi16(remainders, _mm512_mullo_epi16(d31, _mm512_set1_epi16(85)));
    const __m512i rest = _mm512_or_si512(d31, _mm512_slli_epi16(d42, 8));
    const __m512i first = _mm512_mask_mov_epi32(d0, zeroGroups, _mm512_set1_epi32(kZeroGroupDigit));
    const __m512i offset = _mm512_set1_epi8(33);
    const __m512i head = _mm512_permutex2var_epi8(rest, _mm512_load_si512(kPlaces.data()), first);
    const __m512i tail =
        _mm512_permutex2var_epi8(rest, _mm512_load_si512(kPlaces.data() + 64), first);
    _mm512_storeu_si512(text, _mm512_add_epi8(head, offset));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(text + 64),
                     _mm512_castsi512_si128(_mm512_add_epi8(tail, offset)));
}

} // namespace

ZEL_TARGET size_t ASCII85EncodeAVX512(const uint8_t *data, size_t blocks, char *text) {
    char *const start = text;
    for (; blocks > 0; --blocks, data += kASCII85BlockBytes) {
        const __m512i bytes = _mm512_loadu_si512(data);
        const __mmask16 zeroGroups = _mm512_testn_epi32_mask(bytes, bytes);
        if (zeroGroups == 0) {
            StoreDigits(bytes, 0, text);
            text += kASCII85BlockText;
        } else if (zeroGroups == 0xFFFF) {
            _mm_storeu_si128(reinterpret_cast<__m128i *>(text), _mm_set1_epi8('z'));
            text += 16;
        } else {
            char digits[kASCII85BlockText + 3];
            StoreDigits(bytes, zeroGroups, digits);
            text = ASCII85Squeeze(digits, zeroGroups, text);
        }
    }
    return static_cast<size_t>(text - start);
}
#endif
