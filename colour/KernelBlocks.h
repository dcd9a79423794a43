/// What the vector kernels have in common: the way through a row, block by block.
///
/// All functions are static: each kernel's file compiles copies of its own, for its own processor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

/// Where the colour is in a pixel's four bytes, least significant first.
struct PixelOrder {
    uint32_t colour;
    uint64_t behind; ///< pixels needed behind a block, where a row's last one has no fourth byte
};

constexpr PixelOrder kXRGB = {0xFFFFFF00, 0};
constexpr PixelOrder kRGBX = {0x00FFFFFF, 1};

static inline uint32_t FourBytes(const uint8_t *bytes) {
    uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// The inks of white paper by a black-generation table.
static inline uint32_t WhiteInks(const uint8_t *blackGeneration) {
    const auto colour = static_cast<uint8_t>(-blackGeneration[256]);
    const uint8_t inks[4] = {colour, colour, colour, blackGeneration[0]};
    return FourBytes(inks);
}

/// The pixels come from memory, row after row, and what the processor fetches ahead by itself ends
/// with every page of memory. Past the last pixel this fetches nothing that must not be read.
template <size_t Count>
static void FetchAhead(const uint8_t *pixels) {
    constexpr size_t kDistance = 4096;
    constexpr size_t kCacheLine = 64;
    for (size_t i = 0; i < 4 * Count; i += kCacheLine)
        __builtin_prefetch(pixels + kDistance + i);
}

/// Are `Count` pixels white? In a photograph the first one tells that they are not, and costs next
/// to nothing. Inline, because a call would take the kernels' registers from them.
template <size_t Count>
__attribute__((always_inline)) static inline bool AreWhite(const uint8_t *pixels, uint32_t colour) {
    if ((FourBytes(pixels) & colour) != colour) return false;
    uint32_t common = colour;
    for (size_t i = 0; i < Count; ++i)
        common &= FourBytes(pixels + 4 * i);
    return common == colour;
}

template <size_t Count>
static void Fill(uint8_t *dst, uint32_t inks) {
    for (size_t i = 0; i < Count; ++i)
        std::memcpy(dst + 4 * i, &inks, sizeof inks);
}

/// Converts the whole blocks of a row and returns how many pixels they have. A block that is all
/// white, as most of a page of text is, gets the inks of white paper; any other goes through
/// `convert(src, dst)`.
template <size_t Count, typename Convert>
static uint64_t ConvertBlocks(PixelOrder order, uint32_t whiteInks, const uint8_t *src,
                              uint64_t count, uint8_t *dst, Convert convert) {
    uint64_t done = 0;
    for (; done + Count + order.behind <= count; done += Count) {
        FetchAhead<Count>(src);
        if (AreWhite<Count>(src, order.colour))
            Fill<Count>(dst, whiteInks);
        else
            convert(src, dst);
        src += 4 * Count;
        dst += 4 * Count;
    }
    return done;
}
