// Damaged images that a decoder reads to their end all the same: nothing that it has invented is
// printed unless that is asked for.
#include "tests/host/CommandFixture.h"

#include <random>
#include <tiffio.h>
#include <vips/vips.h>

namespace {

/// A picture that every part of matters in.
Picture NoisyPicture(int width, int height) {
    Picture picture{width, height, 3, {}};
    std::mt19937 random(7);
    for (int i = 0; i < width * height * 3; ++i)
        picture.samples.push_back(static_cast<uint8_t>(random() % 256));
    return picture;
}

class Damage : public Command {
protected:
    std::string Save(const std::string &name, const std::string &options = "") const {
        SavePicture(NoisyPicture(128, 96), mPlace.Path(name + options));
        return ReadFile(mPlace.Path(name));
    }
    void ExpectDamaged(const std::string &name, const std::string &bytes) const {
        WriteFile(mPlace.Path(name), bytes);
        const RunResult run = Print({mPlace.Path(name)});
        ExpectRefused(run, 1, name);
    }
    /// The same, of what a decoder makes something of.
    void ExpectAllowed(const std::string &name, const std::string &bytes) const {
        ExpectDamaged(name, bytes);
        const RunResult run = Print({"--allow-damaged", mPlace.Path(name)});
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.Complaint().find(name), std::string::npos) << run.err;
        for (const std::string &file : mPlace.HotFiles())
            std::filesystem::remove(mPlace.Hot(file));
    }
};

/// The marker `code` of a JPEG file.
size_t FindMarker(const std::string &jpeg, char code) {
    return jpeg.find(std::string("\xFF") + code);
}

const char kStartOfFrame = '\xC0';

TEST_F(Damage, WholeFiles_PrintWithoutAWord) {
    for (const char *name : {"w.jpg", "w.png", "w.tif"}) {
        Save(name);
        const RunResult run = Print({mPlace.Path(name)});
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.Complaint(), "");
    }
    Save("p.jpg", "[interlace]");
    const RunResult run = Print({mPlace.Path("p.jpg")});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.Complaint(), "");
}

TEST_F(Damage, JPEGOverwritten) {
    const std::string whole = Save("d.jpg");
    for (const size_t part : {2, 4, 8}) {
        std::string bytes = whole;
        bytes.replace(whole.size() * (part - 1) / part, 200, 200, '\0');
        ExpectAllowed("d.jpg", bytes);
    }
}

TEST_F(Damage, JPEGWithAnotherHeight) {
    std::string bytes = Save("h.jpg");
    const size_t height = FindMarker(bytes, kStartOfFrame) + 6;
    for (const char rows : {'\x20', '\x4F', '\x71'}) {
        bytes[height] = rows;
        ExpectAllowed("h.jpg", bytes);
    }
}

TEST_F(Damage, JPEGCutWithAnEndMarkPutOn) {
    for (const char *options : {"", "[interlace]"}) {
        const std::string whole = Save("c.jpg", options);
        for (const double part : {0.3, 0.6, 0.95})
            ExpectAllowed("c.jpg", whole.substr(0, static_cast<size_t>(
                                                       part * static_cast<double>(whole.size()))) +
                                       "\xFF\xD9");
    }
}

TEST_F(Damage, JPEGCut) {
    const std::string whole = Save("c.jpg");
    for (const size_t lost : {3, 100, 5000})
        ExpectAllowed("c.jpg", whole.substr(0, whole.size() - lost));
}

TEST_F(Damage, JPEGFilledUpBeforeItsEndMark_IsPrinted) {
    const std::string whole = Save("f.jpg");
    int warnings = 0;
    // The decoder has read a few bytes ahead, which it does not count.
    for (size_t fill = 1; warnings == 0 && fill < 16; ++fill) {
        std::string bytes = whole;
        bytes.insert(bytes.size() - 2, fill, '\0');
        WriteFile(mPlace.Path("f.jpg"), bytes);
        const RunResult run = Print({mPlace.Path("f.jpg")});
        EXPECT_EQ(run.status, 0) << run.err;
        warnings += run.Complaint().find("extraneous") != std::string::npos;
    }
    EXPECT_EQ(warnings, 1);
}

TEST_F(Damage, JPEGTurnedByItsOrientation) {
    SavePicture(NoisyPicture(128, 96), mPlace.Path("o.jpg"), {.orientation = 6});
    std::string bytes = ReadFile(mPlace.Path("o.jpg"));
    bytes.replace(bytes.size() / 2, 200, 200, '\0');
    ExpectAllowed("o.jpg", bytes);
}

TEST_F(Damage, DamagedCopy_IsToldOnce) {
    std::string bytes = Save("n.jpg");
    bytes.replace(bytes.size() / 2, 200, 200, '\0');
    WriteFile(mPlace.Path("n.jpg"), bytes);
    const RunResult run = Print({"-n", "3", "--allow-damaged", mPlace.Path("n.jpg")});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.Complaint(), ""); // which fails when there are two
}

TEST_F(Damage, PNGWithOneBitChangedAnywhere) {
    std::mt19937 random(11);
    for (const char *options : {"", "[interlace]"}) {
        const std::string whole = Save("b.png", options);
        for (int i = 0; i < 8; ++i) {
            std::string bytes = whole;
            bytes[8 + random() % (whole.size() - 20)] ^= '\x10';
            ExpectDamaged("b.png", bytes);
        }
    }
}

TEST_F(Damage, FaxOverwritten) {
    for (const int coding : {COMPRESSION_CCITTFAX3, COMPRESSION_CCITTFAX4}) {
        TIFF *tiff = TIFFOpen(mPlace.Path("x.tif").c_str(), "w");
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 800);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 400);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 1);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, coding);
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 400);
        std::mt19937 random(3);
        for (uint32_t y = 0; y < 400; ++y) {
            std::vector<uint8_t> row(100);
            for (size_t i = 0; i < row.size(); i += 1 + random() % 20)
                row[i] = static_cast<uint8_t>(random());
            ASSERT_EQ(TIFFWriteScanline(tiff, row.data(), y, 0), 1);
        }
        TIFFClose(tiff);
        const std::string whole = ReadFile(mPlace.Path("x.tif"));
        EXPECT_EQ(Print({mPlace.Path("x.tif")}).status, 0);
        std::filesystem::remove(mPlace.Hot("x.eps"));
        std::string bytes = whole;
        bytes.replace(whole.size() / 2, 40, 40, '\xFF');
        ExpectDamaged("x.tif", bytes);
    }
}

TEST_F(Damage, JPEGStripsOfATIFFFileOverwritten) {
    const std::string whole = Save("j.tif", "[compression=jpeg,tile]");
    EXPECT_EQ(Print({mPlace.Path("j.tif")}).status, 0);
    std::filesystem::remove(mPlace.Hot("j.eps"));
    std::string bytes = whole;
    bytes.replace(whole.size() / 2, 300, 300, '\xFF');
    ExpectAllowed("j.tif", bytes);
}

} // namespace
