// Values of options, as people and programs type them: each is refused in words of zelprint's own,
// or means something that a job can use.
#include "host/command/LpOptions.h"
#include "host/command/PlacementOptions.h"
#include "host/job/JobTitle.h"
#include "host/job/Media.h"
#include "host/job/PageSet.h"
#include "host/terminal/ExitStatus.h"

#include <cmath>
#include <cstdlib>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

void CheckTitle(const std::string &text) {
    const std::string title = CleanTitle(text);
    Require(!title.empty() && title.size() <= 200 && IsUTF8(title) && title[0] != '.');
    Require(title.find_first_of("/\\\n\r") == std::string::npos);
    Require(CleanTitle(title) == title);
    Require(!TitleOfFile(text).empty());
}

void CheckPages(const std::string &text) {
    const PageSet pages = PageSet::Parse(text);
    bool any = false;
    for (int page = 1; page < 100; ++page)
        any = pages.Contains(page) || any;
    Require(!pages.Contains(0) && !pages.Contains(-1));
    if (const auto dialog = pages.ForDialog()) {
        Require(dialog->first >= 1 && dialog->first <= dialog->second);
        Require(!any || dialog->first < 100);
    }
}

void CheckSizes(const std::string &text) {
    if (const auto paper = ParsePaperSize(text))
        Require(std::isfinite(paper->width) && std::isfinite(paper->height));
    if (const auto dpi = ParseDpi(text)) Require(dpi->x > 0 && dpi->y > 0 && std::isfinite(dpi->x));
    PlacementWishes wishes;
    if (ReadScale(text, wishes).empty() && wishes.rule == ScaleRule::Percent)
        Require(wishes.percent > 0 && std::isfinite(wishes.percent));
    (void)ReadPosition(text, wishes);
}

template <class Check>
void InWords(Check check) {
    try {
        check();
    } catch (const HostError &error) {
        Require(error.Status() == ExitStatus::Usage && error.what()[0] != 0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    // Arguments of a program end with their first zero.
    const std::string text = std::string(reinterpret_cast<const char *>(data), size).c_str();
    CheckTitle(text);
    CheckSizes(text);
    InWords([&text] { CheckPages(text); });
    InWords([&text] {
        JobOptions options;
        options.outputWords = {text};
        TakeOutputWords(options);
        Require(!options.output || *options.output == text);
    });
    return 0;
}
