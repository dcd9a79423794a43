#include "host/separations/InkProfile.h"

#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <lcms2.h>
#include <memory>
#include <vector>

namespace {

struct CloseProfile {
    void operator()(void *profile) const { (void)cmsCloseProfile(profile); }
};
struct FreePipeline {
    void operator()(cmsPipeline *pipeline) const { cmsPipelineFree(pipeline); }
};
struct FreeCurve {
    void operator()(cmsToneCurve *curve) const { cmsFreeToneCurve(curve); }
};
struct FreeText {
    void operator()(cmsMLU *text) const { cmsMLUfree(text); }
};
using Profile = std::unique_ptr<void, CloseProfile>;
using Pipeline = std::unique_ptr<cmsPipeline, FreePipeline>;
using Curve = std::unique_ptr<cmsToneCurve, FreeCurve>;
using Text = std::unique_ptr<cmsMLU, FreeText>;

constexpr int kInks = 4;
constexpr int kLights = 3;
constexpr double kMost = 65535;
/// 33 points an axis hold the driver's 5, and the steps of black generation are fine enough; more
/// come no nearer.
constexpr int kSeparationPoints = 33;
constexpr int kLookPoints = 17;
constexpr int kCurveEntries = 4096;
/// Version 4 would have its black point moved.
constexpr double kVersion = 2.4;
/// A profile counts XYZ up to 1 + 32767/32768.
constexpr double kXYZUnit = 32768;

void Check(bool done) {
    if (!done)
        throw HostError(ExitStatus::Driver, "the profile of the separation cannot be made; out "
                                            "of memory?");
}

/// The RGB that light comes in.
struct LightSpace {
    explicit LightSpace(cmsHPROFILE profile) {
        constexpr std::array tags = {cmsSigRedColorantTag, cmsSigGreenColorantTag,
                                     cmsSigBlueColorantTag};
        for (size_t i = 0; i < tags.size(); ++i) {
            const auto *colorant = static_cast<const cmsCIEXYZ *>(cmsReadTag(profile, tags[i]));
            Check(colorant != nullptr);
            primaries[i] = *colorant;
        }
        curve = static_cast<const cmsToneCurve *>(cmsReadTag(profile, cmsSigRedTRCTag));
        Check(curve != nullptr);
    }

    std::array<cmsCIEXYZ, kLights> primaries = {};
    const cmsToneCurve *curve = nullptr; ///< the profile's
};

/// Inks of colours between those that a pixel can tell: linear between the eight around.
class Sampler {
public:
    explicit Sampler(const SeparateColours &separate) : mSeparate(separate) {}

    void Sample(const cmsUInt16Number light[], cmsUInt16Number ink[]) const {
        std::array<uint8_t, size_t{8} * 4> pixels = {};
        std::array<uint8_t, size_t{8} *kInks> inks = {};
        std::array<double, 8> weights = {};
        for (size_t corner = 0; corner < weights.size(); ++corner)
            weights[corner] = TakeCorner(light, corner, &pixels[4 * corner]);
        mSeparate(pixels.data(), weights.size(), inks.data());
        for (size_t i = 0; i < kInks; ++i) {
            double sum = 0;
            for (size_t corner = 0; corner < weights.size(); ++corner)
                sum += weights[corner] * inks[kInks * corner + i];
            ink[i] = static_cast<cmsUInt16Number>(std::lrint(sum * 257));
        }
    }

private:
    /// Writes x, R, G, B of a corner; returns its weight.
    static double TakeCorner(const cmsUInt16Number light[], size_t corner, uint8_t *pixel) {
        double weight = 1;
        for (size_t i = 0; i < kLights; ++i) {
            const double value = light[i] / 257.0;
            const int low = std::min(254, static_cast<int>(value));
            const bool high = (corner >> i & 1) != 0;
            weight *= high ? value - low : 1 - (value - low);
            pixel[i + 1] = static_cast<uint8_t>(low + (high ? 1 : 0));
        }
        return weight;
    }

    const SeparateColours &mSeparate;
};

cmsInt32Number SampleInks(const cmsUInt16Number light[], cmsUInt16Number ink[], void *sampler) {
    static_cast<const Sampler *>(sampler)->Sample(light, ink);
    return TRUE;
}

/// How ink looks: every ink takes its light away, and black all of it.
class Look {
public:
    explicit Look(const LightSpace &light) : mLight(light) {
        for (int ink = 0; ink < kLookPoints; ++ink)
            for (int black = 0; black < kLookPoints; ++black)
                mLinear[Index(ink, black)] = cmsEvalToneCurveFloat(
                    light.curve, static_cast<float>(PaperLeft(ink) * PaperLeft(black)));
    }

    [[nodiscard]] const LightSpace &Light() const { return mLight; }
    /// Linear light that an ink and black leave.
    [[nodiscard]] double Left(cmsUInt16Number ink, cmsUInt16Number black) const {
        return mLinear[Index(Step(ink), Step(black))];
    }

private:
    static constexpr int kSteps = kLookPoints - 1;
    static double PaperLeft(int step) { return 1 - static_cast<double>(step) / kSteps; }
    static int Step(cmsUInt16Number ink) {
        return static_cast<int>(std::lrint(ink / kMost * kSteps));
    }
    static size_t Index(int ink, int black) {
        return static_cast<size_t>(ink) * kLookPoints + static_cast<size_t>(black);
    }

    const LightSpace &mLight;
    std::array<double, static_cast<size_t>(kLookPoints *kLookPoints)> mLinear = {};
};

cmsInt32Number SampleLook(const cmsUInt16Number ink[], cmsUInt16Number xyz[], void *given) {
    const auto &look = *static_cast<const Look *>(given);
    const LightSpace &light = look.Light();
    std::array<double, 3> sum = {};
    for (size_t i = 0; i < kLights; ++i) {
        const double linear = look.Left(ink[i], ink[3]);
        sum[0] += light.primaries[i].X * linear;
        sum[1] += light.primaries[i].Y * linear;
        sum[2] += light.primaries[i].Z * linear;
    }
    for (size_t i = 0; i < sum.size(); ++i)
        xyz[i] =
            static_cast<cmsUInt16Number>(std::lrint(std::clamp(sum[i] * kXYZUnit, 0.0, kMost)));
    return TRUE;
}

using Matrix = std::array<double, 9>;

/// From XYZ as a profile counts it to linear light.
Matrix XYZToLight(const LightSpace &light) {
    const auto &[r, g, b] = light.primaries;
    const double determinant = r.X * (g.Y * b.Z - b.Y * g.Z) - g.X * (r.Y * b.Z - b.Y * r.Z) +
                               b.X * (r.Y * g.Z - g.Y * r.Z);
    Matrix inverse = {g.Y * b.Z - b.Y * g.Z, b.X * g.Z - g.X * b.Z, g.X * b.Y - b.X * g.Y,
                      b.Y * r.Z - r.Y * b.Z, r.X * b.Z - b.X * r.Z, b.X * r.Y - r.X * b.Y,
                      r.Y * g.Z - g.Y * r.Z, g.X * r.Z - r.X * g.Z, r.X * g.Y - g.X * r.Y};
    for (double &value : inverse)
        value = value / determinant * kMost / kXYZUnit;
    return inverse;
}

/// By bisection: exact also near black, where a reversed table is not.
Curve Inverse(const cmsToneCurve *curve) {
    std::vector<cmsUInt16Number> entries(kCurveEntries);
    for (int i = 1; i < kCurveEntries; ++i) {
        double low = 0;
        double high = 1;
        for (int step = 0; step < 40; ++step) {
            const double middle = (low + high) / 2;
            const double value = cmsEvalToneCurveFloat(curve, static_cast<float>(middle));
            (value < i / (kCurveEntries - 1.0) ? low : high) = middle;
        }
        entries[static_cast<size_t>(i)] =
            static_cast<cmsUInt16Number>(std::lrint((low + high) / 2 * kMost));
    }
    return Curve(cmsBuildTabulatedToneCurve16(nullptr, kCurveEntries, entries.data()));
}

void Append(const Pipeline &pipeline, cmsStage *stage) {
    Check(pipeline && stage && cmsPipelineInsertStage(pipeline.get(), cmsAT_END, stage));
}

void AppendCurves(const Pipeline &pipeline, cmsUInt32Number channels, const Curve &curve) {
    const std::array<cmsToneCurve *, kInks> curves = {curve.get(), curve.get(), curve.get(),
                                                      curve.get()};
    Check(curve != nullptr);
    Append(pipeline, cmsStageAllocToneCurves(nullptr, channels, curves.data()));
}

Curve Straight() {
    return Curve(cmsBuildGamma(nullptr, 1.0));
}

Pipeline ToInk(const LightSpace &light, Sampler sampler) {
    Pipeline pipeline(cmsPipelineAlloc(nullptr, kLights, kInks));
    Append(pipeline, cmsStageAllocMatrix(nullptr, 3, 3, XYZToLight(light).data(), nullptr));
    AppendCurves(pipeline, kLights, Inverse(light.curve));
    cmsStage *grid = cmsStageAllocCLut16bit(nullptr, kSeparationPoints, kLights, kInks, nullptr);
    Append(pipeline, grid);
    Check(cmsStageSampleCLut16bit(grid, SampleInks, &sampler, 0));
    AppendCurves(pipeline, kInks, Straight());
    return pipeline;
}

Pipeline ToLight(const LightSpace &light) {
    Look look(light);
    Pipeline pipeline(cmsPipelineAlloc(nullptr, kInks, kLights));
    AppendCurves(pipeline, kInks, Straight());
    cmsStage *grid = cmsStageAllocCLut16bit(nullptr, kLookPoints, kInks, kLights, nullptr);
    Append(pipeline, grid);
    Check(cmsStageSampleCLut16bit(grid, SampleLook, &look, 0));
    AppendCurves(pipeline, kLights, Straight());
    return pipeline;
}

/// The same table for all rendering intents.
void WriteTables(cmsHPROFILE profile, const std::array<cmsTagSignature, 3> &tags,
                 const Pipeline &pipeline) {
    Check(cmsWriteTag(profile, tags[0], pipeline.get()));
    Check(cmsLinkTag(profile, tags[1], tags[0]) && cmsLinkTag(profile, tags[2], tags[0]));
}

std::string BytesOf(cmsHPROFILE profile) {
    cmsUInt32Number size = 0;
    Check(cmsSaveProfileToMem(profile, nullptr, &size));
    std::string bytes(size, '\0');
    Check(cmsSaveProfileToMem(profile, bytes.data(), &size));
    return bytes;
}

std::string MakeInk(const LightSpace &light, const SeparateColours &separate) {
    const Profile profile(cmsCreateProfilePlaceholder(nullptr));
    Check(profile != nullptr);
    cmsSetProfileVersion(profile.get(), kVersion);
    cmsSetDeviceClass(profile.get(), cmsSigOutputClass);
    cmsSetColorSpace(profile.get(), cmsSigCmykData);
    cmsSetPCS(profile.get(), cmsSigXYZData);
    const Text name(cmsMLUalloc(nullptr, 1));
    Check(name && cmsMLUsetASCII(name.get(), "en", "US", "the driver's separation"));
    Check(cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, name.get()));
    Check(cmsWriteTag(profile.get(), cmsSigCopyrightTag, name.get()));
    Check(cmsWriteTag(profile.get(), cmsSigMediaWhitePointTag, cmsD50_XYZ()));
    WriteTables(profile.get(), {cmsSigBToA0Tag, cmsSigBToA1Tag, cmsSigBToA2Tag},
                ToInk(light, Sampler(separate)));
    WriteTables(profile.get(), {cmsSigAToB0Tag, cmsSigAToB1Tag, cmsSigAToB2Tag}, ToLight(light));
    return BytesOf(profile.get());
}

} // namespace

InkProfile MakeInkProfile(const SeparateColours &separate) {
    const Profile light(cmsCreate_sRGBProfile());
    Check(light != nullptr);
    const LightSpace space(light.get());
    InkProfile result;
    result.ink = MakeInk(space, separate);
    result.light = BytesOf(light.get());
    return result;
}
