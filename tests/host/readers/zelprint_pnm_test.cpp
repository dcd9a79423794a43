// PNM files of all kinds: what is whole prints as it looks, what is damaged is refused.
#include "tests/host/CommandFixture.h"

#include "host/readers/PNMCheck.h"
#include "host/readers/images/VipsFile.h"
#include "host/terminal/ExitStatus.h"
#include <sstream>

namespace {

using namespace std::string_literals;

struct PNMCase {
    const char *name;
    std::string bytes;
};

std::string NameOf(const testing::TestParamInfo<PNMCase> &info) {
    return info.param.name;
}

/// What is on standard error besides the driver's notes about a missing PPD file.
Names Complaints(const std::string &text) {
    Names lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        if (line != "No PPD file has been selected - using defaults" && line != "NO PPD INFO SET")
            lines.push_back(line);
    return lines;
}

class DamagedPNM : public Command, public testing::WithParamInterface<PNMCase> {};

TEST_P(DamagedPNM, IsFoundByTheCheck) {
    const std::string path = mPlace.Path("damaged.pnm");
    WriteFile(path, GetParam().bytes);
    try {
        CheckPNM(path);
        FAIL();
    } catch (const HostError &error) {
        EXPECT_EQ(error.Status(), ExitStatus::Input);
        EXPECT_NE(std::string(error.what()).find(path + ": page 1 cannot be read ("),
                  std::string::npos)
            << error.what();
    }
}

/// A whole image of 4 x 2, and its kind's damages.
struct Kind {
    const char *magic;
    const char *rest; ///< of the header, with what ends it
    std::string samples;
};

const Kind kKinds[] = {
    {"P1", "\n", "0 1 0 1\n1 0 1 0\n"},
    {"P2", "\n255\n", "0 10 20 30\n40 50 60 255\n"},
    {"P3", "\n255\n", "0 1 2 3 4 5 6 7 8 9 10 11\n12 13 14 15 16 17 18 19 20 21 22 23\n"},
    {"P4", "\n", "\x50\xA0"},
    {"P5", "\n255\n", "abcdefgh"},
    {"P6", "\n255\n", "abcdefghijklmnopqrstuvwx"},
    {"Pf", "\n-1.0\n", std::string(32, '\0')},
    {"PF", "\n1\n", std::string(96, '\0')},
};

std::string Whole(const Kind &kind, const std::string &size) {
    return kind.magic + "\n"s + size + kind.rest + kind.samples;
}

std::vector<PNMCase> DamagesOfSize() {
    static const std::pair<const char *, const char *> kSizes[] = {
        {"Zero", "0 0"},
        {"ZeroHeight", "4 0"},
        {"ZeroWidth", "0 2"},
        {"NegativeWidth", "-4 2"},
        {"NegativeHeight", "4 -2"},
        {"Huge", "2000000000 2000000000"},
        {"Large", "900000 900000"},
        {"BeyondAnyNumber", "4 99999999999999999999999"},
        {"WidthNoNumber", "4x 2"},
        {"HeightNoNumber", "4 two"},
        {"NoHeight", "4"},
        {"NoSpace", "4,2"}};
    static Names names;
    std::vector<PNMCase> cases;
    names.reserve(200);
    for (const Kind &kind : kKinds)
        for (const auto &[name, size] : kSizes) {
            names.push_back(std::string(kind.magic) + name);
            cases.push_back({names.back().c_str(), Whole(kind, size)});
        }
    return cases;
}

std::vector<PNMCase> CutShort() {
    static Names names;
    std::vector<PNMCase> cases;
    names.reserve(100);
    for (const Kind &kind : kKinds) {
        const std::string whole = Whole(kind, "4 2");
        // The last byte of text is white space, before which a number may lose its last digit.
        const bool plain = kind.magic[1] <= '3';
        for (const size_t missing :
             {size_t{plain ? 4U : 1U}, kind.samples.size() - 1, kind.samples.size(),
              kind.samples.size() + 1, whole.size() - 3}) {
            names.push_back(std::string(kind.magic) + "Without" + std::to_string(missing) +
                            "Bytes" + std::to_string(cases.size()));
            cases.push_back({names.back().c_str(), whole.substr(0, whole.size() - missing)});
        }
    }
    return cases;
}

class RefusedPNM : public Command, public testing::WithParamInterface<PNMCase> {};

TEST_P(RefusedPNM, IsRefusedInOneLine) {
    WriteFile(mPlace.Path("damaged.pnm"), GetParam().bytes);
    const RunResult run = Print({mPlace.Path("damaged.pnm")});
    ExpectRefused(run, 1, "damaged.pnm: page 1 cannot be read (");
    EXPECT_EQ(Complaints(run.err).size(), 1U) << run.err;
    EXPECT_EQ(run.out, "");
}

std::vector<PNMCase> DamagesOfEveryKind() {
    static Names names;
    std::vector<PNMCase> cases;
    names.reserve(100);
    const auto add = [&cases](const Kind &kind, const char *name, const std::string &bytes) {
        names.push_back(std::string(kind.magic) + name);
        cases.push_back({names.back().c_str(), bytes});
    };
    for (const Kind &kind : kKinds) {
        const std::string whole = Whole(kind, "4 2");
        add(kind, "Zero", Whole(kind, "0 0"));
        add(kind, "Negative", Whole(kind, "-4 2"));
        add(kind, "Huge", Whole(kind, "2000000000 2000000000"));
        add(kind, "NoNumber", Whole(kind, "4 x"));
        add(kind, "Cut", whole.substr(0, whole.size() - 4));
        if (kind.magic[1] > '3') continue;
        std::string letter = whole;
        letter[whole.size() - 4] = 'x';
        add(kind, "SampleNoNumber", letter);
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Kinds, RefusedPNM, testing::ValuesIn(DamagesOfEveryKind()), NameOf);
INSTANTIATE_TEST_SUITE_P(Size, DamagedPNM, testing::ValuesIn(DamagesOfSize()), NameOf);
INSTANTIATE_TEST_SUITE_P(Cut, DamagedPNM, testing::ValuesIn(CutShort()), NameOf);
INSTANTIATE_TEST_SUITE_P(
    Samples, DamagedPNM,
    testing::Values(PNMCase{"P1OtherDigit", "P1\n4 2\n0 1 2 1 1 0 1 0\n"},
                    PNMCase{"P1Letter", "P1\n4 2\n0 1 x 1 1 0 1 0\n"},
                    PNMCase{"P1NegativeBit", "P1\n4 2\n0 -1 0 1 1 0 1 0\n"},
                    PNMCase{"P2Letter", "P2\n4 1\n255\n1 2 x 4\n"},
                    PNMCase{"P2LetterBehindDigits", "P2\n4 1\n255\n1 2 3x 4\n"},
                    PNMCase{"P2Negative", "P2\n4 1\n255\n1 2 -3 4\n"},
                    PNMCase{"P2Fraction", "P2\n4 1\n255\n1 2 3.5 4\n"},
                    PNMCase{"P2BeyondTheLargest", "P2\n4 1\n100\n1 2 101 4\n"},
                    PNMCase{"P2BeyondAnyNumber", "P2\n4 1\n255\n1 2 99999999999999999999 4\n"},
                    PNMCase{"P2Zeros", "P2\n4 1\n255\n1 2"s + std::string(9, '\0')},
                    PNMCase{"P3Letter", "P3\n1 1\n255\n1 2 x\n"},
                    PNMCase{"P2LargestZero", "P2\n2 1\n0\n0 0\n"},
                    PNMCase{"P3LargestNegative", "P3\n1 1\n-255\n0 0 0\n"},
                    PNMCase{"P5LargestTooLarge", "P5\n2 1\n65536\nabcdefgh"},
                    PNMCase{"P6LargestNoNumber", "P6\n1 1\nall\nabcdefgh"},
                    PNMCase{"P5HalfOf16Bits", "P5\n4 2\n65535\nabcdefgh"},
                    PNMCase{"P6HalfOf16Bits", "P6\n1 1\n256\nabc"},
                    PNMCase{"PfScaleZero", "Pf\n1 1\n0\nabcd"},
                    PNMCase{"PfScaleNoNumber", "Pf\n1 1\n1x\nabcd"},
                    PNMCase{"P5CommentForEver", "P5\n#" + std::string(200000, 'c')}),
    NameOf);

struct GoodPNM {
    const char *name;
    std::string bytes;
    std::vector<int> grays; ///< of 4 x 2 pixels
};

class WholePNM : public Command, public testing::WithParamInterface<GoodPNM> {};

TEST_P(WholePNM, LooksAsItIs) {
    WriteFile(mPlace.Path("whole.pnm"), GetParam().bytes);
    for (const char *turn : {"--no-rotate", "--rotate"}) {
        const RunResult run = mPlace.Run({"--eps", turn, "--media", "4x2pt", "--resolution", "72",
                                          "--colour-space", "gray", "--hot-folder", mPlace.Hot(),
                                          "-o", "w.eps", mPlace.Path("whole.pnm")});
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(Complaints(run.err), Names{});
        if (turn == "--rotate"s) break; // other proportions; that it prints is all
        const Picture page = Render(mPlace.Hot("w.eps"), 72, 1, "pgmraw");
        ASSERT_EQ(page.samples.size(), 8U);
        for (size_t i = 0; i < 8; ++i)
            EXPECT_NEAR(page.samples[i], GetParam().grays[i], 1) << "pixel " << i;
    }
}

const std::vector<int> kBits = {255, 0, 255, 0, 0, 255, 0, 255};
const std::vector<int> kRamp = {0, 17, 34, 51, 204, 221, 238, 255};

INSTANTIATE_TEST_SUITE_P(
    Kinds, WholePNM,
    testing::Values(
        GoodPNM{"P1", "P1\n4 2\n0 1 0 1\n1 0 1 0\n", kBits},
        GoodPNM{"P1WithoutSpaces", "P1\n4 2\n01011010\n", kBits},
        GoodPNM{"P1WithoutSpacesOrNewline", "P1 4 2 01011010", kBits},
        GoodPNM{"P1OddlyBroken", "P1\n4 2\n010\n1101 0\n", kBits},
        GoodPNM{"P1Comments", "P1#\n# 9 9\n4 #w\n2\n#x\n0101#\n1010#", kBits},
        GoodPNM{"P1Trailing", "P1\n4 2\n01011010\n\n \t", kBits},
        GoodPNM{"P2", "P2\n4 2\n255\n0 17 34 51\n204 221 238 255", kRamp},
        GoodPNM{"P2Trailing", "P2\n4 2\n255\n0 17 34 51\n204 221 238 255\n \n", kRamp},
        GoodPNM{"P2Comments", "P2\n#c\n4 2 # c\n255\n# c\n0 17 34 51 # d\n204 221 238 255", kRamp},
        GoodPNM{"P2OfFifteen", "P2\n4 2\n15\n0 1 2 3 12 13 14 15\n", kRamp},
        GoodPNM{"P2OfOne", "P2\n4 2\n1\n1 0 1 0 0 1 0 1\n", kBits},
        GoodPNM{"P2Of16Bits", "P2\n4 2\n65535\n0 4369 8738 13107 52428 56797 61166 65535\n", kRamp},
        GoodPNM{"P2LeadingZeros", "P2\n4 2\n255\n000 0017 034 51 204 221 238 255\n", kRamp},
        GoodPNM{"P3",
                "P3\n4 2\n255\n0 0 0 17 17 17 34 34 34 51 51 51\r\n"
                "204 204 204 221 221 221 238 238 238 255 255 255\r\n",
                kRamp},
        GoodPNM{"P4", "P4\n4 2\n\x50\xA0", kBits},
        GoodPNM{"P4Comment", "P4\n# made by hand\n4\n#c\n2\n\x50\xA0\n", kBits},
        GoodPNM{"P5", "P5 4 2 255\n\x00\x11\x22\x33\xCC\xDD\xEE\xFF"s, kRamp},
        GoodPNM{"P5OfFifteen", "P5\n4 2\n15\n\x00\x01\x02\x03\x0C\x0D\x0E\x0F"s, kRamp},
        GoodPNM{"P5Of4095",
                "P5\n4 2\n4095\n\0\0\x01\x11\x02\x22\x03\x33\x0C\xCC\x0D\xDD\x0E\xEE"
                "\x0F\xFF"s,
                kRamp},
        GoodPNM{"P5Trailing", "P5\n4 2\n255\n\x00\x11\x22\x33\xCC\xDD\xEE\xFF\n"s, kRamp},
        GoodPNM{"P6",
                "P6\n#c\n4 2\n255\n\0\0\0\x11\x11\x11\x22\x22\x22\x33\x33\x33\xCC\xCC\xCC"
                "\xDD\xDD\xDD\xEE\xEE\xEE\xFF\xFF\xFF"s,
                kRamp},
        // Rows of these come from bottom to top.
        GoodPNM{"Pf",
                "Pf\n4 2\n1.0\n\0\0\0\0\x3F\x80\0\0\0\0\0\0\x3F\x80\0\0"
                "\x3F\x80\0\0\0\0\0\0\x3F\x80\0\0\0\0\0\0"s,
                kBits}),
    [](const auto &info) { return info.param.name; });

TEST_F(Command, DamagedPNMBehindAGoodFile_LeavesNothing) {
    WriteFile(mPlace.Path("cut.pbm"), "P4\n80 80\nabc");
    ExpectRefused(Print({Source(), mPlace.Path("cut.pbm")}), 1, "cut.pbm: page 1 cannot be read");
}

TEST(VipsFileOfAnAbsurdSize, LeavesStandardErrorAlone) {
    const Workplace place;
    for (const char *header :
         {"P5\n0 0\n255\n", "P6\n-5 5\n255\n", "P6\n2000000000 2000000000\n255\n"}) {
        WriteFile(place.Path("absurd.pnm"), header);
        VipsFile file(place.Path("absurd.pnm"), FileKind::PNM);
        testing::internal::CaptureStderr();
        try {
            const PageGrid grid = {40, 50, 72, 72};
            const PagePlacement fitted =
                PlacePage(AreaOf(grid, {}), PageOf(file.Describe(0)), PlacementWishes());
            (void)file.OpenPage(0, {grid, fitted, DocumentPixels::XRGB});
        } catch (const HostError &) {
            // What libvips gives up at, and whether, is its own affair.
        }
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << header;
    }
}

} // namespace
