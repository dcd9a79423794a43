#include "ppd/PostscriptPrinterInfo.h"

#include "ppd/ParserError.h"
#include "tests/ppd/PPDFile.h"

#include <gmock/gmock.h>
#include <memory>

namespace {

std::string WithLanguageLevel(const std::string &statements) {
    return "*PPD-Adobe: \"4.3\"\n*NickName: \"Vendor Printer 3000\"\n" + statements +
           "*DefaultPageSize: A4\n*PageSize A4/A4 sheet: \"a4 code\"\n"
           "*ImageableArea A4: \"10 20 585 822\"\n"
           "*DefaultResolution: 600dpi\n*Resolution 600dpi/600 DPI: \"res code\"\n";
}

PostscriptPrinterInfo Load(const std::string &content) {
    const PPDFile file(content);
    return PostscriptPrinterInfo(file.URL().Get());
}

std::string RefusalOf(CFURLRef url) {
    try {
        const PostscriptPrinterInfo info(url);
    } catch (const PPD::ParserError &error) {
        return error.ErrorMessage();
    }
    return "accepted";
}

} // namespace

TEST(PrinterInfo, Default_IsOneA4PageAt300Dpi) {
    testing::internal::CaptureStderr();
    const PostscriptPrinterInfo info;
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "NO PPD INFO SET\n");
    EXPECT_EQ(info.GetName(), "");
    EXPECT_FALSE(info.HasColour());
    EXPECT_TRUE(info.HasPostscriptLevel2());
    ASSERT_EQ(info.Pages().NumPages(), 1);
    EXPECT_EQ(info.Pages().GetPage(0).GetName(), "A4");
    ASSERT_EQ(info.Resolutions().NumResolutions(), 1);
    EXPECT_EQ(info.Resolutions().GetResolution(0).GetName(), "300dpi");
}

TEST(PrinterInfo, Name_IsTheFileNameNotTheNickName) {
    const PPDFile file(WithLanguageLevel(""), "Generic.ppd");
    EXPECT_EQ(PostscriptPrinterInfo(file.URL().Get()).GetName(), "Generic.ppd");
}

TEST(PrinterInfo, Name_KeepsLettersBeyondASCII) {
    const PPDFile file(WithLanguageLevel(""), "Büro 東京.ppd");
    EXPECT_EQ(PostscriptPrinterInfo(file.URL().Get()).GetName(), "Büro 東京.ppd");
}

TEST(PrinterInfo, LanguageLevel_AboveOneIsLevel2) {
    EXPECT_FALSE(Load(WithLanguageLevel("")).HasPostscriptLevel2());
    EXPECT_FALSE(Load(WithLanguageLevel("*LanguageLevel: \"1\"\n")).HasPostscriptLevel2());
    EXPECT_TRUE(Load(WithLanguageLevel("*LanguageLevel: \"2\"\n")).HasPostscriptLevel2());
    EXPECT_TRUE(Load(WithLanguageLevel("*LanguageLevel: \"3\"\n")).HasPostscriptLevel2());
    EXPECT_FALSE(Load(WithLanguageLevel("*LanguageLevel: ^Two\n")).HasPostscriptLevel2());
}

TEST(PrinterInfo, ColorDevice_OnlyTrueIsColour) {
    EXPECT_TRUE(Load(WithLanguageLevel("*ColorDevice: True\n")).HasColour());
    EXPECT_FALSE(Load(WithLanguageLevel("*ColorDevice: False\n")).HasColour());
    EXPECT_FALSE(Load(WithLanguageLevel("")).HasColour());
    EXPECT_FALSE(Load(WithLanguageLevel("*ColorDevice: ^True\n")).HasColour());
}

TEST(PrinterInfo, PagesAndResolutions_ComeFromTheFile) {
    const PostscriptPrinterInfo info = Load(WithLanguageLevel(""));
    ASSERT_EQ(info.Pages().NumPages(), 1);
    EXPECT_EQ(info.Pages().GetPage(0).GetUIName(), "A4 sheet");
    EXPECT_EQ(info.Pages().GetPage(0).GetPostscript(), "a4 code");
    EXPECT_EQ(info.Resolutions().GetResolution(0).GetXDpi(), 600.0);
}

TEST(PrinterInfo, RefusedFile_PassesTheParsersMessageOn) {
    const PPDFile text("no printer\n");
    EXPECT_EQ(RefusalOf(text.URL().Get()), "Not a PPD file");
    EXPECT_EQ(RefusalOf(FileURL("/no/such/file.ppd").Get()), "Not a PPD file");
    EXPECT_EQ(RefusalOf(nullptr), "Can't get path to file");
    const PPDFile noPage("*PPD-Adobe: \"4.3\"\n*DefaultResolution: 300dpi\n");
    EXPECT_EQ(RefusalOf(noPage.URL().Get()), "*DefaultPageSize not found");
    const PPDFile noResolution("*PPD-Adobe: \"4.3\"\n*DefaultPageSize: A4\n");
    EXPECT_EQ(RefusalOf(noResolution.URL().Get()), "*DefaultResolution not found");
}

TEST(PrinterInfo, Copy_OutlivesItsSource) {
    const PPDFile file(WithLanguageLevel("*ColorDevice: True\n*LanguageLevel: \"3\"\n"));
    auto source = std::make_unique<PostscriptPrinterInfo>(file.URL().Get());
    const PostscriptPrinterInfo copy(*source);
    testing::internal::CaptureStderr();
    PostscriptPrinterInfo assigned;
    testing::internal::GetCapturedStderr();
    assigned = *source;
    source.reset();
    for (const PostscriptPrinterInfo *info :
         {&copy, static_cast<const PostscriptPrinterInfo *>(&assigned)}) {
        EXPECT_EQ(info->GetName(), "Test.ppd");
        EXPECT_TRUE(info->HasColour());
        EXPECT_TRUE(info->HasPostscriptLevel2());
        EXPECT_EQ(info->Pages().GetPage(0).GetPostscript(), "a4 code");
        EXPECT_EQ(info->Resolutions().GetResolution(0).GetPostscript(), "res code");
        const PostscriptPrinterInfo again(*info); // needs the copy's own parser
        EXPECT_EQ(again.GetName(), "Test.ppd");
    }
}

TEST(PrinterInfo, Copy_OfTheDefaultsNeedsNoFile) {
    testing::internal::CaptureStderr();
    const PostscriptPrinterInfo info;
    testing::internal::GetCapturedStderr();
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is what is tested
    const PostscriptPrinterInfo copy(info);
    EXPECT_EQ(copy.GetName(), "");
    EXPECT_EQ(copy.Pages().NumPages(), 1);
}

TEST(PrinterInfo, SetNoPPDInfo_KeepsNamePagesAndResolutions) {
    PostscriptPrinterInfo info = Load(WithLanguageLevel("*ColorDevice: True\n"));
    testing::internal::CaptureStderr();
    info.SetNoPPDInfo();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "NO PPD INFO SET\n");
    EXPECT_FALSE(info.HasColour());
    EXPECT_TRUE(info.HasPostscriptLevel2());
    EXPECT_EQ(info.GetName(), "Test.ppd");
    EXPECT_EQ(info.Pages().GetPage(0).GetPostscript(), "a4 code");
    EXPECT_EQ(info.Resolutions().GetResolution(0).GetName(), "600dpi");
}
