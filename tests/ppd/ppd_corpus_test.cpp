// Reads every printer description of the installed packages, twice.
#include "ppd/ParserError.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "tests/ppd/Corpus.h"
#include "tests/ppd/PPDFile.h"
#include "tests/ppd/ReferenceReader.h"

#include <chrono>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <sstream>

namespace {

/// Every difference between the two readings of one file, a line each.
class Comparison {
public:
    template <class A, class B>
    void Same(const std::string &what, const A &driver, const B &reference) {
        if (!(driver == reference))
            mDifferences << what << ": driver " << driver << ", reference " << reference << '\n';
    }
    std::string Differences() const { return mDifferences.str(); }

private:
    std::ostringstream mDifferences;
};

void ComparePages(const PostscriptPages &pages, const reference::Model &model, Comparison &c) {
    c.Same("number of pages", static_cast<size_t>(pages.NumPages()), model.pages.size());
    if (static_cast<size_t>(pages.NumPages()) != model.pages.size()) return;
    c.Same("default page", pages.DefaultPageIndex(), model.defaultPage);
    for (int32_t i = 0; i < pages.NumPages(); ++i) {
        const PostscriptPage &page = pages.GetPage(i);
        const reference::Page &other = model.pages[static_cast<size_t>(i)];
        c.Same("page name", page.GetName(), other.name);
        c.Same("page title", page.GetUIName(), other.uiName);
        c.Same("page code", page.GetPostscript(), other.code);
        c.Same(other.name + " llx", page.Getllx(), other.area[0]);
        c.Same(other.name + " lly", page.Getlly(), other.area[1]);
        c.Same(other.name + " urx", page.Geturx(), other.area[2]);
        c.Same(other.name + " ury", page.Getury(), other.area[3]);
    }
}

void CompareCustomPages(const PostscriptPages &pages, const reference::Model &model,
                        Comparison &c) {
    c.Same("custom pages", pages.HasCustomPageSetup(), model.customCode.has_value());
    if (!model.customCode || !pages.HasCustomPageSetup()) return;
    c.Same("custom code", pages.GetCustomPageCode(), *model.customCode);
    c.Same("custom parameters", pages.GetCustomPageParams().size(), model.params.size());
    for (const auto &[name, param] : model.params) {
        const auto &read = pages.GetCustomPageParam(name);
        c.Same(name + " index", read.GetStackIndex(), param.index);
        c.Same(name + " type", read.GetUnits(), param.type);
        c.Same(name + " min", read.GetMinValue(), param.min);
        c.Same(name + " max", read.GetMaxValue(), param.max);
    }
    auto params = model.params;
    double minWidth = -1, maxWidth = -1, minHeight = -1, maxHeight = -1;
    pages.GetCustomPageLimits(minWidth, maxWidth, minHeight, maxHeight);
    const bool swapped = static_cast<long>(params["Orientation"].min) % 2 != 0;
    const auto &across = params[swapped ? "Height" : "Width"];
    const auto &along = params[swapped ? "Width" : "Height"];
    const double left = params[swapped ? "HeightOffset" : "WidthOffset"].min;
    const double below = params[swapped ? "WidthOffset" : "HeightOffset"].min;
    c.Same("minimum width", minWidth, std::max(0.0, across.min - left));
    c.Same("maximum width", maxWidth, std::min(model.maxMediaWidth, across.max) - left);
    c.Same("minimum height", minHeight, std::max(0.0, along.min - below));
    c.Same("maximum height", maxHeight, std::min(model.maxMediaHeight, along.max) - below);
}

void CompareResolutions(const PostscriptResolutions &resolutions, const reference::Model &model,
                        Comparison &c) {
    const auto count = static_cast<size_t>(resolutions.NumResolutions());
    c.Same("number of resolutions", count, model.resolutions.size());
    if (count != model.resolutions.size()) return;
    c.Same("default resolution", resolutions.DefaultResolutionIndex(), model.defaultResolution);
    for (int32_t i = 0; i < resolutions.NumResolutions(); ++i) {
        const PostscriptResolution &resolution = resolutions.GetResolution(i);
        const reference::Resolution &other = model.resolutions[static_cast<size_t>(i)];
        c.Same("resolution name", resolution.GetName(), other.name);
        c.Same("resolution title", resolution.GetUIName(), other.uiName);
        c.Same("resolution code", resolution.GetPostscript(), other.code);
        c.Same(other.name + " x dpi", resolution.GetXDpi(), other.x);
        c.Same(other.name + " y dpi", resolution.GetYDpi(), other.y);
    }
}

std::string DifferencesOf(const PostscriptPrinterInfo &info, const reference::Model &model) {
    Comparison c;
    c.Same("refusal", std::string(), model.refusal);
    c.Same("colour", info.HasColour(), model.colour);
    c.Same("Level 2", info.HasPostscriptLevel2(), model.level2);
    ComparePages(info.Pages(), model, c);
    CompareCustomPages(info.Pages(), model, c);
    CompareResolutions(info.Resolutions(), model, c);
    return c.Differences();
}

struct Tally {
    size_t files = 0, postscript = 0, pages = 0, custom = 0, resolutions = 0;
    std::map<std::string, size_t> refusals;
    double seconds = 0, longest = 0;
    std::string longestName;

    void Print() const {
        std::printf("%zu files (%zu for PostScript printers), %zu pages, %zu printers with custom "
                    "pages, %zu resolutions\n",
                    files, postscript, pages, custom, resolutions);
        size_t refused = 0;
        for (const auto &[reason, count] : refusals)
            refused += count;
        std::printf("%zu refused\n", refused);
        for (const auto &[reason, count] : refusals)
            std::printf("  %zu: %s\n", count, reason.c_str());
        std::printf("modelled in %.2f s, the longest in %.1f ms (%s)\n", seconds, longest * 1000,
                    longestName.c_str());
    }
};

/// Reads one file with the driver's reader, keeping time. The refusal when there is one.
std::string ReadTimed(const PPDFile &file, const std::string &name, Tally &tally,
                      std::unique_ptr<PostscriptPrinterInfo> &info) {
    const auto start = std::chrono::steady_clock::now();
    std::string refusal;
    try {
        info = std::make_unique<PostscriptPrinterInfo>(file.URL().Get());
    } catch (const PPD::ParserError &error) {
        refusal = error.ErrorMessage();
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    tally.seconds += took.count();
    if (took.count() > tally.longest) {
        tally.longest = took.count();
        tally.longestName = name;
    }
    return refusal;
}

void ReadTwice(const std::string &name, const std::string &content, Tally &tally) {
    const PPDFile file(content);
    std::unique_ptr<PostscriptPrinterInfo> info;
    const std::string refusal = ReadTimed(file, name, tally, info);
    const reference::Model model = reference::ReadModel(content);
    ++tally.files;
    // A printer that takes something else has a filter, which turns PostScript into it.
    tally.postscript += content.find("\n*cupsFilter") == std::string::npos &&
                        content.find("\n*FoomaticRIPCommandLine") == std::string::npos;
    if (!info) {
        ++tally.refusals[refusal];
        EXPECT_EQ(refusal, model.refusal) << name;
        return;
    }
    EXPECT_EQ(DifferencesOf(*info, model), "") << name;
    tally.pages += static_cast<size_t>(info->Pages().NumPages());
    tally.custom += info->Pages().HasCustomPageSetup();
    tally.resolutions += static_cast<size_t>(info->Resolutions().NumResolutions());
}

} // namespace

TEST(PPDCorpus, EveryFile_IsReadAsTheReferenceReadsIt) {
    Corpus corpus(ZEL_TEST_LIST_PPDS, ZEL_TEST_PPDS_OF_EACH_KIND);
    Tally tally;
    for (std::string name, content; corpus.Next(name, content);)
        ReadTwice(name, content, tally);
    EXPECT_EQ(corpus.Close(), 0);
    tally.Print();
    EXPECT_GT(tally.files, corpus.LeastFiles())
        << "install openprinting-ppds, foomatic-db-compressed-ppds, "
           "hplip-data, hp-ppd and hpijs-ppds";
    EXPECT_GT(tally.postscript, corpus.LeastFiles() / 5);
}
