/// Where converted pixels go.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

/// The four inks of a pixel lie planeStride bytes apart, and pixelStride from pixel to pixel.
struct InkLayout {
    int64_t planeStride;
    int64_t pixelStride;

    bool IsInterleaved() const { return planeStride == 1 && pixelStride == 4; }
};

/// Pixels of four bytes, of which the last may have no fourth one.
struct PixelRow {
    const uint8_t *bytes;
    uint64_t count;
    bool lastIsWhole;

    uint64_t Size() const { return 4 * count - (lastIsWhole ? 0 : 1); }
    PixelRow From(uint64_t first) const { return {bytes + 4 * first, count - first, lastIsWhole}; }
};

/// Moves `count` pixels of interleaved inks to where they belong.
inline void PlaceInks(const uint8_t *inks, uint64_t count, uint8_t *dst, InkLayout layout) {
    if (layout.IsInterleaved()) {
        std::memcpy(dst, inks, 4 * count);
        return;
    }
    for (; count > 0; --count, inks += 4, dst += layout.pixelStride)
        for (int c = 0; c < 4; ++c)
            dst[c * layout.planeStride] = inks[c];
}

/// Runs a vector kernel over a whole row, for any layout. convert(src, count, dst) makes
/// interleaved inks of as many whole blocks as it can, each of at most 64 pixels, and returns how
/// many pixels that were. Inks that do not lie together go through a buffer, a piece at a time; so
/// do the pixels that do not fill a block, with others behind them.
template <typename Convert>
void ConvertInLayout(PixelRow row, uint8_t *dst, InkLayout layout, Convert convert) {
    constexpr uint64_t kPiece = 512;
    constexpr uint64_t kBlock = 64;
    uint64_t done = layout.IsInterleaved() ? convert(row.bytes, row.count, dst) : 0;
    uint8_t inks[4 * kPiece];
    while (done < row.count) {
        const PixelRow rest = row.From(done);
        uint64_t taken = convert(rest.bytes, std::min(rest.count, kPiece), inks);
        if (taken == 0) {
            uint8_t block[4 * (kBlock + 1)] = {};
            std::memcpy(block, rest.bytes, rest.Size());
            convert(block, kBlock + 1, inks);
            taken = rest.count;
        }
        PlaceInks(inks, taken, dst + layout.pixelStride * static_cast<int64_t>(done), layout);
        done += taken;
    }
}
