/// What a user may choose about PDF files.
#pragma once

#include <optional>
#include <string>

/// How colours that are inks look as light.
enum class CMYKLook {
    Press, ///< as they look printed: black ink is a very dark gray
    Plain  ///< by the formula: black ink is black, cyan is full green and blue
};

struct PDFOptions {
    std::string password; ///< empty: none
    CMYKLook look = CMYKLook::Press;
    std::optional<bool> antialias; ///< empty: below the resolution where dots are too fine to see
    int pageSeconds = 0;           ///< how long one page may take to be drawn; 0: no limit
};
