#include "host/readers/PictureKinds.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

TEST(PictureKindOf, KnowsFilesByTheirFirstBytes) {
    const struct {
        std::string head;
        FileKind kind;
    } cases[] = {
        {"II*\0"s, FileKind::TIFF},
        {"MM\0+"s, FileKind::TIFF},
        {"\x89PNG\r\n\x1a\n", FileKind::PNG},
        {"\xff\xd8\xff\xe0", FileKind::JPEG},
        {"P6 1 1 255\n", FileKind::PNM},
        {"RIFF\x10\0\0\0WEBPVP8 "s, FileKind::WebP},
        {"GIF89a", FileKind::GIF},
        {"GIF87a", FileKind::GIF},
        {"\0\0\0\x0CjP  \r\n\x87\n"s, FileKind::JPEG2000},
        {"\xFF\x4F\xFF\x51", FileKind::JPEG2000},
        {"\0\0\0\x18"
         "ftypheic"s,
         FileKind::HEIF},
        {"\0\0\0\x20"
         "ftypavif"s,
         FileKind::HEIF},
        {"<svg>", FileKind::SVG},
        {"\xEF\xBB\xBF <?xml version=\"1.0\"?>\n<!-- a drawing -->\n<svg width=\"1\"/>",
         FileKind::SVG},
    };
    for (const auto &c : cases) {
        const std::optional<FileKind> kind = PictureKindOf(c.head);
        ASSERT_TRUE(kind.has_value()) << c.head;
        EXPECT_EQ(*kind, c.kind) << c.head;
    }
}

TEST(PictureKindOf, OtherFiles_AreNone) {
    for (const std::string &head : {""s, "I"s, "II"s, "P7\n"s, "RIFF\x10\0\0\0WAVE"s, "GIF"s,
                                    "\0\0\0\x18"
                                    "ftypisom"s,
                                    "<html><svgx>"s, "text <svg>"s, "<svg"s, "%!PS"s, "\xFF\x4F"s})
        EXPECT_FALSE(PictureKindOf(head).has_value()) << head;
}

} // namespace
