#include "Common/Src/postscript/PostscriptText.h"

#include "tests/Quoted.h"
#include "tests/TempFolder.h"

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <locale>
#include <random>

namespace {

/// "%f" in the C locale, which is the test program's until a test changes it.
std::string PrintedNumber(double value) {
    char text[400];
    snprintf(text, sizeof text, "%f", value);
    return text;
}

std::vector<double> Numbers() {
    std::vector<double> numbers = {0.0,
                                   -0.0,
                                   0.5,
                                   -0.5,
                                   0.0000005,
                                   0.0000015,
                                   0.00000049999,
                                   -0.0000001,
                                   72.0,
                                   595.2755905511812,
                                   841.8897637795276,
                                   1e15,
                                   123456789.1234565,
                                   std::numeric_limits<double>::max(),
                                   std::numeric_limits<double>::lowest(),
                                   std::numeric_limits<double>::min(),
                                   std::numeric_limits<double>::denorm_min(),
                                   std::numeric_limits<double>::infinity(),
                                   -std::numeric_limits<double>::infinity(),
                                   std::numeric_limits<double>::quiet_NaN()};
    std::mt19937_64 random(3);
    for (int i = 0; i < 20000; ++i) {
        const uint64_t bits = random();
        double number = 0;
        memcpy(&number, &bits, sizeof number);
        if (!std::isnan(number)) numbers.push_back(number);
        numbers.push_back(static_cast<double>(static_cast<int64_t>(bits)) / 9.2e15);
    }
    return numbers;
}

/// The process in a locale that writes 1,5 while this lives. The locale is made from its source
/// when the system has it not installed.
class CommaLocale {
public:
    CommaLocale() {
        if (setlocale(LC_ALL, "de_DE.UTF-8")) return;
        const std::string place = (mFolder.Path() / "de_DE.UTF-8").string();
        const std::string command =
            "localedef -f UTF-8 -i de_DE " + Quoted(place) + " >/dev/null 2>&1";
        // localedef warns, and then fails, about things that do not matter here; whether numbers
        // have a comma is for the test to see.
        (void)!system(command.c_str());
        setenv("LOCPATH", mFolder.Path().c_str(), 1);
        setlocale(LC_ALL, "de_DE.UTF-8");
    }
    ~CommaLocale() {
        setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
    }
    CommaLocale(const CommaLocale &) = delete;
    CommaLocale &operator=(const CommaLocale &) = delete;

private:
    TempFolder mFolder;
};

/// Digits in groups of one, as a C++ locale may have them.
struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return '\''; }
    std::string do_grouping() const override { return "\1"; }
};

std::string WholeText() {
    DocumentLayout layout;
    layout.widthPixels = 4960;
    layout.heightPixels = 7016;
    layout.widthMM = 209.97;
    layout.heightMM = 297.01;
    layout.llx = 1.5;
    layout.lly = 2.25;
    layout.urx = 1234.5;
    layout.ury = 2345.75;
    layout.document.AddCodeToSection("1234.5", PostscriptDocument::kSetup, 1);
    std::string text;
    AppendHeader(text, layout, "title", "date");
    AppendProlog(text, layout);
    AppendSetup(text, layout);
    AppendPageStart(text, layout, 1234);
    AppendPageEnd(text, layout);
    AppendDocumentEnd(text, layout, 1234);
    return text;
}

} // namespace

TEST(FixedNumber, IsWhatPrintfWritesInTheCLocale) {
    for (double number : Numbers())
        ASSERT_EQ(FixedNumber(number), PrintedNumber(number));
}

TEST(PostscriptText, DoesNotDependOnTheHostsLocale) {
    const std::string expected = WholeText();
    const CommaLocale german;
    ASSERT_EQ(PrintedNumber(1.5), "1,500000") << "no locale with a decimal comma to be had";
    EXPECT_EQ(WholeText(), expected);
    EXPECT_EQ(FixedNumber(1.5), "1.500000");
}

TEST(PostscriptText, DoesNotDependOnTheHostsStreamLocale) {
    const std::string expected = WholeText();
    const std::locale before = std::locale::global(std::locale(std::locale(), new Grouping));
    const std::string text = WholeText();
    std::locale::global(before);
    EXPECT_EQ(text, expected);
}

TEST(PostscriptText, TheTallestImageHasItsMatrix) {
    DocumentLayout layout;
    layout.widthPixels = std::numeric_limits<int32_t>::max();
    layout.heightPixels = std::numeric_limits<int32_t>::min();
    std::string text;
    AppendPageStart(text, layout, 1);
    EXPECT_NE(text.find("/ImageMatrix [2147483647 0 0 2147483648 0 -2147483648]\n"),
              std::string::npos);
}

TEST(PostscriptText, IsAppendedToWhatIsThere) {
    std::string text = "before\n";
    AppendPageEnd(text, {});
    EXPECT_EQ(text, "before\n%%PageTrailer\npgsave restore\nshowpage\n");
}

TEST(PostscriptText, EPSHasNoSectionsButTheHeaders) {
    DocumentLayout layout;
    layout.eps = true;
    for (uint32_t section = 0; section < 6; ++section)
        layout.document.AddCodeToSection("<" + std::to_string(section) + ">", section, 1);
    std::string text;
    AppendHeader(text, layout, "t", "d");
    EXPECT_NE(text.find("<0>\n%%EndComments\n"), std::string::npos);
    text.clear();
    AppendProlog(text, layout);
    AppendSetup(text, layout);
    EXPECT_EQ(text, "%%BeginProlog\n%%EndProlog\n%%BeginSetup\n%%EndSetup\n");
    text.clear();
    AppendPageEnd(text, layout);
    AppendDocumentEnd(text, layout, 1);
    EXPECT_EQ(text, "grestore\n%%EOF\n");
}

TEST(PostscriptText, TransformsFollowTheirOptions) {
    const char *const scale = "72.000000 36.000000 scale\n";
    for (int bits = 0; bits < 8; ++bits) {
        DocumentLayout layout;
        layout.widthMM = 25.4;
        layout.heightMM = 12.7;
        layout.rotate90 = bits & 1;
        layout.mirrorHorizontal = bits & 2;
        layout.mirrorVertical = bits & 4;
        std::string text, expected = "0.000000 0.000000 translate\n";
        AppendPageStart(text, layout, 1);
        if (bits & 1) expected += "90 rotate\n";
        expected += scale;
        if (bits & 1) expected += "0 -1 translate\n";
        if (bits & 2) expected += "-1 1 scale\n-1 0 translate\n";
        if (bits & 4) expected += "1 -1 scale\n0 -1 translate\n";
        EXPECT_NE(text.find("setcolorspace\n" + expected + "<<\n"), std::string::npos) << text;
    }
}
