/// Where converted pixels go.
#pragma once

#include <algorithm>
#include <cstdint>

/// The four inks of a pixel lie planeStride bytes apart, and pixelStride from pixel to pixel.
struct InkLayout {
    int64_t planeStride;
    int64_t pixelStride;

    bool IsInterleaved() const { return planeStride == 1 && pixelStride == 4; }
};

/// Runs `convert`, which makes interleaved inks, for any layout: where the inks do not lie
/// together, a piece at a time goes through a buffer. convert(src, count, dst) returns how many
/// pixels it took; so does this function.
template <typename Convert>
uint64_t ConvertInLayout(const uint8_t *src, uint64_t count, uint8_t *dst, InkLayout layout,
                         Convert convert) {
    if (layout.IsInterleaved()) return convert(src, count, dst);
    constexpr uint64_t kPiece = 512;
    uint8_t inks[4 * kPiece];
    uint64_t done = 0;
    for (uint64_t taken = 1; taken > 0 && done < count; done += taken) {
        taken = convert(src + 4 * done, std::min(count - done, kPiece), inks);
        for (uint64_t i = 0; i < taken; ++i, dst += layout.pixelStride)
            for (int c = 0; c < 4; ++c)
                dst[c * layout.planeStride] = inks[4 * i + c];
    }
    return done;
}
