/// Page ranges as lp writes them: "1-4,7,9-".
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

/// A set of page numbers, counted from 1 through all files of the job. Pages always come in the
/// order of the document, however the ranges are ordered.
class PageSet {
public:
    /// All pages.
    PageSet();
    /// Pages `first` to `last`; 999 as last page means up to the end, as in the print dialog.
    PageSet(int first, int last);
    /// Reads "1-4,7,9-" ("-4" is "1-4"). Throws HostError (Usage) for anything else.
    [[nodiscard]] static PageSet Parse(const std::string &text);

    [[nodiscard]] bool Contains(int page) const;
    /// The first and last page as the print dialog and a record have them; none when it takes more
    /// than one range, or pages beyond theirs.
    [[nodiscard]] std::optional<std::pair<int, int>> ForDialog() const;

private:
    explicit PageSet(std::vector<std::pair<int, int>> ranges) : mRanges(std::move(ranges)) {}
    std::vector<std::pair<int, int>> mRanges;
};
