#include "tests/ppd/CupsReading.h"

// libcups would rather have its users ask the printer than read files.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

#include <algorithm>
#include <cups/ppd.h>
#include <iterator>

namespace {

std::map<std::string, CupsReading::Choice> ReadChoices(ppd_file_t *ppd, const char *keyword,
                                                       std::string &preset) {
    std::map<std::string, CupsReading::Choice> choices;
    const ppd_option_t *option = ppdFindOption(ppd, keyword);
    if (!option) return choices;
    preset = option->defchoice;
    for (int i = 0; i < option->num_choices; ++i) {
        const ppd_choice_t &choice = option->choices[i];
        choices[choice.choice] = {choice.text, choice.code ? choice.code : "", {}};
    }
    return choices;
}

void ReadAreas(ppd_file_t *ppd, CupsReading &reading) {
    for (int i = 0; i < ppd->num_sizes; ++i) {
        const ppd_size_t &size = ppd->sizes[i];
        const auto page = reading.pages.find(size.name);
        if (page == reading.pages.end()) continue;
        const double area[] = {size.left, size.bottom, size.right, size.top};
        std::copy(std::begin(area), std::end(area), page->second.area);
    }
}

} // namespace

CupsReading ReadWithCups(const std::string &path) {
    CupsReading reading;
    ppdSetConformance(PPD_CONFORM_RELAXED);
    ppd_file_t *ppd = ppdOpenFile(path.c_str());
    if (!ppd) {
        int line = 0;
        reading.refusal = ppdErrorString(ppdLastError(&line));
        return reading;
    }
    reading.pages = ReadChoices(ppd, "PageSize", reading.defaultPage);
    reading.pages.erase("Custom"); // libcups adds it
    ReadAreas(ppd, reading);
    reading.resolutions = ReadChoices(ppd, "Resolution", reading.defaultResolution);
    reading.customPages = ppd->variable_sizes != 0;
    reading.minWidth = ppd->custom_min[0];
    reading.minHeight = ppd->custom_min[1];
    reading.maxWidth = ppd->custom_max[0];
    reading.maxHeight = ppd->custom_max[1];
    reading.colour = ppd->color_device != 0;
    reading.level2 = ppd->language_level > 1;
    ppdClose(ppd);
    return reading;
}
