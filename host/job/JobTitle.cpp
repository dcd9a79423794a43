#include "host/job/JobTitle.h"

#include "host/terminal/ExitStatus.h"
#include <cstdint>

namespace {

// Leaves room for "_p0002_99.eps" in a file name, and the comment within a line of 255 bytes.
constexpr size_t kLongestTitle = 200;

/// Length of the well-formed UTF-8 sequence at `at`; 0 when there is none. Sets its code point.
size_t Sequence(const std::string &text, size_t at, uint32_t &code) {
    const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
    const uint8_t lead = byte(at);
    if (lead < 0x80) {
        code = lead;
        return 1;
    }
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || at + length > text.size()) return 0;
    code = lead & (0xFFU >> (length + 1));
    for (size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80) return 0;
        code = code << 6 | (byte(at + i) & 0x3FU);
    }
    const uint32_t smallest = length == 4 ? 0x10000 : length == 3 ? 0x800 : 0x80;
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < smallest || code > 0x10FFFF || surrogate ? 0 : length;
}

/// Control characters, the separators of lines and paragraphs, and the marks that turn the
/// direction of text: invisible in a file name, and able to make it look like another.
bool IsControl(uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069) || code == 0xFEFF;
}

/// Drops what is no text, and makes one blank of every run of blanks.
std::string PrintableText(const std::string &text) {
    std::string clean;
    for (size_t at = 0; at < text.size();) {
        uint32_t code = 0;
        const size_t length = Sequence(text, at, code);
        const bool blank = length != 0 && (code == ' ' || IsControl(code));
        if (length == 0)
            clean += '_';
        else if (code == '/' || code == '\\')
            clean += '-';
        else if (!blank)
            clean.append(text, at, length);
        else if (!clean.empty() && clean.back() != ' ')
            clean += ' ';
        at += length == 0 ? 1 : length;
    }
    return clean;
}

void CutAtCharacter(std::string &text, size_t size) {
    if (text.size() <= size) return;
    while (size > 0 && (static_cast<uint8_t>(text[size]) & 0xC0) == 0x80)
        --size;
    text.resize(size);
}

bool ParenthesesPair(const std::string &text) {
    int open = 0;
    for (const char c : text) {
        open += c == '(' ? 1 : c == ')' ? -1 : 0;
        if (open < 0) return false;
    }
    return open == 0;
}

} // namespace

bool IsUTF8(const std::string &text) {
    for (size_t at = 0; at < text.size();) {
        uint32_t code = 0;
        const size_t length = Sequence(text, at, code);
        if (length == 0) return false;
        at += length;
    }
    return true;
}

std::string CleanTitle(const std::string &text) {
    std::string title = PrintableText(text);
    CutAtCharacter(title, kLongestTitle);
    while (!title.empty() && title.back() == ' ')
        title.pop_back();
    if (!ParenthesesPair(title))
        for (char &c : title)
            c = c == '(' ? '[' : c == ')' ? ']' : c;
    if (!title.empty() && title.front() == '.') title.front() = '_';
    return title.empty() ? "Untitled" : title;
}

std::string TitleOfFile(const std::string &path) {
    const size_t slash = path.rfind('/');
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    const size_t dot = name.rfind('.');
    return CleanTitle(dot == std::string::npos || dot == 0 ? name : name.substr(0, dot));
}

std::string ChooseTitle(const std::optional<std::string> &given, const std::string &firstFile) {
    if (!given) return TitleOfFile(firstFile);
    if (!IsUTF8(*given))
        throw HostError(ExitStatus::Usage, "the title is not UTF-8; correct -t or the locale");
    return CleanTitle(*given);
}
