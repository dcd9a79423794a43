// Where pages lie on the sheet, measured on what Ghostscript makes of the document.
#include "tests/host/HostRunner.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;
using Names = std::vector<std::string>;

constexpr int kDpi = 100;
/// A pixel of the picture and one of the rendering, and a little.
constexpr double kTolerance = 0.6;

/// Margins of another width at each edge: left 5 mm, top 7 mm, right 6 mm, bottom 8 mm.
constexpr const char *kPrinter =
    "*PPD-Adobe: \"4.3\"\n*ColorDevice: True\n*LanguageLevel: \"3\"\n*DefaultPageSize: A4\n"
    "*PageSize A4: \"<</PageSize [595 842]>> setpagedevice\"\n"
    "*ImageableArea A4: \"14.17 22.68 578 822.16\"\n*PaperDimension A4: \"595 842\"\n"
    "*DefaultResolution: 100dpi\n*Resolution 100dpi: \"\"\n";

/// In millimetres from the upper left corner of the sheet.
struct Box {
    double left = 0, top = 0, right = 0, bottom = 0;
};

template <typename Wanted>
Box BoxOf(const Picture &page, const Wanted &wanted) {
    Box pixels = {1e9, 1e9, 0, 0};
    for (int y = 0; y < page.height; ++y)
        for (int x = 0; x < page.width; ++x) {
            const uint8_t *p = page.At(x, y);
            if (!wanted(p[0], p[1], p[2])) continue;
            pixels = {std::min<double>(pixels.left, x), std::min<double>(pixels.top, y),
                      std::max<double>(pixels.right, x + 1),
                      std::max<double>(pixels.bottom, y + 1)};
        }
    const double mm = 25.4 / kDpi;
    return {pixels.left * mm, pixels.top * mm, pixels.right * mm, pixels.bottom * mm};
}

Box Frame(const Picture &page) {
    return BoxOf(page, [](int r, int g, int b) { return r < 100 && g < 100 && b < 100; });
}

Box RedCorner(const Picture &page) {
    return BoxOf(page, [](int r, int g, int b) { return r > 180 && g < 100 && b < 100; });
}

void ExpectNear(const Box &got, const Box &wanted, const std::string &what) {
    EXPECT_NEAR(got.left, wanted.left, kTolerance) << what;
    EXPECT_NEAR(got.top, wanted.top, kTolerance) << what;
    EXPECT_NEAR(got.right, wanted.right, kTolerance) << what;
    EXPECT_NEAR(got.bottom, wanted.bottom, kTolerance) << what;
}

void Fill(Picture &picture, int left, int top, int right, int bottom, const uint8_t (&colour)[3]) {
    for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x)
            std::copy(colour, colour + 3,
                      &picture.samples[static_cast<size_t>((y * picture.width + x) * 3)]);
}

/// A page of `width` by `height` mm at 100 dpi, with a black frame 10 mm from its edges and a red
/// block of 20 by 10 mm in the frame's upper left corner.
Picture FramedPage(double width, double height) {
    const auto pixels = [](double mm) { return static_cast<int>(std::lround(mm / 25.4 * kDpi)); };
    Picture page = PlainPicture(pixels(width), pixels(height), {255, 255, 255});
    Fill(page, pixels(10), pixels(10), pixels(width - 10), pixels(height - 10), {0, 0, 0});
    Fill(page, pixels(12), pixels(12), pixels(width - 12), pixels(height - 12), {255, 255, 255});
    Fill(page, pixels(12), pixels(12), pixels(32), pixels(22), {255, 0, 0});
    return page;
}

class PlacedPicture : public testing::Test {
protected:
    PlacedPicture() {
        WriteFile(mPlace.Path("printer.ppd"), kPrinter);
        SaveOptions own;
        own.dpi = kDpi;
        SavePicture(FramedPage(210, 297), mPlace.Path("a4.tif"), own);
        SavePicture(FramedPage(297, 210), mPlace.Path("a4-landscape.tif"), own);
        SavePicture(FramedPage(100, 60), mPlace.Path("card.tif"), own);
        SavePicture(FramedPage(100, 60), mPlace.Path("shape.ppm"));
    }

    /// The page that comes of it; `report` is zelprint's.
    Picture Print(Names arguments, json *report = nullptr) const {
        arguments.insert(arguments.begin(), {"--ppd", mPlace.Path("printer.ppd"), "--json",
                                             "--resolution", "100", "-o", "page.ps"});
        const RunResult run = mPlace.PrintRGB(arguments);
        EXPECT_EQ(run.status, 0) << run.err;
        if (report) *report = json::parse(run.out).at("placements");
        return Render(mPlace.Hot("page.ps"), kDpi);
    }

    Workplace mPlace;
};

TEST_F(PlacedPicture, OfTheSheetsSize_PrintsInItsOwnSizeOnTheSheet) {
    json report;
    const Picture page = Print({mPlace.Path("a4.tif")}, &report);
    ExpectNear(Frame(page), {10, 10, 200, 287}, "frame");
    ExpectNear(RedCorner(page), {12, 12, 32, 22}, "corner");
    ASSERT_EQ(report.size(), 1U);
    EXPECT_EQ(report[0].at("scale_percent"), 100);
    EXPECT_EQ(report[0].at("rotation"), 0);
    EXPECT_NEAR(report[0].at("cut_mm").at("left").get<double>(), 5, 0.2);
    EXPECT_NEAR(report[0].at("cut_mm").at("top").get<double>(), 7, 0.2);
    EXPECT_NEAR(report[0].at("cut_mm").at("right").get<double>(), 6, 0.2);
    EXPECT_NEAR(report[0].at("cut_mm").at("bottom").get<double>(), 8, 0.2);
}

TEST_F(PlacedPicture, LyingTheOtherWay_IsTurnedCounterclockwise) {
    json report;
    const Picture page = Print({mPlace.Path("a4-landscape.tif")}, &report);
    ExpectNear(Frame(page), {10, 10, 200, 287}, "frame");
    ExpectNear(RedCorner(page), {12, 265, 22, 285}, "corner");
    EXPECT_EQ(report[0].at("rotation"), 90);
}

TEST_F(PlacedPicture, OnATurnedPage_LiesOnTheSheetAsWell) {
    // What was the left edge is at the bottom.
    const Picture page = Print({"--rotate", mPlace.Path("a4-landscape.tif")});
    ExpectNear(Frame(page), {10, 10, 200, 287}, "frame");
    ExpectNear(RedCorner(page), {12, 265, 22, 285}, "corner");
}

TEST_F(PlacedPicture, Mirrored_LiesOnTheSheetAsWell) {
    const Picture page = Print({"--flip-h", mPlace.Path("a4.tif")});
    ExpectNear(Frame(page), {10, 10, 200, 287}, "frame");
    ExpectNear(RedCorner(page), {178, 12, 198, 22}, "corner");
}

TEST_F(PlacedPicture, InEveryScale_HasTheSizeAskedFor) {
    // The printable area lies from 5, 7 to 203.9, 289 mm; a card's frame is 80 by 40 mm.
    const double fit = (578 - 14.17) / 72 * 25.4 / 210;
    const struct {
        Names options;
        const char *file;
        Box frame;
    } cases[] = {
        {{"--scale", "fit"},
         "a4.tif",
         {5 + 10 * fit, 289 - 287 * fit, 5 + 200 * fit, 289 - 10 * fit}},
        {{"--scale", "50"}, "a4.tif", {57.5, 79.25, 152.5, 217.75}},
        {{}, "card.tif", {65, 128.5, 145, 168.5}},
        {{"--scale", "none", "--position", "top-left"}, "card.tif", {15, 17, 95, 57}},
        {{"--scale", "150%", "--position", "bottom-right"}, "card.tif", {68.9, 214, 188.9, 274}},
        {{"--position", "top"}, "card.tif", {65, 17, 145, 57}},
        {{"--no-auto-rotate"}, "shape.ppm", {24.9, 108.7, 184, 188.3}},
    };
    for (const auto &c : cases) {
        Names arguments = c.options;
        arguments.push_back(mPlace.Path(c.file));
        std::string what = c.file;
        for (const std::string &option : c.options)
            what += " " + option;
        ExpectNear(Frame(Print(arguments)), c.frame, what);
    }
}

TEST_F(PlacedPicture, AsLpAsksForIt_IsPlacedLikewise) {
    const double fit = (578 - 14.17) / 72 * 25.4 / 210;
    const Box fitted = {5 + 10 * fit, 289 - 287 * fit, 5 + 200 * fit, 289 - 10 * fit};
    for (const char *word : {"fit-to-page", "fit-to-page=true", "print-scaling=fit"})
        ExpectNear(Frame(Print({"-o", word, mPlace.Path("a4.tif")})), fitted, word);
    ExpectNear(Frame(Print({"-o", "print-scaling=none", "-o", "position=top-left",
                            mPlace.Path("card.tif")})),
               {15, 17, 95, 57}, "position");
    const RunResult run = mPlace.PrintRGB({"-o", "print-scaling=huge", mPlace.Path("card.tif")});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.Complaint().find("\"huge\" is none of"), std::string::npos) << run.err;
}

TEST_F(PlacedPicture, WithoutAKnownSize_HasNoScaleInTheReport) {
    json report;
    (void)Print({mPlace.Path("shape.ppm")}, &report);
    EXPECT_TRUE(report[0].at("scale_percent").is_null());
}

TEST_F(PlacedPicture, CutOffAsAskedFor_IsTold) {
    const RunResult run = mPlace.PrintRGB(
        {"--ppd", mPlace.Path("printer.ppd"), "--scale", "400", mPlace.Path("card.tif")});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.Complaint().find("a page is cut off: page 1 loses"), std::string::npos)
        << run.err;
    EXPECT_NE(run.out.find("at 400.0 %"), std::string::npos) << run.out;
}

TEST_F(PlacedPicture, InMixedDirections_IsTurnedPageByPage) {
    const RunResult run =
        mPlace.PrintRGB({"--ppd", mPlace.Path("printer.ppd"), "--resolution", "100", "-o",
                         "both.ps", mPlace.Path("a4.tif"), mPlace.Path("a4-landscape.tif")});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("1 page turned"), std::string::npos) << run.out;
    ExpectNear(Frame(Render(mPlace.Hot("both.ps"), kDpi, 1)), {10, 10, 200, 287}, "page 1");
    ExpectNear(Frame(Render(mPlace.Hot("both.ps"), kDpi, 2)), {10, 10, 200, 287}, "page 2");
}

TEST_F(PlacedPicture, WordsThatMakeNoSense_AreRefused) {
    for (const Names &words : {Names{"--scale", "0"},
                               {"--scale", "large"},
                               {"--scale", "1001"},
                               {"--scale", "nan"},
                               {"--scale", "50 %"},
                               {"--scale", ""},
                               {"--position", "left-top"},
                               {"--position", "top-"}}) {
        Names arguments = words;
        arguments.push_back(mPlace.Path("card.tif"));
        const RunResult run = mPlace.PrintRGB(arguments);
        EXPECT_EQ(run.status, 2) << words[1];
        EXPECT_NE(run.Complaint().find(words[0]), std::string::npos) << run.err;
        EXPECT_EQ(mPlace.HotFiles(), Names{});
    }
}

} // namespace
