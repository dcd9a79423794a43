/// The font that the desktop shows its own texts in, found through fontconfig.
#pragma once

#include <functional>
#include <string>

/// PostScript names, by which AppKit knows fonts. Both empty when no font of the system will do.
struct SystemFont {
    std::string plain, bold; ///< the same where the family has no bold one
};

/// The font of the first family of a description as desktops write it ("Cantarell 11", "Noto Sans,
/// 10"), or else the system's usual one without serifs: a font that has the letters of the dialogs'
/// languages and that `isKnown`, which gets a PostScript name, accepts.
[[nodiscard]] SystemFont FindSystemFont(const std::string &description,
                                        const std::function<bool(const std::string &)> &isKnown);

/// The PostScript name of a font that has a character, and that `isKnown`; empty when the system
/// has none.
[[nodiscard]] std::string FindFontWith(char32_t character,
                                       const std::function<bool(const std::string &)> &isKnown);

/// The families that a description begins with, separated by commas, without styles and size.
[[nodiscard]] std::string FamiliesOf(const std::string &description);
