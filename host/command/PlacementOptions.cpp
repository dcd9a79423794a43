#include "host/command/PlacementOptions.h"

#include "host/job/Decimal.h"
#include "host/terminal/ExitStatus.h"
#include <algorithm>

namespace {

constexpr double kLeastPercent = 1;
constexpr double kMostPercent = 1000;

struct RuleWord {
    const char *word;
    ScaleRule rule;
};

constexpr RuleWord kRules[] = {{"shrink", ScaleRule::Shrink},
                               {"fit", ScaleRule::Fit},
                               {"fill", ScaleRule::Fill},
                               {"none", ScaleRule::Percent}};

/// The words of IPP that zelprint does not have itself.
constexpr RuleWord kPrintScalings[] = {{"auto", ScaleRule::Shrink},
                                       {"auto-fit", ScaleRule::Shrink}};

template <size_t N>
bool TakeRule(const RuleWord (&rules)[N], const std::string &word, PlacementWishes &wishes) {
    for (const RuleWord &entry : rules) {
        if (word != entry.word) continue;
        wishes.rule = entry.rule;
        wishes.percent = 100;
        return true;
    }
    return false;
}

bool TakePercent(const std::string &text, PlacementWishes &wishes) {
    const size_t length = text.size() - (!text.empty() && text.back() == '%' ? 1 : 0);
    size_t at = 0;
    double percent = 0;
    if (!ReadDecimal(text, at, percent) || at != length) return false;
    if (!(percent >= kLeastPercent && percent <= kMostPercent)) return false;
    wishes.rule = ScaleRule::Percent;
    wishes.percent = percent;
    return true;
}

/// Takes one word of a position; false when there is none.
bool TakeEdge(const std::string &word, PlacementWishes &wishes) {
    if (word == "top") {
        wishes.down = Alignment::Start;
    } else if (word == "bottom") {
        wishes.down = Alignment::End;
    } else if (word == "left") {
        wishes.across = Alignment::Start;
    } else if (word == "right") {
        wishes.across = Alignment::End;
    } else {
        return word == "centre" || word == "center";
    }
    return true;
}

bool IsOneOf(const std::string &value, std::initializer_list<const char *> words) {
    return std::any_of(words.begin(), words.end(),
                       [&value](const char *word) { return value == word; });
}

} // namespace

std::string ReadScale(const std::string &text, PlacementWishes &wishes) {
    if (TakeRule(kRules, text, wishes) || TakePercent(text, wishes)) return {};
    return "\"" + text + "\" is none of shrink, fit, fill, none and a percentage from 1 to 1000";
}

std::string ReadPosition(const std::string &text, PlacementWishes &wishes) {
    PlacementWishes read = wishes;
    read.across = read.down = Alignment::Middle;
    const size_t dash = text.find('-');
    const std::string first = text.substr(0, dash);
    const std::string second = dash == std::string::npos ? "" : text.substr(dash + 1);
    const bool both = IsOneOf(first, {"top", "bottom"}) && IsOneOf(second, {"left", "right"});
    if (!(dash == std::string::npos || both) || !TakeEdge(first, read) ||
        (both && !TakeEdge(second, read)))
        return "\"" + text +
               "\" is none of centre, top, bottom, left, right, top-left, top-right, bottom-left "
               "and bottom-right";
    wishes = read;
    return {};
}

bool TakePlacementOption(const std::string &name, const std::string &value,
                         PlacementWishes &wishes) {
    const auto check = [&](const std::string &problem) {
        if (!problem.empty()) throw HostError(ExitStatus::Usage, "-o " + name + ": " + problem);
    };
    if (name == "fit-to-page") {
        if (IsOneOf(value, {"", "true", "yes", "on"}))
            check(ReadScale("fit", wishes));
        else if (!IsOneOf(value, {"false", "no", "off"}))
            check("\"" + value + "\" is none of true and false");
    } else if (name == "print-scaling") {
        if (!TakeRule(kPrintScalings, value, wishes) && !TakeRule(kRules, value, wishes))
            check("\"" + value + "\" is none of auto, auto-fit, fill, fit and none");
    } else if (name == "natural-scaling") {
        check(ReadScale(value, wishes));
    } else if (name == "position") {
        check(ReadPosition(value, wishes));
    } else {
        return false;
    }
    return true;
}
