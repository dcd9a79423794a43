#include "ppd/PostscriptPages.h"

#include "ppd/MiniParser.h"
#include "ppd/ParserError.h"
#include "tests/ppd/PPDFile.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <locale>

namespace {

using Param = PostscriptPages::CustomPageParam;

PostscriptPages Read(const std::string &statements) {
    const PPDFile file("*PPD-Adobe: \"4.3\"\n*DefaultPageSize: A4\n" + statements);
    PPD::MiniParser parser(file.URL().Get());
    return PostscriptPages(parser);
}

PostscriptPages ReadWithDefault(const std::string &preset) {
    const PPDFile file("*PPD-Adobe: \"4.3\"\n" + preset +
                       "*PageSize Letter: \"l\"\n*PageSize A4: \"a\"\n*PageSize Legal: \"g\"\n");
    PPD::MiniParser parser(file.URL().Get());
    return PostscriptPages(parser);
}

std::string ErrorWithDefault(const std::string &preset) {
    try {
        ReadWithDefault(preset);
    } catch (const PPD::ParserError &error) {
        return error.ErrorMessage();
    }
    return "no error";
}

/// Custom pages whose orientation has the given range.
std::string Custom(const std::string &orientation, const std::string &more = "") {
    return "*CustomPageSize True: \"pop setcustom\"\n"
           "*ParamCustomPageSize Width: 1 points 72 1008\n"
           "*ParamCustomPageSize Height: 2 points 100 1300\n"
           "*ParamCustomPageSize WidthOffset: 3 points 10 20\n"
           "*ParamCustomPageSize HeightOffset: 4 points 30 40\n"
           "*ParamCustomPageSize Orientation: 5 int " +
           orientation + "\n" + more;
}

struct Limits {
    double minWidth = -1, maxWidth = -1, minHeight = -1, maxHeight = -1;
    bool operator==(const Limits &) const = default;
};

std::ostream &operator<<(std::ostream &stream, const Limits &l) {
    return stream << l.minWidth << ".." << l.maxWidth << " x " << l.minHeight << ".."
                  << l.maxHeight;
}

Limits LimitsOf(const PostscriptPages &pages) {
    Limits l;
    pages.GetCustomPageLimits(l.minWidth, l.maxWidth, l.minHeight, l.maxHeight);
    return l;
}

struct Area {
    double llx, lly, urx, ury;
    bool operator==(const Area &) const = default;
};

std::ostream &operator<<(std::ostream &stream, const Area &a) {
    return stream << a.llx << ' ' << a.lly << ' ' << a.urx << ' ' << a.ury;
}

Area AreaOf(const PostscriptPage &page) {
    return {page.Getllx(), page.Getlly(), page.Geturx(), page.Getury()};
}

} // namespace

TEST(Page, Default_IsEmpty) {
    const PostscriptPage page;
    EXPECT_EQ(page.GetName() + page.GetUIName() + page.GetPostscript(), "");
    EXPECT_EQ(AreaOf(page), (Area{0, 0, 0, 0}));
}

TEST(Pages, BuiltIn_IsOneA4Page) {
    const PostscriptPages pages;
    ASSERT_EQ(pages.NumPages(), 1);
    EXPECT_EQ(pages.DefaultPageIndex(), 0);
    EXPECT_EQ(pages.GetPage(0).GetName(), "A4");
    EXPECT_EQ(pages.GetPage(0).GetUIName(), "A4");
    EXPECT_EQ(pages.GetPage(0).GetPostscript(), "a4");
    EXPECT_EQ(AreaOf(pages.GetPage(0)), (Area{13, 10, 577, 832}));
    EXPECT_FALSE(pages.HasCustomPageSetup());
    EXPECT_EQ(pages.GetPage(0).Code().kind, FeatureKind::Page);
    EXPECT_EQ(LimitsOf(pages), (Limits{0, 1000000, 0, 1000000}));
}

TEST(Pages, Order_IsThatOfTheBytesOfTheirNames) {
    const auto pages = Read("*PageSize Letter/US Letter: \"l\"\n*PageSize a3: \"3\"\n"
                            "*PageSize A4: \"4\"\n*PageSize Legal: \"g\"\n");
    ASSERT_EQ(pages.NumPages(), 4);
    EXPECT_EQ(pages.GetPage(0).GetName(), "A4");
    EXPECT_EQ(pages.GetPage(1).GetName(), "Legal");
    EXPECT_EQ(pages.GetPage(2).GetName(), "Letter");
    EXPECT_EQ(pages.GetPage(2).GetUIName(), "US Letter");
    EXPECT_EQ(pages.GetPage(2).GetPostscript(), "l");
    EXPECT_EQ(pages.GetPage(3).GetName(), "a3");
    EXPECT_EQ(pages.GetPage(3).GetUIName(), "a3");
    EXPECT_EQ(pages.GetPage(0).Code().kind, FeatureKind::Page);
}

TEST(Pages, Default_IsFoundByNameOrIsTheFirst) {
    EXPECT_EQ(ReadWithDefault("*DefaultPageSize: Letter\n").DefaultPageIndex(), 2);
    EXPECT_EQ(ReadWithDefault("*DefaultPageSize: A4\n").DefaultPageIndex(), 0);
    EXPECT_EQ(ReadWithDefault("*DefaultPageSize: Tabloid\n").DefaultPageIndex(), 0);
    EXPECT_EQ(ReadWithDefault("*DefaultPageSize: legal\n").DefaultPageIndex(), 0);
}

TEST(Pages, MissingOrMalformedDefault_RefusesTheFile) {
    EXPECT_EQ(ErrorWithDefault(""), "*DefaultPageSize not found");
    EXPECT_EQ(ErrorWithDefault("*DefaultPageSize: ^P\n"),
              "*DefaultPageSize symbol value not supported");
    EXPECT_EQ(ErrorWithDefault("*DefaultPageSize: \"<4>\"\n"),
              "*DefaultPageSize badly formed hex string");
}

TEST(Pages, ImageableArea_ReadsAsFarAsItsNumbersGo) {
    const struct {
        const char *value;
        Area area;
    } cases[] = {
        {"\"10 20 585 822\"", {10, 20, 585, 822}},
        {"\" 10.5\n20\t585  822 \"", {10.5, 20, 585, 822}},
        {"10 20 585 822", {10, 20, 585, 822}},
        {"\"-10 +20 5.85e2 822\"", {-10, 20, 585, 822}},
        {"\"10 20 585\"", {10, 20, 585, 0}},
        {"\"10 bad 585 822\"", {10, 0, 0, 0}},
        {"\"10,20,585,822\"", {10, 0, 0, 0}},
        {"\"10 20 585 822 9\"", {10, 20, 585, 822}},
        {"\"\"", {0, 0, 0, 0}},
    };
    for (const auto &c : cases) {
        const auto pages =
            Read("*PageSize A4: \"a\"\n*ImageableArea A4: " + std::string(c.value) + "\n");
        EXPECT_EQ(AreaOf(pages.GetPage(0)), c.area) << c.value;
    }
}

TEST(Pages, ImageableArea_MissingIsEmptyAndPaperDimensionIsNotRead) {
    const auto pages = Read("*PageSize A4: \"a\"\n*ImageableArea Letter: \"1 2 3 4\"\n"
                            "*PaperDimension A4: \"595 842\"\n");
    ASSERT_EQ(pages.NumPages(), 1);
    EXPECT_EQ(AreaOf(pages.GetPage(0)), (Area{0, 0, 0, 0}));
}

TEST(Pages, WithoutPageSizes_AskingForTheDefaultPageFailsClearly) {
    const auto pages = Read("");
    EXPECT_EQ(pages.NumPages(), 0);
    EXPECT_EQ(pages.DefaultPageIndex(), 0);
    EXPECT_EQ(pages.FindPageByName("A4"), -1);
    try {
        (void)pages.GetPage(pages.DefaultPageIndex());
        FAIL();
    } catch (const PPD::ParserError &error) {
        EXPECT_EQ(error.ErrorMessage(), "The printer has no such page");
    }
}

TEST(Pages, FindByName_IsExact) {
    const auto pages = ReadWithDefault("*DefaultPageSize: A4\n");
    EXPECT_EQ(pages.FindPageByName("A4"), 0);
    EXPECT_EQ(pages.FindPageByName("Letter"), 2);
    EXPECT_EQ(pages.FindPageByName("letter"), -1);
    EXPECT_EQ(pages.FindPageByName(""), -1);
    EXPECT_THROW((void)pages.GetPage(-1), PPD::ParserError);
    EXPECT_THROW((void)pages.GetPage(3), PPD::ParserError);
}

TEST(CustomParam, Text_GivesIndexTypeAndRange) {
    const struct {
        const char *text;
        int32_t index;
        const char *units;
        double min, max;
    } cases[] = {
        {"1 points 72 1008", 1, "points", 72, 1008},
        {" 5\tint\n0 3 rest", 5, "int", 0, 3},
        {"3 points -10.5 1e2", 3, "points", -10.5, 100},
        {"4 points 72", 4, "points", 72, 0},
        {"4 points", 4, "points", 0, 0},
        {"4", 4, "", 0, 0},
        {"", 0, "", 0, 0},
        {"x points 72 1008", 0, "", 0, 0},
        {"1 points a 1008", 1, "points", 0, 0},
        {"1.5 points 72 1008", 1, ".5", 0, 0},
        {"99999999999 points 72 1008", 0, "", 0, 0},
    };
    for (const auto &c : cases) {
        const Param param("Width", c.text);
        EXPECT_EQ(param.GetName(), "Width");
        EXPECT_EQ(param.GetStackIndex(), c.index) << c.text;
        EXPECT_EQ(param.GetUnits(), c.units) << c.text;
        EXPECT_EQ(param.GetMinValue(), c.min) << c.text;
        EXPECT_EQ(param.GetMaxValue(), c.max) << c.text;
        EXPECT_EQ(param.GetValue(), c.min) << c.text;
    }
}

TEST(CustomParam, SetValue_Clamps) {
    Param param("Width", "1 points 72 1008");
    const struct {
        double set, value;
    } cases[] = {{71, 72}, {72, 72}, {500, 500}, {1008, 1008}, {1009, 1008}, {HUGE_VAL, 1008}};
    for (const auto &c : cases) {
        param.SetValue(c.set);
        EXPECT_EQ(param.GetValue(), c.value);
    }
    param.SetValue(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(param.GetValue(), 1008);
    Param crossed("Width", "1 points 100 50");
    crossed.SetValue(70);
    EXPECT_EQ(crossed.GetValue(), 100);
}

TEST(CustomPages, SetupNeedsTheOptionTrueInTheFirstStatement) {
    EXPECT_TRUE(Read("*CustomPageSize True: \"code\"\n").HasCustomPageSetup());
    for (const char *text : {"", "*CustomPageSize False: \"code\"\n", "*CustomPageSize: \"code\"\n",
                             "*CustomPageSize true: \"code\"\n", "*CustomPageSize True: ^code\n",
                             "*CustomPageSize False: \"\"\n*CustomPageSize True: \"code\"\n"}) {
        const auto pages = Read(text);
        EXPECT_FALSE(pages.HasCustomPageSetup()) << text;
        const PostscriptPage page = pages.GetCustomPage(500, 700);
        EXPECT_EQ(page.GetName() + page.GetUIName() + page.GetPostscript(), "") << text;
        EXPECT_EQ(AreaOf(page), (Area{0, 0, 0, 0})) << text;
        EXPECT_TRUE(pages.GetCustomPageParams().empty()) << text;
    }
}

TEST(CustomPages, OddOrientation_FeedsTheFirstValueToTheWidth) {
    const auto pages = Read("*CustomPageSize True: \"pop pop pop setpage\"\n"
                            "*ParamCustomPageSize Width: 1 points 72 1008\n"
                            "*ParamCustomPageSize Height: 2 points 72 1008\n"
                            "*ParamCustomPageSize WidthOffset: 3 points 0 0\n"
                            "*ParamCustomPageSize HeightOffset: 4 points 0 0\n"
                            "*ParamCustomPageSize Orientation: 5 int 0 3\n");
    const PostscriptPage page = pages.GetCustomPage(500, 700);
    EXPECT_EQ(page.GetName(), "Custom");
    EXPECT_EQ(page.GetUIName(), "Custom");
    EXPECT_EQ(page.GetPostscript(), "500 700 0 0 3 \npop pop pop setpage");
    EXPECT_EQ(AreaOf(page), (Area{0, 0, 500, 700}));
}

TEST(CustomPages, EvenOrientation_FeedsTheFirstValueToTheHeight) {
    const auto pages = Read(Custom("0 2"));
    const PostscriptPage page = pages.GetCustomPage(500, 700);
    EXPECT_EQ(page.GetPostscript(), "700 500 10 30 2 \npop setcustom");
    EXPECT_EQ(AreaOf(page), (Area{30, 10, 530, 710}));
}

TEST(CustomPages, Offsets_AreTheirMinimumAndMoveTheArea) {
    const auto pages = Read(Custom("1 1"));
    const PostscriptPage page = pages.GetCustomPage(500, 700);
    EXPECT_EQ(page.GetPostscript(), "500 700 10 30 1 \npop setcustom");
    EXPECT_EQ(AreaOf(page), (Area{10, 30, 510, 730}));
}

TEST(CustomPages, SizesOutsideTheRange_AreClamped) {
    const auto pages = Read(Custom("1 1"));
    EXPECT_EQ(AreaOf(pages.GetCustomPage(1, 1)), (Area{10, 30, 82, 130}));
    EXPECT_EQ(AreaOf(pages.GetCustomPage(5000, 5000)), (Area{10, 30, 1018, 1330}));
    EXPECT_EQ(AreaOf(pages.GetCustomPage(500, 700)), (Area{10, 30, 510, 730}));
}

TEST(CustomPages, Orientation_IsTheLargestOfItsRange) {
    for (const auto &[range, written] :
         {std::pair("0 3", "3 "), std::pair("3 0", "3 "), std::pair("2.9 2.5", "2 ")}) {
        const std::string code = Read(Custom(range)).GetCustomPage(500, 700).GetPostscript();
        EXPECT_EQ(code.substr(code.find('\n') - 2, 2), written) << range;
    }
}

TEST(CustomPages, Code_WritesNumbersAsAStreamDoes) {
    const auto pages = Read("*CustomPageSize True: \"c\"\n"
                            "*ParamCustomPageSize Width: 1 points 0 10000000\n"
                            "*ParamCustomPageSize Height: 2 int 0 10000000\n"
                            "*ParamCustomPageSize WidthOffset: 3 points 0.5 1\n"
                            "*ParamCustomPageSize HeightOffset: 4 Int 1.75 2\n"
                            "*ParamCustomPageSize Orientation: 5 int 1 1\n");
    EXPECT_EQ(pages.GetCustomPage(595.27559, 841.88976).GetPostscript(),
              "595.276 841 0.5 1.75 1 \nc");
    EXPECT_EQ(pages.GetCustomPage(612, 792).GetPostscript(), "612 792 0.5 1.75 1 \nc");
    EXPECT_EQ(pages.GetCustomPage(2500000, 2500000).GetPostscript(),
              "2.5e+06 2500000 0.5 1.75 1 \nc");
}

TEST(CustomPages, Code_HasADecimalPointInAnyLocale) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const auto pages = Read(Custom("1 1"));
    const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));
    const std::string code = pages.GetCustomPage(595.5, 1200).GetPostscript();
    std::locale::global(before);
    EXPECT_EQ(code, "595.5 1200 10 30 1 \npop setcustom");
}

TEST(CustomPages, HugeValues_AreWrittenWithoutOverflow) {
    const auto pages = Read("*CustomPageSize True: \"c\"\n"
                            "*ParamCustomPageSize Width: 1 int 0 1e300\n"
                            "*ParamCustomPageSize Height: 2 points 0 1e300\n"
                            "*ParamCustomPageSize Orientation: 3 int -1e300 -1e300\n");
    EXPECT_EQ(pages.GetCustomPage(1e300, 1e300).GetPostscript(),
              "0 0 9000000000000000000 1e+300 -9000000000000000000 \nc");
}

TEST(CustomPages, Parameters_AreOrderedByStackIndexNotByName) {
    const auto pages = Read("*CustomPageSize True: \"c\"\n"
                            "*ParamCustomPageSize Height: 1 points 1 1\n"
                            "*ParamCustomPageSize Orientation: 2 int 7 7\n"
                            "*ParamCustomPageSize HeightOffset: 3 points 3 3\n"
                            "*ParamCustomPageSize Width: 4 points 4 4\n"
                            "*ParamCustomPageSize WidthOffset: 5 points 5 5\n"
                            "*ParamCustomPageSize Extra: 6 real 6.5 9\n");
    EXPECT_EQ(pages.GetCustomPage(1, 1).GetPostscript(), "1 7 3 4 5 6.5 \nc");
}

TEST(CustomPages, RepeatedParameter_TheLastCounts) {
    const auto pages = Read(Custom("1 1", "*ParamCustomPageSize Width: 9 points 1 2\n"));
    EXPECT_EQ(pages.GetCustomPageParam("Width").GetStackIndex(), 9);
    EXPECT_EQ(pages.GetCustomPageParam("Width").GetMaxValue(), 2);
}

TEST(CustomPages, MissingParameters_AreZeroAndStandInTheCode) {
    const auto pages = Read("*CustomPageSize True: \"c\"\n"
                            "*ParamCustomPageSize Width: 1 points 72 1008\n");
    const PostscriptPage page = pages.GetCustomPage(500, 700);
    // Orientation is 0, even: the second value is the width, and there is no height.
    EXPECT_EQ(page.GetPostscript(), "0 0 0 0 700 \nc");
    EXPECT_EQ(AreaOf(page), (Area{0, 0, 0, 700}));
}

TEST(CustomPages, LookedUpParameter_IsCreatedAndStandsFirstInTheCode) {
    const auto pages = Read(Custom("1 1"));
    const Param &created = pages.GetCustomPageParam("Foo");
    EXPECT_EQ(created.GetName(), "");
    EXPECT_EQ(created.GetUnits(), "");
    EXPECT_EQ(created.GetStackIndex(), 0);
    EXPECT_EQ(created.GetMaxValue(), 0);
    EXPECT_EQ(pages.GetCustomPage(500, 700).GetPostscript(), "0 500 700 10 30 1 \npop setcustom");
}

TEST(CustomLimits, WithoutSetup_AreThoseOfTheMedia) {
    EXPECT_EQ(LimitsOf(Read("*MaxMediaWidth: 800\n*MaxMediaHeight: 900\n")),
              (Limits{0, 1000000, 0, 1000000}));
}

TEST(CustomLimits, EvenOrientation) {
    EXPECT_EQ(LimitsOf(Read(Custom("0 0"))), (Limits{62, 998, 70, 1270}));
    EXPECT_EQ(LimitsOf(Read(Custom("0 0", "*MaxMediaWidth: \"500\"\n*MaxMediaHeight: 600\n"))),
              (Limits{62, 490, 70, 570}));
}

TEST(CustomLimits, OddOrientation_SwapsTheRoles) {
    EXPECT_EQ(LimitsOf(Read(Custom("1 1"))), (Limits{70, 1270, 62, 998}));
    EXPECT_EQ(LimitsOf(Read(Custom("1 1", "*MaxMediaWidth: \"500\"\n*MaxMediaHeight: 600\n"))),
              (Limits{70, 470, 62, 590}));
}

TEST(CustomLimits, WithoutMaxMedia_OnlyTheParametersBound) {
    const auto pages = Read("*CustomPageSize True: \"c\"\n"
                            "*ParamCustomPageSize Width: 1 points 72 900000\n"
                            "*ParamCustomPageSize Height: 2 points 72 9000000\n");
    EXPECT_EQ(LimitsOf(pages), (Limits{72, 900000, 72, 1000000}));
}

TEST(CustomLimits, MinimumBelowTheOffset_IsZero) {
    const auto pages = Read("*CustomPageSize True: \"c\"\n"
                            "*ParamCustomPageSize Width: 1 points 5 900\n"
                            "*ParamCustomPageSize WidthOffset: 2 points 50 60\n"
                            "*ParamCustomPageSize Height: 3 points 5 900\n"
                            "*ParamCustomPageSize HeightOffset: 4 points 60 60\n");
    EXPECT_EQ(LimitsOf(pages), (Limits{0, 850, 0, 840}));
}

TEST(CustomLimits, AreNumbersWhateverTheMediaSizeSays) {
    const Limits limits =
        LimitsOf(Read(Custom("0 0", "*MaxMediaWidth: nan\n*MaxMediaHeight: inf\n")));
    EXPECT_EQ(limits, (Limits{62, 998, 70, 1270}));
}

TEST(CustomLimits, ChangeWithTheFirstCustomPage) {
    const auto pages = Read(Custom("0 1"));
    EXPECT_EQ(LimitsOf(pages), (Limits{62, 998, 70, 1270}));
    (void)pages.GetCustomPage(500, 700);
    EXPECT_EQ(LimitsOf(pages), (Limits{70, 1270, 62, 998}));
}

TEST(CustomLimits, LookUpsCreateTheMissingParameters) {
    const auto pages = Read("*CustomPageSize True: \"c\"\n");
    EXPECT_TRUE(pages.GetCustomPageParams().empty());
    (void)LimitsOf(pages);
    EXPECT_EQ(pages.GetCustomPageParams().size(), 5U);
}

TEST(CustomPages, Copy_HasParametersOfItsOwn) {
    const auto pages = Read(Custom("0 1"));
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is what is tested
    const PostscriptPages copy(pages);
    (void)pages.GetCustomPage(500, 700);
    EXPECT_EQ(pages.GetCustomPageParam("Width").GetValue(), 500);
    EXPECT_EQ(copy.GetCustomPageParam("Width").GetValue(), 72);
}
