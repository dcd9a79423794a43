#include "Common/Src/postscript/PostscriptDocument.h"

#include "ZELTypes.h"

namespace {

void CheckSection(PostscriptDocument::Section section) {
    if (section >= PostscriptDocument::kSectionCount) throw static_cast<int16_t>(kZELBadParameter);
}

} // namespace

void PostscriptDocument::AddCodeToSection(const std::string &text, Section section,
                                          double priority) {
    CheckSection(section);
    mSections[section].emplace(priority, text);
}

void PostscriptDocument::WriteSection(Section section, std::ostream &stream) const {
    CheckSection(section);
    // A queue gives its entries up as it is read, and page sections are written once a page.
    SectionQueue queue = mSections[section];
    for (; !queue.empty(); queue.pop())
        stream << queue.top().Text() << '\n' << std::flush;
}
