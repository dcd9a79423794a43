/// PNM files as libvips images, with what libvips leaves undone.
#pragma once

#include <vips/vips.h>

/// Opens a PNM file: bits may stand without space between them, samples whose largest value is not
/// the largest of their size are spread over all of it, the floats of a PFM file become bytes (1 is
/// white) and its rows go from top to bottom. The caller owns `*out`. Returns not 0, and libvips's
/// error is set, when it cannot. See CheckPNM for damaged files.
[[nodiscard]] int LoadPNM(const char *path, VipsAccess access, VipsImage **out);
