#include "Common/Src/stream/ASCII85X86.h"

#if defined(__x86_64__)
#include <array>
#include <immintrin.h>

#define ZEL_TARGET __attribute__((target("avx512f,avx512bw,avx512vbmi,avx512vbmi2,bmi2,popcnt")))

namespace {

/// The characters of a block in two vectors: those of groups 0 to 11 and those of groups 12 to 15.
constexpr int kHeadGroups = 12;
constexpr int kHeadText = 5 * kHeadGroups;

/// Where each character comes from, 64 entries a vector: bytes 0 to 63 of the digits d3, d4, d1,
/// d2 of the sixteen groups, or 64 plus the byte of d0.
constexpr std::array<int8_t, 128> MakePlaces() {
    std::array<int8_t, 128> places{};
    for (int group = 0; group < 16; ++group) {
        const int digits[5] = {64 + 4 * group, 4 * group + 2, 4 * group + 3, 4 * group,
                               4 * group + 1};
        auto at = static_cast<size_t>(group < kHeadGroups ? 5 * group : 4 + 5 * group);
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

struct Text {
    __m512i head, tail;
};

/// The 80 characters of sixteen groups; those of zero groups start with "z".
ZEL_TARGET inline Text TextOf(__m512i bytes, __mmask16 zeroGroups) {
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
    return {_mm512_add_epi8(head, offset), _mm512_add_epi8(tail, offset)};
}

ZEL_TARGET inline void StoreTail(char *text, __m512i tail) {
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(text), _mm512_castsi512_si256(tail));
}

/// The characters to keep of `count` groups at five bits each: the first of a zero group, else all.
ZEL_TARGET inline uint64_t KeepMask(uint32_t nonZeroGroups, int count) {
    const uint64_t firsts = 0x1084210842108421U & ((uint64_t{1} << (5 * count)) - 1);
    return firsts | _pdep_u64(nonZeroGroups, firsts) * 0x1E;
}

ZEL_TARGET inline char *StoreMixed(const Text &found, __mmask16 zeroGroups, char *text) {
    const uint32_t nonZeroGroups = ~static_cast<uint32_t>(zeroGroups);
    const uint64_t head = KeepMask(nonZeroGroups, kHeadGroups);
    const uint64_t tail = KeepMask(nonZeroGroups >> kHeadGroups, 16 - kHeadGroups);
    _mm512_storeu_si512(text, _mm512_maskz_compress_epi8(head, found.head));
    text += _mm_popcnt_u64(head);
    StoreTail(text, _mm512_maskz_compress_epi8(tail, found.tail));
    return text + _mm_popcnt_u64(tail);
}

} // namespace

ZEL_TARGET size_t ASCII85EncodeAVX512(const uint8_t *data, size_t blocks, char *text) {
    char *const start = text;
    for (; blocks > 0; --blocks, data += kASCII85BlockBytes) {
        const __m512i bytes = _mm512_loadu_si512(data);
        const __mmask16 zeroGroups = _mm512_testn_epi32_mask(bytes, bytes);
        if (zeroGroups == 0) {
            const Text found = TextOf(bytes, 0);
            _mm512_storeu_si512(text, found.head);
            StoreTail(text + kHeadText, found.tail);
            text += kASCII85BlockText;
        } else if (zeroGroups == 0xFFFF) {
            _mm_storeu_si128(reinterpret_cast<__m128i *>(text), _mm_set1_epi8('z'));
            text += 16;
        } else {
            text = StoreMixed(TextOf(bytes, zeroGroups), zeroGroups, text);
        }
    }
    return static_cast<size_t>(text - start);
}
#endif
