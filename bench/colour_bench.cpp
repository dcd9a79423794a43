// How fast rows of a photograph become CMYK, and how many times faster than the plain forms and
// than Little CMS doing the same with the ICC transform itself. All are measured in one run: on a
// shared machine only the ratios mean something.
#include "colour/ColourKernels.h"
#include "colour/EightColourSeparation.h"
#include "colour/RGBToCMYK.h"

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <lcms2.h>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int64_t kWidth = 4960; // A4 at 600 dpi
constexpr int64_t kRows = 256;

/// Soft colours with some grain, as x, R, G, B.
std::vector<uint8_t> Photograph() {
    std::mt19937 random(1);
    std::vector<uint8_t> pixels(static_cast<size_t>(4 * kWidth * kRows));
    for (int64_t i = 0; i < kWidth * kRows; ++i) {
        const double x = static_cast<double>(i % kWidth);
        const int64_t row = i / kWidth;
        const auto y = static_cast<double>(row);
        const double light = 128 + 80 * std::sin(x / 310) + 30 * std::sin(y / 17 + x / 90);
        const double values[3] = {light + 20 * std::sin(x / 53), light,
                                  light - 30 * std::cos(y / 41)};
        for (int c = 0; c < 3; ++c) {
            const double noisy = values[c] + static_cast<double>(random() % 9) - 4;
            pixels[static_cast<size_t>(4 * i + 1 + c)] =
                static_cast<uint8_t>(std::clamp(noisy, 0.0, 255.0));
        }
    }
    return pixels;
}

/// Ink amounts that a press could have, on the 5x5x5 grid.
std::unique_ptr<EightColourLUT> Table() {
    auto table = std::make_unique<EightColourLUT>();
    uint8_t black[kBlackGenerationTableSize];
    zel_InitBG(black, 2, 230, 820, 0.6);
    for (uint8_t i = 0; i < 125; ++i) {
        const auto level = [](int k) { return static_cast<uint8_t>(k * 255 / 4); };
        const uint8_t pixel[4] = {0, level(i / 25), level(i / 5 % 5), level(i % 5)};
        zel_RGBToCMYK(black, pixel, table->grid + 4 * i, 1);
    }
    BuildVectorTables(table.get());
    return table;
}

/// A transform through device links would do less work than a usual one, so this is a usual one:
/// sRGB to a CMYK profile, 8 bits, with the tables that Little CMS precalculates.
class LittleCMS {
public:
    LittleCMS() : mSource(cmsCreate_sRGBProfile()) {
        for (const char *path : {"/usr/share/color/icc/ghostscript/default_cmyk.icc",
                                 "/usr/share/color/icc/colord/FOGRA39L_coated.icc"})
            if (!mTarget) mTarget = cmsOpenProfileFromFile(path, "r");
        if (mTarget)
            mTransform = cmsCreateTransform(mSource, TYPE_ARGB_8, mTarget, TYPE_CMYK_8,
                                            INTENT_PERCEPTUAL, 0);
    }
    LittleCMS(const LittleCMS &) = delete;
    LittleCMS &operator=(const LittleCMS &) = delete;
    ~LittleCMS() {
        if (mTransform) cmsDeleteTransform(mTransform);
        if (mTarget) cmsCloseProfile(mTarget);
        cmsCloseProfile(mSource);
    }
    explicit operator bool() const { return mTransform != nullptr; }
    void Convert(const uint8_t *src, uint8_t *dst) const {
        cmsDoTransform(mTransform, src, dst, kWidth);
    }

private:
    cmsHPROFILE mSource;
    cmsHPROFILE mTarget = nullptr;
    cmsHTRANSFORM mTransform = nullptr;
};

/// Converts the photograph row by row into one row buffer, as a page is printed.
template <typename ConvertRow>
void Rows(benchmark::State &state, ConvertRow convert) {
    static const std::vector<uint8_t> pixels = Photograph();
    std::vector<uint8_t> row(4 * kWidth);
    for (auto _ : state)
        for (int64_t y = 0; y < kRows; ++y) {
            convert(pixels.data() + 4 * kWidth * y, row.data());
            benchmark::DoNotOptimize(row.data());
            benchmark::ClobberMemory();
        }
    state.counters["Mpixel/s"] =
        benchmark::Counter(static_cast<double>(state.iterations() * kWidth * kRows) / 1e6,
                           benchmark::Counter::kIsRate);
}

const uint8_t *BlackTable() {
    static const auto table = [] {
        std::array<uint8_t, kBlackGenerationTableSize> bytes;
        zel_InitBG(bytes.data(), 2, 214, 1020, 0.2);
        return bytes;
    }();
    return table.data();
}

const EightColourLUT *InkTable() {
    static const std::unique_ptr<EightColourLUT> table = Table();
    return table.get();
}

void BlackGenerationPlain(benchmark::State &state) {
    Rows(state, [](const uint8_t *src, uint8_t *dst) {
        RGBToCMYKPlain(BlackTable(), src, kWidth, dst, {1, 4});
    });
}
BENCHMARK(BlackGenerationPlain);

void BlackGeneration(benchmark::State &state) {
    Rows(state, [](const uint8_t *src, uint8_t *dst) {
        CTRGBToCMYK(BlackTable(), src, kWidth, dst, 1, 4);
    });
}
BENCHMARK(BlackGeneration);

void TablePlain(benchmark::State &state) {
    Rows(state, [](const uint8_t *src, uint8_t *dst) {
        EightColourLUTSeparatePlain(InkTable(), src + 1, 4, kWidth, dst, 1, 4);
    });
}
BENCHMARK(TablePlain);

void TableSeparation(benchmark::State &state) {
    Rows(state, [](const uint8_t *src, uint8_t *dst) {
        EightColourLUTSeparate(InkTable(), src + 1, 4, kWidth, dst, 4, 1, 4);
    });
}
BENCHMARK(TableSeparation);

/// The public function takes the best kernel; here is each by itself.
void RegisterTableKernel(const ColourKernels &kernels, const std::string &name) {
    benchmark::RegisterBenchmark(name.c_str(), [&kernels](benchmark::State &state) {
        Rows(state, [&kernels](const uint8_t *src, uint8_t *dst) {
            kernels.eightColours(*InkTable(), src + 1, kWidth, dst);
        });
    });
}

void LittleCMSTransform(benchmark::State &state) {
    static const LittleCMS transform;
    if (transform)
        Rows(state, [](const uint8_t *src, uint8_t *dst) { transform.Convert(src, dst); });
    else
        state.SkipWithError("no CMYK profile found");
}
BENCHMARK(LittleCMSTransform);

/// Prints the usual table and remembers the speeds; of repeated runs, the best.
class SpeedReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs) {
            const auto speed = run.counters.find("Mpixel/s");
            if (run.run_type != Run::RT_Iteration || speed == run.counters.end()) continue;
            double &best = mSpeeds[run.run_name.function_name];
            best = std::max(best, speed->second.value);
        }
        ConsoleReporter::ReportRuns(runs);
    }
    void PrintRatio(const std::string &fast, const std::string &slow, double goal) const {
        const auto a = mSpeeds.find(fast);
        const auto b = mSpeeds.find(slow);
        if (a == mSpeeds.end() || b == mSpeeds.end()) return;
        std::printf("%s : %s = %.1f (goal %.1f)\n", fast.c_str(), slow.c_str(),
                    a->second / b->second, goal);
    }

private:
    std::map<std::string, double> mSpeeds;
};

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    std::vector<std::string> tables = {"TableSeparation"};
    for (const auto &[name, kernels] : VectorKernels()) {
        tables.push_back(std::string("TableSeparation ") + name);
        RegisterTableKernel(kernels, tables.back());
    }
    SpeedReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\n");
    reporter.PrintRatio("BlackGeneration", "BlackGenerationPlain", 3.5);
    for (const std::string &table : tables) {
        reporter.PrintRatio(table, "TablePlain", 15);
        reporter.PrintRatio(table, "LittleCMSTransform", 20);
    }
    return 0;
}
