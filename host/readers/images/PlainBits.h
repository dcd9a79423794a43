/// Plain PBM files (netpbm's format P1) for libvips.
#pragma once

#include <string>
#include <vips/vips.h>

/// The file as a raw PBM file (P4), made while it is read. libvips takes bits without a space
/// between them for one number. The caller owns the source; null, and libvips's error set, when the
/// file is not plain PBM.
[[nodiscard]] VipsSource *NewPlainBitsSource(const std::string &path);
