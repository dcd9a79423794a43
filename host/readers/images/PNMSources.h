/// PNM files as sources from which libvips reads from the beginning to the end.
#pragma once

#include <string>
#include <vips/vips.h>

/// The bytes of a file, read as they are asked for: libvips would map the file, and all of it would
/// be in memory. The caller owns the source; what cannot be read is libvips's error later.
[[nodiscard]] VipsSource *NewStreamedSource(const std::string &path);

/// A plain PBM file (netpbm's format P1) as a raw one (P4), made while it is read. libvips takes
/// bits without a space between them for one number. The caller owns the source; null, and
/// libvips's error set, when the file is not plain PBM.
[[nodiscard]] VipsSource *NewPlainBitsSource(const std::string &path);
