// The size on paper of images whose files tell a resolution, in each way that they can.
#include "tests/host/HostRunner.h"

#include "host/readers/images/VipsSupport.h"
#include <gtest/gtest.h>
#include <tiffio.h>

namespace {

using std::string;

constexpr int kWidth = 60, kHeight = 40;

struct ResolutionCase {
    const char *name;
    int unit; ///< as the format counts
    double x, y;
    int width, height; ///< in points, on a page of 200 x 200
};

string NameOf(const testing::TestParamInfo<ResolutionCase> &info) {
    return info.param.name;
}

class PrintedSize : public testing::TestWithParam<ResolutionCase> {
protected:
    void ExpectSize(const string &file) const {
        const RunResult run =
            mPlace.Run({"--eps", "--media", "200x200pt", "--resolution", "72", "--colour-space",
                        "gray", "--hot-folder", mPlace.Hot(), "-o", "s.eps", file});
        ASSERT_EQ(run.status, 0) << run.err;
        const Picture part = Trimmed(Render(mPlace.Hot("s.eps"), 72));
        EXPECT_NEAR(part.width, GetParam().width, 2);
        EXPECT_NEAR(part.height, GetParam().height, 2);
    }
    [[nodiscard]] static VipsImagePtr Black() {
        VipsImage *black = nullptr;
        EXPECT_EQ(vips_black(&black, kWidth, kHeight, nullptr), 0);
        return VipsImagePtr(black);
    }
    Workplace mPlace;
};

class PrintedSizeOfTIFF : public PrintedSize {};

TEST_P(PrintedSizeOfTIFF, IsWhatTheFileTells) {
    // Of the kind that zelprint reads itself, and of one that libvips reads.
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_CCITTFAX4}) {
        const string file = mPlace.Path("s.tif");
        const bool bits = compression == COMPRESSION_CCITTFAX4;
        TIFF *tiff = TIFFOpen(file.c_str(), "w");
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, kWidth);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, kHeight);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits ? 1 : 8);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, GetParam().x);
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, GetParam().y);
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, GetParam().unit);
        std::vector<uint8_t> row(kWidth, 0);
        for (uint32_t y = 0; y < kHeight; ++y)
            ASSERT_EQ(TIFFWriteScanline(tiff, row.data(), y, 0), 1);
        TIFFClose(tiff);
        ExpectSize(file);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Units, PrintedSizeOfTIFF,
    testing::Values(ResolutionCase{"None", RESUNIT_NONE, 36, 36, 200, 133},
                    ResolutionCase{"NoneOfOne", RESUNIT_NONE, 1, 1, 200, 133},
                    ResolutionCase{"NoneButShape", RESUNIT_NONE, 1, 2, 200, 67},
                    ResolutionCase{"NoneButTallShape", RESUNIT_NONE, 200, 50, 75, 200},
                    ResolutionCase{"NoneAndAbsurdShape", RESUNIT_NONE, 1, 1000, 200, 133},
                    ResolutionCase{"Inch", RESUNIT_INCH, 36, 36, 120, 80},
                    ResolutionCase{"InchBothWays", RESUNIT_INCH, 36, 72, 120, 40},
                    ResolutionCase{"Centimetre", RESUNIT_CENTIMETER, 14.1732, 14.1732, 120, 80}),
    NameOf);

void AppendNumber(string &bytes, uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> shift);
}

string PNGChunk(const string &typeAndData) {
    string chunk;
    AppendNumber(chunk, static_cast<uint32_t>(typeAndData.size() - 4));
    uint32_t check = 0xFFFFFFFF;
    for (const char c : typeAndData) {
        check ^= static_cast<uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit)
            check = check >> 1 ^ (check & 1 ? 0xEDB88320 : 0);
    }
    chunk += typeAndData;
    AppendNumber(chunk, ~check);
    return chunk;
}

constexpr int kAbsent = -1;

class PrintedSizeOfPNG : public PrintedSize {};

TEST_P(PrintedSizeOfPNG, IsWhatTheFileTells) {
    const string file = mPlace.Path("s.png");
    ASSERT_EQ(vips_pngsave(Black().get(), file.c_str(), "strip", TRUE, nullptr), 0);
    string bytes = ReadFile(file);
    const size_t old = bytes.find("pHYs");
    if (old != string::npos) bytes.erase(old - 4, 21);
    constexpr size_t kBehindHeader = 8 + 25;
    string density = "pHYs";
    AppendNumber(density, static_cast<uint32_t>(GetParam().x));
    AppendNumber(density, static_cast<uint32_t>(GetParam().y));
    density += static_cast<char>(GetParam().unit);
    // A comment before it, so that it is looked for.
    if (GetParam().unit != kAbsent)
        bytes.insert(kBehindHeader,
                     PNGChunk("tEXtTitle" + string(1, '\0') + "pHYs") + PNGChunk(density));
    WriteFile(file, bytes);
    ExpectSize(file);
}

INSTANTIATE_TEST_SUITE_P(Units, PrintedSizeOfPNG,
                         testing::Values(ResolutionCase{"Unknown", 0, 1417, 1417, 200, 133},
                                         ResolutionCase{"UnknownButShape", 0, 1, 2, 200, 67},
                                         ResolutionCase{"Metre", 1, 1417, 1417, 120, 80},
                                         ResolutionCase{"MetreOfAThousand", 1, 1000, 1000, 170,
                                                        113},
                                         ResolutionCase{"OtherUnit", 2, 1417, 1417, 200, 133},
                                         ResolutionCase{"Absent", kAbsent, 0, 0, 200, 133}),
                         NameOf);

class PrintedSizeOfJPEG : public PrintedSize {};

TEST_P(PrintedSizeOfJPEG, IsWhatTheFileTells) {
    const string file = mPlace.Path("s.jpg");
    ASSERT_EQ(vips_jpegsave(Black().get(), file.c_str(), "strip", TRUE, nullptr), 0);
    string bytes = ReadFile(file);
    ASSERT_EQ(bytes.find("JFIF"), string::npos);
    ASSERT_EQ(bytes.find("Exif"), string::npos);
    const auto x = static_cast<int>(GetParam().x);
    const auto y = static_cast<int>(GetParam().y);
    string segment = "\xFF\xE0" + string(1, '\0') + "\x10JFIF" + string(1, '\0') + "\1\1";
    for (const int field : {GetParam().unit, x >> 8, x & 255, y >> 8, y & 255, 0, 0})
        segment += static_cast<char>(field);
    constexpr size_t kBehindStart = 2;
    if (GetParam().unit != kAbsent) bytes.insert(kBehindStart, segment);
    WriteFile(file, bytes);
    ExpectSize(file);
}

INSTANTIATE_TEST_SUITE_P(Units, PrintedSizeOfJPEG,
                         testing::Values(ResolutionCase{"None", 0, 36, 36, 200, 133},
                                         ResolutionCase{"NoneOfOne", 0, 1, 1, 200, 133},
                                         ResolutionCase{"Inch", 1, 36, 36, 120, 80},
                                         ResolutionCase{"Centimetre", 2, 14, 14, 121, 81},
                                         ResolutionCase{"Absent", kAbsent, 0, 0, 200, 133}),
                         NameOf);

} // namespace
