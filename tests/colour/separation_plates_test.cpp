// The whole way of a photograph: a profile made from a press's ICC profile, through the PostScript
// writer into a file, and back out of Ghostscript as four plates. They hold exactly the inks that
// the table gives.
#include "colour/EightColourSeparation.h"
#include "colour/Separations.h"
#include "tests/colour/Image.h"
#include "tests/colour/ProfilesFolderFixture.h"
#include "tests/colour/SeparationFile.h"

#include "ZELOutput.h"
#include "platform/Platform.h"
#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr const char *kName = "Coated paper";

class SeparationPlates : public ProfilesFolderTest {
protected:
    void SetUp() override {
        ProfilesFolderTest::SetUp();
        mProfile = MakeSeparationProfile(CoatedPaperRecipe());
        (void)InstallSeparation(mFolder.string(), kName, mProfile, false);
        const Image image = ReadImage(ZEL_SAMPLES "/photograph.jpg", 403);
        mWidth = image.width;
        mHeight = image.height;
        for (size_t i = 0; i < image.rgb.size(); i += 3)
            mPixels.insert(mPixels.end(), {0, image.rgb[i], image.rgb[i + 1], image.rgb[i + 2]});
    }

    /// A point a pixel, so that 72 dpi gives the pixels back.
    void Print(const std::string &fileName) const {
        const double mm = 25.4 / 72;
        const OutputGeometry geometry{mWidth, mHeight, mWidth * mm, mHeight * mm};
        const auto name = Str(kName);
        OutputOptions options{};
        options.urx = mWidth;
        options.ury = mHeight;
        options.separationName = name.Get();
        options.pixelFormat = kZELFormatXRGB32;
        OutputPrivate *output = nullptr;
        ASSERT_EQ(Output_Create(mPages.URL(), Str(fileName).Get(), Str("Plates").Get(), &geometry,
                                &options, &output),
                  0);
        ASSERT_EQ(Output_AddPage(output), 0);
        for (int y = 0; y < mHeight; ++y)
            ASSERT_EQ(
                Output_WriteLine(
                    output,
                    &mPixels[size_t{4} * static_cast<size_t>(mWidth) * static_cast<size_t>(y)]),
                0);
        ASSERT_EQ(Output_Close(output), 0);
    }

    void Render(const std::string &fileName) const {
        const std::string size = "-g" + std::to_string(mWidth) + "x" + std::to_string(mHeight);
        const std::string out = "-sOutputFile=" + (mPages.Path() / "plate.tif").string();
        const std::string in = (mPages.Path() / fileName).string();
        const char *const arguments[] = {"-q",         "-dBATCH",          "-dNOPAUSE",
                                         "-dSAFER",    "-sDEVICE=tiffsep", "-r72",
                                         size.c_str(), out.c_str(),        in.c_str()};
        ASSERT_EQ(PlatformRunTask("/usr/bin/gs", arguments, std::size(arguments)), 0);
    }

    std::string mProfile;
    TempFolder mPages;
    int mWidth = 0;
    int mHeight = 0;
    std::vector<uint8_t> mPixels;
};

TEST_F(SeparationPlates, GhostscriptGivesBackTheTablesInksExactly) {
    Print("photograph.ps");
    Render("photograph.ps");
    const TableOwner table = LoadTable(mProfile);
    ASSERT_TRUE(table);
    std::vector<uint8_t> inks(mPixels.size());
    EightColourLUTSeparate(table.get(), mPixels.data() + 1, 4,
                           static_cast<int64_t>(mPixels.size() / 4), inks.data(), 4, 1, 4);
    const char *const names[4] = {"Cyan", "Magenta", "Yellow", "Black"};
    for (size_t ink = 0; ink < 4; ++ink) {
        const auto plate =
            ReadPlate((mPages.Path() / ("plate(" + std::string(names[ink]) + ").tif")).string());
        ASSERT_EQ(plate.size(), inks.size() / 4) << names[ink];
        size_t different = 0;
        size_t inked = 0;
        for (size_t i = 0; i < plate.size(); ++i) {
            different += 255 - plate[i] != inks[4 * i + ink]; // a plate is white where no ink is
            inked += inks[4 * i + ink] > 0;
        }
        EXPECT_EQ(different, 0U) << names[ink];
        EXPECT_GT(inked, plate.size() / 10) << names[ink] << ": the picture uses every ink";
    }
}

} // namespace
