#include "host/readers/pdf/PDFMessages.h"

#include <algorithm>
#include <array>

namespace {

bool Contains(const std::string &line, const char *text) {
    return line.find(text) != std::string::npos;
}

/// Errors of the interpreter after which the page has all that the file holds for it.
constexpr std::array kHarmless = {
    "missing white space after number",
    "malformed number",
    "incorrect xref size",
    "xref entry not valid format",
    "too few entries in xref table",
    "error in xref table",
    "startxref offset invalid",
    "no startxref token found",
    "bad trailer dictionary",
    "no header detected",
    "header lacks a version number",
    "PDF file was repaired",
    "encountered more Q than q",
    "encountered more q than Q",
    "garbage left on stack",
    "BT found inside a text block",
    "ET found outside text block",
    "object lacks an endobj",
    "obj token missing",
    "stream lacks an endstream",
    "stream inherited a resource",
    "badly escaped name",
    "potential token is too long",
    "bad DecodeParms",
    "degenerate text matrix",
    "error in annotation",
    "/Count did not match the actual number of pages", // which are counted anew
    "no error",
};

constexpr std::array kLost = {
    "Page drawing error occurred",
    "Could not draw this page at all",
    "Couldn't get page info",
    "zelprint failed",
    "Error reading a content stream",
    "Unrecoverable error",
    "VMerror",
};

/// "Function 'f' set pdfi error 22 - error reading a stream." says the text; else empty.
std::string ErrorIn(const std::string &line) {
    const size_t at = line.find("pdfi error ");
    const size_t dash = at == std::string::npos ? at : line.find(" - ", at);
    if (dash == std::string::npos) return {};
    std::string text = line.substr(dash + 3);
    while (!text.empty() && text.back() == '.')
        text.pop_back();
    return text;
}

/// Compressed data that do not decompress. A wrong check sum alone loses nothing.
bool IsBrokenCompression(const std::string &line) {
    return Contains(line, "ignoring zlib error") && !Contains(line, "incorrect data check");
}

std::string Trimmed(const std::string &line) {
    const size_t first = line.find_first_not_of(" \t*");
    const size_t last = line.find_last_not_of(" \t.");
    return first == std::string::npos || last < first ? std::string()
                                                      : line.substr(first, last - first + 1);
}

void KeepFirst(std::string &kept, const std::string &text) {
    if (kept.empty()) kept = text;
}

} // namespace

void PDFMessages::Add(const std::string &line) {
    const auto contained = [&line](const char *text) { return Contains(line, text); };
    const std::string text = Trimmed(line);
    if (!text.empty()) mLast = text;
    if (Contains(line, "requires a password")) mNeedsPassword = true;
    if (Contains(line, "Password did not work")) mWrongPassword = true;
    if (const std::string error = ErrorIn(line); !error.empty()) {
        const bool harmless = std::any_of(kHarmless.begin(), kHarmless.end(), contained);
        KeepFirst(harmless ? mRepaired : mLost, error);
    } else if (IsBrokenCompression(line) || std::any_of(kLost.begin(), kLost.end(), contained)) {
        KeepFirst(mLost, text);
    } else if (Contains(line, "ignoring zlib error")) {
        KeepFirst(mRepaired, text);
    }
}
