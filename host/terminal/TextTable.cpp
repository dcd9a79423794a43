#include "host/terminal/TextTable.h"

#include "host/terminal/Console.h"
#include <algorithm>

namespace {

/// Characters, taken as one column each: the bytes that do not continue another.
size_t WidthOf(const std::string &utf8) {
    return static_cast<size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

} // namespace

void TextTable::AddRow(const std::vector<std::string> &cells) {
    std::vector<std::string> row;
    mWidths.resize(std::max(mWidths.size(), cells.size()));
    for (size_t i = 0; i < cells.size(); ++i) {
        row.push_back(PlainText(cells[i]));
        mWidths[i] = std::max(mWidths[i], WidthOf(row.back()));
    }
    mRows.push_back(std::move(row));
}

std::string TextTable::Text() const {
    std::string text;
    for (const auto &row : mRows) {
        std::string line;
        for (size_t i = 0; i < row.size(); ++i)
            line += row[i] + std::string(mWidths[i] - WidthOf(row[i]) + 2, ' ');
        text += line.erase(line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}
