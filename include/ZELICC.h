/// Fixed-point primitives of ICC colour transforms (see ICC.1, lut16Type and s15Fixed16Number).
///
/// A curve has `n` unsigned 16-bit entries over 0..65535 and, for the forward lookups, one more
/// slot that repeats the last entry. A grid has `n` points on each of three axes, `stride` values a
/// point, the first input varying slowest. A matrix has nine s15.16 values, row by row. 65535 is
/// 1.0 (32768 in the functions that end in 32768). Nothing here reports an error.
#ifndef ZEL_ICC_H
#define ZEL_ICC_H

#include "ZELTypes.h"

ZEL_EXPORT uint16_t ICC_OneDLookup(uint32_t value, const uint16_t *curve, uint32_t n);
ZEL_EXPORT uint16_t ICC_OneDLookup32768(uint32_t value, const uint16_t *curve, uint32_t n);
ZEL_EXPORT uint16_t ICC_OneDLookupWithExtrapolation(const uint16_t *curve, uint32_t n,
                                                    double value);

/// Position of `value` on a non-decreasing curve. A value outside the curve's range is clipped and
/// `*outOfRange` set to 255; otherwise the flag is left alone.
ZEL_EXPORT uint16_t ICC_InverseOneDLookup(uint32_t value, const uint16_t *curve, uint32_t n,
                                          uint8_t *outOfRange);

/// Tetrahedral interpolation of the first `count` of `stride` values.
ZEL_EXPORT void ICC_ThreeDLookup(const uint16_t in[3], const uint16_t *grid, uint32_t n,
                                 uint16_t *out, uint32_t stride, uint32_t count);
ZEL_EXPORT void ICC_ThreeDLookup32768(const uint16_t in[3], const uint16_t *grid, uint32_t n,
                                      uint16_t *out, uint32_t stride, uint32_t count);

ZEL_EXPORT void ICC_MatrixIdentity(int32_t m[9]);
ZEL_EXPORT void ICC_MatrixCopy(const int32_t src[9], int32_t dst[9]);
ZEL_EXPORT void ICC_MatrixScaleColumns(int32_t m[9], const int32_t num[3], const int32_t den[3]);
ZEL_EXPORT void ICC_MatrixScaleRows(int32_t m[9], const int32_t num[3], const int32_t den[3]);
ZEL_EXPORT void ICC_MatrixScale(int32_t m[9], int32_t num, int32_t den);
ZEL_EXPORT void ICC_MatrixInverse(const int32_t src[9], int32_t dst[9]);
/// One Newton step that refines `x`, an estimate of the inverse of `a`.
ZEL_EXPORT void ICC_ImproveMatrixInverse(const int32_t a[9], int32_t x[9]);
ZEL_EXPORT void ICC_MatrixConcat(const int32_t a[9], const int32_t b[9], int32_t r[9]);
/// Results outside 0..65535 are clipped and `*clipped` set to 255; else the flag is left alone.
ZEL_EXPORT void ICC_MatrixMultiply(const int32_t m[9], const uint16_t in[3], uint16_t out[3],
                                   uint8_t *clipped);
ZEL_EXPORT void ICC_FixedMatrixMultiply(const int32_t m[9], const int32_t in[3], int32_t out[3]);
ZEL_EXPORT void ICC_Transform3DLut(const int32_t m[9], uint16_t *grid, uint32_t n);

#endif
