/// The unit of a PNG file's resolution, which libvips keeps to itself.
#pragma once

#include <string>

/// Whether a PNG file tells pixels a metre. Its pHYs chunk may also tell the shape of a pixel only,
/// or be missing (W3C PNG, third edition, 11.3.4.3).
[[nodiscard]] bool TellsPixelsPerMetre(const std::string &path);
