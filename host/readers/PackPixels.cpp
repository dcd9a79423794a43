#include "host/readers/PackPixels.h"

#include "ZELTypes.h"
#include <bit>
#include <cstring>

int PixelSize(DocumentPixels pixels) {
    return pixels == DocumentPixels::Darkness ? 1 : 4;
}

uint16_t PixelFormat(DocumentPixels pixels) {
    switch (pixels) {
        case DocumentPixels::Darkness:
            return kZELFormatGray8;
        case DocumentPixels::XRGB:
            return kZELFormatXRGB32;
        case DocumentPixels::CMYK:
            return kZELFormatCMYK32;
    }
    return 0;
}

namespace {

/// Byte x is not looked at: every pixel is copied with the byte before it.
void PackXRGB(const uint8_t *source, int count, uint8_t *out) {
    if (count < 1) return;
    out[0] = 0;
    memcpy(out + 1, source, 3);
    int i = 1;
    if constexpr (std::endian::native == std::endian::little) {
        // Two pixels a word, which holds x R G B R G B and a byte of the third pixel.
        for (; i + 2 < count; i += 2) {
            uint64_t word;
            memcpy(&word, source + 3 * i - 1, 8);
            word = (word & UINT32_MAX) | (word >> 24) << 32;
            memcpy(out + 4 * i, &word, 8);
        }
    }
    for (; i < count; ++i)
        memcpy(out + 4 * i, source + 3 * i - 1, 4);
}

/// The grey that PostScript makes of DeviceRGB: 0.3 R + 0.59 G + 0.11 B.
void PackDarkness(const uint8_t *source, int count, uint8_t *out) {
    for (int i = 0; i < count; ++i) {
        const uint8_t *p = source + 3 * i;
        out[i] = static_cast<uint8_t>(255 - ((77 * p[0] + 151 * p[1] + 28 * p[2] + 128) >> 8));
    }
}

} // namespace

void PackPixels(const uint8_t *source, int bands, int count, DocumentPixels target, uint8_t *out) {
    if (target == DocumentPixels::CMYK) {
        memcpy(out, source, static_cast<size_t>(count) * 4);
    } else if (target == DocumentPixels::XRGB && bands == 3) {
        PackXRGB(source, count, out);
    } else if (target == DocumentPixels::XRGB) {
        for (int i = 0; i < count; ++i)
            memset(out + 4 * i, source[i], 4);
    } else if (bands == 3) {
        PackDarkness(source, count, out);
    } else {
        for (int i = 0; i < count; ++i)
            out[i] = static_cast<uint8_t>(255 - source[i]);
    }
}
