#include "ZELICC.h"

#include <array>
#include <cmath>
#include <cstring>

namespace {

/// A double as the low 16 bits of its integer part; what is no number gives 0.
uint16_t LowWord(double value) {
    if (!(std::fabs(value) < 9.0e18)) return 0;
    return static_cast<uint16_t>(static_cast<int64_t>(value));
}

int32_t ToFixed(double value) {
    if (!(value > -2147483649.0 && value < 2147483648.0)) return INT32_MIN;
    return static_cast<int32_t>(value);
}

/// a * b summed into `sum`. The bits that are kept do not depend on an overflow of the sum.
uint64_t MultiplyAdd(uint64_t sum, int32_t a, int32_t b) {
    return sum + static_cast<uint64_t>(int64_t{a} * int64_t{b});
}

int32_t RoundedHighWord(uint64_t sum) {
    return static_cast<int32_t>(static_cast<int64_t>(sum + 32768) >> 16);
}

int32_t Scaled(int32_t value, int32_t num, int32_t den) {
    return static_cast<int32_t>(int64_t{value} * num / den);
}

/// One step through a cell: offsets of the corners that are weighted, and their weights.
struct Tetrahedron {
    uint64_t corner[4];
    uint64_t weight[4];
};

/// The tetrahedron that holds the fractions f, after the case code of their order. False for the
/// two codes that three numbers cannot make.
bool ChooseTetrahedron(const uint64_t f[3], const uint64_t step[3], uint64_t one, Tetrahedron &t) {
    const auto [f0, f1, f2] = std::array{f[0], f[1], f[2]};
    const uint64_t a = step[0];
    const uint64_t b = step[1];
    const uint64_t c = step[2];
    const uint64_t all = a + b + c;
    switch ((f1 > f2 ? 1 : 0) + (f0 > f2 ? 2 : 0) + (f0 > f1 ? 4 : 0)) {
        case 0:
            t = {{all, b + c, c, 0}, {f0, f1 - f0, f2 - f1, one - f2}};
            return true;
        case 1:
            t = {{all, b + c, b, 0}, {f0, f2 - f0, f1 - f2, one - f1}};
            return true;
        case 3:
            t = {{all, a + b, b, 0}, {f2, f0 - f2, f1 - f0, one - f1}};
            return true;
        case 4:
            t = {{all, a + c, c, 0}, {f1, f0 - f1, f2 - f0, one - f2}};
            return true;
        case 6:
            t = {{all, a + c, a, 0}, {f1, f2 - f1, f0 - f2, one - f0}};
            return true;
        case 7:
            t = {{all, a + b, a, 0}, {f2, f1 - f2, f0 - f1, one - f0}};
            return true;
        default:
            return false;
    }
}

uint64_t WeightedSum(const uint16_t *values, const Tetrahedron &t) {
    uint64_t sum = 0;
    for (int i = 0; i < 4; ++i)
        sum += values[t.corner[i]] * t.weight[i];
    return sum;
}

/// Splits the inputs into the cell's offset and the fractions within it; `Divide` tells how.
template <typename Divide>
uint64_t LocateCell(const uint16_t in[3], uint32_t n, const uint64_t step[3], uint64_t f[3],
                    Divide divide) {
    uint64_t base = 0;
    for (int k = 0; k < 3; ++k) {
        const uint32_t p = in[k] * (n - 1);
        const auto [index, fraction] = divide(p);
        base += index * step[k];
        f[k] = fraction;
    }
    return base;
}

struct Position {
    uint64_t index, fraction;
};

void Multiply(const int32_t m[9], const uint16_t in[3], uint16_t out[3], bool &clipped) {
    constexpr int64_t kTop = 0xFFFF0000;
    int64_t sums[3];
    for (int r = 0; r < 3; ++r) {
        const int32_t *row = m + 3 * r;
        sums[r] = int64_t{row[0]} * in[0] + int64_t{row[1]} * in[1] + int64_t{row[2]} * in[2];
    }
    for (int r = 0; r < 3; ++r) {
        const int64_t s = sums[r] < 0 ? 0 : sums[r] > kTop ? kTop : sums[r];
        if (s != sums[r]) clipped = true;
        out[r] = static_cast<uint16_t>((s + 32768) >> 16);
    }
}

} // namespace

uint16_t ICC_OneDLookup(uint32_t value, const uint16_t *curve, uint32_t n) {
    const uint64_t p = uint64_t{value} * (n - 1);
    const uint64_t i = p / 65535;
    const uint64_t f = p % 65535;
    return static_cast<uint16_t>((curve[i + 1] * f + curve[i] * (65535 - f)) / 65535);
}

uint16_t ICC_OneDLookup32768(uint32_t value, const uint16_t *curve, uint32_t n) {
    const uint64_t p = uint64_t{value} * (n - 1);
    const uint64_t i = p / 65535;
    // The index is on the 65535 scale and the weight on the 32768 scale; callers depend on it.
    const auto w = static_cast<uint32_t>(p - i * 32768);
    return static_cast<uint16_t>((curve[i] * (32768 - w) + curve[i + 1] * w) >> 15);
}

uint16_t ICC_OneDLookupWithExtrapolation(const uint16_t *curve, uint32_t n, double value) {
    if (value <= 1.0) return ICC_OneDLookup(LowWord(std::round(value * 65535.0)), curve, n);
    const double rise = curve[n - 1] - curve[n - 2];
    const double t = (value - 1.0) * rise / (1.0 / (n - 1));
    return LowWord(std::round((t < 0.0 ? 0.0 : t > 1.0 ? 1.0 : t) * 65535.0));
}

uint16_t ICC_InverseOneDLookup(uint32_t value, const uint16_t *curve, uint32_t n,
                               uint8_t *outOfRange) {
    const uint32_t first = curve[0];
    const uint32_t last = curve[n - 1];
    if (value > last || value < first) *outOfRange = 255;
    if (value >= last) return 65535;
    if (value <= first) return 0;
    uint64_t lo = 0;
    uint64_t hi = n - 1;
    while (hi - lo > 1) {
        const uint64_t mid = (lo + hi) / 2;
        (curve[mid] <= value ? lo : hi) = mid;
    }
    const uint64_t a = curve[lo];
    const uint64_t b = curve[hi];
    const uint64_t xlo = lo * 65535 / (n - 1);
    const uint64_t xhi = hi * 65535 / (n - 1);
    if (a == b) return static_cast<uint16_t>(xhi);
    return static_cast<uint16_t>((xhi - xlo) * (value - a) / (b - a) + xlo);
}

void ICC_ThreeDLookup(const uint16_t in[3], const uint16_t *grid, uint32_t n, uint16_t *out,
                      uint32_t stride, uint32_t count) {
    const uint64_t step[3] = {uint64_t{n} * n * stride, uint64_t{n} * stride, stride};
    uint64_t f[3];
    Tetrahedron t{};
    grid += LocateCell(in, n, step, f, [](uint32_t p) { return Position{p / 65535, p % 65535}; });
    if (!ChooseTetrahedron(f, step, 65535, t)) return;
    for (uint32_t j = 0; j < count; ++j)
        out[j] = static_cast<uint16_t>(WeightedSum(grid + j, t) / 65535);
}

void ICC_ThreeDLookup32768(const uint16_t in[3], const uint16_t *grid, uint32_t n, uint16_t *out,
                           uint32_t stride, uint32_t count) {
    const uint64_t step[3] = {uint64_t{n} * n * stride, uint64_t{n} * stride, stride};
    uint64_t f[3];
    Tetrahedron t{};
    grid += LocateCell(in, n, step, f, [](uint32_t p) { return Position{p >> 15, p & 0x7FFF}; });
    if (!ChooseTetrahedron(f, step, 32768, t)) return;
    for (uint32_t j = 0; j < count; ++j)
        out[j] = static_cast<uint16_t>(WeightedSum(grid + j, t) >> 15);
}

void ICC_MatrixIdentity(int32_t m[9]) {
    for (int i = 0; i < 9; ++i)
        m[i] = i % 4 == 0 ? 65536 : 0;
}

void ICC_MatrixCopy(const int32_t src[9], int32_t dst[9]) {
    std::memmove(dst, src, 9 * sizeof *dst);
}

void ICC_MatrixScaleColumns(int32_t m[9], const int32_t num[3], const int32_t den[3]) {
    for (int i = 0; i < 9; ++i)
        m[i] = Scaled(m[i], num[i % 3], den[i % 3]);
}

void ICC_MatrixScaleRows(int32_t m[9], const int32_t num[3], const int32_t den[3]) {
    for (int i = 0; i < 9; ++i)
        m[i] = Scaled(m[i], num[i / 3], den[i / 3]);
}

void ICC_MatrixScale(int32_t m[9], int32_t num, int32_t den) {
    for (int i = 0; i < 9; ++i)
        m[i] = Scaled(m[i], num, den);
}

void ICC_MatrixInverse(const int32_t src[9], int32_t dst[9]) {
    double m[9];
    for (int i = 0; i < 9; ++i)
        m[i] = src[i] * (1.0 / 65536.0);
    // Indices taken cyclically carry the cofactors' signs with them.
    const auto cofactor = [&m](int row, int column) {
        const int r1 = (row + 1) % 3;
        const int r2 = (row + 2) % 3;
        const int c1 = (column + 1) % 3;
        const int c2 = (column + 2) % 3;
        return m[3 * r1 + c1] * m[3 * r2 + c2] - m[3 * r1 + c2] * m[3 * r2 + c1];
    };
    const double det = m[0] * cofactor(0, 0) + m[1] * cofactor(0, 1) + m[2] * cofactor(0, 2);
    for (int i = 0; i < 9; ++i)
        dst[i] = ToFixed(std::trunc(cofactor(i % 3, i / 3) * 65536.0 / det + 0.5));
}

void ICC_MatrixConcat(const int32_t a[9], const int32_t b[9], int32_t r[9]) {
    int32_t result[9];
    for (int i = 0; i < 9; ++i) {
        uint64_t sum = 0;
        for (int k = 0; k < 3; ++k)
            sum = MultiplyAdd(sum, a[i / 3 * 3 + k], b[3 * k + i % 3]);
        result[i] = RoundedHighWord(sum);
    }
    ICC_MatrixCopy(result, r);
}

void ICC_ImproveMatrixInverse(const int32_t a[9], int32_t x[9]) {
    int32_t t[9];
    int32_t u[9];
    ICC_MatrixConcat(a, x, t);
    ICC_MatrixConcat(x, t, u);
    for (int i = 0; i < 9; ++i) {
        const auto v =
            static_cast<int32_t>(4 * static_cast<uint32_t>(x[i]) - 2 * static_cast<uint32_t>(u[i]));
        const uint32_t rounding = v < 0 ? 2 : 1;
        x[i] = static_cast<int32_t>(static_cast<uint32_t>(v) + rounding) >> 1;
    }
}

void ICC_MatrixMultiply(const int32_t m[9], const uint16_t in[3], uint16_t out[3],
                        uint8_t *clipped) {
    bool clip = false;
    Multiply(m, in, out, clip);
    if (clip) *clipped = 255;
}

void ICC_FixedMatrixMultiply(const int32_t m[9], const int32_t in[3], int32_t out[3]) {
    int32_t result[3];
    for (int r = 0; r < 3; ++r) {
        uint64_t sum = 0;
        for (int k = 0; k < 3; ++k)
            sum = MultiplyAdd(sum, m[3 * r + k], in[k]);
        result[r] = RoundedHighWord(sum);
    }
    std::memcpy(out, result, sizeof result);
}

void ICC_Transform3DLut(const int32_t m[9], uint16_t *grid, uint32_t n) {
    const uint64_t points = uint64_t{n} * n * n;
    bool ignored = false;
    for (uint64_t i = 0; i < points; ++i)
        Multiply(m, grid + 3 * i, grid + 3 * i, ignored);
}
