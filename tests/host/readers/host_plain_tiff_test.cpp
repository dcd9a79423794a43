#include "host/readers/PlainTIFF.h"
#include "host/readers/RowReader.h"
#include "host/readers/images/VipsFile.h"
#include "host/terminal/ExitStatus.h"
#include "tests/TempFolder.h"
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <lcms2.h>
#include <random>
#include <sstream>
#include <tiffio.h>

namespace {

struct TIFFSpec {
    int width = 40, height = 30;
    int bands = 3;
    uint16_t photometric = PHOTOMETRIC_RGB;
    uint16_t compression = COMPRESSION_NONE;
    uint16_t predictor = PREDICTOR_NONE;
    uint32_t rowsPerStrip = 7;
    uint16_t unit = RESUNIT_INCH;
    float dpiX = 72, dpiY = 72;
    std::string profile;
    const char *mode = "w";
    int pages = 1;
    /// More of the page's fields.
    std::function<void(TIFF *)> more;
};

std::vector<uint8_t> RowOf(const TIFFSpec &spec, int page, int y) {
    std::vector<uint8_t> row;
    for (int i = 0; i < spec.width * spec.bands; ++i)
        row.push_back(static_cast<uint8_t>(i * 7 + y * 13 + page * 101 + (i * y) % 5));
    return row;
}

void SetFields(TIFF *tiff, const TIFFSpec &spec) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, spec.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, spec.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, spec.bands);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, spec.photometric);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, spec.compression);
    if (spec.predictor != PREDICTOR_NONE) TIFFSetField(tiff, TIFFTAG_PREDICTOR, spec.predictor);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, spec.rowsPerStrip);
    if (spec.dpiX > 0) {
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, static_cast<double>(spec.dpiX));
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, static_cast<double>(spec.dpiY));
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, spec.unit);
    }
    if (!spec.profile.empty())
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(spec.profile.size()),
                     spec.profile.data());
    if (spec.more) spec.more(tiff);
}

void SaveTIFF(const std::string &path, const TIFFSpec &spec) {
    TIFF *tiff = TIFFOpen(path.c_str(), spec.mode);
    ASSERT_NE(tiff, nullptr);
    for (int page = 0; page < spec.pages; ++page) {
        SetFields(tiff, spec);
        for (int y = 0; y < spec.height; ++y)
            ASSERT_EQ(
                TIFFWriteScanline(tiff, RowOf(spec, page, y).data(), static_cast<uint32_t>(y), 0),
                1);
        ASSERT_EQ(TIFFWriteDirectory(tiff), 1);
    }
    TIFFClose(tiff);
}

std::string ProfileBytes(cmsHPROFILE profile) {
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    std::string bytes(size, '\0');
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

std::string WideProfile() {
    const cmsCIExyY white = {0.3127, 0.329, 1};
    const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}};
    cmsToneCurve *gamma = cmsBuildGamma(nullptr, 2.2);
    cmsToneCurve *const curves[3] = {gamma, gamma, gamma};
    const std::string bytes = ProfileBytes(cmsCreateRGBProfile(&white, &primaries, curves));
    cmsFreeToneCurve(gamma);
    return bytes;
}

/// Everything that comes of a page, in the driver's pixels.
std::vector<uint8_t> ReadAll(const PageImage &image, DocumentPixels target) {
    RowReader reader(image.rows, target, 0);
    std::vector<uint8_t> all;
    for (Rows rows = reader.Next(); rows.count > 0; rows = reader.Next())
        all.insert(all.end(), rows.pixels, rows.pixels + rows.count * rows.rowBytes);
    return all;
}

/// XRGB pixels have a byte that means nothing.
void DropUnused(std::vector<uint8_t> &pixels, DocumentPixels target) {
    for (size_t i = 0; target == DocumentPixels::XRGB && i < pixels.size(); i += 4)
        pixels[i] = 0;
}

const PageGrid kGrid = {60, 50, 72, 72};

/// The page in the middle of the grid; `turned`: on its left side.
PageImage OpenInTheMiddle(ImageFile &file, int page, DocumentPixels pixels, bool turned = false) {
    PlacementWishes upright;
    upright.autoRotate = false;
    PrintableArea area = AreaOf(kGrid, {});
    if (turned) std::swap(area.width, area.height);
    PagePlacement place = PlacePage(area, PageOf(file.Describe(page)), upright);
    if (turned) place = TurnPlacement(place, area.width);
    return file.OpenPage(page, {kGrid, place, pixels});
}

class PlainTIFF : public testing::Test {
protected:
    static void SetUpTestSuite() { StartVips(); }

    std::string Save(const TIFFSpec &spec) const {
        const std::string path = mFolder.Path() / "a.tif";
        SaveTIFF(path, spec);
        return path;
    }

    /// Both readers say and give the same.
    void ExpectSame(const TIFFSpec &spec, DocumentPixels target) const {
        const std::string path = Save(spec);
        const std::unique_ptr<ImageFile> plain = OpenPlainTIFF(path);
        ASSERT_NE(plain, nullptr);
        VipsFile full(path, FileKind::TIFF);
        ASSERT_EQ(plain->PageCount(), full.PageCount());
        for (int page = 0; page < plain->PageCount(); ++page) {
            ExpectSameLook(plain->Describe(page), full.Describe(page));
            const PageImage got = OpenInTheMiddle(*plain, page, target);
            const PageImage wanted = OpenInTheMiddle(full, page, target);
            ASSERT_NE(got.rows, nullptr);
            EXPECT_EQ(got.placement.left, wanted.placement.left);
            EXPECT_EQ(got.placement.top, wanted.placement.top);
            std::vector<uint8_t> pixels = ReadAll(got, target);
            std::vector<uint8_t> wantedPixels = ReadAll(wanted, target);
            DropUnused(pixels, target);
            DropUnused(wantedPixels, target);
            EXPECT_EQ(pixels, wantedPixels) << "page " << page;
        }
    }

    static void ExpectSameLook(const SourcePage &got, const SourcePage &wanted) {
        EXPECT_EQ(got.size.width, wanted.size.width);
        EXPECT_EQ(got.size.height, wanted.size.height);
        EXPECT_EQ(got.size.dpiX, wanted.size.dpiX);
        EXPECT_EQ(got.size.dpiY, wanted.size.dpiY);
        EXPECT_EQ(got.kind, wanted.kind);
        EXPECT_EQ(got.orientation, wanted.orientation);
    }

    TempFolder mFolder;
};

TEST_F(PlainTIFF, Colours_ComeAsFromTheImageModule) {
    TIFFSpec gray, ink;
    gray.bands = 1;
    gray.photometric = PHOTOMETRIC_MINISBLACK;
    ink.bands = 4;
    ink.photometric = PHOTOMETRIC_SEPARATED;
    ExpectSame({}, DocumentPixels::XRGB);
    ExpectSame({}, DocumentPixels::Darkness);
    ExpectSame(gray, DocumentPixels::XRGB);
    ExpectSame(gray, DocumentPixels::Darkness);
    ExpectSame(ink, DocumentPixels::CMYK);
}

TEST_F(PlainTIFF, CodingsAndStrips_ComeAsFromTheImageModule) {
    for (const uint16_t compression :
         {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS})
        for (const uint32_t rowsPerStrip : {1U, 7U, 29U, 30U, 31U, UINT32_MAX})
            for (const char *mode : {"wl", "wb", "w8"}) {
                TIFFSpec spec;
                spec.compression = compression;
                if (compression == COMPRESSION_LZW) spec.predictor = PREDICTOR_HORIZONTAL;
                spec.rowsPerStrip = rowsPerStrip;
                spec.mode = mode;
                SCOPED_TRACE(std::to_string(compression) + " " + std::to_string(rowsPerStrip) +
                             mode);
                ExpectSame(spec, DocumentPixels::XRGB);
            }
}

TEST_F(PlainTIFF, Resolutions_AreUnderstoodAsByTheImageModule) {
    for (const uint16_t unit : {RESUNIT_INCH, RESUNIT_CENTIMETER})
        for (const float dpi : {72.F, 71.999F, 299.72F}) {
            TIFFSpec spec;
            spec.unit = unit;
            spec.dpiX = unit == RESUNIT_INCH ? dpi : dpi / 2.54F;
            spec.dpiY = spec.dpiX * 1.01F;
            const std::string path = Save(spec);
            const std::unique_ptr<ImageFile> plain = OpenPlainTIFF(path);
            ASSERT_NE(plain, nullptr);
            ExpectSameLook(plain->Describe(0), VipsFile(path, FileKind::TIFF).Describe(0));
        }
}

TEST_F(PlainTIFF, ManyPages_ComeInTheirOrder) {
    TIFFSpec spec;
    spec.pages = 5;
    ExpectSame(spec, DocumentPixels::XRGB);
}

TEST_F(PlainTIFF, ImageLargerByAPixel_IsCropped) {
    for (const int more : {0, 1})
        for (const uint32_t rowsPerStrip : {1U, 16U}) {
            TIFFSpec spec;
            spec.width = kGrid.width + more;
            spec.height = kGrid.height + more;
            spec.rowsPerStrip = rowsPerStrip;
            ExpectSame(spec, DocumentPixels::XRGB);
        }
}

TEST_F(PlainTIFF, ProfileOfSRGB_ChangesNothing) {
    TIFFSpec spec;
    spec.profile = ProfileBytes(cmsCreate_sRGBProfile());
    ExpectSame(spec, DocumentPixels::XRGB);
}

TEST_F(PlainTIFF, ProfileOfInks_ChangesNothing) {
    TIFFSpec spec;
    spec.bands = 4;
    spec.photometric = PHOTOMETRIC_SEPARATED;
    spec.profile = WideProfile(); // unfit for ink: not even looked at
    ExpectSame(spec, DocumentPixels::CMYK);
}

TEST_F(PlainTIFF, OtherFiles_AreLeftToTheImageModule) {
    const auto field = [](uint32_t tag, int value) {
        return [tag, value](TIFF *tiff) { TIFFSetField(tiff, tag, value); };
    };
    std::vector<std::pair<const char *, TIFFSpec>> specs(10);
    specs[0] = {"turned", {}};
    specs[0].second.more = field(TIFFTAG_ORIENTATION, ORIENTATION_LEFTBOT);
    specs[1] = {"foreign profile", {}};
    specs[1].second.profile = WideProfile();
    specs[2] = {"gray profile", {}};
    specs[2].second.bands = 1;
    specs[2].second.photometric = PHOTOMETRIC_MINISBLACK;
    specs[2].second.profile = WideProfile();
    specs[3] = {"white is zero", {}};
    specs[3].second.bands = 1;
    specs[3].second.photometric = PHOTOMETRIC_MINISWHITE;
    specs[4] = {"no resolution", {}};
    specs[4].second.dpiX = 0;
    specs[5] = {"no unit", {}};
    specs[5].second.unit = RESUNIT_NONE;
    specs[6] = {"alpha", {}};
    specs[6].second.bands = 4;
    specs[6].second.more = [](TIFF *tiff) {
        const uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha);
    };
    specs[7] = {"signed samples", {}};
    specs[7].second.more = field(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_INT);
    specs[8] = {"palette", {}};
    specs[8].second.bands = 1;
    specs[8].second.photometric = PHOTOMETRIC_PALETTE;
    specs[8].second.more = [](TIFF *tiff) {
        std::vector<uint16_t> map(256);
        TIFFSetField(tiff, TIFFTAG_COLORMAP, map.data(), map.data(), map.data());
    };
    specs[9] = {"separate planes", {}};
    specs[9].second.more = field(TIFFTAG_PLANARCONFIG, PLANARCONFIG_SEPARATE);
    for (const auto &[name, spec] : specs)
        EXPECT_EQ(OpenPlainTIFF(Save(spec)), nullptr) << name;
}

TEST_F(PlainTIFF, HugeStrip_IsLeftToTheImageModule) {
    TIFFSpec spec;
    spec.width = 3000;
    spec.height = 1000;
    spec.rowsPerStrip = 1000;
    spec.compression = COMPRESSION_LZW; // libtiff itself cuts others up
    EXPECT_EQ(OpenPlainTIFF(Save(spec)), nullptr);
    spec.rowsPerStrip = 100;
    EXPECT_NE(OpenPlainTIFF(Save(spec)), nullptr);
}

TEST_F(PlainTIFF, OneOddPage_LeavesTheWholeFileToTheImageModule) {
    TIFFSpec spec;
    spec.pages = 2;
    int page = 0;
    spec.more = [&page](TIFF *tiff) {
        if (page++ == 1) TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_BOTRIGHT);
    };
    EXPECT_EQ(OpenPlainTIFF(Save(spec)), nullptr);
}

TEST_F(PlainTIFF, PageThatIsScaledTurnedOrSeparated_HasNoRows) {
    TIFFSpec ink;
    ink.bands = 4;
    ink.photometric = PHOTOMETRIC_SEPARATED;
    TIFFSpec large;
    large.width = 100;
    struct {
        TIFFSpec spec;
        DocumentPixels target;
        bool turned;
    } const cases[] = {{{}, DocumentPixels::XRGB, true},
                       {large, DocumentPixels::XRGB, false},
                       {ink, DocumentPixels::XRGB, false}};
    for (const auto &[spec, target, turned] : cases) {
        const std::unique_ptr<ImageFile> plain = OpenPlainTIFF(Save(spec));
        ASSERT_NE(plain, nullptr);
        EXPECT_EQ(OpenInTheMiddle(*plain, 0, target, turned).rows, nullptr);
    }
}

/// What reading page 0 fails with; empty when it does not.
std::string FailureOf(ImageFile &file) {
    try {
        (void)ReadAll(OpenInTheMiddle(file, 0, DocumentPixels::XRGB), DocumentPixels::XRGB);
    } catch (const HostError &error) {
        EXPECT_EQ(error.Status(), ExitStatus::Input);
        return error.what();
    }
    return {};
}

TEST_F(PlainTIFF, FileThatIsCutWhileItIsPrinted_FailsWithItsName) {
    const std::string path = Save({});
    const std::unique_ptr<ImageFile> plain = OpenPlainTIFF(path);
    ASSERT_NE(plain, nullptr);
    std::filesystem::resize_file(path, 100);
    EXPECT_NE(FailureOf(*plain).find("a.tif: page 1 cannot be read"), std::string::npos);
}

void Put(std::string &bytes, uint32_t value, int size) {
    for (int i = 0; i < size; ++i)
        bytes += static_cast<char>(value >> (8 * i));
}

/// A gray page of 10 x 10 pixels, its samples at the end, where libtiff does not write them.
std::string SamplesLast() {
    struct Entry {
        uint16_t tag, type;
        uint32_t value;
    };
    const uint32_t ratio = 8 + 2 + 12 * 12 + 4;
    const Entry entries[12] = {{TIFFTAG_IMAGEWIDTH, TIFF_SHORT, 10},
                               {TIFFTAG_IMAGELENGTH, TIFF_SHORT, 10},
                               {TIFFTAG_BITSPERSAMPLE, TIFF_SHORT, 8},
                               {TIFFTAG_COMPRESSION, TIFF_SHORT, COMPRESSION_NONE},
                               {TIFFTAG_PHOTOMETRIC, TIFF_SHORT, PHOTOMETRIC_MINISBLACK},
                               {TIFFTAG_STRIPOFFSETS, TIFF_LONG, ratio + 8},
                               {TIFFTAG_SAMPLESPERPIXEL, TIFF_SHORT, 1},
                               {TIFFTAG_ROWSPERSTRIP, TIFF_SHORT, 10},
                               {TIFFTAG_STRIPBYTECOUNTS, TIFF_LONG, 100},
                               {TIFFTAG_XRESOLUTION, TIFF_RATIONAL, ratio},
                               {TIFFTAG_YRESOLUTION, TIFF_RATIONAL, ratio},
                               {TIFFTAG_RESOLUTIONUNIT, TIFF_SHORT, RESUNIT_INCH}};
    std::string bytes("II*\0\10\0\0\0", 8);
    Put(bytes, 12, 2);
    for (const Entry &entry : entries) {
        Put(bytes, entry.tag, 2);
        Put(bytes, entry.type, 2);
        Put(bytes, 1, 4);
        Put(bytes, entry.value, 4);
    }
    Put(bytes, 0, 4);
    Put(bytes, 72, 4);
    Put(bytes, 1, 4);
    return bytes + std::string(100, 'x');
}

TEST_F(PlainTIFF, SamplesThatEndEarly_FailWithWhatIsMissing) {
    const std::filesystem::path path = mFolder.Path() / "a.tif";
    const std::string whole = SamplesLast();
    for (const size_t missing : {0, 1, 50, 100}) {
        std::ofstream(path, std::ios::binary) << whole.substr(0, whole.size() - missing);
        const std::unique_ptr<ImageFile> plain = OpenPlainTIFF(path);
        ASSERT_NE(plain, nullptr);
        const std::string failure = FailureOf(*plain);
        EXPECT_EQ(failure.empty(), missing == 0) << failure;
    }
}

TEST_F(PlainTIFF, FileThatBecomesAnotherOne_Fails) {
    const std::string path = Save({});
    const std::unique_ptr<ImageFile> plain = OpenPlainTIFF(path);
    ASSERT_NE(plain, nullptr);
    TIFFSpec smaller;
    smaller.height = 20;
    Save(smaller);
    EXPECT_NE(FailureOf(*plain).find("changed"), std::string::npos);
}

TEST_F(PlainTIFF, DamagedFiles_AreRefusedOrReadWithoutHarm) {
    TIFFSpec spec;
    spec.compression = COMPRESSION_LZW;
    const std::string path = Save(spec);
    std::ostringstream whole;
    whole << std::ifstream(path, std::ios::binary).rdbuf();
    const std::string bytes = whole.str();
    std::mt19937 random(1);
    int read = 0;
    for (int round = 0; round < 2000; ++round) {
        std::string damaged = bytes;
        for (int i = 0; i < 1 + round % 3; ++i)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        if (round % 10 == 0) damaged.resize(random() % damaged.size());
        std::ofstream(path, std::ios::binary | std::ios::trunc) << damaged;
        const std::unique_ptr<ImageFile> plain = OpenPlainTIFF(path);
        if (!plain) continue;
        const PageImage image = OpenInTheMiddle(*plain, 0, DocumentPixels::XRGB);
        if (!image.rows) continue;
        ++read;
        try {
            (void)ReadAll(image, DocumentPixels::XRGB);
        } catch (const HostError &error) {
            EXPECT_EQ(error.Status(), ExitStatus::Input);
        }
    }
    EXPECT_GT(read, 100);
}

TEST_F(PlainTIFF, ReaderThatIsStopped_Ends) {
    TIFFSpec spec;
    spec.rowsPerStrip = 1;
    const std::unique_ptr<ImageFile> plain = OpenPlainTIFF(Save(spec));
    ASSERT_NE(plain, nullptr);
    const PageImage image = OpenInTheMiddle(*plain, 0, DocumentPixels::XRGB);
    RowReader reader(image.rows, DocumentPixels::XRGB, 1);
    EXPECT_EQ(reader.Next().count, 1);
}

TEST(TIFFPages, TenThousandAndMore_AreCounted) {
    const TempFolder folder;
    TIFFSpec spec;
    spec.width = spec.height = 1;
    spec.pages = 10001;
    spec.dpiX = 0; // for both readers
    SaveTIFF((folder.Path() / "t.tif").string(), spec);
    EXPECT_EQ(VipsFile((folder.Path() / "t.tif").string(), FileKind::TIFF).PageCount(), 10001);
}

} // namespace
