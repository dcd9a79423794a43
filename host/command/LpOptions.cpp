#include "host/command/LpOptions.h"

#include "host/command/PlacementOptions.h"
#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <cctype>
#include <sstream>

namespace {

struct LpWord {
    const char *name;
    const char *meant; ///< zelprint's option; null: there is none
    bool alone;        ///< lp takes it without a value
};

constexpr LpWord kWords[] = {
    {"media", "--media", false},
    {"PageSize", "--media", false},
    {"PageRegion", "--media", false},
    {"copies", "--copies", false},
    {"page-ranges", "--pages", false},
    {"page-set", "--pages", false},
    {"Resolution", "--resolution", false},
    {"resolution", "--resolution", false},
    {"printer-resolution", "--resolution", false},
    {"ColorModel", "--colour-space", false},
    {"ColorMode", "--colour-space", false},
    {"print-color-mode", "--colour-space", false},
    {"landscape", "--rotate", true},
    {"portrait", "--no-rotate", true},
    {"orientation-requested", "--rotate", false},
    {"mirror", "--flip-h", true},
    {"scaling", "--scale", false},
    {"ppi", "--scale", false},
    {"job-name", "--title", false},
    {"raw", nullptr, true},
    {"collate", nullptr, true},
    {"Collate", nullptr, false},
    {"sides", nullptr, false},
    {"Duplex", nullptr, false},
    {"number-up", nullptr, false},
    {"outputorder", nullptr, false},
    {"InputSlot", nullptr, false},
    {"media-source", nullptr, false},
    {"MediaType", nullptr, false},
    {"media-type", nullptr, false},
    {"print-quality", nullptr, false},
    {"cupsPrintQuality", nullptr, false},
    {"job-hold-until", nullptr, false},
    {"job-priority", nullptr, false},
    {"job-sheets", nullptr, false},
};

/// NAME, or NAME=VALUE.
struct Word {
    explicit Word(const std::string &text)
        : name(text.substr(0, text.find('='))), hasValue(name.size() < text.size()),
          value(hasValue ? text.substr(name.size() + 1) : std::string()) {}

    std::string name;
    bool hasValue;
    std::string value;
};

const LpWord *Find(const Word &word) {
    const auto *found =
        std::find_if(std::begin(kWords), std::end(kWords), [&word](const LpWord &entry) {
            return word.name == entry.name && (word.hasValue || entry.alone);
        });
    return found == std::end(kWords) ? nullptr : found;
}

[[noreturn]] void Refuse(const std::string &text, const std::string &why) {
    throw HostError(ExitStatus::Usage, "-o " + text + ": " + why);
}

bool EndsLikeADocument(const std::string &name) {
    const auto ends = [&name](const std::string &tail) {
        return name.size() > tail.size() &&
               name.compare(name.size() - tail.size(), tail.size(), tail) == 0;
    };
    return ends(".ps") || ends(".eps");
}

/// Whether a word has the form NAME=VALUE that lp's options have.
bool LooksLikeAnOption(const Word &word) {
    return word.hasValue && !word.name.empty() && !EndsLikeADocument(word.value) &&
           std::all_of(word.name.begin(), word.name.end(), [](unsigned char c) {
               return std::isalnum(c) || c == '-' || c == '_' || c == '.';
           });
}

/// Takes a word of lp; false when it is none.
bool TakeLpWord(const std::string &text, JobOptions &options) {
    const Word word(text);
    if (TakePlacementOption(word.name, word.value, options.placement)) return true;
    if (const LpWord *known = Find(word)) {
        if (known->meant)
            Refuse(text, std::string("that is an option of lp; here it is ") + known->meant);
        Refuse(text, "that is an option of lp, and zelprint has nothing like it; leave it out");
    }
    if (LooksLikeAnOption(word))
        Refuse(text, "-o names the file to write, and takes no options of a printer; for a file of "
                     "that name give -o './" +
                         text + "'");
    return false;
}

/// lp takes several words at once, with blanks between them.
bool TakeLpWords(const std::string &text, JobOptions &options) {
    std::istringstream words(text);
    std::string word;
    if (!(words >> word) || word == text) return TakeLpWord(text, options);
    if (!TakeLpWord(word, options)) return false;
    while (words >> word)
        if (!TakeLpWord(word, options))
            Refuse(text, "\"" + word + "\" is no option; give the name of the file by itself");
    return true;
}

} // namespace

void TakeOutputWords(JobOptions &options) {
    for (const std::string &text : options.outputWords)
        if (!TakeLpWords(text, options)) options.output = text;
}
