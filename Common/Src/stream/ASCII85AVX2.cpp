#include "Common/Src/stream/ASCII85X86.h"

#if defined(__x86_64__)
#include <immintrin.h>

#define ZEL_TARGET __attribute__((target("avx2")))

namespace {

/// The digits of eight groups, plus 33: d0 in the lowest byte of each 32-bit lane of `first` (the
/// rest is 0), and d3, d4, d1, d2 in the lane of `rest`.
struct Digits {
    __m256i first, rest;
};

ZEL_TARGET inline __m256i Load(const uint8_t *data) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(data));
}

ZEL_TARGET inline __m256i Groups(__m256i bytes) {
    const __m256i swap = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12));
    return _mm256_shuffle_epi8(bytes, swap);
}

ZEL_TARGET inline __m256i DivideBy7225(__m256i v) {
    const __m256i factor = _mm256_set1_epi64x(kReciprocal7225);
    const __m256i even = _mm256_srli_epi64(_mm256_mul_epu32(v, factor), 44);
    const __m256i odd = _mm256_srli_epi64(_mm256_mul_epu32(_mm256_srli_epi64(v, 32), factor), 12);
    return _mm256_blend_epi32(even, odd, 0xAA);
}

ZEL_TARGET inline Digits DigitsOf(__m256i v) {
    const __m256i q = DivideBy7225(v);
    const __m256i d0 = _mm256_cvttps_epi32(
        _mm256_mul_ps(_mm256_cvtepi32_ps(q), _mm256_set1_ps(kFloatReciprocal7225)));
    const __m256i quotients = _mm256_blend_epi16(q, _mm256_slli_epi32(d0, 16), 0xAA);
    const __m256i values = _mm256_blend_epi16(v, _mm256_slli_epi32(q, 16), 0xAA);
    const __m256i remainders =
        _mm256_sub_epi16(values, _mm256_mullo_epi16(quotients, _mm256_set1_epi16(7225)));
    const __m256i d31 =
        _mm256_srli_epi16(_mm256_mulhi_epu16(remainders, _mm256_set1_epi16(kReciprocal85)), 6);
    const __m256i d42 =
        _mm256_sub_epi16(remainders, _mm256_mullo_epi16(d31, _mm256_set1_epi16(85)));
    const __m256i rest = _mm256_or_si256(d31, _mm256_slli_epi16(d42, 8));
    return {_mm256_add_epi32(d0, _mm256_set1_epi32(33)),
            _mm256_add_epi8(rest, _mm256_set1_epi8(33))};
}

/// Stores the 40 characters of eight groups.
ZEL_TARGET inline void Store(const Digits &digits, char *text) {
    const __m256i placeFirst = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, -1, -1, -1, -1, 4, -1, -1, -1, -1, 8, -1, -1, -1, -1, 12));
    const __m256i placeRest = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(-1, 2, 3, 0, 1, -1, 6, 7, 4, 5, -1, 10, 11, 8, 9, -1));
    const __m256i placeTail = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(14, 15, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1));
    const __m256i head = _mm256_or_si256(_mm256_shuffle_epi8(digits.first, placeFirst),
                                         _mm256_shuffle_epi8(digits.rest, placeRest));
    const __m256i tail = _mm256_shuffle_epi8(digits.rest, placeTail);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(text), _mm256_castsi256_si128(head));
    _mm_storeu_si32(text + 16, _mm256_castsi256_si128(tail));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(text + 20), _mm256_extracti128_si256(head, 1));
    _mm_storeu_si32(text + 36, _mm256_extracti128_si256(tail, 1));
}

/// Which of the eight groups are 0: all bits of their lanes.
ZEL_TARGET inline __m256i ZeroLanes(__m256i v) {
    return _mm256_cmpeq_epi32(v, _mm256_setzero_si256());
}

ZEL_TARGET inline uint32_t LaneMask(__m256i lanes) {
    return static_cast<uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(lanes)));
}

ZEL_TARGET inline char *EncodeMixed(__m256i a, __m256i b, uint32_t zeroGroups, char *text) {
    char digits[kASCII85BlockText + 3];
    const __m256i mark = _mm256_set1_epi32(kZeroGroupDigit);
    Digits found = DigitsOf(Groups(a));
    found.first = _mm256_add_epi32(found.first, _mm256_and_si256(ZeroLanes(a), mark));
    Store(found, digits);
    found = DigitsOf(Groups(b));
    found.first = _mm256_add_epi32(found.first, _mm256_and_si256(ZeroLanes(b), mark));
    Store(found, digits + 40);
    return ASCII85Squeeze(digits, zeroGroups, text);
}

/// The text of a block of bytes 255, the white of RGB and grey pages: "s8W-!" sixteen times.
ZEL_TARGET inline void StoreWhite(char *text) {
    static const char kText[] = "s8W-!s8W-!s8W-!s8W-!s8W-!s8W-!s8W-!s8W-!"
                                "s8W-!s8W-!s8W-!s8W-!s8W-!s8W-!s8W-!s8W-!";
    __builtin_memcpy(text, kText, kASCII85BlockText);
}

} // namespace

ZEL_TARGET size_t ASCII85EncodeAVX2(const uint8_t *data, size_t blocks, char *text) {
    char *const start = text;
    const __m256i white = _mm256_set1_epi8(-1);
    for (; blocks > 0; --blocks, data += kASCII85BlockBytes) {
        const __m256i a = Load(data);
        const __m256i b = Load(data + 32);
        const uint32_t zeroGroups = LaneMask(ZeroLanes(a)) | LaneMask(ZeroLanes(b)) << 8;
        if (zeroGroups == 0) {
            if (_mm256_testc_si256(_mm256_and_si256(a, b), white) != 0) {
                StoreWhite(text);
            } else {
                Store(DigitsOf(Groups(a)), text);
                Store(DigitsOf(Groups(b)), text + 40);
            }
            text += kASCII85BlockText;
        } else if (zeroGroups == 0xFFFF) {
            _mm_storeu_si128(reinterpret_cast<__m128i *>(text), _mm_set1_epi8('z'));
            text += 16;
        } else {
            text = EncodeMixed(a, b, zeroGroups, text);
        }
    }
    return static_cast<size_t>(text - start);
}
#endif
