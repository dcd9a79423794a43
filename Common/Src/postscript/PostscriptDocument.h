/// Printer feature code, sorted into the six places of a document where such code may stand.
#pragma once

#include <array>
#include <cstdint>
#include <ostream>
#include <queue>
#include <string>
#include <vector>

/// Copyable. Used from one thread at a time.
struct PostscriptDocument {
    /// Index of a place, 0 to 5 (see the constants).
    using Section = uint32_t;
    static constexpr Section kHeaderComments = 0; ///< before "%%EndComments", also in EPS files
    static constexpr Section kProlog = 1;         ///< before "%%EndProlog"
    static constexpr Section kSetup = 2;          ///< before "%%EndSetup"
    static constexpr Section kPageSetup = 3;      ///< before "%%EndPageSetup", on every page
    static constexpr Section kPageTrailer = 4;    ///< after "%%PageTrailer", on every page
    static constexpr Section kTrailer = 5;        ///< after "%%Trailer"
    static constexpr Section kSectionCount = 6;

    class SectionQueueEntry {
    public:
        SectionQueueEntry() = default;
        SectionQueueEntry(double priority, std::string text)
            : mPriority(priority), mText(std::move(text)) {}
        double GetPriority() const { return mPriority; }
        const std::string &Text() const { return mText; }

    private:
        double mPriority = 0;
        std::string mText;
    };

    /// Orders a queue so that the smallest priority is at its top.
    struct CompareSectionQueueEntry {
        bool operator()(const SectionQueueEntry &a, const SectionQueueEntry &b) const {
            return a.GetPriority() > b.GetPriority();
        }
    };

    /// Adds a copy of `text`. Throws the int16_t code -50 for a section of 6 or more.
    void AddCodeToSection(const std::string &text, Section section, double priority);

    /// Writes the section's entries in ascending priority, each with a line feed after it, and
    /// leaves the document unchanged. Throws the int16_t code -50 for a section of 6 or more.
    void WriteSection(Section section, std::ostream &stream) const;

private:
    using SectionQueue = std::priority_queue<SectionQueueEntry, std::vector<SectionQueueEntry>,
                                             CompareSectionQueueEntry>;
    std::array<SectionQueue, kSectionCount> mSections;
};
