// What becomes of ink in documents of light: every intent, beside Little CMS on the same profile.
#include "tests/host/HostRunner.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <lcms2.h>
#include <memory>

namespace {

constexpr const char *kPress = "/usr/share/color/icc/ghostscript/default_cmyk.icc";
constexpr int kSteps = 4;
constexpr int kSide = kSteps * kSteps; // of a picture with every mixture of so many steps an ink

Picture Inks() {
    Picture picture;
    picture.width = picture.height = kSide;
    picture.bands = 4;
    const auto ink = [](int step) { return static_cast<uint8_t>(step * 255 / (kSteps - 1)); };
    for (int i = 0; i < kSide * kSide; ++i)
        picture.samples.insert(picture.samples.end(),
                               {ink(i % kSteps), ink(i / kSteps % kSteps), ink(i / kSide % kSteps),
                                ink(i / kSide / kSteps)});
    return picture;
}

struct CloseProfile {
    void operator()(void *profile) const { (void)cmsCloseProfile(profile); }
};
struct DeleteTransform {
    void operator()(void *transform) const { cmsDeleteTransform(transform); }
};

/// The colours that the inks have by the profile.
std::vector<uint8_t> Light(const Picture &inks, uint32_t intent, uint32_t flags) {
    const std::unique_ptr<void, CloseProfile> press(cmsOpenProfileFromFile(kPress, "r"));
    const std::unique_ptr<void, CloseProfile> light(cmsCreate_sRGBProfile());
    const std::unique_ptr<void, DeleteTransform> transform(
        cmsCreateTransform(press.get(), TYPE_CMYK_8, light.get(), TYPE_RGB_8, intent,
                           flags | cmsFLAGS_NOCACHE | cmsFLAGS_HIGHRESPRECALC));
    std::vector<uint8_t> colours(inks.samples.size() / 4 * 3);
    cmsDoTransform(transform.get(), inks.samples.data(), colours.data(), inks.width * inks.height);
    return colours;
}

int LargestDifference(const std::vector<uint8_t> &a, const std::vector<uint8_t> &b) {
    int most = 0;
    for (size_t i = 0; i < a.size(); ++i)
        most = std::max(most, std::abs(a[i] - b.at(i)));
    return most;
}

class PressPicture : public testing::Test {
protected:
    PressPicture() {
        const std::string profile = ReadFile(kPress);
        SaveOptions options;
        options.cmyk = true;
        options.dpi = 72;
        options.profile.assign(profile.begin(), profile.end());
        SavePicture(mInks, mPlace.Path("inks.tif"), options);
    }

    /// As printed in RGB.
    std::vector<uint8_t> Print(std::vector<std::string> options) const {
        options.insert(options.begin(), {"--eps", "--media", "16x16pt", "--resolution", "72",
                                         "--force", "-o", "inks.eps"});
        options.push_back(mPlace.Path("inks.tif"));
        const RunResult run = mPlace.PrintRGB(options);
        EXPECT_EQ(run.status, 0) << run.err;
        const Picture page = Render(mPlace.Hot("inks.eps"), 72);
        EXPECT_EQ(page.width, kSide);
        EXPECT_EQ(page.height, kSide);
        return page.samples;
    }

    Picture mInks = Inks();
    Workplace mPlace;
};

TEST_F(PressPicture, InRGB_IsConvertedByTheIntentAskedFor) {
    // Two ways of rounding to 8 bits.
    constexpr int kTolerance = 3;
    const uint32_t compensated = cmsFLAGS_BLACKPOINTCOMPENSATION;
    const struct {
        std::vector<std::string> options;
        uint32_t intent, flags;
    } cases[] = {
        {{}, INTENT_RELATIVE_COLORIMETRIC, compensated},
        {{"--intent", "relative"}, INTENT_RELATIVE_COLORIMETRIC, compensated},
        {{"--intent", "perceptual"}, INTENT_PERCEPTUAL, compensated},
        {{"--intent", "saturation"}, INTENT_SATURATION, compensated},
        {{"--intent", "absolute"}, INTENT_ABSOLUTE_COLORIMETRIC, 0},
    };
    for (const auto &c : cases)
        EXPECT_LE(LargestDifference(Print(c.options), Light(mInks, c.intent, c.flags)), kTolerance)
            << (c.options.empty() ? "no option" : c.options[1]);
}

TEST_F(PressPicture, InRGB_HasItsBlackMadeBlack) {
    const std::vector<uint8_t> relative = Print({});
    const auto [darkest, brightest] = std::minmax_element(relative.begin(), relative.end());
    EXPECT_EQ(*darkest, 0);
    EXPECT_EQ(*brightest, 255);
    // All four inks: the last pixel. Without compensation it is as dark as ink gets.
    EXPECT_LE(*std::max_element(relative.end() - 3, relative.end()), 3);
    const std::vector<uint8_t> plain = Light(mInks, INTENT_RELATIVE_COLORIMETRIC, 0);
    EXPECT_GT(LargestDifference(relative, plain), 10);
    const std::vector<uint8_t> absolute = Print({"--intent", "absolute"});
    EXPECT_GT(LargestDifference(relative, absolute), 10);
}

} // namespace
