#include "colour/RGBToCMYK.h"
#include "colour/ColourKernels.h"

#include <algorithm>
#include <cmath>
#include <cstring>

extern const double blackGenExponents[5] = {0.0, 1.0, 2.0, 3.2, 5.0};

namespace {

constexpr double kCurveGrey[4] = {0, 85, 170, 255};
constexpr double kCurveBlack[4] = {0, 0, 35, 255};

uint8_t RemovedColour(uint8_t black, double ucrFactor) {
    const double removed = black * ucrFactor;
    if (!(std::fabs(removed) < 9.0e18)) return 0;
    return static_cast<uint8_t>(static_cast<int64_t>(removed));
}

void BuildLinear(uint8_t *black, uint32_t level) {
    for (uint32_t g = 0; g < kBlackEntries; ++g)
        black[g] = static_cast<uint8_t>(g * level / 255);
}

/// From dark to light; once the curve has reached no black it stays there, for the cubic comes back
/// above zero near white.
void BuildCubic(uint8_t *black, uint32_t level) {
    std::memset(black, 0, kBlackEntries);
    for (int g = 255; g >= 0; --g) {
        const long k = std::lrint(interpolate(kCurveGrey, kCurveBlack, g) * level / 255.0);
        if (k <= 0) return;
        black[g] = static_cast<uint8_t>(k);
    }
}

/// The darkest grey below full black whose colour is within `most` as it is; 0 when there is none.
int FindKnee(const uint8_t *removal, int32_t most) {
    for (int g = 254; g >= 1; --g)
        if (g - removal[g] <= most) return g;
    return 0;
}

/// Takes colour away from dark greys, and lays black down in its place, until the total fits.
void LimitInk(uint8_t *black, uint8_t *removal, uint32_t inkLimit) {
    const int32_t most = (static_cast<int32_t>(inkLimit & 0xFFFF) - black[255]) / 3;
    if (255 - most <= removal[255]) return;
    const int knee = FindKnee(removal, most);
    for (int g = 0; g < 256; ++g)
        if (g - most > removal[g]) removal[g] = static_cast<uint8_t>(g - most);
    const int low = black[knee];
    const int rise = black[255] - low;
    for (int g = knee + 1; g < 256; ++g)
        black[g] = static_cast<uint8_t>(low + (g - knee) * rise / (255 - knee));
}

} // namespace

double interpolate(const double xs[4], const double ys[4], double x) {
    double sum = 0;
    for (int i = 0; i < 4; ++i) {
        double term = ys[i];
        for (int j = 0; j < 4; ++j)
            if (j != i) term *= (x - xs[j]) / (xs[i] - xs[j]);
        sum += term;
    }
    return sum;
}

void zel_InitBG(uint8_t *table, int32_t curve, uint32_t level, uint32_t inkLimit,
                double ucrFactor) {
    uint8_t *black = table;
    uint8_t *removal = table + kBlackEntries;
    level &= 0xFF;
    if (curve == 0)
        std::memset(black, 0, kBlackEntries);
    else if (curve == 4)
        BuildLinear(black, level);
    else
        BuildCubic(black, level);
    for (size_t g = 0; g < kBlackEntries; ++g)
        removal[g] = RemovedColour(black[g], ucrFactor);
    LimitInk(black, removal, inkLimit);
}

void RGBToCMYKPlain(const uint8_t *table, const uint8_t *src, uint64_t count, uint8_t *dst,
                    InkLayout layout) {
    const int64_t plane = layout.planeStride;
    for (; count > 0; --count, src += 4, dst += layout.pixelStride) {
        const int grey = 255 - std::max({src[1], src[2], src[3]});
        const uint8_t removed = table[kBlackEntries + grey];
        dst[0] = static_cast<uint8_t>(255 - src[1] - removed);
        dst[plane] = static_cast<uint8_t>(255 - src[2] - removed);
        dst[2 * plane] = static_cast<uint8_t>(255 - src[3] - removed);
        dst[3 * plane] = table[grey];
    }
}

void CTRGBToCMYK(const uint8_t *table, const uint8_t *src, uint64_t count, uint8_t *dst,
                 int64_t planeStride, int64_t pixelStride) {
    const InkLayout layout{planeStride, pixelStride};
    if (VectorKernels().empty()) {
        RGBToCMYKPlain(table, src, count, dst, layout);
        return;
    }
    const auto convert = [table](const uint8_t *pixels, uint64_t n, uint8_t *inks) {
        return VectorKernels().back().kernel.blackGeneration(table, pixels, n, inks);
    };
    ConvertInLayout({src, count, true}, dst, layout, convert);
}

void zel_RGBToCMYK(const uint8_t *table, const uint8_t *src, uint8_t *dst, int32_t count) {
    if (!dst) {
        CFShow(CFSTR("CMYK == 0"));
        return;
    }
    if (count > 0) CTRGBToCMYK(table, src, static_cast<uint64_t>(count), dst, 1, 4);
}

void zel_RGBToCMYK_planes(const uint8_t *table, const uint8_t *src, uint8_t *c, uint8_t *m,
                          uint8_t *y, uint8_t *k, int32_t count) {
    constexpr int64_t kPiece = 512;
    uint8_t inks[4 * kPiece];
    for (int64_t done = 0; done < count; done += kPiece) {
        const int64_t n = std::min(count - done, kPiece);
        zel_RGBToCMYK(table, src + 4 * done, inks, static_cast<int32_t>(n));
        for (int64_t i = 0; i < n; ++i) {
            c[done + i] = inks[4 * i];
            m[done + i] = inks[4 * i + 1];
            y[done + i] = inks[4 * i + 2];
            k[done + i] = inks[4 * i + 3];
        }
    }
}
