#include "ppd/PostscriptResolutions.h"

#include "ppd/MiniParser.h"
#include "ppd/ParserError.h"
#include "tests/ppd/PPDFile.h"

#include <gtest/gtest.h>

namespace {

PostscriptResolutions Read(const std::string &statements) {
    const PPDFile file("*PPD-Adobe: \"4.3\"\n" + statements);
    PPD::MiniParser parser(file.URL().Get());
    return PostscriptResolutions(parser);
}

std::string ErrorOf(const std::string &statements) {
    try {
        Read(statements);
    } catch (const PPD::ParserError &error) {
        return error.ErrorMessage();
    }
    return "no error";
}

} // namespace

TEST(Resolution, Default_IsEmpty) {
    const PostscriptResolution resolution;
    EXPECT_EQ(resolution.GetName() + resolution.GetUIName() + resolution.GetPostscript(), "");
    EXPECT_EQ(resolution.GetXDpi(), 0);
    EXPECT_EQ(resolution.GetYDpi(), 0);
}

TEST(Resolutions, BuiltIn_Is300Dpi) {
    const PostscriptResolutions resolutions;
    ASSERT_EQ(resolutions.NumResolutions(), 1);
    EXPECT_EQ(resolutions.DefaultResolutionIndex(), 0);
    const PostscriptResolution &only = resolutions.GetResolution(0);
    EXPECT_EQ(only.GetName(), "300dpi");
    EXPECT_EQ(only.GetUIName(), "300dpi");
    EXPECT_EQ(only.GetPostscript(), "");
    EXPECT_EQ(only.GetXDpi(), 300);
    EXPECT_EQ(only.GetYDpi(), 300);
    EXPECT_EQ(resolutions.GetResolution(0).Code().kind, FeatureKind::Resolution);
}

TEST(Resolutions, Order_IsThatOfTheBytesOfTheirNames) {
    const auto resolutions = Read("*DefaultResolution: 600dpi\n"
                                  "*Resolution 600dpi/600 DPI: \"six\"\n"
                                  "*Resolution 300dpi: \"three\"\n"
                                  "*Resolution 1200x600dpi: \"twelve\"\n");
    ASSERT_EQ(resolutions.NumResolutions(), 3);
    EXPECT_EQ(resolutions.GetResolution(0).GetName(), "1200x600dpi");
    EXPECT_EQ(resolutions.GetResolution(1).GetName(), "300dpi");
    EXPECT_EQ(resolutions.GetResolution(1).GetUIName(), "300dpi");
    EXPECT_EQ(resolutions.GetResolution(2).GetName(), "600dpi");
    EXPECT_EQ(resolutions.GetResolution(2).GetUIName(), "600 DPI");
    EXPECT_EQ(resolutions.GetResolution(2).GetPostscript(), "six");
    EXPECT_EQ(resolutions.DefaultResolutionIndex(), 2);
    EXPECT_EQ(resolutions.GetResolution(0).Code().kind, FeatureKind::Resolution);
}

TEST(Resolutions, Text_GivesTheNumbers) {
    const struct {
        const char *text;
        double x, y;
    } cases[] = {
        {"300dpi", 300, 300},
        {"1200x600dpi", 1200, 600},
        {"360x180dpi", 360, 180},
        {"hi", 0, 0},
        {"600", 600, 600},
        {"600x", 600, 0},
        {"600xdpi", 600, 0},
        {"600X300dpi", 600, 600},
        {"72.5dpi", 72.5, 72.5},
        {".5x1.5", 0.5, 1.5},
        {"-600dpi", 0, 0},
        {"+600dpi", 0, 0},
        {"6e2dpi", 6, 6},
        {"0x258dpi", 0, 258},
        {"600x-300dpi", 600, 0},
        {"1.2.3dpi", 1.2, 1.2},
        {"x600dpi", 0, 0},
        {"600dpix300", 600, 600},
        {"inf", 0, 0},
        {"nan", 0, 0},
    };
    for (const auto &c : cases) {
        const auto resolutions =
            Read("*DefaultResolution: x\n*Resolution " + std::string(c.text) + ": \"\"\n");
        EXPECT_EQ(resolutions.GetResolution(0).GetXDpi(), c.x) << c.text;
        EXPECT_EQ(resolutions.GetResolution(0).GetYDpi(), c.y) << c.text;
    }
}

TEST(Resolutions, EmptyText_IsZeroByZero) {
    const auto listed = Read("*DefaultResolution: x\n*Resolution: \"code\"\n");
    EXPECT_EQ(listed.GetResolution(0).GetName(), "");
    EXPECT_EQ(listed.GetResolution(0).GetXDpi(), 0);
    EXPECT_EQ(listed.GetResolution(0).GetYDpi(), 0);
    const auto preset = Read("*DefaultResolution:");
    EXPECT_EQ(preset.GetResolution(0).GetXDpi(), 0);
    EXPECT_EQ(preset.GetResolution(0).GetYDpi(), 0);
}

TEST(Resolutions, WhiteSpaceAroundTheX_IsSkipped) {
    // Only a default can hold white space: in an option it would end the keyword.
    const auto resolutions = Read("*DefaultResolution: 600 x 300 dpi\n");
    EXPECT_EQ(resolutions.GetResolution(0).GetXDpi(), 600);
    EXPECT_EQ(resolutions.GetResolution(0).GetYDpi(), 300);
}

TEST(Resolutions, NoEntries_LeavesTheDefaultWithoutCode) {
    const auto resolutions = Read("*DefaultResolution: 360x180dpi\n");
    ASSERT_EQ(resolutions.NumResolutions(), 1);
    EXPECT_EQ(resolutions.DefaultResolutionIndex(), 0);
    const PostscriptResolution &only = resolutions.GetResolution(0);
    EXPECT_EQ(only.GetName(), "360x180dpi");
    EXPECT_EQ(only.GetUIName(), "360x180dpi");
    EXPECT_EQ(only.GetPostscript(), "");
    EXPECT_EQ(only.GetXDpi(), 360);
    EXPECT_EQ(only.GetYDpi(), 180);
}

TEST(Resolutions, DefaultThatIsNotListed_IsTheFirst) {
    const auto resolutions = Read("*DefaultResolution: 2400dpi\n*Resolution 600dpi: \"a\"\n"
                                  "*Resolution 300dpi: \"b\"\n");
    EXPECT_EQ(resolutions.NumResolutions(), 2);
    EXPECT_EQ(resolutions.DefaultResolutionIndex(), 0);
}

TEST(Resolutions, MissingOrMalformedDefault_RefusesTheFile) {
    EXPECT_EQ(ErrorOf("*Resolution 600dpi: \"a\"\n"), "*DefaultResolution not found");
    EXPECT_EQ(ErrorOf("*DefaultResolution: ^R\n"), "*DefaultResolution symbol value not supported");
    EXPECT_EQ(ErrorOf("*DefaultResolution a b: 1\n"),
              "*DefaultResolution unrecognised keyword terminator");
}

TEST(Resolutions, FindByName_IsExact) {
    const auto resolutions = Read("*DefaultResolution: 600dpi\n*Resolution 600dpi: \"a\"\n"
                                  "*Resolution 300dpi: \"b\"\n");
    EXPECT_EQ(resolutions.FindResolutionByName("300dpi"), 0);
    EXPECT_EQ(resolutions.FindResolutionByName("600dpi"), 1);
    EXPECT_EQ(resolutions.FindResolutionByName("600DPI"), -1);
    EXPECT_EQ(resolutions.FindResolutionByName(""), -1);
}

TEST(Resolutions, IndexOutsideTheList_IsRefused) {
    const PostscriptResolutions resolutions;
    EXPECT_THROW((void)resolutions.GetResolution(1), PPD::ParserError);
    EXPECT_THROW((void)resolutions.GetResolution(-1), PPD::ParserError);
}
