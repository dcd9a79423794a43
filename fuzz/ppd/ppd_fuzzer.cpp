// The PPD reader and the printer model on any bytes: no crash, no hang, and a model that holds
// together.
#include "fuzz/MemoryFile.h"
#include "ppd/MiniParser.h"
#include "ppd/ParserError.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "ppd/PrinterInfoDictionary.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view kSignature = "*PPD-Adobe: \"4.3\"\n";
constexpr const char *kKeywords[] = {"*PageSize",        "*ImageableArea",       "*Resolution",
                                     "*DefaultPageSize", "*ParamCustomPageSize", "*JCLResolution"};

void Require(bool condition) {
    if (!condition) std::abort();
}

void CheckQueries(PPD::MiniParser &parser) {
    for (const char *keyword : kKeywords) {
        const auto entries = parser.GetOptionEntry(keyword);
        for (const auto &[option, entry] : entries) {
            Require(option == entry.GetOptionKeyword() && entry.GetMainKeyword() == keyword);
            Require(option.find_first_of(":/\r\n\t ") == std::string::npos);
        }
        try {
            const PPD::Statement first = parser.GetStatement(keyword);
            Require(entries.count(first.GetOptionKeyword()) == 1);
            const auto again = parser.GetStatement(keyword, first.GetOptionKeyword());
            Require(again.GetValue() == first.GetValue());
        } catch (const PPD::ParserError &error) {
            Require(entries.empty() && error.ErrorMessage().rfind(keyword, 0) == 0);
        }
        (void)parser.IntKeyword(keyword, 0);
        (void)parser.RealKeyword(keyword, 0);
    }
}

void CheckCustomPages(const PostscriptPages &pages) {
    double limits[4] = {};
    pages.GetCustomPageLimits(limits[0], limits[1], limits[2], limits[3]);
    for (const double limit : limits)
        Require(!std::isnan(limit));
    for (const double size : {0.0, 595.276, 1e300}) {
        const PostscriptPage page = pages.GetCustomPage(size, size / 2);
        Require(page.GetName() == (pages.HasCustomPageSetup() ? "Custom" : ""));
        Require(!std::isnan(page.Geturx()) && !std::isnan(page.Getury()));
    }
}

void CheckModel(const PostscriptPrinterInfo &info, PPD::MiniParser &parser) {
    const PostscriptPages &pages = info.Pages();
    for (int32_t i = 0; i < pages.NumPages(); ++i)
        Require(pages.FindPageByName(pages.GetPage(i).GetName()) == i);
    Require(pages.NumPages() == 0 || pages.DefaultPageIndex() < pages.NumPages());
    const PostscriptResolutions &resolutions = info.Resolutions();
    Require(resolutions.DefaultResolutionIndex() < resolutions.NumResolutions());
    for (int32_t i = 0; i < resolutions.NumResolutions(); ++i) {
        const PostscriptResolution &resolution = resolutions.GetResolution(i);
        Require(std::isfinite(resolution.GetXDpi()) && resolution.GetXDpi() >= 0);
        Require(std::isfinite(resolution.GetYDpi()) && resolution.GetYDpi() >= 0);
    }
    Require(bool(CreatePrinterInfoDictionary(info, PPD::ReadSheetSizes(parser))));
    CheckCustomPages(PostscriptPrinterInfo(info).Pages());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static MemoryFile file;
    static const CFRef<CFURLRef> url = file.URL();
    std::string content(reinterpret_cast<const char *>(data), size);
    // Most inputs should get past the first line; those that begin like one are taken as they are.
    if (content.rfind("*PPD", 0) != 0) content.insert(0, kSignature);
    file.Hold(content.data(), content.size());
    try {
        PPD::MiniParser parser(url.Get());
        CheckQueries(parser);
        CheckModel(PostscriptPrinterInfo(url.Get()), parser);
    } catch (const PPD::ParserError &error) {
        Require(!error.ErrorMessage().empty());
    }
    return 0;
}
