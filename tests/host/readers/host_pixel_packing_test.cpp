#include "host/readers/PackPixels.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

std::vector<uint8_t> Packed(const std::vector<uint8_t> &source, int bands, DocumentPixels target) {
    const int count = static_cast<int>(source.size()) / bands;
    std::vector<uint8_t> out(static_cast<size_t>(count * PixelSize(target)));
    PackPixels(source.data(), bands, count, target, out.data());
    return out;
}

TEST(PackPixels, RGB_FollowsAnIgnoredByte) {
    for (int count = 1; count < 70; ++count) {
        std::vector<uint8_t> source(static_cast<size_t>(count) * 3);
        for (size_t i = 0; i < source.size(); ++i)
            source[i] = static_cast<uint8_t>(i * 37 + 11);
        const std::vector<uint8_t> out = Packed(source, 3, DocumentPixels::XRGB);
        for (size_t i = 0; i < static_cast<size_t>(count); ++i)
            for (size_t c = 0; c < 3; ++c)
                ASSERT_EQ(out[4 * i + 1 + c], source[3 * i + c]) << count << " " << i;
    }
}

TEST(PackPixels, Gray_BecomesThreeEqualSamples) {
    const std::vector<uint8_t> out = Packed({7, 200}, 1, DocumentPixels::XRGB);
    for (const size_t i : {1, 2, 3})
        EXPECT_EQ(out[i], 7);
    for (const size_t i : {5, 6, 7})
        EXPECT_EQ(out[i], 200);
}

TEST(PackPixels, Gray_BecomesDarkness) {
    EXPECT_EQ(Packed({0, 255, 10}, 1, DocumentPixels::Darkness),
              (std::vector<uint8_t>{255, 0, 245}));
}

TEST(PackPixels, RGB_BecomesDarknessByLuminance) {
    EXPECT_EQ(Packed({255, 255, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 128, 128, 128}, 3,
                     DocumentPixels::Darkness),
              (std::vector<uint8_t>{0, 255, 255 - 77, 255 - 150, 255 - 28, 127}));
}

TEST(PackPixels, CMYK_StaysAsItIs) {
    const std::vector<uint8_t> ink = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(Packed(ink, 4, DocumentPixels::CMYK), ink);
}

TEST(PackPixels, NoPixels_WritesNothing) {
    uint8_t guard = 99;
    for (const DocumentPixels target :
         {DocumentPixels::Darkness, DocumentPixels::XRGB, DocumentPixels::CMYK})
        PackPixels(&guard, 3, 0, target, &guard);
    EXPECT_EQ(guard, 99);
}

} // namespace
