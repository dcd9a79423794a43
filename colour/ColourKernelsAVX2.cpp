// Compiled for AVX2, and called only where the processor has it. Nothing here may be an inline
// function that another file compiles too: the linker would keep one of the two copies for all.
#include "colour/ColourKernelsX86.h"
#include "colour/EightColourLUT.h"

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

/// Where eight colours lie: byte offsets of their corners, and the four weights of each.
struct Places {
    __m256i offsets, weights;
};

Places Locate(__m256i rgb) {
    // Cell v * 4 / 255 and fraction v * 4 % 255 are the high and the low bits of v, turned round;
    // 255 counts as the far end of the last cell.
    const __m256i cell = _mm256_and_si256(_mm256_srli_epi16(rgb, 6), _mm256_set1_epi8(0x03));
    const __m256i a =
        _mm256_or_si256(cell, _mm256_and_si256(_mm256_slli_epi16(rgb, 2), _mm256_set1_epi8(-4)));
    const __m256i next = Both(_mm_setr_epi8(1, 2, 0, 3, 5, 6, 4, 7, 9, 10, 8, 11, 13, 14, 12, 15));
    const __m256i b = _mm256_shuffle_epi8(a, next);
    const __m256i c = _mm256_shuffle_epi8(b, next);

    const __m256i larger = _mm256_max_epu8(a, b);
    const __m256i smaller = _mm256_min_epu8(a, b);
    const __m256i highest = _mm256_max_epu8(larger, c);
    const __m256i lowest = _mm256_min_epu8(smaller, c);
    const __m256i middle = _mm256_max_epu8(smaller, _mm256_min_epu8(larger, c));
    const __m256i sorted =
        _mm256_or_si256(_mm256_or_si256(_mm256_and_si256(lowest, _mm256_set1_epi32(0xFF)),
                                        _mm256_and_si256(middle, _mm256_set1_epi32(0xFF00))),
                        _mm256_or_si256(_mm256_and_si256(highest, _mm256_set1_epi32(0xFF0000)),
                                        _mm256_set1_epi32(static_cast<int>(0xFF000000))));
    const __m256i weights = _mm256_sub_epi8(sorted, _mm256_slli_epi32(sorted, 8));

    const __m256i order = _mm256_and_si256(_mm256_cmpeq_epi8(larger, b), _mm256_set1_epi8(0x04));
    const __m256i index = _mm256_maddubs_epi16(_mm256_or_si256(cell, order), Repeat(64, 8, 1, 0));
    return {_mm256_madd_epi16(index, _mm256_set1_epi16(16)), weights};
}

/// Weighted corners of the pixels `i` and `i + 4`: for each, four sums of the first two corners
/// and four of the others. The corners are biased by -128, to be the signed factor.
__m256i Weigh(const uint8_t *corners, const uint32_t *offsets, __m256i weights, int i) {
    const auto at = static_cast<char>(4 * i);
    const __m256i both = _mm256_inserti128_si256(
        _mm256_castsi128_si256(Load16(corners + offsets[i])), Load16(corners + offsets[i + 4]), 1);
    const __m256i spread = _mm256_add_epi8(
        _mm256_set1_epi8(at), Both(_mm_setr_epi8(0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3, 2, 3, 2, 3)));
    return _mm256_maddubs_epi16(_mm256_shuffle_epi8(weights, spread), both);
}

/// Adds the two sums of every ink, takes the bias back and divides by 255.
__m256i Inks(__m256i even, __m256i odd) {
    const __m256i sum =
        _mm256_add_epi16(_mm256_unpacklo_epi64(even, odd), _mm256_unpackhi_epi64(even, odd));
    const __m256i unbiased = _mm256_add_epi16(sum, _mm256_set1_epi16(128 * 255));
    const __m256i product =
        _mm256_mulhi_epu16(unbiased, _mm256_set1_epi16(static_cast<int16_t>(0x8081)));
    return _mm256_srli_epi16(product, 7);
}

} // namespace

uint64_t BlackGenerationAVX2(const uint8_t *table, const uint8_t *src, uint64_t count,
                             uint8_t *dst) {
    const Slices slices = FindSlices(table);
    const __m256i lowest = _mm256_set1_epi8(static_cast<char>(slices.lowest));
    uint64_t done = 0;
    for (; done + 32 <= count; done += 32, src += 128, dst += 128) {
        __m256i inks[4];
        for (int i = 0; i < 4; ++i)
            inks[i] =
                _mm256_srli_epi32(_mm256_xor_si256(Load(src + 32 * i), _mm256_set1_epi8(-1)), 8);
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
            Store(dst + 32 * i, inks[i]);
    }
    return done;
}

uint64_t EightColoursAVX2(const EightColourLUT &table, const uint8_t *src, uint64_t count,
                          uint8_t *dst) {
    uint64_t done = 0;
    // One pixel more than a block: the byte after a block's last pixel is loaded with it.
    for (; done + 8 < count; done += 8, src += 32, dst += 32) {
        const Places places = Locate(Load(src));
        alignas(32) uint32_t offsets[8];
        _mm256_store_si256(reinterpret_cast<__m256i *>(offsets), places.offsets);
        const __m256i first = Inks(Weigh(table.corners, offsets, places.weights, 0),
                                   Weigh(table.corners, offsets, places.weights, 1));
        const __m256i second = Inks(Weigh(table.corners, offsets, places.weights, 2),
                                    Weigh(table.corners, offsets, places.weights, 3));
        Store(dst, _mm256_packus_epi16(first, second));
    }
    return done;
}
