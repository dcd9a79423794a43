// Reads every printer description of the installed packages with the driver and with libcups. They
// differ in a few ways that docs/ppd.md explains; any other difference fails the test.
#include "ppd/ParserError.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "tests/ppd/Corpus.h"
#include "tests/ppd/CupsReading.h"
#include "tests/ppd/PPDFile.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <memory>

namespace {

/// The explained kinds of difference and how often they were met.
class Explained {
public:
    void Count(const std::string &kind) { ++mKinds[kind]; }
    void Print(size_t files) const {
        std::printf("%zu files\n", files);
        for (const auto &[kind, count] : mKinds)
            std::printf("%7zu  %s\n", count, kind.c_str());
    }

private:
    std::map<std::string, size_t> mKinds;
};

bool Near(double a, double b) {
    return std::fabs(a - b) < 0.001;
} // libcups keeps floats

int HexValue(char c) {
    const std::string digits = "0123456789abcdef0123456789ABCDEF";
    const size_t at = digits.find(c);
    return at == std::string::npos ? -1 : static_cast<int>(at % 16);
}

/// With its hexadecimal substrings decoded, as libcups does in the code of job control options.
std::string Decoded(const std::string &text) {
    std::string decoded;
    bool inside = false;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == (inside ? '>' : '<')) {
            inside = !inside;
        } else if (inside && i + 1 < text.size() && HexValue(text[i]) >= 0) {
            decoded += static_cast<char>(HexValue(text[i]) * 16 + HexValue(text[i + 1]));
            ++i;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

/// With every line end made a line feed, as libcups does.
std::string WithLineFeeds(const std::string &text) {
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        result += text[i] == '\r' ? '\n' : text[i];
    }
    return result;
}

bool IsASCII(const std::string &text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; });
}

void CompareCode(const std::string &ours, const std::string &theirs, Explained &explained) {
    if (ours == theirs) return;
    const std::string lines = WithLineFeeds(ours);
    if (lines == theirs) {
        explained.Count("code: libcups changes line ends to line feeds");
        return;
    }
    EXPECT_EQ(Decoded(lines), theirs);
    explained.Count("code of job control: libcups decodes its hexadecimal substrings");
}

void CompareTitle(const std::string &ours, const std::string &theirs, const CupsReading &cups,
                  Explained &explained) {
    if (ours == theirs) return;
    EXPECT_TRUE(!cups.isUTF8 && !IsASCII(ours)) << ours << " | " << theirs;
    explained.Count("title: libcups converts it to UTF-8");
}

template <class Choice>
void CompareChoice(const Choice &ours, const CupsReading::Choice &theirs, const CupsReading &cups,
                   Explained &explained) {
    SCOPED_TRACE(ours.GetName());
    CompareTitle(ours.GetUIName(), theirs.title, cups, explained);
    CompareCode(ours.GetPostscript(), theirs.code, explained);
}

void ComparePages(const PostscriptPages &pages, const CupsReading &cups, Explained &explained) {
    EXPECT_EQ(static_cast<size_t>(pages.NumPages()), cups.pages.size());
    for (int32_t i = 0; i < pages.NumPages(); ++i) {
        const PostscriptPage &page = pages.GetPage(i);
        const auto found = cups.pages.find(page.GetName());
        ASSERT_NE(found, cups.pages.end()) << page.GetName();
        CompareChoice(page, found->second, cups, explained);
        const double *area = found->second.area;
        EXPECT_TRUE(Near(page.Getllx(), area[0]) && Near(page.Getlly(), area[1]) &&
                    Near(page.Geturx(), area[2]) && Near(page.Getury(), area[3]))
            << page.GetName();
    }
    if (pages.NumPages() == 0) return;
    if (pages.GetPage(pages.DefaultPageIndex()).GetName() == cups.defaultPage) return;
    EXPECT_EQ(pages.FindPageByName(cups.defaultPage), -1);
    EXPECT_EQ(pages.DefaultPageIndex(), 0);
    explained.Count("default page: names no page; the driver takes the first");
}

void CompareCustomPages(const PostscriptPages &pages, const CupsReading &cups,
                        Explained &explained) {
    EXPECT_EQ(pages.HasCustomPageSetup(), cups.customPages);
    if (!pages.HasCustomPageSetup()) return;
    const auto &width = pages.GetCustomPageParam("Width");
    const auto &height = pages.GetCustomPageParam("Height");
    EXPECT_TRUE(
        Near(width.GetMinValue(), cups.minWidth) && Near(width.GetMaxValue(), cups.maxWidth) &&
        Near(height.GetMinValue(), cups.minHeight) && Near(height.GetMaxValue(), cups.maxHeight));
    double minWidth = 0, maxWidth = 0, minHeight = 0, maxHeight = 0;
    pages.GetCustomPageLimits(minWidth, maxWidth, minHeight, maxHeight);
    if (!Near(minWidth, cups.minWidth) || !Near(maxWidth, cups.maxWidth) ||
        !Near(minHeight, cups.minHeight) || !Near(maxHeight, cups.maxHeight))
        explained.Count("custom page range: the driver minds offsets, orientation and the media");
}

void CompareResolutions(const PostscriptResolutions &resolutions, const CupsReading &cups,
                        Explained &explained) {
    if (cups.resolutions.empty()) {
        const bool listed = !resolutions.GetResolution(0).GetPostscript().empty();
        EXPECT_FALSE(listed && cups.opensResolutions);
        explained.Count(listed ? "*Resolution outside of *OpenUI: libcups does not see it"
                               : "no *Resolution: the driver takes the default for the only one");
        return;
    }
    EXPECT_EQ(static_cast<size_t>(resolutions.NumResolutions()), cups.resolutions.size());
    for (int32_t i = 0; i < resolutions.NumResolutions(); ++i) {
        const PostscriptResolution &resolution = resolutions.GetResolution(i);
        const auto found = cups.resolutions.find(resolution.GetName());
        ASSERT_NE(found, cups.resolutions.end()) << resolution.GetName();
        CompareChoice(resolution, found->second, cups, explained);
    }
    EXPECT_EQ(resolutions.GetResolution(resolutions.DefaultResolutionIndex()).GetName(),
              cups.defaultResolution);
}

void CompareReadings(const std::string &content, Explained &explained) {
    const PPDFile file(content);
    CupsReading cups = ReadWithCups(file.Path());
    cups.opensResolutions = content.find("*OpenUI *Resolution") != std::string::npos;
    cups.isUTF8 = content.find("*LanguageEncoding: UTF-8") != std::string::npos;
    EXPECT_EQ(cups.refusal, "");
    try {
        const PostscriptPrinterInfo info(file.URL().Get());
        EXPECT_EQ(info.HasColour(), cups.colour);
        EXPECT_EQ(info.HasPostscriptLevel2(), cups.level2);
        ComparePages(info.Pages(), cups, explained);
        CompareCustomPages(info.Pages(), cups, explained);
        CompareResolutions(info.Resolutions(), cups, explained);
    } catch (const PPD::ParserError &error) {
        EXPECT_EQ(error.ErrorMessage(), "*DefaultResolution not found");
        explained.Count("file without *DefaultResolution: the driver refuses it");
    }
}

} // namespace

TEST(PPDCups, EveryFile_DiffersOnlyAsExplained) {
    Corpus corpus(ZEL_TEST_LIST_PPDS, ZEL_TEST_PPDS_OF_EACH_KIND);
    Explained explained;
    size_t files = 0;
    for (std::string name, content; corpus.Next(name, content); ++files) {
        SCOPED_TRACE(name);
        CompareReadings(content, explained);
    }
    EXPECT_EQ(corpus.Close(), 0);
    explained.Print(files);
    EXPECT_GT(files, corpus.LeastFiles())
        << "install openprinting-ppds, foomatic-db-compressed-ppds, "
           "hplip-data, hp-ppd and hpijs-ppds";
}
