/// Words of shell commands. Paths have blanks, quotes and umlauts on other people's machines.
#pragma once

#include <string>

/// A text as one word of a shell command, whatever is in it.
inline std::string Quoted(const std::string &text) {
    std::string word = "'";
    for (const char c : text)
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + "'";
}
