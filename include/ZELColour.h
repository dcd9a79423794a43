/// RGB to CMYK conversion by grey-component replacement.
///
/// A black-generation table has 512 bytes: black K[g] at 0-255 and under-colour removal U[g] at
/// 256-511, both indexed by the grey component g = 255 - max(R, G, B). Every pixel becomes
/// (255-R-U[g], 255-G-U[g], 255-B-U[g], K[g]), each modulo 256.
#ifndef ZEL_COLOUR_H
#define ZEL_COLOUR_H

#include "ZELTypes.h"

/// Fills a black-generation table. `curve` 0: no black; 4: linear; any other: the standard cubic.
/// `level`: maximum black, low 8 bits used. `inkLimit`: total ink, 255 is one full ink, low 16
/// bits used. `ucrFactor`: the fraction of the black that is taken away from C, M and Y.
ZEL_EXPORT void zel_InitBG(uint8_t *table, int32_t curve, uint32_t level, uint32_t inkLimit,
                           double ucrFactor);

/// Converts `count` pixels x, R, G, B into interleaved C, M, Y, K. A null `dst` is reported on the
/// console and nothing is written.
ZEL_EXPORT void zel_RGBToCMYK(const uint8_t *table, const uint8_t *src, uint8_t *dst,
                              int32_t count);

/// The same into four planes of one byte a pixel.
ZEL_EXPORT void zel_RGBToCMYK_planes(const uint8_t *table, const uint8_t *src, uint8_t *c,
                                     uint8_t *m, uint8_t *y, uint8_t *k, int32_t count);

/// The general form: C, M, Y, K of a pixel go to dst[0], dst[planeStride], dst[2*planeStride] and
/// dst[3*planeStride]; dst then advances by pixelStride bytes.
ZEL_EXPORT void CTRGBToCMYK(const uint8_t *table, const uint8_t *src, uint64_t count, uint8_t *dst,
                            int64_t planeStride, int64_t pixelStride);

/// Value at x of the cubic (Lagrange form) through the four points (xs[i], ys[i]).
ZEL_EXPORT double interpolate(const double xs[4], const double ys[4], double x);

/// 0.0, 1.0, 2.0, 3.2, 5.0. Not read by the conversions; hosts rely on the values.
ZEL_EXPORT const double blackGenExponents[5];

/// "Standard": the name of the built-in separation, which needs no profile.
ZEL_EXPORT const CFStringRef kStandardTableName;

#endif
