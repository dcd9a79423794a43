#include "platform/toolkit/gnustep/SystemFont.h"

#include <algorithm>
#include <cctype>
#include <fontconfig/fontconfig.h>
#include <iterator>
#include <memory>

namespace {

template <auto Function>
struct Calls {
    template <typename T>
    void operator()(T *object) const {
        Function(object);
    }
};
using Pattern = std::unique_ptr<FcPattern, Calls<FcPatternDestroy>>;
using FontSet = std::unique_ptr<FcFontSet, Calls<FcFontSetDestroy>>;

/// What the dialogs' own texts are made of, in all their languages. What else a font lacks, names
/// of pages and folders, is drawn with another one.
constexpr char32_t kLetters[] = U"AZaz09 !%()+,-./:;?°ÄÖÜäöüßéàçñ…";

const char *const kStyles[] = {
    "bold",     "semi-bold",       "semibold",  "ultra-bold", "extra-bold", "heavy",
    "black",    "medium",          "book",      "regular",    "normal",     "light",
    "thin",     "ultra-light",     "italic",    "oblique",    "roman",      "condensed",
    "expanded", "ultra-condensed", "small-caps"};

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/// A style, a size, variations or features: what follows the families.
bool IsNoName(const std::string &word) {
    if (std::isdigit(static_cast<unsigned char>(word[0])) != 0 || word[0] == '@' || word[0] == '#')
        return true;
    return std::find(std::begin(kStyles), std::end(kStyles), Lower(word)) != std::end(kStyles);
}

std::string TextOf(const FcPattern *pattern, const char *object) {
    FcChar8 *text = nullptr;
    if (FcPatternGetString(pattern, object, 0, &text) != FcResultMatch) return {};
    return reinterpret_cast<const char *>(text);
}

bool HasCharacter(const FcPattern *pattern, char32_t character) {
    FcCharSet *characters = nullptr;
    return FcPatternGetCharSet(pattern, FC_CHARSET, 0, &characters) == FcResultMatch &&
           FcCharSetHasChar(characters, character) != 0;
}

bool HasLetters(const FcPattern *pattern) {
    return std::all_of(std::begin(kLetters), std::end(kLetters) - 1,
                       [pattern](char32_t letter) { return HasCharacter(pattern, letter); });
}

Pattern PatternOf(const std::string &families, int weight) {
    Pattern pattern(FcPatternCreate());
    for (size_t start = 0; start < families.size();) {
        const size_t end = std::min(families.find(',', start), families.size());
        const std::string family = families.substr(start, end - start);
        FcPatternAddString(pattern.get(), FC_FAMILY,
                           reinterpret_cast<const FcChar8 *>(family.c_str()));
        start = end + 1;
    }
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, weight);
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    return pattern;
}

struct Font {
    std::string family, name;
};
using IsWanted = std::function<bool(const FcPattern *, const Font &)>;

/// The nearest font that is wanted.
Font Nearest(const std::string &families, int weight, const IsWanted &isWanted) {
    const Pattern pattern = PatternOf(families, weight);
    FcResult result = FcResultNoMatch;
    const FontSet fonts(FcFontSort(nullptr, pattern.get(), FcFalse, nullptr, &result));
    for (int i = 0; fonts && i < fonts->nfont; ++i) {
        const FcPattern *candidate = fonts->fonts[i];
        Font font = {TextOf(candidate, FC_FAMILY), TextOf(candidate, FC_POSTSCRIPT_NAME)};
        if (!font.name.empty() && isWanted(candidate, font)) return font;
    }
    return {};
}

} // namespace

std::string FamiliesOf(const std::string &description) {
    std::string families = description.substr(0, description.find_last_not_of(" ,\t") + 1);
    while (!families.empty()) {
        const size_t blank = families.find_last_of(" ,");
        const std::string word = families.substr(blank == std::string::npos ? 0 : blank + 1);
        if (!IsNoName(word)) break;
        const size_t end =
            blank == std::string::npos ? blank : families.find_last_not_of(" ,", blank);
        families.erase(end == std::string::npos ? 0 : end + 1);
    }
    return families;
}

SystemFont FindSystemFont(const std::string &description,
                          const std::function<bool(const std::string &)> &isKnown) {
    std::string families = FamiliesOf(description);
    if (families.empty()) families = "sans-serif";
    const auto isGood = [&](const FcPattern *pattern, const Font &font) {
        return HasLetters(pattern) && isKnown(font.name);
    };
    const Font plain = Nearest(families, FC_WEIGHT_REGULAR, isGood);
    if (plain.name.empty()) return {};
    const Font bold =
        Nearest(plain.family, FC_WEIGHT_BOLD, [&](const FcPattern *pattern, const Font &font) {
            return font.family == plain.family && isGood(pattern, font);
        });
    return {plain.name, bold.name.empty() ? plain.name : bold.name};
}

std::string FindFontWith(char32_t character,
                         const std::function<bool(const std::string &)> &isKnown) {
    return Nearest("sans-serif", FC_WEIGHT_REGULAR,
                   [&](const FcPattern *pattern, const Font &font) {
                       return HasCharacter(pattern, character) && isKnown(font.name);
                   })
        .name;
}
