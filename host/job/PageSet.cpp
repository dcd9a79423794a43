#include "host/job/PageSet.h"

#include "host/terminal/ExitStatus.h"
#include <charconv>
#include <climits>

namespace {

constexpr int kLastPageOfDialog = 999;

bool ParsePage(const std::string &text, int &page) {
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, page);
    return error == std::errc() && stop == end && page >= 1;
}

bool ParseRange(const std::string &text, std::pair<int, int> &range) {
    const size_t dash = text.find('-');
    if (dash == std::string::npos) {
        const bool good = ParsePage(text, range.first);
        range.second = range.first;
        return good;
    }
    const std::string first = text.substr(0, dash);
    const std::string last = text.substr(dash + 1);
    range = {1, INT_MAX};
    if (first.empty() && last.empty()) return false;
    if (!first.empty() && !ParsePage(first, range.first)) return false;
    if (!last.empty() && !ParsePage(last, range.second)) return false;
    return range.first <= range.second;
}

} // namespace

PageSet::PageSet() : mRanges{{1, INT_MAX}} {}

PageSet::PageSet(int first, int last)
    : mRanges{{first, last == kLastPageOfDialog ? INT_MAX : last}} {}

PageSet PageSet::Parse(const std::string &text) {
    std::vector<std::pair<int, int>> ranges;
    for (size_t start = 0; start <= text.size();) {
        const size_t comma = std::min(text.find(',', start), text.size());
        std::pair<int, int> range;
        if (!ParseRange(text.substr(start, comma - start), range))
            throw HostError(ExitStatus::Usage,
                            "cannot read the page range \"" + text + "\"; write it like 1-4,7,9-");
        ranges.push_back(range);
        start = comma + 1;
    }
    return PageSet(std::move(ranges));
}

std::optional<std::pair<int, int>> PageSet::ForDialog() const {
    if (mRanges.size() != 1) return std::nullopt;
    auto [first, last] = mRanges[0];
    if (last == INT_MAX) last = kLastPageOfDialog;
    if (last > kLastPageOfDialog || first > last) return std::nullopt;
    return std::pair(first, last);
}

bool PageSet::Contains(int page) const {
    for (const auto &[first, last] : mRanges)
        if (page >= first && page <= last) return true;
    return false;
}
