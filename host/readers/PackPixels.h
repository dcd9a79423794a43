/// Samples as files have them, packed into pixels as the driver takes them.
#pragma once

#include <cstdint>

/// Which pixels a document takes.
enum class DocumentPixels {
    Darkness, ///< kZELFormatGray8
    XRGB,     ///< kZELFormatXRGB32
    CMYK      ///< kZELFormatCMYK32
};

/// Bytes a pixel.
[[nodiscard]] int PixelSize(DocumentPixels pixels);

/// What the driver calls them: one of the kZELFormat codes.
[[nodiscard]] uint16_t PixelFormat(DocumentPixels pixels);

/// Packs `count` pixels of `bands` samples (1: gray, 3: RGB, 4: CMYK) for the driver.
void PackPixels(const uint8_t *source, int bands, int count, DocumentPixels target, uint8_t *out);
