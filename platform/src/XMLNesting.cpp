#include "XMLNesting.h"

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

bool StartsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

/// Cuts everything up to and including `mark` off; false when there is none.
bool SkipPast(std::string_view &text, std::string_view mark) {
    const size_t at = text.find(mark);
    if (at == std::string_view::npos) return false;
    text.remove_prefix(at + mark.size());
    return true;
}

/// Cuts the tag at the beginning of `text` off and answers it; empty when it does not end. A ">" in
/// an attribute does not end it.
std::string_view TakeTag(std::string_view &text) {
    char quote = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote != 0)
            quote = c == quote ? char(0) : quote;
        else if (c == '"' || c == '\'')
            quote = c;
        else if (c == '>') {
            const std::string_view tag = text.substr(0, i + 1);
            text.remove_prefix(i + 1);
            return tag;
        }
    }
    return {};
}

/// Follows one piece of markup, at whose "<" `text` begins.
bool Step(std::string_view &text, int &depth) {
    if (StartsWith(text, "<!--")) return SkipPast(text, "-->");
    if (StartsWith(text, "<![CDATA[")) return SkipPast(text, "]]>");
    if (StartsWith(text, "<?")) return SkipPast(text, "?>");
    const std::string_view tag = TakeTag(text);
    if (tag.empty()) return false;
    // A document type with declarations of its own could define entities, which hide nesting.
    if (StartsWith(tag, "<!")) return tag.find('[') == std::string_view::npos;
    if (StartsWith(tag, "</"))
        --depth;
    else if (tag[tag.size() - 2] != '/')
        ++depth;
    return depth >= 0;
}

bool LooksLikePropertyList(std::string_view text) {
    // Of less than this GNUstep's reader compares bytes behind the end.
    if (text.size() < std::string_view("<plist/>").size()) return false;
    if (StartsWith(text, "\xef\xbb\xbf")) text.remove_prefix(3);
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return false;
    text.remove_prefix(first);
    return StartsWith(text, "<?xml") || StartsWith(text, "<!DOCTYPE") || StartsWith(text, "<plist");
}

} // namespace

bool IsShallowPropertyListXML(std::string_view text, int limit) {
    if (!LooksLikePropertyList(text)) return false;
    int depth = 0;
    for (;;) {
        const size_t markup = text.find('<');
        if (markup == std::string_view::npos) return depth == 0;
        text.remove_prefix(markup);
        if (!Step(text, depth) || depth > limit) return false;
    }
}
