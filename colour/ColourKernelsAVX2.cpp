// Compiled for AVX2, and called only where the processor has it. Nothing here may be an inline
// function that another file compiles too: the linker would keep one of the two copies for all.
#include "colour/ColourKernelsX86.h"
#include "colour/EightColourTable.h"
#include "colour/KernelBlocks.h"

#include <immintrin.h>

namespace {

__m256i Load(const uint8_t *bytes) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(bytes));
}

void Store(uint8_t *bytes, __m256i v) {
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(bytes), v);
}

__m128i Load16(const uint8_t *bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes));
}

/// The same 16 bytes in both halves, as the byte shuffle wants its tables and controls.
__m256i Both(__m128i v) {
    return _mm256_broadcastsi128_si256(v);
}

__m256i Repeat(char a, char b, char c, char d) {
    return Both(_mm_setr_epi8(a, b, c, d, a, b, c, d, a, b, c, d, a, b, c, d));
}

// ---- Black generation

/// The parts of a black-generation table that are not zero: 16 greys each, from `first` on.
struct Slices {
    struct Slice {
        __m256i first, black, removal;
    } slice[16];
    int count = 0;
    int lowest = 0; ///< greys below it have neither black nor removal
};

Slices FindSlices(const uint8_t *table) {
    Slices slices;
    for (int first = 0; first < 256; first += 16) {
        const __m128i black = Load16(table + first);
        const __m128i removal = Load16(table + 256 + first);
        const __m128i any = _mm_or_si128(black, removal);
        if (_mm_testz_si128(any, any)) continue;
        if (slices.count == 0) slices.lowest = first;
        slices.slice[slices.count++] = {_mm256_set1_epi8(static_cast<char>(first)), Both(black),
                                        Both(removal)};
    }
    return slices;
}

struct BlackAndRemoval {
    __m256i black, removal;
};

/// Looks 32 greys up. A shuffle gives zero where bit 7 of its index is set: adding 0x70 with
/// saturation sets it wherever a grey lies outside the slice.
BlackAndRemoval LookUp(const Slices &slices, __m256i grey) {
    __m256i black = _mm256_setzero_si256();
    __m256i removal = _mm256_setzero_si256();
    for (int i = 0; i < slices.count; ++i) {
        const Slices::Slice &s = slices.slice[i];
        const __m256i inSlice = _mm256_sub_epi8(grey, s.first);
        const __m256i index = _mm256_adds_epu8(inSlice, _mm256_set1_epi8(0x70));
        black = _mm256_or_si256(black, _mm256_shuffle_epi8(s.black, index));
        removal = _mm256_or_si256(removal, _mm256_shuffle_epi8(s.removal, index));
    }
    return {black, removal};
}

/// Smallest ink of eight pixels C, M, Y, 0, as 32-bit numbers.
__m256i Grey(__m256i inks) {
    const __m256i least = _mm256_min_epu8(
        inks, _mm256_min_epu8(_mm256_srli_epi32(inks, 8), _mm256_srli_epi32(inks, 16)));
    return _mm256_and_si256(least, _mm256_set1_epi32(0xFF));
}

/// Brings the black and the removal of 32 greys to the pixels that they belong to. `pairs` holds
/// removal and negated black of 16 pixels as neighbours; `half` 0 or 1 chooses eight of them.
__m256i Change(__m256i pairs, int half) {
    const auto at = static_cast<char>(8 * half);
    const __m256i removal = Repeat(at, at, at, static_cast<char>(at + 1));
    const __m256i pixel = Both(_mm_setr_epi8(0, 0, 0, 0, 2, 2, 2, 2, 4, 4, 4, 4, 6, 6, 6, 6));
    return _mm256_shuffle_epi8(pairs, _mm256_add_epi8(removal, pixel));
}

// ---- Tetrahedra

/// One byte of 32 colours. A half holds four colours of each of the four vectors that they were
/// loaded from: that is what unpacking turns back into rows.
struct Colours {
    __m256i r, g, b;
};

Colours Gather(const uint8_t *rgb) {
    const __m256i group = Both(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
    __m256i v[4];
    for (int i = 0; i < 4; ++i)
        v[i] = _mm256_shuffle_epi8(Load(rgb + 32 * i), group);
    const __m256i first = _mm256_unpacklo_epi32(v[0], v[1]);
    const __m256i second = _mm256_unpacklo_epi32(v[2], v[3]);
    return {_mm256_unpacklo_epi64(first, second), _mm256_unpackhi_epi64(first, second),
            _mm256_unpacklo_epi64(_mm256_unpackhi_epi32(v[0], v[1]),
                                  _mm256_unpackhi_epi32(v[2], v[3]))};
}

/// Cell v * 4 / 255 and fraction v * 4 % 255 are the high and the low bits of v, turned round; 255
/// counts as the far end of the last cell.
struct Position {
    __m256i cell, fraction;
};

Position Locate(__m256i v) {
    const __m256i cell = _mm256_and_si256(_mm256_srli_epi16(v, 6), _mm256_set1_epi8(0x03));
    const __m256i twice = _mm256_add_epi8(v, v);
    return {cell, _mm256_add_epi8(_mm256_add_epi8(twice, twice), cell)};
}

__m256i Bit(__m256i condition, char bit) {
    return _mm256_and_si256(condition, _mm256_set1_epi8(bit));
}

/// Where 32 colours lie: 16-bit offsets of their corners, two of the four vectors in each, and
/// their weights from the last corner to the first, four bytes a colour.
struct Places {
    __m256i offsets[2], weights[4];
};

Places FindPlaces(const Colours &colours) {
    const Position r = Locate(colours.r);
    const Position g = Locate(colours.g);
    const Position b = Locate(colours.b);
    const __m256i larger = _mm256_max_epu8(r.fraction, g.fraction);
    const __m256i smaller = _mm256_min_epu8(r.fraction, g.fraction);
    const __m256i highest = _mm256_max_epu8(larger, b.fraction);
    const __m256i lowest = _mm256_min_epu8(smaller, b.fraction);
    const __m256i middle = _mm256_max_epu8(smaller, _mm256_min_epu8(larger, b.fraction));

    const __m256i order =
        _mm256_or_si256(Bit(_mm256_cmpeq_epi8(larger, g.fraction), 4),
                        _mm256_or_si256(Bit(_mm256_cmpeq_epi8(highest, b.fraction), 8),
                                        Bit(_mm256_cmpeq_epi8(lowest, b.fraction), 16)));
    const __m256i high = _mm256_or_si256(order, b.cell);
    const __m256i low = _mm256_or_si256(_mm256_and_si256(colours.r, _mm256_set1_epi8(-64)),
                                        _mm256_slli_epi16(g.cell, 4));

    const __m256i third = _mm256_sub_epi8(middle, lowest);
    const __m256i second = _mm256_sub_epi8(highest, middle);
    const __m256i first = _mm256_xor_si256(highest, _mm256_set1_epi8(-1));
    const __m256i upper[2] = {_mm256_unpacklo_epi8(lowest, third),
                              _mm256_unpackhi_epi8(lowest, third)};
    const __m256i lower[2] = {_mm256_unpacklo_epi8(second, first),
                              _mm256_unpackhi_epi8(second, first)};
    return {{_mm256_unpacklo_epi8(low, high), _mm256_unpackhi_epi8(low, high)},
            {_mm256_unpacklo_epi16(upper[0], lower[0]), _mm256_unpackhi_epi16(upper[0], lower[0]),
             _mm256_unpacklo_epi16(upper[1], lower[1]), _mm256_unpackhi_epi16(upper[1], lower[1])}};
}

/// Weighted corners of the pixels `i` and `i + 4` of eight: for each, four sums of the last two
/// corners and four of the others. The corners are biased by -128, to be the signed factor.
__m256i Weigh(const uint8_t *corners, const uint16_t *offsets, __m256i weights, int i) {
    const auto at = static_cast<char>(4 * i);
    const __m256i both = _mm256_inserti128_si256(
        _mm256_castsi128_si256(Load16(corners + offsets[i])), Load16(corners + offsets[i + 8]), 1);
    const __m256i spread = _mm256_add_epi8(
        _mm256_set1_epi8(at), Both(_mm_setr_epi8(0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3, 2, 3, 2, 3)));
    return _mm256_maddubs_epi16(_mm256_shuffle_epi8(weights, spread), both);
}

/// Adds the two sums of every ink, takes the bias back and divides by 255, as (sum + 1) * 257 /
/// 65536.
__m256i Inks(__m256i even, __m256i odd) {
    const __m256i sum =
        _mm256_add_epi16(_mm256_unpacklo_epi64(even, odd), _mm256_unpackhi_epi64(even, odd));
    const __m256i unbiased = _mm256_add_epi16(sum, _mm256_set1_epi16(128 * 255 + 1));
    return _mm256_mulhi_epu16(unbiased, _mm256_set1_epi16(257));
}

} // namespace

uint64_t BlackGenerationAVX2(const uint8_t *table, const uint8_t *src, uint64_t count,
                             uint8_t *dst) {
    const Slices slices = FindSlices(table);
    const __m256i lowest = _mm256_set1_epi8(static_cast<char>(slices.lowest));
    const auto convert = [&](const uint8_t *pixels, uint8_t *out) {
        __m256i inks[4];
        for (int i = 0; i < 4; ++i)
            inks[i] =
                _mm256_srli_epi32(_mm256_xor_si256(Load(pixels + 32 * i), _mm256_set1_epi8(-1)), 8);
        // Packing leaves, in each half, four greys of every vector in turn.
        const __m256i grey = _mm256_packus_epi16(_mm256_packus_epi32(Grey(inks[0]), Grey(inks[1])),
                                                 _mm256_packus_epi32(Grey(inks[2]), Grey(inks[3])));
        const __m256i above = _mm256_cmpeq_epi8(_mm256_max_epu8(grey, lowest), grey);
        if (!_mm256_testz_si256(above, above)) {
            const auto [black, removal] = LookUp(slices, grey);
            const __m256i added = _mm256_sub_epi8(_mm256_setzero_si256(), black);
            const __m256i low = _mm256_unpacklo_epi8(removal, added);
            const __m256i high = _mm256_unpackhi_epi8(removal, added);
            inks[0] = _mm256_sub_epi8(inks[0], Change(low, 0));
            inks[1] = _mm256_sub_epi8(inks[1], Change(low, 1));
            inks[2] = _mm256_sub_epi8(inks[2], Change(high, 0));
            inks[3] = _mm256_sub_epi8(inks[3], Change(high, 1));
        }
        for (int i = 0; i < 4; ++i)
            Store(out + 32 * i, inks[i]);
    };
    return ConvertBlocks<32>(kXRGB, WhiteInks(table), src, count, dst, convert);
}

uint64_t EightColoursAVX2(const EightColourLUT &table, const uint8_t *src, uint64_t count,
                          uint8_t *dst) {
    const auto convert = [&table](const uint8_t *rgb, uint8_t *out) {
        const Places places = FindPlaces(Gather(rgb));
        alignas(32) uint16_t offsets[32];
        _mm256_store_si256(reinterpret_cast<__m256i *>(offsets), places.offsets[0]);
        _mm256_store_si256(reinterpret_cast<__m256i *>(offsets + 16), places.offsets[1]);
        for (int i = 0; i < 4; ++i) {
            const uint16_t *at = offsets + 16 * (i / 2) + 4 * (i % 2);
            const __m256i first = Inks(Weigh(table.corners, at, places.weights[i], 0),
                                       Weigh(table.corners, at, places.weights[i], 1));
            const __m256i second = Inks(Weigh(table.corners, at, places.weights[i], 2),
                                        Weigh(table.corners, at, places.weights[i], 3));
            Store(out + 32 * i, _mm256_packus_epi16(first, second));
        }
    };
    return ConvertBlocks<32>(kRGBX, FourBytes(table.grid + kWhitePoint), src, count, dst, convert);
}
