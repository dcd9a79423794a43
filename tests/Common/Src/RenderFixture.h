/// A picture, printed through the page session, and what other programs make of the file.
#pragma once

#include "Common/Src/PageOutput.h"
#include "tests/Common/Src/postscript/WriterFixture.h"
#include "tests/Quoted.h"

#include <cstdlib>
#include <sstream>

/// Pixels of one to four samples, row by row.
struct Picture {
    int32_t width = 0, height = 0;
    int32_t components = 0;
    std::vector<uint8_t> samples;

    const uint8_t *At(int32_t x, int32_t y) const {
        return samples.data() +
               (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) *
                   static_cast<size_t>(components);
    }
};

/// Gradients, a saturated patch in each corner, fine lines and noise; no symmetry at all.
inline Picture MakePicture(int32_t width, int32_t height) {
    Picture picture = {width, height, 3, {}};
    uint32_t noise = 1;
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            noise = noise * 1664525 + 1013904223;
            int32_t rgb[3] = {255 * x / width, 255 * y / height, 255 - 255 * x / width};
            if (x < 6 && y < 4) rgb[0] = 255, rgb[1] = rgb[2] = 0;
            if (x >= width - 6 && y < 4) rgb[1] = 255, rgb[0] = rgb[2] = 0;
            if (x < 6 && y >= height - 4) rgb[2] = 255, rgb[0] = rgb[1] = 0;
            if (x >= width - 6 && y >= height - 4) rgb[0] = rgb[1] = rgb[2] = 0;
            if (x % 8 == 7) rgb[0] = rgb[1] = rgb[2] = 255;
            if (y > height / 3 && y < height / 2) rgb[1] = static_cast<int32_t>(noise >> 24);
            for (const int32_t sample : rgb)
                picture.samples.push_back(static_cast<uint8_t>(sample));
        }
    return picture;
}

/// A binary PNM or PAM file of 8 bits a sample, as Ghostscript writes it.
inline Picture ReadPicture(const std::filesystem::path &path) {
    const std::string file = ReadFile(path);
    std::istringstream in(file);
    std::string magic, word;
    Picture picture;
    in >> magic;
    if (magic == "P7") {
        while (in >> word && word != "ENDHDR") {
            if (word == "WIDTH") in >> picture.width;
            if (word == "HEIGHT") in >> picture.height;
            if (word == "DEPTH") in >> picture.components;
        }
    } else {
        std::vector<int32_t> numbers;
        while (numbers.size() < 3 && in >> word) {
            if (word[0] == '#')
                std::getline(in, word);
            else
                numbers.push_back(std::stoi(word));
        }
        if (numbers.size() == 3) picture.width = numbers[0], picture.height = numbers[1];
        picture.components = magic == "P6" ? 3 : 1;
    }
    in.get();
    picture.samples.assign(std::istreambuf_iterator<char>(in), {});
    return picture;
}

/// Prints pictures, one image pixel a point, and hands the file to Ghostscript.
class RenderTest : public WriterTest {
protected:
    void SetUp() override {
        WriterTest::SetUp();
        mOptions = MakeOptions(kRGBMode, kZELFormatXRGB32);
        mOptions.llx = mOptions.lly = 0;
        SetSize(mPicture.width, mPicture.height);
    }

    void SetSize(int32_t width, int32_t height) {
        mGeometry = {width, height, width * 25.4 / 72, height * 25.4 / 72};
        mOptions.urx = mOptions.rotate90 ? height : width;
        mOptions.ury = mOptions.rotate90 ? width : height;
    }

    /// Prints the picture on `pages` pages as the document `name`, in bands of seven rows.
    void Print(const std::string &name, int16_t outputDepth, int pages = 1) {
        SetSize(mPicture.width, mPicture.height);
        PageOutputSession *session = nullptr;
        ASSERT_EQ(OpenDocument(Str("A picture").Get(), Str(name).Get(), &mGeometry,
                               kZELFormatXRGB32, outputDepth, &mOptions, mFolder.URL(), &session),
                  0);
        for (int page = 0; page < pages; ++page) {
            ASSERT_EQ(OpenPage(session, nullptr, nullptr), 0);
            for (int32_t top = 0; top < mPicture.height; top += 7)
                PrintBand(session, top);
            ASSERT_EQ(ClosePage(session), 0);
        }
        ASSERT_EQ(CloseDocument(session), 0);
    }

    /// Runs a command; its output goes to "log" in the folder. Returns its exit status.
    int Run(const std::string &command) const {
        const std::string all =
            "cd " + Quoted(mFolder.Path().string()) + " && " + command + " >log 2>&1";
        return system(all.c_str());
    }

    /// The first page of a file as a device of Ghostscript paints it, one pixel a point.
    Picture Render(const std::string &file, const std::string &device) {
        const std::string size = std::to_string(static_cast<int>(mOptions.urx)) + "x" +
                                 std::to_string(static_cast<int>(mOptions.ury));
        const std::string page = mOptions.eps ? "-dEPSCrop" : "-g" + size;
        const int status = Run("gs -q -dSAFER -dBATCH -dNOPAUSE -r72 " + page +
                               " -sDEVICE=" + device + " -sOutputFile=page " + Quoted(file));
        EXPECT_EQ(status, 0) << mFolder.Read("log");
        EXPECT_EQ(mFolder.Read("log"), "");
        return ReadPicture(mFolder.Path() / "page");
    }

    Picture mPicture = MakePicture(64, 48);

private:
    void PrintBand(PageOutputSession *session, int32_t top) const {
        const int32_t bottom = std::min(top + 7, mPicture.height);
        std::vector<uint8_t> pixels;
        for (const uint8_t *p = mPicture.At(0, top); p != mPicture.At(0, bottom); p += 3)
            pixels.insert(pixels.end(), {0xEE, p[0], p[1], p[2]});
        const ZELRect rect = {top, 0, bottom, mPicture.width};
        const ZELBand band = {pixels.data(), rect, mPicture.width * 4, kZELFormatXRGB32};
        ASSERT_EQ(PrintBits(session, &band, &rect, &rect), 0);
    }
};
