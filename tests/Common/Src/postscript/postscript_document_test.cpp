#include "Common/Src/postscript/PostscriptDocument.h"

#include <gtest/gtest.h>
#include <limits>
#include <sstream>

namespace {

using Section = PostscriptDocument::Section;

std::string TextOf(const PostscriptDocument &document, Section section) {
    std::ostringstream stream;
    document.WriteSection(section, stream);
    return stream.str();
}

int16_t CodeThrownBy(const std::function<void()> &action) {
    try {
        action();
    } catch (int16_t code) {
        return code;
    }
    return 0;
}

} // namespace

TEST(PostscriptDocument, EntriesComeOutInAscendingPriority) {
    PostscriptDocument document;
    document.AddCodeToSection("thirty", PostscriptDocument::kSetup, 30);
    document.AddCodeToSection("ten", PostscriptDocument::kSetup, 10);
    document.AddCodeToSection("twenty", PostscriptDocument::kSetup, 20);
    EXPECT_EQ(TextOf(document, PostscriptDocument::kSetup), "ten\ntwenty\nthirty\n");
}

TEST(PostscriptDocument, NegativeAndFractionalPrioritiesAreOrderedToo) {
    PostscriptDocument document;
    document.AddCodeToSection("b", 0, 0.25);
    document.AddCodeToSection("a", 0, -1);
    document.AddCodeToSection("c", 0, 0.5);
    EXPECT_EQ(TextOf(document, 0), "a\nb\nc\n");
}

TEST(PostscriptDocument, AnEmptySectionWritesNothing) {
    PostscriptDocument document;
    document.AddCodeToSection("x", 1, 1);
    for (Section section : {0U, 2U, 3U, 4U, 5U})
        EXPECT_EQ(TextOf(document, section), "");
}

TEST(PostscriptDocument, SectionsAreIndependent) {
    PostscriptDocument document;
    for (Section section = 0; section < PostscriptDocument::kSectionCount; ++section)
        document.AddCodeToSection("code " + std::to_string(section), section, 1);
    for (Section section = 0; section < PostscriptDocument::kSectionCount; ++section)
        EXPECT_EQ(TextOf(document, section), "code " + std::to_string(section) + "\n");
}

TEST(PostscriptDocument, ATextThatEndsInALineFeedIsFollowedByAnEmptyLine) {
    PostscriptDocument document;
    document.AddCodeToSection("code\n", 3, 1);
    EXPECT_EQ(TextOf(document, 3), "code\n\n");
}

TEST(PostscriptDocument, WritingLeavesTheDocumentUnchanged) {
    PostscriptDocument document;
    document.AddCodeToSection("b", 4, 2);
    document.AddCodeToSection("a", 4, 1);
    EXPECT_EQ(TextOf(document, 4), "a\nb\n");
    EXPECT_EQ(TextOf(document, 4), "a\nb\n");
}

TEST(PostscriptDocument, ACopyHasItsOwnEntries) {
    PostscriptDocument document;
    document.AddCodeToSection("a", 2, 1);
    PostscriptDocument copy = document;
    copy.AddCodeToSection("b", 2, 2);
    EXPECT_EQ(TextOf(document, 2), "a\n");
    EXPECT_EQ(TextOf(copy, 2), "a\nb\n");
}

TEST(PostscriptDocument, TextIsNeitherCutNorChanged) {
    const std::string code = "%\xFF" + std::string(100000, 'x') + "\r\n\t(\\004)";
    PostscriptDocument document;
    document.AddCodeToSection(code, 0, 1);
    EXPECT_EQ(TextOf(document, 0), code + "\n");
}

TEST(PostscriptDocument, ASectionOfSixOrMoreIsRefused) {
    PostscriptDocument document;
    std::ostringstream stream;
    for (Section section : {6U, 7U, std::numeric_limits<Section>::max()}) {
        EXPECT_EQ(CodeThrownBy([&] { document.AddCodeToSection("x", section, 1); }), -50);
        EXPECT_EQ(CodeThrownBy([&] { document.WriteSection(section, stream); }), -50);
    }
    EXPECT_EQ(stream.str(), "");
}

TEST(CompareSectionQueueEntry, IsTrueWhenTheFirstHasTheGreaterPriority) {
    using Entry = PostscriptDocument::SectionQueueEntry;
    const PostscriptDocument::CompareSectionQueueEntry isAfter;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(isAfter(Entry(2, "a"), Entry(1, "b")));
    EXPECT_FALSE(isAfter(Entry(1, "a"), Entry(2, "b")));
    EXPECT_FALSE(isAfter(Entry(1, "a"), Entry(1, "b")));
    EXPECT_FALSE(isAfter(Entry(nan, "a"), Entry(1, "b")));
    EXPECT_FALSE(isAfter(Entry(1, "a"), Entry(nan, "b")));
}
