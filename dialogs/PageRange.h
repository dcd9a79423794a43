/// The print dialog's numbers: which pages, how many copies. No widgets.
#pragma once

#include <cstdint>
#include <string>

/// The first and last page to print, both inclusive.
struct PageRange {
    int16_t first = 1, last = 999;
    /// 1 to 999 stands for all pages.
    bool IsAllPages() const { return first == 1 && last == 999; }
};

enum class PageRangeFault { None, FirstPage, LastPage };

/// Both numbers must lie in 1 to 999, the last not below the first; the first fault counts.
[[nodiscard]] PageRangeFault CheckPageRange(int first, int last);

[[nodiscard]] bool IsGoodNumberOfCopies(int copies);

/// The whole number that a text begins with, 0 without one; far too large numbers give the largest
/// or smallest int, never a small number by wrapping around.
[[nodiscard]] int LeadingInteger(const std::string &text);

/// Empty or white space only.
[[nodiscard]] bool IsBlank(const std::string &text);
