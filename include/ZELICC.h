/// Fixed-point primitives of ICC colour transforms (see ICC.1, lut16Type and s15Fixed16Number).
///
/// A curve has `n` unsigned 16-bit entries, 2 or more, spread evenly over 0..65535 and, for the
/// forward lookups, one more slot that repeats the last entry. A grid has `n` points, 2 or more, on
/// each of three axes, `stride` values a point, the first input varying slowest. A matrix has nine
/// s15.16 values (65536 is 1.0), row by row. 65535 is 1.0 (32768 in the functions that end in
/// 32768). All memory is the caller's; nothing here reports an error or looks for null.
#ifndef ZEL_ICC_H
#define ZEL_ICC_H

#include "ZELTypes.h"

/// The curve at `value` (0..65535), interpolated linearly and rounded down.
ZEL_EXPORT uint16_t ICC_OneDLookup(uint32_t value, const uint16_t *curve, uint32_t n);
/// The same for `value` in 0..32768; the entry is still found on the scale of 65535 and only the
/// weight within it is on the other. Hosts rely on the values.
ZEL_EXPORT uint16_t ICC_OneDLookup32768(uint32_t value, const uint16_t *curve, uint32_t n);
/// The curve at `value`, where 1.0 is its end. Beyond, the slope of the last two entries times the
/// way past the end, limited to 0..65535: a curve that ends level gives 0 there.
ZEL_EXPORT uint16_t ICC_OneDLookupWithExtrapolation(const uint16_t *curve, uint32_t n,
                                                    double value);

/// Position (0..65535) of `value` on a non-decreasing curve. A value outside the curve's range is
/// clipped and
/// `*outOfRange` set to 255; otherwise the flag is left alone.
ZEL_EXPORT uint16_t ICC_InverseOneDLookup(uint32_t value, const uint16_t *curve, uint32_t n,
                                          uint8_t *outOfRange);

/// Tetrahedral interpolation of the first `count` of `stride` values at `in` (0..65535, or
/// 0..32768) into `out`. Where an input is 1.0, points beyond the grid are read with the weight 0:
/// the memory has to go on for n * n + n + 1 points, whatever they hold.
ZEL_EXPORT void ICC_ThreeDLookup(const uint16_t in[3], const uint16_t *grid, uint32_t n,
                                 uint16_t *out, uint32_t stride, uint32_t count);
ZEL_EXPORT void ICC_ThreeDLookup32768(const uint16_t in[3], const uint16_t *grid, uint32_t n,
                                      uint16_t *out, uint32_t stride, uint32_t count);

ZEL_EXPORT void ICC_MatrixIdentity(int32_t m[9]);
ZEL_EXPORT void ICC_MatrixCopy(const int32_t src[9], int32_t dst[9]);
/// Multiplies column i by num[i] / den[i], rounded towards zero. No `den` may be 0.
ZEL_EXPORT void ICC_MatrixScaleColumns(int32_t m[9], const int32_t num[3], const int32_t den[3]);
/// The same for rows.
ZEL_EXPORT void ICC_MatrixScaleRows(int32_t m[9], const int32_t num[3], const int32_t den[3]);
/// The same for all nine values.
ZEL_EXPORT void ICC_MatrixScale(int32_t m[9], int32_t num, int32_t den);
/// Values out of range, as all are for a matrix without an inverse, become INT32_MIN. `dst` may be
/// `src`.
ZEL_EXPORT void ICC_MatrixInverse(const int32_t src[9], int32_t dst[9]);
/// One Newton step that refines `x`, an estimate of the inverse of `a`.
ZEL_EXPORT void ICC_ImproveMatrixInverse(const int32_t a[9], int32_t x[9]);
/// r = a b, rounded to nearest. `r` may be `a` or `b`.
ZEL_EXPORT void ICC_MatrixConcat(const int32_t a[9], const int32_t b[9], int32_t r[9]);
/// out = m in, rounded to nearest. Results outside 0..65535 are clipped and `*clipped` set to 255;
/// else the flag is left alone.
ZEL_EXPORT void ICC_MatrixMultiply(const int32_t m[9], const uint16_t in[3], uint16_t out[3],
                                   uint8_t *clipped);
/// out = m in for s15.16 vectors, rounded to nearest. `out` may be `in`.
ZEL_EXPORT void ICC_FixedMatrixMultiply(const int32_t m[9], const int32_t in[3], int32_t out[3]);
/// Multiplies every point of a grid of three values a point by `m`, as ICC_MatrixMultiply does.
ZEL_EXPORT void ICC_Transform3DLut(const int32_t m[9], uint16_t *grid, uint32_t n);

#endif
