// Compiled for AVX-512 with byte permutations, and called only where the processor has them. As for
// AVX2, nothing here may be an inline function that another file compiles too.
#include "colour/ColourKernelsX86.h"
#include "colour/EightColourTable.h"
#include "colour/KernelBlocks.h"

#include <immintrin.h>

namespace {

__m512i Load(const uint8_t *bytes) {
    return _mm512_loadu_si512(bytes);
}

/// The same 16 bytes in every quarter.
__m512i Quarters(__m128i v) {
    return _mm512_broadcast_i32x4(v);
}

// ---- Black generation

/// A table of 256 bytes in four vectors.
struct ByteTable {
    __m512i part[4];
};

ByteTable LoadTable(const uint8_t *bytes) {
    return {{Load(bytes), Load(bytes + 64), Load(bytes + 128), Load(bytes + 192)}};
}

__m512i LookUp(const ByteTable &table, __m512i index) {
    const __m512i low = _mm512_permutex2var_epi8(table.part[0], index, table.part[1]);
    const __m512i high = _mm512_permutex2var_epi8(table.part[2], index, table.part[3]);
    return _mm512_mask_mov_epi8(low, _mm512_movepi8_mask(index), high);
}

/// Smallest ink of 16 pixels C, M, Y, 0, as 32-bit numbers.
__m512i Grey(__m512i inks) {
    const __m512i least = _mm512_min_epu8(
        inks, _mm512_min_epu8(_mm512_srli_epi32(inks, 8), _mm512_srli_epi32(inks, 16)));
    return _mm512_and_si512(least, _mm512_set1_epi32(0xFF));
}

/// Brings removal and negated black of 32 pixels, as neighbours, to the half of the pixels that
/// `first` names: 0 or 8.
__m512i Change(__m512i pairs, char first) {
    const __m512i pixel = Quarters(_mm_setr_epi8(0, 0, 0, 1, 2, 2, 2, 3, 4, 4, 4, 5, 6, 6, 6, 7));
    return _mm512_shuffle_epi8(pairs, _mm512_add_epi8(pixel, _mm512_set1_epi8(first)));
}

// ---- Tetrahedra

/// One byte of 64 colours. A quarter holds four colours of each of the four vectors that they were
/// loaded from: that is what unpacking the inks turns back into rows.
struct Colours {
    __m512i r, g, b;
};

Colours Gather(const uint8_t *rgb) {
    const __m512i group =
        Quarters(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
    __m512i v[4];
    for (int i = 0; i < 4; ++i)
        v[i] = _mm512_shuffle_epi8(Load(rgb + 64 * i), group);
    const __m512i first = _mm512_unpacklo_epi32(v[0], v[1]);
    const __m512i second = _mm512_unpacklo_epi32(v[2], v[3]);
    return {_mm512_unpacklo_epi64(first, second), _mm512_unpackhi_epi64(first, second),
            _mm512_unpacklo_epi64(_mm512_unpackhi_epi32(v[0], v[1]),
                                  _mm512_unpackhi_epi32(v[2], v[3]))};
}

/// Cell and fraction: the high and the low bits of a byte, turned round.
struct Position {
    __m512i cell, fraction;
};

Position Locate(__m512i v) {
    constexpr int kChoose = 0xCA; // bits of the second operand where the first is set, else third
    const __m512i high = _mm512_srli_epi16(v, 6);
    return {
        _mm512_and_si512(high, _mm512_set1_epi8(0x03)),
        _mm512_ternarylogic_epi32(_mm512_set1_epi8(-4), _mm512_slli_epi16(v, 2), high, kChoose)};
}

/// Corners of 64 tetrahedra as numbers of grid points, from the last to the first, and their
/// weights; corners and weights that belong together follow each other.
struct Tetrahedra64 {
    __m512i corner[4], weight[4];
};

/// For each colour, the number that belongs to the component that is equal to `value`.
__m512i Choose(__m512i value, __m512i r, __m512i g, char forR, char forG, char forB) {
    const __m512i some = _mm512_mask_mov_epi8(
        _mm512_set1_epi8(forB), _mm512_cmpeq_epi8_mask(value, g), _mm512_set1_epi8(forG));
    return _mm512_mask_mov_epi8(some, _mm512_cmpeq_epi8_mask(value, r), _mm512_set1_epi8(forR));
}

Tetrahedra64 ChooseTetrahedra(const Colours &colours) {
    const Position r = Locate(colours.r);
    const Position g = Locate(colours.g);
    const Position b = Locate(colours.b);
    const __m512i times25 =
        Quarters(_mm_setr_epi8(0, 25, 50, 75, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
    const __m512i times5 =
        Quarters(_mm_setr_epi8(0, 5, 10, 15, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
    const __m512i base = _mm512_add_epi8(
        _mm512_add_epi8(_mm512_shuffle_epi8(times25, r.cell), _mm512_shuffle_epi8(times5, g.cell)),
        b.cell);
    const __m512i larger = _mm512_max_epu8(r.fraction, g.fraction);
    const __m512i smaller = _mm512_min_epu8(r.fraction, g.fraction);
    const __m512i highest = _mm512_max_epu8(larger, b.fraction);
    const __m512i lowest = _mm512_min_epu8(smaller, b.fraction);
    const __m512i middle = _mm512_max_epu8(smaller, _mm512_min_epu8(larger, b.fraction));
    // Where fractions are equal, the corner that may be either way has no weight.
    const __m512i one = Choose(highest, r.fraction, g.fraction, 25, 5, 1);
    const __m512i two = Choose(lowest, r.fraction, g.fraction, 6, 26, 30);
    return {{_mm512_add_epi8(base, _mm512_set1_epi8(31)), _mm512_add_epi8(base, two),
             _mm512_add_epi8(base, one), base},
            {lowest, _mm512_sub_epi8(middle, lowest), _mm512_sub_epi8(highest, middle),
             _mm512_xor_si512(highest, _mm512_set1_epi8(-1))}};
}

/// Weights of 64 colours in pairs, as the multiply-add wants them.
struct Pairs {
    __m512i low[2], high[2];
};

Pairs Pair(const __m512i v[4]) {
    return {{_mm512_unpacklo_epi8(v[0], v[1]), _mm512_unpacklo_epi8(v[2], v[3])},
            {_mm512_unpackhi_epi8(v[0], v[1]), _mm512_unpackhi_epi8(v[2], v[3])}};
}

/// Sum of two products each, without the corners' bias, divided by 255.
__m512i Weigh(const __m512i weights[2], const __m512i corners[2]) {
    const __m512i sum = _mm512_add_epi16(_mm512_maddubs_epi16(weights[0], corners[0]),
                                         _mm512_maddubs_epi16(weights[1], corners[1]));
    const __m512i unbiased = _mm512_add_epi16(sum, _mm512_set1_epi16(128 * 255));
    return _mm512_srli_epi16(
        _mm512_mulhi_epu16(unbiased, _mm512_set1_epi16(static_cast<int16_t>(0x8081))), 7);
}

/// One ink of 64 colours.
__m512i Ink(const uint8_t *plane, const Tetrahedra64 &t, const Pairs &weights) {
    const __m512i low = Load(plane);
    const __m512i high = Load(plane + 64);
    __m512i values[4];
    for (int i = 0; i < 4; ++i)
        values[i] = _mm512_permutex2var_epi8(low, t.corner[i], high);
    const Pairs corners = Pair(values);
    return _mm512_packus_epi16(Weigh(weights.low, corners.low), Weigh(weights.high, corners.high));
}

void StoreInks(uint8_t *dst, const __m512i ink[4]) {
    const __m512i cmLow = _mm512_unpacklo_epi8(ink[0], ink[1]);
    const __m512i cmHigh = _mm512_unpackhi_epi8(ink[0], ink[1]);
    const __m512i ykLow = _mm512_unpacklo_epi8(ink[2], ink[3]);
    const __m512i ykHigh = _mm512_unpackhi_epi8(ink[2], ink[3]);
    _mm512_storeu_si512(dst, _mm512_unpacklo_epi16(cmLow, ykLow));
    _mm512_storeu_si512(dst + 64, _mm512_unpackhi_epi16(cmLow, ykLow));
    _mm512_storeu_si512(dst + 128, _mm512_unpacklo_epi16(cmHigh, ykHigh));
    _mm512_storeu_si512(dst + 192, _mm512_unpackhi_epi16(cmHigh, ykHigh));
}

} // namespace

uint64_t BlackGenerationAVX512(const uint8_t *table, const uint8_t *src, uint64_t count,
                               uint8_t *dst) {
    const ByteTable black = LoadTable(table);
    const ByteTable removal = LoadTable(table + 256);
    const auto convert = [&](const uint8_t *pixels, uint8_t *out) {
        __m512i inks[4];
        for (int i = 0; i < 4; ++i)
            inks[i] =
                _mm512_srli_epi32(_mm512_xor_si512(Load(pixels + 64 * i), _mm512_set1_epi8(-1)), 8);
        // Packing leaves, in each quarter, four greys of every vector in turn.
        const __m512i grey = _mm512_packus_epi16(_mm512_packus_epi32(Grey(inks[0]), Grey(inks[1])),
                                                 _mm512_packus_epi32(Grey(inks[2]), Grey(inks[3])));
        const __m512i removed = LookUp(removal, grey);
        const __m512i added = _mm512_sub_epi8(_mm512_setzero_si512(), LookUp(black, grey));
        const __m512i low = _mm512_unpacklo_epi8(removed, added);
        const __m512i high = _mm512_unpackhi_epi8(removed, added);
        _mm512_storeu_si512(out, _mm512_sub_epi8(inks[0], Change(low, 0)));
        _mm512_storeu_si512(out + 64, _mm512_sub_epi8(inks[1], Change(low, 8)));
        _mm512_storeu_si512(out + 128, _mm512_sub_epi8(inks[2], Change(high, 0)));
        _mm512_storeu_si512(out + 192, _mm512_sub_epi8(inks[3], Change(high, 8)));
    };
    return ConvertBlocks<64>(kXRGB, WhiteInks(table), src, count, dst, convert);
}

uint64_t EightColoursAVX512(const EightColourLUT &table, const uint8_t *src, uint64_t count,
                            uint8_t *dst) {
    const auto convert = [&table](const uint8_t *rgb, uint8_t *out) {
        const Tetrahedra64 tetrahedra = ChooseTetrahedra(Gather(rgb));
        const Pairs weights = Pair(tetrahedra.weight);
        __m512i ink[4];
        for (int i = 0; i < 4; ++i)
            ink[i] = Ink(table.planes + kPlaneSize * static_cast<size_t>(i), tetrahedra, weights);
        StoreInks(out, ink);
    };
    return ConvertBlocks<64>(kRGBX, FourBytes(table.grid + kWhitePoint), src, count, dst, convert);
}
