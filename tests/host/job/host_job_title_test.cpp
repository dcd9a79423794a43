#include "host/job/JobTitle.h"

#include <gtest/gtest.h>

namespace {

struct TitleCase {
    const char *name;
    std::string text;
    std::string title;
};

class CleanTitleTest : public testing::TestWithParam<TitleCase> {};

TEST_P(CleanTitleTest, IsFitForCommentAndFileName) {
    EXPECT_EQ(CleanTitle(GetParam().text), GetParam().title);
}

const TitleCase kTitles[] = {
    {"PlainTextStays", "Menu of the day", "Menu of the day"},
    {"AccentsStay", "Caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\xA8",
     "Caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\xA8"},
    {"PairedParenthesesStay", "report (draft)", "report (draft)"},
    {"OpenParenthesisBecomesBracket", "report (draft", "report [draft"},
    {"CloseParenthesisBecomesBracket", "a) b", "a] b"},
    {"WrongOrderBecomesBrackets", ")(", "]["},
    {"LineEndsBecomeOneBlank", "one\r\ntwo", "one two"},
    {"CommentCannotBeForged", "x)\n%%EOF\n(", "x] %%EOF ["},
    {"TabsAndControlsBecomeOneBlank",
     "a\t\x01\x7F"
     "b",
     "a b"},
    {"C1ControlsBecomeBlanks",
     "a\xC2\x85"
     "b",
     "a b"},
    {"DirectionMarksBecomeBlanks", "a\xE2\x80\xAEgpj", "a gpj"},
    {"SlashesBecomeDashes", "in/out\\up", "in-out-up"},
    {"ParentFolderIsNoTitle", "../../etc", "_.-..-etc"},
    {"LeadingDotIsNotHidden", ".secret", "_secret"},
    {"BadBytesBecomeUnderscores", "a\xFF\xC3(b", "a__[b"},
    {"OverlongFormIsBad", "\xC0\xAF", "__"},
    {"SurrogateIsBad", "\xED\xA0\x80", "___"},
    {"TooLargeCodeIsBad", "\xF4\x90\x80\x80", "____"},
    {"CutSequenceIsBad", "a\xE2\x82", "a__"},
    {"EmptyIsUntitled", "", "Untitled"},
    {"BlanksAreUntitled", " \t\n ", "Untitled"},
    {"OuterBlanksGo", "  a  ", "a"},
};

INSTANTIATE_TEST_SUITE_P(Titles, CleanTitleTest, testing::ValuesIn(kTitles),
                         [](const auto &info) { return info.param.name; });

TEST(CleanTitle, LongText_IsCutTo200BytesAtACharacter) {
    EXPECT_EQ(CleanTitle(std::string(500, 'x')), std::string(200, 'x'));
    std::string euros;
    for (int i = 0; i < 100; ++i)
        euros += "\xE2\x82\xAC";
    const std::string title = CleanTitle(euros);
    EXPECT_EQ(title.size(), 198U);
    EXPECT_TRUE(IsUTF8(title));
}

TEST(CleanTitle, CutInsideParentheses_StaysBalanced) {
    const std::string title = CleanTitle(std::string(199, 'x') + "(yy)");
    EXPECT_EQ(title, std::string(199, 'x') + "[");
}

TEST(IsUTF8, EveryByteAlone) {
    for (int byte = 0; byte < 256; ++byte)
        EXPECT_EQ(IsUTF8(std::string(1, static_cast<char>(byte))), byte < 0x80) << byte;
}

TEST(TitleOfFile, IsTheNameWithoutFoldersAndExtension) {
    EXPECT_EQ(TitleOfFile("/a/b/photo.final.tif"), "photo.final");
    EXPECT_EQ(TitleOfFile("photo"), "photo");
    EXPECT_EQ(TitleOfFile("dir.d/photo"), "photo");
    EXPECT_EQ(TitleOfFile(".tif"), "_tif");
    EXPECT_EQ(TitleOfFile("scan\xFF.png"), "scan_");
}

} // namespace
