// Prints real files with the real program, and compares what Ghostscript renders with the source.
#include "tests/host/HostRunner.h"

#include "host/job/JobPlan.h"
#include "host/readers/images/VipsSupport.h"
#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using Pixel = std::vector<uint8_t>;

Picture Mapped(const Picture &picture, int width, int height,
               const std::function<std::pair<int, int>(int, int)> &from) {
    Picture result{width, height, picture.bands, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto [sx, sy] = from(x, y);
            const uint8_t *p = picture.At(sx, sy);
            result.samples.insert(result.samples.end(), p, p + picture.bands);
        }
    return result;
}

Picture Gray(const Picture &rgb) {
    Picture result = rgb;
    for (size_t i = 0; i < rgb.samples.size(); i += 3) {
        const uint8_t *p = &rgb.samples[i];
        const auto gray = static_cast<uint8_t>(0.3 * p[0] + 0.59 * p[1] + 0.11 * p[2]);
        std::fill_n(result.samples.begin() + static_cast<std::ptrdiff_t>(i), 3, gray);
    }
    return result;
}

/// A printed page's picture, brought to the size of `wanted`, must differ little from it.
void ExpectLike(const Picture &rendered, const Picture &wanted, double tolerance) {
    const Picture part = Trimmed(rendered);
    ASSERT_GT(part.width, 0) << "the page is empty";
    EXPECT_NEAR(static_cast<double>(part.width) / part.height,
                static_cast<double>(wanted.width) / wanted.height, 0.03);
    EXPECT_LT(MeanDifference(Resampled(part, wanted.width, wanted.height), wanted), tolerance);
}

struct PageCase {
    const char *name;
    const char *colourSpace;
    bool eps;
    std::vector<std::string> options;
    bool rotated;
    bool flipH;
    bool flipV;
};

class PrintedPage : public testing::TestWithParam<PageCase> {};

TEST_P(PrintedPage, LooksLikeTheSource) {
    const PageCase &use = GetParam();
    const Workplace place;
    const Picture source = TestPicture(320, 200);
    SavePicture(source, place.Path("source.png"));
    std::vector<std::string> arguments = {
        "--no-auto-rotate",      "--hot-folder",  place.Hot(),
        "--colour-space",        use.colourSpace, use.eps ? "--eps" : "--ps",
        place.Path("source.png")};
    arguments.insert(arguments.end(), use.options.begin(), use.options.end());
    const RunResult run = place.Run(arguments);
    ASSERT_EQ(run.status, 0) << run.err;
    Picture wanted = Mapped(source, 320, 200, [&use](int x, int y) {
        return std::pair(use.flipH ? 319 - x : x, use.flipV ? 199 - y : y);
    });
    // A turned page lies on its left side: its top is at the left.
    if (use.rotated)
        wanted = Mapped(wanted, 200, 320, [](int x, int y) { return std::pair(319 - y, x); });
    if (std::string(use.colourSpace) == "gray") wanted = Gray(wanted);
    const std::string file = place.Hot(use.eps ? "source.eps" : "source.ps");
    // CMYK is looked at through Ghostscript's default inks, which are duller than the screen.
    const double tolerance = std::string(use.colourSpace) == "cmyk" ? 40 : 4;
    ExpectLike(Render(file, 72), wanted, tolerance);
}

std::vector<PageCase> PageCases() {
    std::vector<PageCase> cases;
    static const struct {
        const char *name;
        std::vector<std::string> options;
        bool rotated, flipH, flipV;
    } kTurns[] = {{"Straight", {}, false, false, false},
                  {"Rotated", {"--rotate"}, true, false, false},
                  {"MirroredH", {"--flip-h"}, false, true, false},
                  {"MirroredV", {"--flip-v"}, false, false, true},
                  {"RotatedMirrored", {"--rotate", "--flip-h"}, true, true, false},
                  {"RotatedMirroredV", {"--rotate", "--flip-v"}, true, false, true}};
    static std::vector<std::string> names;
    names.reserve(64);
    for (const bool eps : {false, true})
        for (const char *space : {"gray", "rgb", "cmyk"})
            for (const auto &turn : kTurns) {
                names.push_back(std::string(turn.name) + (eps ? "_eps_" : "_ps_") + space);
                cases.push_back({names.back().c_str(), space, eps, turn.options, turn.rotated,
                                 turn.flipH, turn.flipV});
            }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(AllSpaces, PrintedPage, testing::ValuesIn(PageCases()),
                         [](const auto &info) { return info.param.name; });

class Orientation : public testing::TestWithParam<int> {};

TEST_P(Orientation, IsUprightOnThePage) {
    const Workplace place;
    const Picture upright = TestPicture(160, 100);
    // What the camera stored, by the meaning of each EXIF orientation.
    const int o = GetParam();
    const bool swapped = o >= 5;
    const Picture stored =
        Mapped(upright, swapped ? 100 : 160, swapped ? 160 : 100, [o](int x, int y) {
            switch (o) {
                case 2:
                    return std::pair(159 - x, y);
                case 3:
                    return std::pair(159 - x, 99 - y);
                case 4:
                    return std::pair(x, 99 - y);
                case 5:
                    return std::pair(y, x);
                case 6:
                    return std::pair(159 - y, x);
                case 7:
                    return std::pair(159 - y, 99 - x);
                case 8:
                    return std::pair(y, 99 - x);
                default:
                    return std::pair(x, y);
            }
        });
    SaveOptions options;
    options.orientation = o;
    SavePicture(stored, place.Path("photo.jpg"), options);
    const RunResult run = place.PrintRGB({"--no-auto-rotate", place.Path("photo.jpg")});
    ASSERT_EQ(run.status, 0) << run.err;
    if (o == 6 || o == 8) {
        // The two that cameras write, checked against the picture itself.
        ExpectLike(Render(place.Hot("photo.ps"), 72), upright, 8);
    }
    const VipsImagePtr loaded(vips_image_new_from_file(place.Path("photo.jpg").c_str(), nullptr));
    VipsImage *turned = nullptr;
    ASSERT_EQ(vips_autorot(loaded.get(), &turned, nullptr), 0);
    size_t size = 0;
    void *memory = vips_image_write_to_memory(turned, &size);
    Picture wanted{turned->Xsize, turned->Ysize, 3, {}};
    wanted.samples.assign(static_cast<uint8_t *>(memory), static_cast<uint8_t *>(memory) + size);
    g_free(memory);
    g_object_unref(turned);
    ExpectLike(Render(place.Hot("photo.ps"), 72), wanted, 8);
}

INSTANTIATE_TEST_SUITE_P(Exif, Orientation, testing::Range(1, 9));

TEST(Files, OfEveryKind_ArePrinted) {
    const Workplace place;
    const Picture source = TestPicture(320, 200);
    for (const char *name : {"a.tif", "a.png", "a.jpg", "a.ppm"}) {
        SavePicture(source, place.Path(name));
        const RunResult run = place.PrintRGB({"--no-auto-rotate", "-o", "a.ps", place.Path(name)});
        ASSERT_EQ(run.status, 0) << name << run.err;
        ExpectLike(Render(place.Hot("a.ps"), 72), source, 6);
    }
}

TEST(Files, OfOneBand_ArePrinted) {
    const Workplace place;
    Picture gray{256, 100, 1, {}};
    for (int i = 0; i < 256 * 100; ++i)
        gray.samples.push_back(static_cast<uint8_t>(i % 256 * 0.9));
    SavePicture(gray, place.Path("g.png"));
    for (const char *space : {"gray", "rgb"}) {
        const RunResult run =
            place.Run({"--no-auto-rotate", "--hot-folder", place.Hot(), "--colour-space", space,
                       "-o", "g.ps", place.Path("g.png")});
        ASSERT_EQ(run.status, 0) << run.err;
        Picture wanted{256, 100, 3, {}};
        for (const uint8_t v : gray.samples)
            wanted.samples.insert(wanted.samples.end(), 3, v);
        ExpectLike(Render(place.Hot("g.ps"), 72), wanted, 4);
    }
}

TEST(Files, WithAlpha_LieOnWhite) {
    const Workplace place;
    Picture clear = PlainPicture(40, 40, {0, 0, 0, 0});
    for (int y = 10; y < 30; ++y)
        for (int x = 10; x < 30; ++x)
            clear.samples[static_cast<size_t>(y * 40 + x) * 4 + 3] = 255;
    SavePicture(clear, place.Path("a.png"));
    ASSERT_EQ(place.PrintRGB({place.Path("a.png")}).status, 0);
    const Picture page = Render(place.Hot("a.ps"), 72);
    EXPECT_EQ(page.At(295, 421)[0], 0);
    EXPECT_EQ(page.At(60, 421)[0], 255);
}

TEST(Files, InCMYK_GoThroughUntouched) {
    const Workplace place;
    Picture ink{64, 64, 4, {}};
    for (int i = 0; i < 64 * 64; ++i)
        for (const int step : {1, 3, 7, 2})
            ink.samples.push_back(static_cast<uint8_t>(i * step));
    SaveOptions options;
    options.cmyk = true;
    options.dpi = 72;
    SavePicture(ink, place.Path("ink.tif"), options);
    const RunResult run =
        place.Run({"--eps", "--media", "64x64pt", "--resolution", "72", "--colour-space", "cmyk",
                   "--hot-folder", place.Hot(), place.Path("ink.tif")});
    ASSERT_EQ(run.status, 0) << run.err;
    // Rendered to the four inks themselves.
    EXPECT_EQ(Render(place.Hot("ink.eps"), 72, 1, "tiff32nc").samples, ink.samples);
}

TEST(Files, InCMYK_AsJPEG_AreNotInverted) {
    const Workplace place;
    SaveOptions options;
    options.cmyk = true;
    options.dpi = 72;
    SavePicture(PlainPicture(64, 64, {200, 40, 10, 0}), place.Path("ink.jpg"), options);
    ASSERT_EQ(place
                  .Run({"--eps", "--media", "64x64pt", "--resolution", "72", "--colour-space",
                        "cmyk", "--hot-folder", place.Hot(), place.Path("ink.jpg")})
                  .status,
              0);
    const Picture plates = Render(place.Hot("ink.eps"), 72, 1, "tiff32nc");
    const uint8_t wanted[] = {200, 40, 10, 0};
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(plates.At(32, 32)[i], wanted[i], 4);
}

TEST(Files, InCMYK_BecomeLightInOtherDocuments) {
    const Workplace place;
    SaveOptions options;
    options.cmyk = true;
    SavePicture(PlainPicture(64, 64, {0, 0, 0, 255}), place.Path("k.tif"), options);
    for (const char *space : {"gray", "rgb"}) {
        ASSERT_EQ(place
                      .Run({"--colour-space", space, "--hot-folder", place.Hot(), "-o", "k.ps",
                            place.Path("k.tif")})
                      .status,
                  0);
        EXPECT_LT(Render(place.Hot("k.ps"), 36).At(148, 210)[1], 70) << space;
    }
}

TEST(Pages, OfTIFFAndPDF_ComeInOrder) {
    const Workplace place;
    SavePages({PlainPicture(50, 70, {200, 0, 0}), PlainPicture(50, 70, {0, 200, 0}),
               PlainPicture(50, 70, {0, 0, 200})},
              place.Path("three.tif"));
    const RunResult run =
        place.PrintRGB({"-t", "all", place.Path("three.tif"), ZEL_SAMPLES "/page.pdf"});
    ASSERT_EQ(run.status, 0) << run.err;
    ASSERT_EQ(CountPages(place.Hot("all.ps")), 5);
    for (int page = 1; page <= 3; ++page)
        EXPECT_GT(Render(place.Hot("all.ps"), 18, page).At(74, 105)[page - 1], 190) << page;
}

TEST(Pages, AreChosenByRangeAndRepeatedByCopies) {
    const Workplace place;
    SavePages({PlainPicture(50, 70, {200, 0, 0}), PlainPicture(50, 70, {0, 200, 0}),
               PlainPicture(50, 70, {0, 0, 200})},
              place.Path("three.tif"));
    ASSERT_EQ(place.PrintRGB({"-P", "3,2", "-n", "2", place.Path("three.tif")}).status, 0);
    ASSERT_EQ(CountPages(place.Hot("three.ps")), 4);
    const int wanted[] = {1, 2, 1, 2};
    for (int page = 1; page <= 4; ++page)
        EXPECT_GT(Render(place.Hot("three.ps"), 18, page).At(74, 105)[wanted[page - 1]], 190);
}

TEST(Pages, OfEPS_AreFilesOfTheirOwn) {
    const Workplace place;
    SavePages({PlainPicture(50, 70, {200, 0, 0}), PlainPicture(50, 70, {0, 200, 0})},
              place.Path("two.tif"));
    ASSERT_EQ(place.PrintRGB({"--eps", place.Path("two.tif")}).status, 0);
    EXPECT_EQ(place.HotFiles(), (std::vector<std::string>{"two.eps", "two_p02.eps"}));
    EXPECT_GT(Render(place.Hot("two_p02.eps"), 18).At(70, 100)[1], 190);
}

TEST(Resolution, OfTheImage_IsHonouredWhereItFits) {
    const Workplace place;
    SaveOptions options;
    options.dpi = 100;
    SavePicture(PlainPicture(200, 100, {0, 0, 0}), place.Path("two-inches.png"), options);
    ASSERT_EQ(place.PrintRGB({place.Path("two-inches.png")}).status, 0);
    const Picture part = Trimmed(Render(place.Hot("two-inches.ps"), 100));
    EXPECT_NEAR(part.width, 200, 2);
    EXPECT_NEAR(part.height, 100, 2);
}

TEST(Bands, OfAnyHeight_GiveTheSameBytes) {
    const Workplace place;
    SavePicture(TestPicture(150, 211), place.Path("s.png"));
    for (const char *space : {"gray", "rgb", "cmyk"}) {
        std::string whole;
        for (const char *height : {"", "1", "7", "64", "100000"}) {
            std::vector<std::string> arguments = {
                "--colour-space", space,       "--hot-folder", place.Hot(), "--eps",
                "--media",        "300x400pt", "-o",           "s.eps",     place.Path("s.png")};
            if (*height) arguments.insert(arguments.end(), {"--band-height", height});
            ASSERT_EQ(place.Run(arguments).status, 0);
            const std::string bytes = ReadWithoutDate(place.Hot("s.eps"));
            if (whole.empty()) whole = bytes;
            EXPECT_TRUE(bytes == whole) << space << " in bands of " << height;
        }
    }
}

TEST(Remainders, OfEveryKind_PrintWhole) {
    const Workplace place;
    SavePicture(PlainPicture(8, 8, {0, 0, 0}), place.Path("black.png"));
    for (const char *space : {"gray", "rgb"})
        for (int width = 40; width < 44; ++width)
            for (int height = 40; height < 44; ++height) {
                const std::string media =
                    std::to_string(width) + "x" + std::to_string(height) + "pt";
                // Twice as long as the page in one direction or the other would hide nothing.
                SavePicture(PlainPicture(width, height, {0, 0, 0}), place.Path("black.png"));
                const RunResult run = place.Run(
                    {"--eps", "--media", media, "--resolution", "72", "--colour-space", space,
                     "--hot-folder", place.Hot(), "-o", "black.eps", place.Path("black.png")});
                ASSERT_EQ(run.status, 0) << run.err;
                const Picture page = Render(place.Hot("black.eps"), 72);
                ASSERT_EQ(page.width, width);
                ASSERT_EQ(page.height, height);
                // The image may leave one row or column, of the page's size, to the paper.
                for (int y = 1; y < height - 1; ++y)
                    for (int x = 1; x < width - 1; ++x)
                        ASSERT_LT(page.At(x, y)[0], 8)
                            << media << " " << space << " " << x << " " << y;
                // The last row of the data itself is there.
                ASSERT_LT(std::min(page.At(20, height - 1)[0], page.At(20, height - 2)[0]), 8);
            }
}

TEST(Remainders, OfTheBuiltInPage_AreAvoided) {
    const Workplace place;
    SavePicture(PlainPicture(30, 43, {0, 0, 0}), place.Path("k.png"));
    for (const char *space : {"gray", "rgb", "cmyk"}) {
        const RunResult run = place.Run({"--dry-run", "--json", "--colour-space", space,
                                         "--hot-folder", place.Hot(), place.Path("k.png")});
        const auto plan = nlohmann::json::parse(run.out);
        const int components = std::string(space) == "gray" ? 1 : *space == 'r' ? 3 : 4;
        EXPECT_EQ(
            plan["width_pixels"].get<int>() * plan["height_pixels"].get<int>() * components % 4, 0);
        EXPECT_NEAR(plan["height_pixels"].get<int>(), 3425, 1);
        EXPECT_EQ(plan["width_pixels"].get<int>(), 2350);
    }
}

} // namespace
