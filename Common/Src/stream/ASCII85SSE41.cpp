#include "Common/Src/stream/ASCII85X86.h"

#if defined(__x86_64__)
#include <immintrin.h>

#define ZEL_TARGET __attribute__((target("sse4.1")))

namespace {

/// The digits of four groups, plus 33: d0 in the lowest byte of each 32-bit lane of `first` (the
/// rest is 0), and d3, d4, d1, d2 in the lane of `rest`.
struct Digits {
    __m128i first, rest;
};

ZEL_TARGET inline __m128i Groups(const uint8_t *data) {
    const __m128i swap = _mm_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12);
    return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(data)), swap);
}

ZEL_TARGET inline __m128i DivideBy7225(__m128i v) {
    const __m128i factor = _mm_set1_epi64x(kReciprocal7225);
    const __m128i even = _mm_srli_epi64(_mm_mul_epu32(v, factor), 44);
    const __m128i odd = _mm_srli_epi64(_mm_mul_epu32(_mm_srli_epi64(v, 32), factor), 12);
    return _mm_blend_epi16(even, odd, 0xCC);
}

ZEL_TARGET inline Digits DigitsOf(__m128i v) {
    const __m128i q = DivideBy7225(v);
    const __m128i d0 =
        _mm_cvttps_epi32(_mm_mul_ps(_mm_cvtepi32_ps(q), _mm_set1_ps(kFloatReciprocal7225)));
    const __m128i quotients = _mm_blend_epi16(q, _mm_slli_epi32(d0, 16), 0xAA);
    const __m128i values = _mm_blend_epi16(v, _mm_slli_epi32(q, 16), 0xAA);
    const __m128i remainders =
        _mm_sub_epi16(values, _mm_mullo_epi16(quotients, _mm_set1_epi16(7225)));
    const __m128i d31 =
        _mm_srli_epi16(_mm_mulhi_epu16(remainders, _mm_set1_epi16(kReciprocal85)), 6);
    const __m128i d42 = _mm_sub_epi16(remainders, _mm_mullo_epi16(d31, _mm_set1_epi16(85)));
    const __m128i rest = _mm_or_si128(d31, _mm_slli_epi16(d42, 8));
    return {_mm_add_epi32(d0, _mm_set1_epi32(33)), _mm_add_epi8(rest, _mm_set1_epi8(33))};
}

/// Stores the 20 characters of four groups.
ZEL_TARGET inline void Store(const Digits &digits, char *text) {
    const __m128i placeFirst =
        _mm_setr_epi8(0, -1, -1, -1, -1, 4, -1, -1, -1, -1, 8, -1, -1, -1, -1, 12);
    const __m128i placeRest = _mm_setr_epi8(-1, 2, 3, 0, 1, -1, 6, 7, 4, 5, -1, 10, 11, 8, 9, -1);
    const __m128i placeTail =
        _mm_setr_epi8(14, 15, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m128i head = _mm_or_si128(_mm_shuffle_epi8(digits.first, placeFirst),
                                      _mm_shuffle_epi8(digits.rest, placeRest));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(text), head);
    _mm_storeu_si32(text + 16, _mm_shuffle_epi8(digits.rest, placeTail));
}

/// Which of the four groups are 0: all bits of their lanes.
ZEL_TARGET inline __m128i ZeroLanes(__m128i v) {
    return _mm_cmpeq_epi32(v, _mm_setzero_si128());
}

ZEL_TARGET inline uint32_t LaneMask(__m128i lanes) {
    return static_cast<uint32_t>(_mm_movemask_ps(_mm_castsi128_ps(lanes)));
}

ZEL_TARGET inline void EncodeFull(const __m128i groups[4], char *text) {
    for (int i = 0; i < 4; ++i)
        Store(DigitsOf(groups[i]), text + 20 * i);
}

ZEL_TARGET inline char *EncodeMixed(const __m128i groups[4], uint32_t zeroGroups, char *text) {
    char digits[kASCII85BlockText + 3];
    for (int i = 0; i < 4; ++i) {
        Digits found = DigitsOf(groups[i]);
        found.first = _mm_add_epi32(
            found.first, _mm_and_si128(ZeroLanes(groups[i]), _mm_set1_epi32(kZeroGroupDigit)));
        Store(found, digits + 20 * i);
    }
    return ASCII85Squeeze(digits, zeroGroups, text);
}

} // namespace

ZEL_TARGET size_t ASCII85EncodeSSE41(const uint8_t *data, size_t blocks, char *text) {
    char *const start = text;
    for (; blocks > 0; --blocks, data += kASCII85BlockBytes) {
        const __m128i groups[4] = {Groups(data), Groups(data + 16), Groups(data + 32),
                                   Groups(data + 48)};
        uint32_t zeroGroups = 0;
        for (int i = 0; i < 4; ++i)
            zeroGroups |= LaneMask(ZeroLanes(groups[i])) << (4 * i);
        if (zeroGroups == 0) {
            EncodeFull(groups, text);
            text += kASCII85BlockText;
        } else if (zeroGroups == 0xFFFF) {
            _mm_storeu_si128(reinterpret_cast<__m128i *>(text), _mm_set1_epi8('z'));
            text += 16;
        } else {
            text = EncodeMixed(groups, zeroGroups, text);
        }
    }
    return static_cast<size_t>(text - start);
}
#endif
