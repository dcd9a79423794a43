#include "dialogs/PageRange.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace {
constexpr int kMaxPage = 999;
constexpr int kMaxCopies = 999;
} // namespace

PageRangeFault CheckPageRange(int first, int last) {
    if (first < 1 || first > kMaxPage) return PageRangeFault::FirstPage;
    if (last < first || last > kMaxPage) return PageRangeFault::LastPage;
    return PageRangeFault::None;
}

bool IsGoodNumberOfCopies(int copies) {
    return 1 <= copies && copies <= kMaxCopies;
}

int LeadingInteger(const std::string &text) {
    // strtoll stays at its own limits for what is too large.
    const long long number = std::strtoll(text.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long long>(number, INT_MIN, INT_MAX));
}

bool IsBlank(const std::string &text) {
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}
