// TIFF files with more, or other, samples than the colours of a picture, and with directories that
// are no pages.
#include "tests/host/CommandFixture.h"

#include <cmath>
#include <cstring>
#include <tiffio.h>

namespace {

struct TIFFKind {
    const char *name = "";
    uint16_t photometric = PHOTOMETRIC_RGB;
    int bits = 8;
    uint16_t format = SAMPLEFORMAT_UINT;
    /// The samples of every pixel, as 0 to 1; a signed one as it is stored in 8 bits.
    std::vector<double> pixel;
    std::vector<uint16_t> beyond; ///< what the last samples are
    /// Red, green and blue on paper; empty: the file is refused.
    std::vector<int> looks;
    bool warns = false;
};

std::ostream &operator<<(std::ostream &out, const TIFFKind &kind) {
    return out << kind.name;
}

void AppendSample(std::vector<uint8_t> &row, const TIFFKind &kind, double value) {
    const auto append = [&row](auto number) {
        uint8_t bytes[sizeof number];
        memcpy(bytes, &number, sizeof number);
        row.insert(row.end(), bytes, bytes + sizeof number);
    };
    const bool isSigned = value < 0;
    if (kind.format == SAMPLEFORMAT_IEEEFP)
        append(static_cast<float>(value));
    else if (kind.bits == 8)
        row.push_back(
            static_cast<uint8_t>(isSigned ? std::lround(value) : std::lround(value * 255)));
    else if (kind.bits == 16)
        append(static_cast<uint16_t>(std::lround(value * (isSigned ? 256 : 65535))));
    else
        append(static_cast<uint32_t>(value * 4294967295.0));
}

constexpr uint32_t kSide = 40;

void AppendDirectory(TIFF *tiff, const TIFFKind &kind, uint32_t subfileType = 0) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, kSide);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, kSide);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, kind.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, kind.format);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, static_cast<int>(kind.pixel.size()));
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, kind.photometric);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 72.0);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 72.0);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    if (subfileType != 0) TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, subfileType);
    if (!kind.beyond.empty())
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, static_cast<uint16_t>(kind.beyond.size()),
                     kind.beyond.data());
    std::vector<uint8_t> row;
    for (uint32_t x = 0; x < kSide; ++x)
        for (const double value : kind.pixel)
            AppendSample(row, kind, value);
    for (uint32_t y = 0; y < kSide; ++y)
        ASSERT_EQ(TIFFWriteScanline(tiff, row.data(), y, 0), 1);
    ASSERT_EQ(TIFFWriteDirectory(tiff), 1);
}

const TIFFKind kPlain = {"Plain", PHOTOMETRIC_RGB, 8, SAMPLEFORMAT_UINT, {0.8, 0.2, 0.1},
                         {},      {204, 51, 26}};

class TIFFSamples : public Command, public testing::WithParamInterface<TIFFKind> {
protected:
    /// Writes directories, one after the other; returns the path of the file.
    std::string Save(const TIFFKind &kind, const std::vector<uint32_t> &types = {0}) const {
        TIFF *tiff = TIFFOpen(mPlace.Path("t.tif").c_str(), "w");
        for (const uint32_t type : types)
            AppendDirectory(tiff, kind, type);
        TIFFClose(tiff);
        return mPlace.Path("t.tif");
    }
    [[nodiscard]] RunResult PrintAs(const std::string &colours, const std::string &file) const {
        return mPlace.Run({"--hot-folder", mPlace.Hot(), "--eps", "--media", "40x40pt",
                           "--resolution", "72", "--colour-space", colours, file});
    }
    void ExpectLooks(const std::string &document, const std::vector<int> &colour,
                     int tolerance) const {
        const Picture page = Render(mPlace.Hot(document), 72);
        ASSERT_EQ(page.width, 40);
        for (const int at : {2, 20, 37})
            for (int c = 0; c < 3; ++c)
                EXPECT_NEAR(page.At(at, at)[c], colour[static_cast<size_t>(c)], tolerance) << c;
    }
};

TEST_P(TIFFSamples, LookAsTheFileSays) {
    const RunResult run = PrintAs("rgb", Save(GetParam()));
    if (GetParam().looks.empty()) return ExpectRefused(run, 1, "t.tif: page 1 cannot be read");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.Complaint().find("left out") != std::string::npos, GetParam().warns) << run.err;
    ExpectLooks("t.eps", GetParam().looks, 5);
}

INSTANTIATE_TEST_SUITE_P(
    Files, TIFFSamples,
    testing::Values(
        kPlain,
        TIFFKind{
            "SpotWithoutInk", PHOTOMETRIC_RGB, 8, 1, {0.8, 0.2, 0.1, 0}, {0}, {204, 51, 26}, true},
        TIFFKind{
            "SpotWithInk", PHOTOMETRIC_RGB, 8, 1, {0.8, 0.2, 0.1, 1}, {0}, {204, 51, 26}, true},
        TIFFKind{"SpotThatNothingTells",
                 PHOTOMETRIC_RGB,
                 8,
                 1,
                 {0.8, 0.2, 0.1, 0},
                 {},
                 {204, 51, 26},
                 true},
        TIFFKind{"TwoSpots16",
                 PHOTOMETRIC_RGB,
                 16,
                 1,
                 {0.8, 0.2, 0.1, 0, 0},
                 {0, 0},
                 {204, 51, 26},
                 true},
        TIFFKind{"Alpha", PHOTOMETRIC_RGB, 8, 1, {0.8, 0.2, 0.1, 0.5}, {2}, {230, 153, 140}},
        TIFFKind{"Alpha16", PHOTOMETRIC_RGB, 16, 1, {0.8, 0.2, 0.1, 0.5}, {2}, {230, 153, 140}},
        TIFFKind{"PremultipliedAlpha",
                 PHOTOMETRIC_RGB,
                 8,
                 1,
                 {0.4, 0.1, 0.05, 0.5},
                 {1},
                 {230, 153, 140}},
        TIFFKind{"SpotThenAlpha",
                 PHOTOMETRIC_RGB,
                 8,
                 1,
                 {0.8, 0.2, 0.1, 0, 0.5},
                 {0, 2},
                 {230, 153, 140},
                 true},
        TIFFKind{"GrayAndSpot", PHOTOMETRIC_MINISBLACK, 8, 1, {0.4, 0}, {0}, {102, 102, 102}, true},
        TIFFKind{"GrayAndTwoSpots",
                 PHOTOMETRIC_MINISBLACK,
                 8,
                 1,
                 {0.4, 0, 1},
                 {0, 0},
                 {102, 102, 102},
                 true},
        TIFFKind{"GrayAndAlpha", PHOTOMETRIC_MINISBLACK, 16, 1, {0.4, 0.5}, {2}, {179, 179, 179}},
        TIFFKind{"WhiteIsZeroAndSpot",
                 PHOTOMETRIC_MINISWHITE,
                 8,
                 1,
                 {0.6, 1},
                 {0},
                 {102, 102, 102},
                 true},
        TIFFKind{"Lab8", PHOTOMETRIC_CIELAB, 8, 1, {0.5, 0, 0}, {}, {119, 119, 119}},
        TIFFKind{
            "Lab8Coloured", PHOTOMETRIC_CIELAB, 8, 1, {0.502, 20. / 255, -30}, {}, {133, 109, 171}},
        TIFFKind{
            "Lab8AndSpot", PHOTOMETRIC_CIELAB, 8, 1, {0.5, 0, 0, 0}, {0}, {119, 119, 119}, true},
        TIFFKind{"Lab8AndAlpha", PHOTOMETRIC_CIELAB, 8, 1, {0.5, 0, 0, 0.5}, {2}, {187, 187, 187}},
        TIFFKind{"Lab16", PHOTOMETRIC_CIELAB, 16, 1, {0.5, 0, 0}, {}, {119, 119, 119}},
        TIFFKind{"FloatRGB", PHOTOMETRIC_RGB, 32, 3, {0.2, 0.2, 1}, {}, {124, 124, 255}},
        TIFFKind{
            "FloatRGBAndAlpha", PHOTOMETRIC_RGB, 32, 3, {0.2, 0.2, 1, 1}, {2}, {124, 124, 255}},
        TIFFKind{"FloatRGBAndHalfAlpha",
                 PHOTOMETRIC_RGB,
                 32,
                 3,
                 {0.2, 0.2, 1, 0.5},
                 {2},
                 {190, 190, 255}},
        TIFFKind{"FloatRGBAndSpot",
                 PHOTOMETRIC_RGB,
                 32,
                 3,
                 {0.2, 0.2, 1, 0},
                 {0},
                 {124, 124, 255},
                 true},
        TIFFKind{"FloatGray", PHOTOMETRIC_MINISBLACK, 32, 3, {0.2}, {}, {124, 124, 124}},
        TIFFKind{"Gray32", PHOTOMETRIC_MINISBLACK, 32, 1, {0.2}, {}, {}},
        TIFFKind{"SignedGray16", PHOTOMETRIC_MINISBLACK, 16, 2, {0.2}, {}, {}},
        TIFFKind{"FloatCMYK", PHOTOMETRIC_SEPARATED, 32, 3, {0, 1, 1, 0}, {}, {}},
        TIFFKind{"ThreeInks", PHOTOMETRIC_SEPARATED, 8, 1, {0, 1, 1}, {}, {}},
        TIFFKind{"ColourFilters", PHOTOMETRIC_CFA, 8, 1, {0.5}, {}, {}}),
    [](const auto &info) { return info.param.name; });

TEST_F(TIFFSamples, SpotPlatesBesideInks_LeaveTheInksAsTheyAre) {
    const auto samples = [this](const TIFFKind &kind) {
        const RunResult run = PrintAs("cmyk", Save(kind));
        EXPECT_EQ(run.status, 0) << run.err;
        std::string document = ReadWithoutDate(mPlace.Hot("t.eps"));
        std::filesystem::remove(mPlace.Hot("t.eps"));
        return document;
    };
    const TIFFKind inks = {"", PHOTOMETRIC_SEPARATED, 8, 1, {0.2, 0.8, 0.6, 0.4}, {}, {}, false};
    TIFFKind more = inks;
    for (const double ink : {0.0, 1.0})
        for (const std::vector<uint16_t> &beyond : {std::vector<uint16_t>(), {0}}) {
            more.pixel = {0.2, 0.8, 0.6, 0.4, ink};
            more.beyond = beyond;
            EXPECT_EQ(samples(more), samples(inks)) << ink;
        }
    more.bits = 16;
    EXPECT_EQ(samples(more), samples(inks)) << "16 bits";
    more.beyond = {EXTRASAMPLE_UNASSALPHA};
    more.pixel[4] = 1;
    EXPECT_EQ(samples(more), samples(inks)) << "opaque";
}

TEST_F(TIFFSamples, ForeignInks_AreRefused) {
    const TIFFKind inks = {"", PHOTOMETRIC_SEPARATED, 8, 1, {0.2, 0.8, 0.6, 0.4}, {}, {}, false};
    for (const char *named : {"Orange", "Cyan"}) {
        TIFF *tiff = TIFFOpen(mPlace.Path("t.tif").c_str(), "w");
        const std::string names =
            std::string(named) + '\0' + "Magenta" + '\0' + "Yellow" + '\0' + "Black" + '\0';
        TIFFSetField(tiff, TIFFTAG_INKSET, INKSET_MULTIINK);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 4);
        TIFFSetField(tiff, TIFFTAG_INKNAMES, static_cast<uint16_t>(names.size()), names.data());
        AppendDirectory(tiff, inks);
        TIFFClose(tiff);
        const RunResult run = PrintAs("cmyk", mPlace.Path("t.tif"));
        if (named == std::string("Cyan"))
            EXPECT_EQ(run.status, 0) << run.err;
        else
            ExpectRefused(run, 1, "inks");
    }
}

TEST_F(TIFFSamples, ThumbnailsAndMasks_AreNoPages) {
    TIFFKind other = kPlain;
    other.photometric = PHOTOMETRIC_MINISWHITE; // takes the other reader
    other.pixel = {0.6};
    for (const TIFFKind &kind : {kPlain, other}) {
        const std::string file = Save(kind, {FILETYPE_REDUCEDIMAGE, 0, FILETYPE_MASK, FILETYPE_PAGE,
                                             FILETYPE_REDUCEDIMAGE | FILETYPE_PAGE});
        const RunResult run = PrintAs("rgb", file);
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(mPlace.HotFiles(), (Names{"t.eps", "t_p02.eps"}));
        ExpectLooks("t_p02.eps",
                    kind.bits == 8 && kind.pixel.size() == 3 ? kPlain.looks
                                                             : std::vector<int>{102, 102, 102},
                    5);
        for (const std::string &name : mPlace.HotFiles())
            std::filesystem::remove(mPlace.Hot(name));
    }
}

TEST_F(TIFFSamples, NothingButAThumbnail_IsPrinted) {
    EXPECT_EQ(PrintAs("rgb", Save(kPlain, {FILETYPE_REDUCEDIMAGE})).status, 0);
    EXPECT_EQ(mPlace.HotFiles(), Names{"t.eps"});
}

TEST_F(TIFFSamples, BrokenChainOfPages_IsRefused) {
    TIFFKind other = kPlain;
    other.photometric = PHOTOMETRIC_MINISWHITE;
    other.pixel = {0.6};
    for (const TIFFKind &kind : {kPlain, other}) {
        const std::string file = Save(kind, {0, 0, 0});
        TIFF *tiff = TIFFOpen(file.c_str(), "rm");
        ASSERT_EQ(TIFFSetDirectory(tiff, 2), 1);
        const auto third = static_cast<uint32_t>(TIFFCurrentDirOffset(tiff));
        TIFFClose(tiff);
        std::string bytes = ReadFile(file);
        std::string link(reinterpret_cast<const char *>(&third), sizeof third);
        bytes.replace(bytes.rfind(link), link.size(), "\xFF\xFF\xFF\x7F");
        WriteFile(file, bytes);
        ExpectRefused(PrintAs("rgb", file), 1, "page 3 cannot be read");
    }
}

} // namespace
