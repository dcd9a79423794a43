#include "host/command/OptionKinds.h"

#include "PSHPrint.h"
#include "host/job/JobPlan.h"
#include <strings.h>
#include <utility>

CLI::Validator Filled() {
    return CLI::Validator(
        [](std::string &text) { return std::string(text.empty() ? "its value is empty" : ""); },
        std::string());
}

CLI::Validator OneOf(std::vector<std::string> words) {
    return CLI::Validator(
        [words = std::move(words)](std::string &text) {
            std::string list;
            for (size_t i = 0; i < words.size(); ++i) {
                if (strcasecmp(text.c_str(), words[i].c_str()) == 0) {
                    text = std::to_string(i);
                    return std::string();
                }
                list += (i == 0 ? "" : ", ") + words[i];
            }
            return "\"" + text + "\" is none of " + list;
        },
        std::string());
}

std::string Alternatives(const std::vector<std::string> &words) {
    std::string all;
    for (const std::string &word : words)
        all += (all.empty() ? "" : "|") + word;
    return all;
}

const std::vector<std::string> &ColourSpaceWords() {
    static const std::vector<std::string> words = {NameOfColourSpace(kZELColourSpaceCMYK),
                                                   NameOfColourSpace(kZELColourSpaceGray),
                                                   NameOfColourSpace(kZELColourSpaceRGB)};
    static_assert(kZELColourSpaceCMYK == 0 && kZELColourSpaceGray == 1 && kZELColourSpaceRGB == 2);
    return words;
}

const std::vector<std::string> &IntentWords() {
    static const std::vector<std::string> words = {"perceptual", "relative", "saturation",
                                                   "absolute"};
    return words;
}

void Switch(CLI::App &app, const char *names, std::optional<bool> &value, const char *help) {
    app.add_flag_function(
        names, [&value](std::int64_t count) { value = count > 0; }, help);
}
