// zelprint make-separation and zelprint separations, run as a user runs them.
#include "tests/host/RunShell.h"

#include "host/separations/MakeSeparation.h"
#include "host/terminal/ExitStatus.h"
#include "platform/Platform.h"
#include "tests/TempFolder.h"
#include "tests/colour/ICCTransforms.h"

#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

Outcome Zelprint(const std::string &arguments) {
    return RunShell("ZEL_BUNDLE=" + Quoted(ZEL_TEST_BUNDLE) + " " + Quoted(ZEL_TEST_ZELPRINT) +
                    " " + arguments);
}

Outcome Make(const std::string &arguments) {
    return Zelprint("make-separation --to " + std::string(kCoatedPaper) + " " + arguments);
}

/// The profiles folder of this process alone.
class MakeSeparation : public testing::Test {
protected:
    void SetUp() override {
        const fs::path support = PlatformApplicationSupportFolder();
        mTop = support / "ZEL";
        mFolder = mTop / "Profiles/Postscript";
        fs::remove_all(mTop);
    }
    void TearDown() override { fs::remove_all(mTop); }

    std::string Bytes(const std::string &name) const { return ReadFile(mFolder / name); }
    static json Listed() { return json::parse(Zelprint("separations --json").output); }

    fs::path mTop, mFolder;
};

unsigned Word(const std::string &bytes, size_t at) {
    return static_cast<unsigned>(static_cast<uint8_t>(bytes.at(at)) << 8 |
                                 static_cast<uint8_t>(bytes.at(at + 1)));
}

/// The eight inks at a grid point.
std::array<unsigned, 8> Inks(const std::string &bytes, size_t point) {
    std::array<unsigned, 8> inks{};
    for (size_t i = 0; i < 8; ++i)
        inks[i] = Word(bytes, 52 + 3 * 4 + 2 * (8 * point + i));
    return inks;
}

TEST_F(MakeSeparation, WritesAProfileThatTheDriverOffers) {
    const Outcome outcome = Make("'Coated paper'");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr((mFolder / "Coated paper").string()));
    EXPECT_EQ(Listed(), json({"Standard", "Coated paper"}));
    EXPECT_EQ(Zelprint("separations").output, "Standard\nCoated paper\n");
}

TEST_F(MakeSeparation, NoFolder_ListsStandardAlone) {
    EXPECT_EQ(Listed(), json({"Standard"}));
}

TEST_F(MakeSeparation, TheFileIsWholeAndItsFormatRight) {
    ASSERT_EQ(Make("--grid 9 P").status, 0);
    const std::string bytes = Bytes("P");
    ASSERT_EQ(bytes.size(), 52U + 3 * 4 + 9 * 9 * 9 * 16 + 8 * 4);
    EXPECT_EQ(bytes.substr(0, 12), std::string("mft2\0\0\0\0\x03\x08\x09\0", 12));
    EXPECT_EQ(Word(bytes, 48), 2U);
    EXPECT_EQ(Word(bytes, 50), 2U);
    for (size_t point = 0; point < 729; ++point)
        for (size_t ink = 4; ink < 8; ++ink)
            ASSERT_EQ(Inks(bytes, point)[ink], 0U);
    EXPECT_EQ(Inks(bytes, 728), (std::array<unsigned, 8>{})) << "white has no ink";
}

TEST_F(MakeSeparation, GridPointsAreTheTransforms) {
    for (const auto &[option, intent, flags] :
         {std::tuple{"", INTENT_PERCEPTUAL, 0U},
          std::tuple{"--intent relative", INTENT_RELATIVE_COLORIMETRIC, 0U},
          std::tuple{"--intent saturation", INTENT_SATURATION, 0U},
          std::tuple{"--intent absolute", INTENT_ABSOLUTE_COLORIMETRIC, 0U},
          std::tuple{"--intent relative --black-point-compensation", INTENT_RELATIVE_COLORIMETRIC,
                     static_cast<unsigned>(cmsFLAGS_BLACKPOINTCOMPENSATION)}}) {
        ASSERT_EQ(Make("--force --grid 5 " + std::string(option) + " P").status, 0) << option;
        const std::string bytes = Bytes("P");
        const ICCTransform transform =
            SeparatingTransform(TYPE_RGB_16, TYPE_CMYK_16, static_cast<uint32_t>(intent), flags);
        for (size_t point = 0; point < 125; ++point) {
            const auto level = [](size_t i) {
                return static_cast<uint16_t>(std::lround(65535 * static_cast<double>(i) / 4));
            };
            const uint16_t rgb[3] = {level(point / 25), level(point / 5 % 5), level(point % 5)};
            uint16_t inks[4];
            cmsDoTransform(transform.get(), rgb, inks, 1);
            for (size_t i = 0; i < 4; ++i)
                ASSERT_EQ(Inks(bytes, point)[i], inks[i]) << option;
        }
    }
}

TEST_F(MakeSeparation, InkLimit_HoldsAtEveryGridPointAndKeepsBlack) {
    ASSERT_EQ(Make("Free").status, 0);
    ASSERT_EQ(Make("--ink-limit 240 Limited").status, 0);
    const std::string free = Bytes("Free");
    const std::string limited = Bytes("Limited");
    size_t changed = 0;
    for (size_t point = 0; point < 17 * 17 * 17; ++point) {
        const auto a = Inks(free, point);
        const auto b = Inks(limited, point);
        ASSERT_LE(b[0] + b[1] + b[2] + b[3], 65535U * 240 / 100);
        ASSERT_EQ(a[3], b[3]);
        if (a[0] + a[1] + a[2] + a[3] <= 65535U * 240 / 100) {
            ASSERT_EQ(a, b);
        } else {
            ++changed;
        }
    }
    EXPECT_GT(changed, 0U) << "the press has darker colours than 240 %";
}

TEST_F(MakeSeparation, FromProfile_IsUsedInsteadOfSRGB) {
    ASSERT_EQ(Make("P").status, 0);
    ASSERT_EQ(Make("--from /usr/share/color/icc/ghostscript/default_rgb.icc Same").status, 0);
    ASSERT_EQ(Make("--from /usr/share/color/icc/ghostscript/a98.icc Wide").status, 0);
    EXPECT_NE(Bytes("P"), Bytes("Wide"));
    EXPECT_EQ(Inks(Bytes("Wide"), 17 * 17 * 17 - 1), Inks(Bytes("P"), 17 * 17 * 17 - 1));
}

TEST_F(MakeSeparation, ExistingName_IsKeptUnlessForced) {
    ASSERT_EQ(Make("--grid 3 P").status, 0);
    const std::string before = Bytes("P");
    const Outcome refused = Make("--grid 5 P");
    EXPECT_EQ(refused.status, 3);
    EXPECT_THAT(refused.output, HasSubstr("--force"));
    EXPECT_EQ(Bytes("P"), before);
    EXPECT_EQ(Make("--grid 5 --force P").status, 0);
    EXPECT_NE(Bytes("P"), before);
}

TEST_F(MakeSeparation, NothingElseIsLeftInTheFolder) {
    ASSERT_EQ(Make("P").status, 0);
    ASSERT_EQ(Make("P").status, 3);
    ASSERT_EQ(Make("--force P").status, 0);
    fs::create_directory(mFolder / "Folder");
    EXPECT_EQ(Make("--force Folder").status, 3);
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(mFolder))
        names.push_back(entry.path().filename().string());
    EXPECT_THAT(names, testing::UnorderedElementsAre("P", "Folder"));
}

TEST_F(MakeSeparation, FolderThatCannotBeMade_IsExplained) {
    fs::create_directories(mTop);
    std::ofstream(mTop / "Profiles") << "in the way";
    const Outcome outcome = Make("P");
    EXPECT_EQ(outcome.status, 3) << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr("Profiles"));
}

TEST_F(MakeSeparation, BadRequests_AreOneLineAndTheirOwnStatus) {
    const TempFolder folder;
    const std::string fifo = (folder.Path() / "fifo").string();
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const std::string coated = kCoatedPaper;
    const std::string rgb = "/usr/share/color/icc/ghostscript/default_rgb.icc";
    const struct {
        std::string arguments;
        int status;
        const char *words;
    } cases[] = {
        {"P", 2, "--to"},
        {"--to " + coated, 2, "NAME"},
        {"--to " + coated + " Standard", 2, "built-in"},
        {"--to " + coated + " a/b", 2, "a/b"},
        {"--to " + coated + " ..", 2, "folder"},
        {"--to " + coated + " ''", 2, "name"},
        {"--to " + coated + " " + std::string(256, 'x'), 2, "255"},
        {"--to " + coated + " $(printf 'a\\377')", 2, "UTF-8"},
        {"--to " + coated + " --intent pretty P", 2, "--intent"},
        {"--to " + coated + " --ink-limit 20 P", 2, "--ink-limit"},
        {"--to " + coated + " --ink-limit nan P", 2, "--ink-limit"},
        {"--to " + coated + " --grid 1 P", 2, "--grid"},
        {"--to " + coated + " --grid 256 P", 2, "--grid"},
        {"--to /nonexistent P", 1, "/nonexistent"},
        {"--to " + fifo + " P", 1, "fifo"},
        {"--to " + folder.Path().string() + " P", 1, "not an ICC profile"},
        {"--to /etc/passwd P", 1, "/etc/passwd"},
        {"--to " + rgb + " P", 1, "not a profile of a CMYK press"},
        {"--from " + coated + " --to " + coated + " P", 1, "not an RGB profile"},
        {"--from /nonexistent --to " + coated + " P", 1, "/nonexistent"},
    };
    for (const auto &c : cases) {
        const Outcome outcome = Zelprint("make-separation " + c.arguments);
        EXPECT_EQ(outcome.status, c.status) << c.arguments << "\n" << outcome.output;
        EXPECT_THAT(outcome.output, HasSubstr(c.words));
        EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 1);
    }
    EXPECT_FALSE(fs::exists(mFolder / "P"));
}

} // namespace
