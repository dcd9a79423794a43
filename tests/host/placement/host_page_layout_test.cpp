#include "host/placement/PageLayout.h"

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>

namespace {

const PageGrid kPage = {2350, 3425, 300, 300};

/// As it is without any option, on a sheet without margins.
Placement PlaceImage(const PageGrid &page, const ImageSize &image) {
    PlacementWishes upright;
    upright.autoRotate = false;
    return LayOut(page, image, PlacePage(AreaOf(page, {}), PageOfImage(image), upright));
}

TEST(PlaceImage, KnownResolutionThatFits_IsHonoured) {
    const Placement place = PlaceImage(kPage, {600, 300, 150, 150});
    EXPECT_EQ(place.width, 1200);
    EXPECT_EQ(place.height, 600);
    EXPECT_EQ(place.left, 575);
    EXPECT_EQ(place.top, 1412);
    EXPECT_EQ(place.scaledWidth, 1200);
    EXPECT_FALSE(place.pixelByPixel);
}

TEST(PlaceImage, SameResolution_IsPixelByPixel) {
    const Placement place = PlaceImage(kPage, {600, 300, 300, 300});
    EXPECT_TRUE(place.pixelByPixel);
    EXPECT_EQ(place.width, 600);
    EXPECT_EQ(place.left, 875);
}

TEST(PlaceImage, TooLargeForThePage_IsScaledToFit) {
    const Placement place = PlaceImage(kPage, {9400, 1000, 300, 300});
    EXPECT_EQ(place.width, 2350);
    EXPECT_EQ(place.height, 250);
    EXPECT_EQ(place.left, 0);
}

TEST(PlaceImage, OnlyTheShapeOfPixels_FillsThePageInThatShape) {
    const Placement place = PlaceImage(kPage, {100, 100, 72, 144, true});
    EXPECT_EQ(place.width, 2350);
    EXPECT_EQ(place.height, 1175);
    // However the two numbers look, they are no size.
    EXPECT_EQ(PlaceImage(kPage, {600, 300, 300, 300, true}).width, 2350);
}

TEST(PlaceImage, UnknownResolution_FillsThePage) {
    const Placement small = PlaceImage(kPage, {10, 10, 0, 0});
    EXPECT_EQ(small.width, 2350);
    EXPECT_EQ(small.height, 2350);
    const Placement large = PlaceImage(kPage, {10000, 100000, 0, 0});
    EXPECT_EQ(large.height, 3425);
    EXPECT_EQ(large.width, 343);
}

TEST(PlaceImage, AbsurdResolution_CountsAsUnknown) {
    EXPECT_EQ(PlaceImage(kPage, {10, 10, 1e9, 1e9}).width, 2350);
    EXPECT_EQ(PlaceImage(kPage, {10, 10, 0.001, 0.001}).width, 2350);
    EXPECT_EQ(PlaceImage(kPage, {10, 10, -72, -72}).width, 2350);
}

TEST(PlaceImage, OblongPixels_KeepTheirShape) {
    // A fax page: 204 by 98 dpi, 8.5 x 11 inches, shown in its proportions.
    const Placement place = PlaceImage(kPage, {1728, 1078, 204, 98});
    EXPECT_NEAR(static_cast<double>(place.width) / place.height, (1728.0 / 204) / (1078.0 / 98),
                0.001);
}

TEST(PlaceImage, OblongPrinterPixels_KeepTheShape) {
    const Placement place = PlaceImage({4700, 1712, 600, 150}, {300, 300, 300, 300});
    EXPECT_EQ(place.width, 600);
    EXPECT_EQ(place.height, 150);
}

TEST(PlaceImage, OnePixelTooLarge_IsCroppedNotResampled) {
    const PageGrid page = {4960, 7015, 600, 600};
    const Placement place = PlaceImage(page, {4960, 7016, 600, 600});
    EXPECT_TRUE(place.pixelByPixel);
    EXPECT_EQ(place.height, 7015);
    EXPECT_EQ(place.top, 0);
    EXPECT_EQ(place.cropTop, 1);
    EXPECT_EQ(place.height, 7015);
}

TEST(PlaceImage, PageChangedByAPixel_DoesNotResample) {
    // A page of 7015 rows was made 7014; its resolution changed by as much.
    const PageGrid page = {4960, 7014, 600, 600.0 * 7014 / 7015};
    EXPECT_TRUE(PlaceImage(page, {4960, 7015, 600, 600}).pixelByPixel);
    EXPECT_TRUE(PlaceImage(page, {4000, 6000, 600, 600}).pixelByPixel);
}

TEST(PlaceImage, ExtremeShape_KeepsAtLeastAPixel) {
    const Placement place = PlaceImage(kPage, {100000, 1, 0, 0});
    EXPECT_EQ(place.width, 2350);
    EXPECT_EQ(place.height, 1);
}

TEST(PlaceImage, AlwaysWithinPageAndImage) {
    for (int width = 1; width < 4000; width += 173)
        for (int height = 1; height < 4000; height += 211)
            for (const double dpi : {0.0, 10.0, 72.0, 299.9, 300.0, 2400.0}) {
                const Placement p = PlaceImage(kPage, {width, height, dpi, dpi});
                ASSERT_GE(p.left, 0);
                ASSERT_GE(p.top, 0);
                ASSERT_GE(p.width, 1);
                ASSERT_GE(p.height, 1);
                ASSERT_LE(p.left + p.width, kPage.width);
                ASSERT_LE(p.top + p.height, kPage.height);
                ASSERT_LE(p.cropLeft + p.width, p.scaledWidth);
                ASSERT_LE(p.cropTop + p.height, p.scaledHeight);
            }
}

TEST(PlaceImage, EnlargedBeyondMeasure_ShowsSomeOfTheImage) {
    PlacementWishes wishes;
    wishes.rule = ScaleRule::Percent;
    wishes.autoRotate = false;
    for (const Alignment alignment : {Alignment::Start, Alignment::Middle, Alignment::End}) {
        wishes.across = wishes.down = alignment;
        for (const double percent : {1e4, 1e6, 1e9}) {
            wishes.percent = percent;
            const ImageSize image = {1000000, 1000000, 1, 1};
            const Placement place =
                LayOut(kPage, image, PlacePage(AreaOf(kPage, {}), PageOfImage(image), wishes));
            EXPECT_GE(place.cropLeft, 0);
            EXPECT_GE(place.cropTop, 0);
            EXPECT_GT(place.width, 0);
            EXPECT_LE(place.left + place.width, kPage.width);
            EXPECT_LE(place.cropLeft + place.width, place.scaledWidth) << percent;
            EXPECT_LE(place.cropTop + place.height, place.scaledHeight) << percent;
        }
    }
}

TEST(AvoidShortGroup, EveryRemainder_ChangesOneSideByOnePixel) {
    for (const int components : {1, 3, 4})
        for (int width = 3; width < 40; ++width)
            for (int height = 3; height < 40; ++height) {
                int w = width;
                int h = height;
                AvoidShortGroup(w, h, components);
                ASSERT_EQ(static_cast<int64_t>(w) * h * components % 4, 0);
                const int change = std::abs(w - width) + std::abs(h - height);
                const bool whole = width * height * components % 4 == 0;
                ASSERT_EQ(change, whole ? 0 : 1) << width << " x " << height;
            }
}

TEST(AvoidShortGroup, SmallestPages_StayPages) {
    for (int width = 1; width < 4; ++width)
        for (int height = 1; height < 4; ++height) {
            int w = width;
            int h = height;
            AvoidShortGroup(w, h, 1);
            EXPECT_GT(w, 0);
            EXPECT_GT(h, 0);
            EXPECT_EQ(w * h % 4, 0) << width << " x " << height;
        }
}

} // namespace
